// The one owner of the mode: every event in every mode, and what timers and buttons show of it.
#include "update/run_mode.hpp"

#include <gtest/gtest.h>

#include <algorithm>
#include <functional>

#include "platform/files.hpp"
#include "support/test_services.hpp"

namespace {

using update::Mode;
using update::RunMode;
using update::RunOutcome;
using End = RunOutcome::End;

enum class Event { StartUpDone, Play, Repair, Tick, End };

struct World : support::TestServices {
  World() : TestServices("juego") { platform::MakeFolder(folders.AppPath); }

  RunOutcome Run(bool hostInDoubt) {
    ++runs;
    doubts.push_back(hostInDoubt);
    deepest = std::max(deepest, ++depth);
    EXPECT_FALSE(window.tmrUpdates.On()) << "the timer rests while its run is on the stack";
    if (during) during();
    wentOn = mode.MayGoOn();
    --depth;
    return outcome;
  }
  // What the player sees of the mode: update timer, news timer, play, settings.
  std::string Seen() {
    std::string seen;
    for (const bool on : {window.tmrUpdates.On(), window.NewsTimer.On(), play, settings})
      seen += on ? '1' : '0';
    return seen;
  }
  void Reach(Mode wanted) {
    if (wanted == Mode::Starting) return;
    mode.StartUpDone();
    if (wanted == Mode::Updating) mode.cmdIniciar_Click();
    if (wanted == Mode::Ending) Do(Event::End);
  }
  void Do(Event event) {
    switch (event) {
      case Event::StartUpDone:
        return mode.StartUpDone();
      case Event::Play:
        return mode.cmdIniciar_Click();
      case Event::Repair:
        return mode.RepairConfirmed();
      case Event::Tick:
        return mode.tmrUpdates_Timer();
      case Event::End:
        mode.ProgramEnds();
        return lifetime.End(0);
    }
  }

  controls::MainWindow window{host.events->Timers()};
  RunMode mode{services,
               window,
               {[this](bool on) { play = on; }, [this](bool on) { settings = on; },
                [this](bool hostInDoubt) { return Run(hostInDoubt); }, [this] { ++offers; },
                [this] {
                  forgottenAt.push_back(depth);
                  return true;
                }}};
  bool play = false, settings = false, wentOn = false;
  int offers = 0, runs = 0, depth = 0, deepest = 0;
  std::vector<bool> doubts;
  std::vector<int> forgottenAt;  // with so many runs on the stack
  RunOutcome outcome{End::Stopped, "Falló: el disco.", "disco"};
  std::function<void()> during;
};

TEST(RunMode, EveryEventInEveryMode) {
  const struct {
    Mode from;
    Event event;
    Mode to;
    const char* seen;  // update timer, news timer, play, settings
    int runs;
  } cases[] = {
      {Mode::Starting, Event::StartUpDone, Mode::Idle, "0111", 0},
      {Mode::Starting, Event::Play, Mode::Starting, "0000", 0},
      {Mode::Starting, Event::Repair, Mode::Starting, "0000", 0},
      {Mode::Starting, Event::Tick, Mode::Starting, "0000", 0},
      {Mode::Starting, Event::End, Mode::Ending, "0000", 0},
      {Mode::Idle, Event::StartUpDone, Mode::Idle, "0111", 0},
      {Mode::Idle, Event::Play, Mode::Updating, "1001", 0},
      {Mode::Idle, Event::Repair, Mode::Updating, "1001", 0},
      {Mode::Idle, Event::Tick, Mode::Idle, "0111", 0},
      {Mode::Idle, Event::End, Mode::Ending, "0011", 0},
      {Mode::Updating, Event::StartUpDone, Mode::Updating, "1001", 0},
      {Mode::Updating, Event::Play, Mode::Updating, "1001", 0},
      {Mode::Updating, Event::Repair, Mode::Updating, "1001", 0},
      {Mode::Updating, Event::Tick, Mode::Idle, "0111", 1},
      {Mode::Updating, Event::End, Mode::Ending, "0001", 0},
      {Mode::Ending, Event::StartUpDone, Mode::Ending, "0011", 0},
      {Mode::Ending, Event::Play, Mode::Ending, "0011", 0},
      {Mode::Ending, Event::Repair, Mode::Ending, "0011", 0},
      {Mode::Ending, Event::Tick, Mode::Ending, "0011", 0},
      {Mode::Ending, Event::End, Mode::Ending, "0011", 0},
  };
  for (const auto& entry : cases) {
    SCOPED_TRACE(std::to_string(static_cast<int>(entry.from)) + " event " +
                 std::to_string(static_cast<int>(entry.event)));
    World world;
    world.Reach(entry.from);
    world.Do(entry.event);
    EXPECT_EQ(world.mode.Now(), entry.to);
    EXPECT_EQ(world.Seen(), entry.seen);
    EXPECT_EQ(world.runs, entry.runs);
  }
}

// What happens while a run is on the stack, and what has become of it afterwards.
TEST(RunMode, NothingEntersARunAndOnlyARepairStartsItOver) {
  const struct {
    Event during;
    bool wentOn;
    Mode after;
    const char* seen;
  } cases[] = {{Event::StartUpDone, true, Mode::Idle, "0111"},
               {Event::Play, true, Mode::Idle, "0111"},
               {Event::Tick, true, Mode::Idle, "0111"},
               {Event::Repair, false, Mode::Updating, "1001"},
               {Event::End, false, Mode::Ending, "0001"}};
  for (const auto& entry : cases) {
    SCOPED_TRACE(static_cast<int>(entry.during));
    World world;
    world.Reach(Mode::Updating);
    world.during = [&] { world.Do(entry.during); };
    world.mode.tmrUpdates_Timer();
    EXPECT_EQ(world.wentOn, entry.wentOn);
    EXPECT_EQ(world.mode.Now(), entry.after);
    EXPECT_EQ(world.Seen(), entry.seen);
    EXPECT_EQ(world.deepest, 1);
    EXPECT_EQ(world.runs, 1);
  }
}

TEST(RunMode, ARepairOfStartUpOrOfARunIsFollowedByOneWholeRun) {
  World world;
  world.mode.RepairConfirmed();
  world.mode.StartUpDone();
  EXPECT_EQ(world.Seen(), "1001");
  world.during = [&] {
    if (world.runs == 1) world.mode.RepairConfirmed();
  };
  world.mode.tmrUpdates_Timer();
  world.mode.tmrUpdates_Timer();
  EXPECT_TRUE(world.wentOn);
  EXPECT_EQ(world.mode.Now(), Mode::Idle);
  EXPECT_EQ(world.doubts, (std::vector<bool>{false, false})) << "a repair says nothing against the mirror";
  EXPECT_EQ(world.forgottenAt, (std::vector<int>{0, 0})) << "no run may record anything behind a repair";
}

TEST(RunMode, AnOutcomeDecidesWhatFollows) {
  World world;
  world.Reach(Mode::Updating);
  world.outcome = {End::TryAgain, {}, {}};
  world.mode.tmrUpdates_Timer();
  EXPECT_EQ(world.Seen(), "1001");
  EXPECT_EQ(world.window.restingStatus, "");
  world.window.ProgressBar1.Value = 77;
  world.window.lblVelocity.Caption = std::string("12kb");
  world.outcome = {End::Stopped, "Falló: el disco.", "disco {lleno}"};
  world.mode.tmrUpdates_Timer();
  EXPECT_EQ(world.Seen(), "0111");
  EXPECT_EQ(world.window.lblEstado.Caption.Get() + world.window.restingStatus,
            "Falló: el disco.Falló: el disco.");
  EXPECT_EQ(world.window.ProgressBar1.Value.Get(), 0);
  EXPECT_TRUE(world.window.ProgressBar1.Failed);
  EXPECT_EQ(world.window.lblVelocity.Caption.Get(), "");
  EXPECT_NE(platform::ReadWhole(world.folders.ParentDir + "Errores.log", 10'000).find("disco -lleno-"),
            std::string::npos);
  world.mode.cmdIniciar_Click();
  EXPECT_FALSE(world.window.ProgressBar1.Failed) << "a new run has not failed yet";
  world.mode.tmrUpdates_Timer();
  EXPECT_EQ(world.doubts, (std::vector<bool>{false, true, true}))
      << "after a failure the mirror is confirmed first";
}

TEST(RunMode, AWatcherNoticesEveryChange) {
  World world;
  world.Reach(Mode::Idle);
  const auto still = world.mode.StillSo();
  EXPECT_TRUE(still());
  world.mode.cmdIniciar_Click();
  EXPECT_FALSE(still());
  world.mode.tmrUpdates_Timer();
  EXPECT_EQ(world.mode.Now(), Mode::Idle);
  EXPECT_FALSE(still()) << "idle again is not idle still";
}

}  // namespace
