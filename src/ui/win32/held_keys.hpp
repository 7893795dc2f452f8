#pragma once

#include <windows.h>

namespace ui::win32 {

// Whether the message is the repetition of a key that presses buttons and closes windows: a key held down is
// one press, whatever window it ends up in.
inline bool IsHeldPress(const MSG& message) {
  constexpr LPARAM kWasDown = LPARAM{1} << 30;
  if (message.message != WM_KEYDOWN || !(message.lParam & kWasDown)) return false;
  return message.wParam == VK_RETURN || message.wParam == VK_SPACE || message.wParam == VK_ESCAPE;
}

}  // namespace ui::win32
