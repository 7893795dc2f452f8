// Many packed files in one run: fetched several at a time, never more than a mirror has to bear, and what
// goes wrong with all of them is one thing to the player.
#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <condition_variable>
#include <mutex>

#include "platform/files.hpp"
#include "support/launcher_run.hpp"

namespace {

using support::LauncherRun;

constexpr std::size_t kFewest = 3, kMost = 4;  // requests under way at the same time

// Holds answers back until there are the fewest, unless that takes too long.
class Gate {
 public:
  void Pass() {
    std::unique_lock lock(mutex_);
    most_ = std::max(most_, ++inside_);
    changed_.notify_all();
    changed_.wait_for(lock, std::chrono::seconds(5), [this] { return gaveUp_ || most_ >= kFewest; });
    gaveUp_ = most_ < kFewest;
    --inside_;
  }
  std::size_t Most() const { return most_; }

 private:
  std::mutex mutex_;
  std::condition_variable changed_;
  std::size_t inside_ = 0, most_ = 0;
  bool gaveUp_ = false;
};

std::string NameOf(int i) { return "datos" + std::to_string(i) + ".bin"; }

struct PackedFiles : testing::Test, LauncherRun {
  void Publish(int files) {
    mirror.AddBinFile("KVN-DX8.exe", "cliente");
    for (int i = 0; i < files; ++i) mirror.AddBinFile(NameOf(i), std::string(10'000, 'a') + NameOf(i));
    mirror.Publish();
  }
};

TEST_F(PackedFiles, ComeSeveralAtATimeButNeverMoreThanFour) {
  Publish(12);
  Gate gate;
  for (const auto& [name, bytes] : mirror.Published()) {
    if (!name.starts_with("NewAct2/Bin/")) continue;
    mirror.server.On(mirror.PathOf(name),
                     [&gate, answer = support::Text(bytes)](const support::SeenRequest&) {
                       gate.Pass();
                       return answer;
                     });
  }
  Start();
  Play();
  UntilEnded();
  EXPECT_EQ(GameFiles(), mirror.Expected());
  EXPECT_GE(gate.Most(), kFewest);
  EXPECT_LE(gate.Most(), kMost);
}

TEST_F(PackedFiles, ThatCannotBeInstalledAreOneMessageAndAListInTheLog) {
  constexpr int kFiles = 20;
  Publish(kFiles);
  for (int i = 0; i < kFiles; ++i) folder.Put(game + "/Bin/" + NameOf(i) + "/$", "");  // in the file's place
  Start();
  Play();
  UntilEnded();
  ASSERT_EQ(machine.dialogs.shown.size(), 1u);
  const std::string& shown = machine.dialogs.shown[0].text;
  EXPECT_NE(shown.find("al descomprimir el update "), std::string::npos) << shown;
  EXPECT_TRUE(shown.ends_with("\r\n\r\nY 19 más como este. Están todos en Errores.log.")) << shown;
  const std::string log = folder.Get("Errores.log");
  for (int i = 0; i < kFiles; ++i) EXPECT_NE(log.find(NameOf(i) + ".kvn"), std::string::npos) << i;
}

TEST_F(PackedFiles, ThatNoMirrorHasAreNotAllAskedFor) {
  Publish(0);
  for (int i = 0; i < 200; ++i) mirror.AddIndexRecord({support::Md5Of(NameOf(i)), "\\Bin\\" + NameOf(i)});
  mirror.Publish();
  Start();
  Play();
  UntilEnded();
  EXPECT_LT(mirror.Asked().size(), 120u);
  const std::string log = folder.Get("Errores.log"), told = " archivos seguidos que ";
  EXPECT_NE(log.find("Info.kvn: 32" + told), std::string::npos) << log;
  EXPECT_EQ(log.find(told), log.rfind(told)) << "told once";
  EXPECT_EQ(GameFiles(), mirror.Expected()) << "what there is was installed";
}

}  // namespace
