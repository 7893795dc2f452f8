#pragma once

#include <windows.h>

#include <optional>
#include <string>

namespace ui::win32 {

// What a screen reader is told of a control whose window class does not say it.
struct Spoken {
  LONG role = 0;  // ROLE_SYSTEM_...
  std::wstring name;
  std::wstring value = {};
  LONG state = 0;            // STATE_SYSTEM_..., beside what every window has
  std::wstring action = {};  // what a press does; empty: it cannot be pressed
};

// Whoever can say it about a window. Asked on the interface thread, each time anew.
class Speaker {
 public:
  virtual std::optional<Spoken> Speak() const = 0;  // none: the window's class says it well enough

 protected:
  ~Speaker() = default;
};

// The speaker of a window; null when there is none, or none any more.
using FindSpeaker = const Speaker* (*)(HWND);

// The answer to WM_GETOBJECT; none when the system's own is to be given.
std::optional<LRESULT> AnswerGetObject(HWND window, WPARAM wParam, LPARAM lParam, FindSpeaker find);

}  // namespace ui::win32
