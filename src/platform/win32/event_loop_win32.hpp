#pragma once

#include <windows.h>

#include <functional>

#include "platform/event_loop.hpp"
#include "platform/win32/handles.hpp"

namespace platform {

// The message loop of the thread that makes it. Timers are fired by the loop itself and, through a timer of
// the system, also while a menu, a message box or the dragging of a window runs a message loop of its own:
// there only short ticks, since one that lets events run would take the keys, the clicks and the end of the
// drag away from that loop.
class Win32EventLoop : public EventLoop {
 public:
  explicit Win32EventLoop(Clock& clock);
  ~Win32EventLoop() override;
  Win32EventLoop(const Win32EventLoop&) = delete;

  void DoEvents() override;
  void WaitEvents(std::uint32_t limitMs) override;
  void Wake() override;
  TimerQueue& Timers() override { return timers_; }

  // Sees every message before it is dispatched (keyboard navigation); true when it has handled it.
  std::function<bool(MSG&)> preTranslate;

  bool QuitReceived() const { return quit_; }  // WM_QUIT was posted

 private:
  static LRESULT CALLBACK WindowProcedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam);
  void FireTimers();
  void FireShortTimers();
  void ArmSystemTimer(std::uint64_t least = 0);  // milliseconds

  TimerQueue timers_;
  unique_event wake_;
  unique_window window_;  // message-only; receives the system timer
  bool quit_ = false;
};

}  // namespace platform
