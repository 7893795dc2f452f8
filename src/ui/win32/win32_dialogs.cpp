#include "ui/win32/win32_dialogs.hpp"

namespace ui::win32 {

using platform::DialogAnswer;
using platform::DialogButtons;

namespace {

// The windows of the dialog class are all message boxes, since the program's own windows have another one.
BOOL CALLBACK PressLastButton(HWND window, LPARAM) {
  wchar_t name[16] = L"";
  GetClassNameW(window, name, 16);
  if (lstrcmpW(name, L"#32770") != 0) return TRUE;
  for (const int button : {IDCANCEL, IDNO, IDOK}) {
    if (!GetDlgItem(window, button)) continue;
    PostMessageW(window, WM_COMMAND, static_cast<WPARAM>(button), 0);
    break;
  }
  return TRUE;
}

}  // namespace

void Win32Dialogs::CloseAll() { EnumThreadWindows(GetCurrentThreadId(), &PressLastButton, 0); }

DialogAnswer Win32Dialogs::Show(const std::string& text, DialogButtons buttons, const std::string& title) {
  UINT kind = MB_SETFOREGROUND;
  DialogAnswer closed = DialogAnswer::Ok;
  switch (buttons) {
    case DialogButtons::Ok:
      kind |= MB_OK;
      break;
    case DialogButtons::YesNo:
      kind |= MB_YESNO;
      closed = DialogAnswer::No;
      break;
    case DialogButtons::YesNoCancel:
      kind |= MB_YESNOCANCEL;
      closed = DialogAnswer::Cancel;
      break;
  }
  const HWND owner = screen_ ? screen_->DialogOwner() : nullptr;
  switch (MessageBoxW(owner, platform::Wide(text).c_str(), platform::Wide(title).c_str(), kind)) {
    case IDYES:
      return DialogAnswer::Yes;
    case IDNO:
      return DialogAnswer::No;
    case IDOK:
      return DialogAnswer::Ok;
    default:
      return closed;
  }
}

}  // namespace ui::win32
