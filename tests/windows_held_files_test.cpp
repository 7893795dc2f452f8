// Other programs (virus scanners, indexers, the game itself) have the launcher's files open.
#include <gtest/gtest.h>
#include <windows.h>

#include <functional>
#include <thread>

#include "base/runtime_error.hpp"
#include "platform/files.hpp"
#include "platform/machine.hpp"
#include "platform/win32/handles.hpp"
#include "platform/win32/wide.hpp"
#include "support/temp_folder.hpp"

namespace platform {
namespace {

using support::TempFolder;

unique_file Held(const std::string& path, DWORD sharing) {
  return unique_file(CreateFileW(Wide(path).c_str(), GENERIC_READ | GENERIC_WRITE, sharing, nullptr,
                                 OPEN_EXISTING, 0, nullptr));
}

struct HeldFilesTest : testing::Test {
  HeldFilesTest() {
    folder.Put("held", "old");
    folder.Put("other", "other");
  }
  const TempFolder folder;
  const std::string held = folder / "held", other = folder / "other";
  const std::pair<const char*, std::function<void()>> actions[8] = {
      {"read", [this] { EXPECT_EQ(ReadWhole(held, 100), "old"); }},
      {"append", [this] { AppendTo(held, "!"); }},
      {"flush", [this] { FlushFile(held); }},
      {"flush all", [this] { FlushTree(folder.Path()); }},
      {"write", [this] { WriteWhole(held, "new"); }},
      {"copy from", [this] { CloneFile(held, other); }},
      {"replace", [this] { ReplaceFileWith(other, held); }},
      {"remove", [this] { RemoveFile(held); }},
  };
};

TEST_F(HeldFilesTest, WhatIsHeldForAMomentIsWaitedFor) {
  for (const auto& [name, action] : actions) {
    SCOPED_TRACE(name);
    folder.Put("held", "old");
    folder.Put("other", "other");
    unique_file scanner = Held(held, 0);
    ASSERT_TRUE(scanner);
    const std::jthread end([&scanner] {
      Sleep(40);
      scanner.reset();
    });
    EXPECT_NO_THROW(action());
  }
}

TEST_F(HeldFilesTest, WhatIsHeldForGoodIsPermissionDeniedButNoHindranceToAFlush) {
  const unique_file scanner = Held(held, 0);
  for (const auto& [name, action] : actions) {
    SCOPED_TRACE(name);
    int number = 0;
    try {
      action();
    } catch (const base::RuntimeError& error) {
      number = error.Number();
    }
    EXPECT_EQ(number, std::string_view(name).starts_with("flush") ? 0 : 70);
  }
  EXPECT_EQ(ListTree(folder.Path()).size(), 2u);
}

TEST_F(HeldFilesTest, WhoHoldsAFileIsNamed) {
  EXPECT_EQ(HolderOf(held), "");
  EXPECT_EQ(HolderOf(folder / "none"), "");
  const auto processes = MakeProcesses({});
  processes->Start({"cmd.exe", "cmd.exe /c (echo x>ready & ping -n 5 127.0.0.1 >nul)>held",
                    WindowStyle::Hidden, folder.Path()});
  for (int i = 0; i < 2000 && !folder.Has("ready"); ++i) Sleep(10);
  ASSERT_TRUE(folder.Has("ready"));
  const std::string holder = HolderOf(held);
  if (holder.empty()) GTEST_SKIP() << "this system does not tell (Wine)";
  EXPECT_NE(holder.find("cmd"), std::string::npos) << holder;
}

}  // namespace
}  // namespace platform
