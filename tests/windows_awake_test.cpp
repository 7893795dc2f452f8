// The machine does not fall asleep while a run goes on.
#include <gtest/gtest.h>
#include <windows.h>

#include "platform/keep_awake.hpp"
#include "support/test_services.hpp"
#include "update/run_mode.hpp"

namespace {

using platform::KeepAwake;

bool IsKeptAwake() {  // asking ends it, so it is told the same again
  const EXECUTION_STATE state = SetThreadExecutionState(ES_CONTINUOUS);
  SetThreadExecutionState(state);
  return (state & ES_CONTINUOUS) && (state & ES_SYSTEM_REQUIRED);
}

TEST(WindowsKeepAwake, LastsUntilTheOutermostEnds) {
  {
    const KeepAwake outer;
    { const KeepAwake inner; }
    EXPECT_TRUE(IsKeptAwake());
  }
  EXPECT_FALSE(IsKeptAwake());
}

TEST(WindowsKeepAwake, LastsAsLongAsARun) {
  using End = update::RunOutcome::End;
  for (const End end : {End::Stopped, End::TryAgain, End::ProgramEnds}) {
    support::TestServices with;
    controls::MainWindow window(with.host.events->Timers());
    bool during = false;
    update::RunMode mode(with.services, window,
                         {[](bool) {}, [](bool) {},
                          [&](bool) {
                            during = IsKeptAwake();
                            return update::RunOutcome{end, {}, {}};
                          },
                          [] {}, [] { return true; }});
    mode.StartUpDone();
    EXPECT_FALSE(IsKeptAwake());
    mode.cmdIniciar_Click();
    mode.tmrUpdates_Timer();
    EXPECT_TRUE(during);
    EXPECT_EQ(IsKeptAwake(), end != End::Stopped);
    mode.ProgramEnds();
    EXPECT_FALSE(IsKeptAwake());
  }
}

}  // namespace
