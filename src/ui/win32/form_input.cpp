#include <windows.h>
#include <windowsx.h>

#include <utility>

#include "ui/win32/form.hpp"
#include "ui/win32/held_keys.hpp"

// The pointer and the keyboard in a form.
namespace ui::win32 {
namespace {

using controls::MouseButton;

// The button that a move counts as made with.
MouseButton Held(WPARAM keys) {
  if (keys & MK_LBUTTON) return MouseButton::Left;
  if (keys & MK_RBUTTON) return MouseButton::Right;
  return keys & MK_MBUTTON ? MouseButton::Middle : MouseButton::None;
}

POINT PointOf(LPARAM position) { return {GET_X_LPARAM(position), GET_Y_LPARAM(position)}; }

bool IsListOpen(HWND focus) {
  for (HWND at = focus; at; at = GetParent(at)) {
    wchar_t name[16] = L"";
    GetClassNameW(at, name, 16);
    if (lstrcmpiW(name, L"COMBOBOX") == 0) return SendMessageW(at, CB_GETDROPPEDSTATE, 0, 0) != 0;
  }
  return false;
}

}  // namespace

View* Form::LabelAt(POINT point) const {
  for (const auto& view : views_) {
    if (view->TakesPointer() || view->IsGround() || !view->Handle() || !view->Control().Visible) continue;
    const RECT box = view->Box();
    if (PtInRect(&box, point)) return view.get();
  }
  return nullptr;
}

// The system repeats the last move whenever windows change below a resting pointer; only real moves count.
void Form::PointerOver(View* view, HWND over, WPARAM buttons, LPARAM position) {
  POINT at = PointOf(position);
  ClientToScreen(over, &at);
  if (at.x == lastPointer_.x && at.y == lastPointer_.y) return;
  lastPointer_ = at;
  under_ = view;
  // Where a window manager moves windows, its end of the drag may be told late: the same press must not start
  // another one, which would leave the window hanging on the pointer.
  if (!(buttons & MK_LBUTTON)) dragged_ = false;
  if (dragged_) buttons &= ~static_cast<WPARAM>(MK_LBUTTON);
  TRACKMOUSEEVENT track{sizeof track, TME_LEAVE, over, 0};
  TrackMouseEvent(&track);
  if (view) {
    view->Control().MouseMove(Held(buttons));
  } else {
    window_.MouseMove(Held(buttons));
  }
}

// A pointer that leaves the window straight from a control would leave it lit: it counts as having passed
// over the bare window.
void Form::PointerLeft() {
  POINT at{};
  GetCursorPos(&at);
  const HWND now = WindowFromPoint(at);
  if (!under_ || (now && GetAncestor(now, GA_ROOT) == Handle())) return;
  under_ = nullptr;
  lastPointer_ = {-1, -1};
  window_.MouseMove(MouseButton::None);
}

void Form::UsedPointer() {
  if (!showsFocus_) return;
  showsFocus_ = false;
  if (const HWND focus = GetFocus()) InvalidateRect(focus, nullptr, FALSE);
}

void Form::FocusMoved(View& view, bool here) {
  if (here) lastFocus_ = view.Handle();
  const RECT box = view.Box();
  InvalidateRect(view.Handle(), nullptr, FALSE);
  InvalidateRect(Handle(), &box, FALSE);
}

LRESULT Form::PointerMessage(UINT message, WPARAM wParam, LPARAM lParam) {
  View* const label =
      message >= WM_MOUSEFIRST && message <= WM_MOUSELAST ? LabelAt(PointOf(lParam)) : nullptr;
  switch (message) {
    case WM_MOUSEMOVE:
      PointerOver(label, Handle(), wParam, lParam);
      return 0;
    case WM_MOUSELEAVE:
      PointerLeft();
      return 0;
    case WM_LBUTTONDOWN:
      UsedPointer();
      dragged_ = false;
      pressed_ = label;
      if (label) {
        label->Control().MouseDown(MouseButton::Left);
      } else {
        window_.MouseDown(MouseButton::Left);
      }
      return 0;
    case WM_LBUTTONUP: {
      View* const pressed = std::exchange(pressed_, nullptr);
      if (!label) return 0;
      label->Control().MouseUp(MouseButton::Left);
      if (label == pressed) label->Control().Click();
      return 0;
    }
    case WM_SETCURSOR:
      if (reinterpret_cast<HWND>(wParam) != Handle()) return FALSE;  // the child's own choice
      if (LOWORD(lParam) == HTCLIENT) return SetPointer();
      break;
  }
  return DefWindowProcW(Handle(), message, wParam, lParam);
}

LRESULT Form::SetPointer() {
  POINT at{};
  GetCursorPos(&at);
  ScreenToClient(Handle(), &at);
  const View* label = LabelAt(at);
  SetCursor(LoadCursorW(nullptr, label && label->Control().Click.HasHandlers() ? IDC_HAND : IDC_ARROW));
  return TRUE;
}

bool Form::Translate(MSG& message) {
  if (IsHeldPress(message)) {
    const View* view = ViewOf(message.hwnd);
    const bool typed = message.wParam == VK_SPACE && view && view->TakesText();
    if (!typed) return true;
  }
  if (message.message == WM_KEYDOWN || message.message == WM_SYSKEYDOWN) {
    const int key = static_cast<int>(message.wParam);
    if (key == VK_ESCAPE && IsListOpen(message.hwnd)) return false;  // closes the list only
    if (!showsFocus_ &&
        (key == VK_TAB || key == VK_UP || key == VK_DOWN || key == VK_LEFT || key == VK_RIGHT)) {
      showsFocus_ = true;
      InvalidateRect(GetFocus(), nullptr, FALSE);
    }
    const HWND handle = Handle();
    if (message.message == WM_KEYDOWN) window_.KeyDown(key);
    if (!IsWindow(handle)) return true;
    View* const focused = ViewOf(GetFocus());
    if (key == VK_RETURN && focused && !IsListOpen(message.hwnd) && focused->Press()) return true;
  }
  return IsDialogMessageW(Handle(), &message) != FALSE;
}

}  // namespace ui::win32
