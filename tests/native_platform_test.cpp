#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>

#include "platform/files.hpp"
#include "platform/machine.hpp"
#include "platform/posix/unique_fd.hpp"
#include "support/body_sink.hpp"
#include "support/faulty_server.hpp"
#include "support/temp_folder.hpp"

namespace platform {
namespace {

using support::TempFolder;

// Polls until `done`, at most ten seconds.
template <class Condition>
bool Eventually(Condition done) {
  const auto clock = MakeClock();
  const std::uint64_t start = clock->Milliseconds();
  while (!done()) {
    if (clock->Milliseconds() - start > 10'000) return false;
    clock->Sleep(5);
  }
  return true;
}

TEST(NativeFiles, LinksAreNeitherListedNorFollowed) {
  const TempFolder folder;
  folder.Put("outside/precious", "1");
  folder.Put("tree/a", "2");
  std::filesystem::create_directory_symlink(folder / "outside", folder / "tree/link");
  std::filesystem::create_symlink(folder / "outside/precious", folder / "tree/file");
  EXPECT_EQ(ListTree(folder / "tree"), (std::vector<FoundFile>{{"a"}}));
  RemoveTree(folder / "tree");
  EXPECT_EQ(folder.Get("outside/precious"), "1");
}

TEST(NativeFiles, APipeInTheirPlaceHoldsNothingUp) {
  const TempFolder folder;
  ASSERT_EQ(mkfifo((folder / "pipe").c_str(), 0600), 0);
  EXPECT_ANY_THROW(ReadWhole(folder / "pipe", 10));
}

class NativeProcesses : public testing::Test {
 protected:
  TempFolder folder;
  std::vector<std::string> told;
  std::unique_ptr<Processes> processes =
      MakeProcesses([this](const std::string& line) { told.push_back(line); });
};

TEST_F(NativeProcesses, AProgramGetsItsWordsItsFolderAndNothingOfOurs) {
  const UniqueFd inherited(dup(1));  // not closed by exec itself
  folder.Put("my client.sh",
             "#!/bin/sh\nreadlink /proc/self/fd/0 > fds\nls /proc/$$/fd > open\n"
             "printf '%s|' \"$@\" > words.tmp\nmv words.tmp words\n");
  const std::string program = folder / "my client.sh";  // not executable, as out of an archive
  const std::string line = "\"" + program + "\" one \"two words\" KELVARIN";
  processes->Start({program, line, WindowStyle::NormalFocus, folder.Path()});
  EXPECT_EQ(told, std::vector<std::string>{"Run " + line});
  ASSERT_TRUE(Eventually([&] { return folder.Has("words"); }));
  EXPECT_EQ(folder.Get("words"), "one|two words|KELVARIN|");
  EXPECT_EQ(folder.Get("fds"), "/dev/null\n");
  EXPECT_EQ(folder.Get("open").find(std::to_string(inherited.get()) + "\n"), std::string::npos);
}

TEST_F(NativeProcesses, AScriptRunsUnderItsOwnName) {
  folder.Put("Kelvarin.Client.exe", "#!/bin/sh\nuntil [ -e stop ]; do sleep 0.02; done\n");
  processes->Start({folder / "Kelvarin.Client.exe", "x", WindowStyle::NormalFocus, folder.Path()});
  const auto runs = [&] {
    const auto names = processes->RunningImageNames();
    return std::find(names.begin(), names.end(), "Kelvarin.Client.exe") != names.end();
  };
  EXPECT_TRUE(Eventually(runs));
  folder.Put("stop", "");
  EXPECT_TRUE(Eventually([&] { return !runs(); }));
}

TEST(NativeShell, OpensWebPagesOnly) {
  std::vector<std::string> told;
  const auto shell = MakeShell([&](const std::string& line) { told.push_back(line); });
  EXPECT_TRUE(shell->OpenPage("https://127.0.0.1:8251/chat", ""));
  for (const char* refused : {"file:///etc/passwd", "calc.exe", "javascript:x", "", "http://"}) {
    EXPECT_FALSE(shell->OpenPage(refused, "")) << refused;
  }
  EXPECT_EQ(told, std::vector<std::string>{"Open https://127.0.0.1:8251/chat"});
}

TEST(NativeHttpClient, GoesThroughTheProxyOfTheEnvironmentAndTellsThatItWantsAName) {
  support::FaultyServer proxy("127.0.0.5");
  proxy.On("http://127.0.0.9/file", support::Text("through"));
  proxy.On("http://127.0.0.9/closed", {.status = 407,
                                       .headers = {{"Proxy-Authenticate", "Basic realm=\"x\""}},
                                       .body = std::string(300'000, 'p')});
  const std::string exempt = getenv("no_proxy");  // the loopback, for every other test
  unsetenv("no_proxy");
  setenv("http_proxy", proxy.Url("").c_str(), 1);
  const auto client = MakeHttpClient();
  support::BodySink sink;
  const HttpOutcome through = client->Get({.url = "http://127.0.0.9/file"}, sink, {});
  EXPECT_TRUE(through.Complete()) << through.systemText;
  EXPECT_EQ(sink.body, "through");
  const HttpOutcome outcome = client->Get({.url = "http://127.0.0.9/closed"}, sink, {});
  unsetenv("http_proxy");
  setenv("no_proxy", exempt.c_str(), 1);
  EXPECT_EQ(outcome.error, HttpError::CannotConnect);
  EXPECT_EQ(outcome.status, 407);
  EXPECT_NE(outcome.systemError, 0u);
  EXPECT_EQ(sink.body, "through") << "the page of the proxy is nobody's answer";
}

}  // namespace
}  // namespace platform
