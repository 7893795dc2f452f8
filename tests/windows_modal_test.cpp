#include <windows.h>

#include <gtest/gtest.h>

#include <atomic>
#include <thread>

#include "support/win32/one_colour.hpp"
#include "support/win32/window_world.hpp"
#include "ui/win32/win32_dialogs.hpp"

namespace {

// A message box, a menu or a drag is open while a tick is due that lets events run for long, as one does that
// waits for a mirror's answer.
struct WindowsModalTest : testing::Test, support::WindowWorld {
  WindowsModalTest() {
    Load();
    host.clock.stepOnRead = 5;
    host.events->Timers().Start(20, [this] { ++shortTicks; });
    host.events->Timers().Start(
        20,
        [this] {
          ++longTicks;
          const auto end = GetTickCount64() + 3000;
          while (open && GetTickCount64() < end) host.events->WaitEvents(10);
        },
        platform::TickKind::LetsEventsRun);
  }

  // Runs what opens a loop of the system's own, and looks at the ticks of that time.
  template <class Modal>
  void WhileOpen(Modal modal) {
    open = true;
    longTicks = 0;
    modal();
    open = false;
    EXPECT_EQ(longTicks, 0) << "it would take the player's messages away";
    EXPECT_GT(shortTicks, 0);
    EXPECT_TRUE(Until([this] { return longTicks > 0; })) << "put off, not dropped";
  }
  // For another thread: the ticks are due now.
  void AwaitTicks() {
    const int before = shortTicks;
    for (int i = 0; i < 500 && shortTicks < before + 3; ++i) Sleep(10);
  }

  std::atomic<int> shortTicks = 0, longTicks = 0;
  std::atomic<bool> open = false;
};

TEST_F(WindowsModalTest, MessageBoxGetsItsKeys) {
  ui::win32::Win32Dialogs dialogs;
  dialogs.SetScreen(&screen);
  std::thread player([&] {
    HWND box = nullptr;
    for (int i = 0; i < 500 && !(box = FindWindowW(L"#32770", L"caja")); ++i) Sleep(20);
    AwaitTicks();
    const DWORD thread = GetWindowThreadProcessId(box, nullptr);
    for (const WPARAM key : {VK_TAB, VK_RETURN}) {
      GUITHREADINFO focus{};
      focus.cbSize = sizeof focus;
      GetGUIThreadInfo(thread, &focus);
      PostMessageW(focus.hwndFocus, WM_KEYDOWN, key, 1);
      Sleep(100);
    }
  });
  WhileOpen([&] {
    EXPECT_EQ(dialogs.Show("¿?", platform::DialogButtons::YesNo, "caja"), platform::DialogAnswer::No);
  });
  player.join();
}

TEST_F(WindowsModalTest, MenuGetsItsKeys) {
  WhileOpen([&] { WithMenu([&](HMENU) { AwaitTicks(); }); });
}

}  // namespace
