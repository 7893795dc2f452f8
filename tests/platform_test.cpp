#include <gtest/gtest.h>

#include <thread>

#include "base/runtime_error.hpp"
#include "platform/encoding.hpp"
#include "platform/files.hpp"
#include "platform/machine.hpp"
#include "support/temp_folder.hpp"
#include "support/test_host.hpp"

namespace platform {
namespace {

using support::TempFolder;

template <class Action>
int ErrorNumberOf(Action action) {
  try {
    action();
  } catch (const base::RuntimeError& error) {
    return error.Number();
  }
  return 0;
}

TEST(Encoding, BetweenUtf8AndAnsi) {
  EXPECT_EQ(ToAnsi("aáñü€…"), "a\xE1\xF1\xFC\x80\x85");
  EXPECT_EQ(FromAnsi("a\xE1\xF1\xFC\x80\x85"), "aáñü€…");
  EXPECT_EQ(ToAnsi("a漢b"), "a?b");
  for (const char* wrong : {"\xC3", "\xFF", "\xE2\x82", "\x80", "\xF8\x88\x80\x80\x80"}) {
    EXPECT_EQ(ToAnsi(std::string("a") + wrong).substr(0, 2), "a?") << wrong;
  }
  EXPECT_EQ(ToAnsi("") + FromAnsi(""), "");
}

TEST(Files, FailuresHaveTheClassicNumbers) {
  const TempFolder folder;
  folder.Put("file", "12345");
  const std::string file = folder / "file", none = folder / "none", deep = folder / "no/such/file";
  const std::pair<int, std::function<void()>> cases[] = {
      {53, [&] { ReadWhole(none, 10); }},
      {76, [&] { ReadWhole(deep, 10); }},
      {7, [&] { ReadWhole(file, 4); }},
      {0, [&] { ReadWhole(file, 5); }},
      {53, [&] { RemoveFile(none); }},
      {76, [&] { MakeFolder(deep); }},
      {0, [&] { MakeFolder(folder.Path()); }},
      {0, [&] { RemoveTree(none); }},
      {76, [&] { WriteWhole(deep, "x"); }},
      {76, [&] { AppendTo(deep, "x"); }},
      {53, [&] { CloneFile(none, file); }},
      {53, [&] { ReplaceFileWith(none, file); }},
      {53, [&] { FlushFile(none); }},
      {76, [&] { ListTree(none); }},
      {58,
       [&] {
         OutputFile taken(file, OutputFile::Existing::Refuse);
         taken.Write("new");
         taken.Commit();
       }},
  };
  int number = 0;
  for (const auto& [expected, action] : cases)
    EXPECT_EQ(ErrorNumberOf(action), expected) << "case " << number++;
  EXPECT_EQ(folder.Get("file"), "12345");
  EXPECT_EQ(ListTree(folder.Path()).size(), 1u);
}

TEST(Files, AnOutputFileAppearsWholeOrNotAtAll) {
  const TempFolder folder;
  folder.Put("a", "old");
  {
    OutputFile dropped(folder / "a");
    dropped.Write("new");
  }
  EXPECT_EQ(folder.Get("a"), "old");
  OutputFile kept(folder / "a");
  kept.Write("n");
  EXPECT_EQ(folder.Get("a"), "old");
  kept.Write("ew");
  kept.Commit();
  OutputFile fresh(folder / "b", OutputFile::Existing::Refuse);
  fresh.Commit();
  EXPECT_EQ(folder.Get("a"), "new");
  EXPECT_EQ(ListTree(folder.Path()), (std::vector<FoundFile>{{"a"}, {"b"}}));
}

TEST(Files, AListingEndsWhenToldTo) {
  const TempFolder folder;
  folder.Put("file", "1");
  std::stop_source source;
  EXPECT_EQ(ListTree(folder.Path(), source.get_token()).size(), 1u);
  source.request_stop();
  EXPECT_TRUE(ListTree(folder.Path(), source.get_token()).empty());
}

TEST(Files, AFolderIsProbedForWriting) {
  const TempFolder folder;
  folder.Put("file", "1");
  EXPECT_TRUE(CanWriteTo(folder.Path()));
  EXPECT_EQ(ListTree(folder.Path()), (std::vector<FoundFile>{{"file"}}));
  EXPECT_FALSE(CanWriteTo(folder / "none"));
  EXPECT_FALSE(CanWriteTo(folder / "file"));
  EXPECT_EQ(HolderOf(folder / "file"), "");
}

TEST(EventLoops, SleepUntilTheLimitOrAWakeUp) {
  support::SteppedClock still;
  const auto loop = MakeEventLoop(still);
  constexpr std::uint32_t kLongerThanAnyTest = 3'600'000;
  loop->Timers().Start(1'000'000, [] {});
  loop->WaitEvents(30);
  loop->Wake();  // kept for the next sleep
  loop->WaitEvents(kLongerThanAnyTest);
  std::jthread later([&] { loop->Wake(); });
  loop->WaitEvents(kLongerThanAnyTest);
}

TEST(EventLoops, TimersFireWhenTheClockSaysSoAndNeverInsideThemselves) {
  support::SteppedClock clock;
  const auto loop = MakeEventLoop(clock);
  int ticks = 0, others = 0;
  loop->Timers().Start(100, [&] {
    ++ticks;
    clock.Step(500);
    loop->DoEvents();
  });
  const TimerQueue::Id other = loop->Timers().Start(100, [&] { ++others; });
  loop->DoEvents();
  EXPECT_EQ(ticks, 0);
  clock.Step(100);
  loop->WaitEvents(60'000);
  EXPECT_EQ(ticks, 1);
  EXPECT_GE(others, 1);
  loop->Timers().Stop(other);
  const int before = others;
  clock.Step(100);
  loop->DoEvents();
  EXPECT_EQ(ticks, 2);
  EXPECT_EQ(others, before);
}

TEST(Settings, KeepTextsExactly) {
  const auto store = MakeSettingsStore();
  EXPECT_EQ(store->Get("LauncherTests", "none", "none"), "");
  for (const char* value : {"1", "", "http://127.0.0.1:8250/update/kvn2011/", " blanks ", "\"quoted\"",
                            "ñ=€;x", "C:\\a\\b", "'"}) {
    store->Set("LauncherTests", "CONFIG", "Key", value);
    EXPECT_EQ(MakeSettingsStore()->Get("LauncherTests", "CONFIG", "Key"), value);
  }
  store->Set("LauncherTests", "CONFIG", "Other", "2");
  store->Set("LauncherTests2", "CONFIG", "Key", "3");
  EXPECT_EQ(store->Get("LauncherTests", "CONFIG", "Key"), "'");
  EXPECT_EQ(store->Get("launchertests2", "CONFIG", "Other"), "");
}

TEST(Locks, TheSecondHolderKnowsOfTheFirst) {
  const auto processes = MakeProcesses([](const std::string&) {});
  const std::string name = "Global\\LauncherTests-" + std::to_string(MakeClock()->Milliseconds());
  auto first = processes->TakeLock(name);
  EXPECT_FALSE(first->AlreadyExisted());
  EXPECT_FALSE(processes->TakeLock(name + "x")->AlreadyExisted());
  auto second = processes->TakeLock(name);
  EXPECT_TRUE(second->AlreadyExisted());
  first.reset();
  EXPECT_TRUE(processes->TakeLock(name)->AlreadyExisted());
  second.reset();
  EXPECT_FALSE(processes->TakeLock(name)->AlreadyExisted());
}

TEST(RunningProcesses, IncludeThisOne) {
  const auto names = MakeProcesses([](const std::string&) {})->RunningImageNames();
  EXPECT_NE(std::find(names.begin(), names.end(), FileNameOf(ExecutablePath())), names.end());
}

}  // namespace
}  // namespace platform
