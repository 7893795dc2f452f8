#include "platform/win32/event_loop_win32.hpp"

#include <algorithm>

#include "platform/machine.hpp"

namespace platform {
namespace {

constexpr wchar_t kClassName[] = L"LauncherTimers";
constexpr UINT_PTR kTimerId = 1;
constexpr std::uint64_t kForeignRoundMs = 50;

// Messages that come faster than they are handled must not keep the timers from firing.
constexpr int kMostMessagesPerRound = 1000;

}  // namespace

Win32EventLoop::Win32EventLoop(Clock& clock)
    : timers_(clock), wake_(CreateEventW(nullptr, FALSE, FALSE, nullptr)) {
  WNDCLASSEXW windowClass{};
  windowClass.cbSize = sizeof windowClass;
  windowClass.lpfnWndProc = WindowProcedure;
  windowClass.hInstance = GetModuleHandleW(nullptr);
  windowClass.lpszClassName = kClassName;
  RegisterClassExW(&windowClass);  // fails for every loop but the first, whose class serves all
  window_.reset(CreateWindowExW(0, kClassName, nullptr, 0, 0, 0, 0, 0, HWND_MESSAGE, nullptr,
                                windowClass.hInstance, this));
  timers_.onChange = [this] { ArmSystemTimer(); };
}

Win32EventLoop::~Win32EventLoop() = default;

LRESULT CALLBACK Win32EventLoop::WindowProcedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
  if (message == WM_NCCREATE) {
    const auto* creation = reinterpret_cast<const CREATESTRUCTW*>(lParam);
    SetWindowLongPtrW(window, GWLP_USERDATA, reinterpret_cast<LONG_PTR>(creation->lpCreateParams));
  }
  if (message == WM_TIMER && wParam == kTimerId) {
    if (auto* loop = reinterpret_cast<Win32EventLoop*>(GetWindowLongPtrW(window, GWLP_USERDATA))) {
      loop->FireShortTimers();
    }
    return 0;
  }
  return DefWindowProcW(window, message, wParam, lParam);
}

void Win32EventLoop::DoEvents() {
  MSG message;
  for (int i = 0; i < kMostMessagesPerRound && PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE); ++i) {
    if (message.message == WM_QUIT) {
      quit_ = true;
      continue;
    }
    // The due timers come below; what reaches the window itself was dispatched by another loop.
    if (message.hwnd == window_.get() && message.message == WM_TIMER) continue;
    if (preTranslate && preTranslate(message)) continue;
    TranslateMessage(&message);
    DispatchMessageW(&message);
  }
  FireTimers();
}

void Win32EventLoop::WaitEvents(std::uint32_t limitMs) {
  const std::uint64_t sleep = std::min<std::uint64_t>(limitMs, timers_.UntilNext().value_or(limitMs));
  // A message that was looked at but not taken counts as pending.
  const HANDLE wake = wake_.get();
  MsgWaitForMultipleObjectsEx(1, &wake, static_cast<DWORD>(sleep), QS_ALLINPUT, MWMO_INPUTAVAILABLE);
  DoEvents();
}

void Win32EventLoop::Wake() { SetEvent(wake_.get()); }

void Win32EventLoop::FireTimers() {
  timers_.FireDue();
  ArmSystemTimer();
}

void Win32EventLoop::FireShortTimers() {
  timers_.FireDueAndShort();
  ArmSystemTimer(kForeignRoundMs);  // those that wait are due all the time
}

void Win32EventLoop::ArmSystemTimer(std::uint64_t least) {
  const auto next = timers_.UntilNext();
  if (!next) {
    KillTimer(window_.get(), kTimerId);
    return;
  }
  const auto delay = std::clamp<std::uint64_t>(std::max(*next, least), USER_TIMER_MINIMUM,
                                               static_cast<std::uint64_t>(USER_TIMER_MAXIMUM));
  SetTimer(window_.get(), kTimerId, static_cast<UINT>(delay), nullptr);
}

std::unique_ptr<EventLoop> MakeEventLoop(Clock& clock) { return std::make_unique<Win32EventLoop>(clock); }

}  // namespace platform
