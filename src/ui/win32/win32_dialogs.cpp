#include "ui/win32/win32_dialogs.hpp"

#include "base/unique_handle.hpp"
#include "ui/win32/held_keys.hpp"

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

struct HookTraits : base::NullIsNone<HHOOK> {
  static void Close(HHOOK hook) { UnhookWindowsHookEx(hook); }
};
using UniqueHook = base::UniqueHandle<HookTraits>;

LRESULT CALLBACK DropHeldPresses(int code, WPARAM wParam, LPARAM lParam) {
  if (code == MSGF_DIALOGBOX && IsHeldPress(*reinterpret_cast<const MSG*>(lParam))) return TRUE;
  return CallNextHookEx(nullptr, code, wParam, lParam);
}

UINT KindOf(DialogButtons buttons) {
  switch (buttons) {
    case DialogButtons::Ok:
      return MB_OK;
    case DialogButtons::YesNo:
    case DialogButtons::RiskyYesNo:
      return MB_YESNO |
             (platform::DefaultAnswer(buttons) == DialogAnswer::No ? MB_DEFBUTTON2 : MB_DEFBUTTON1);
    case DialogButtons::YesNoCancel:
      break;
  }
  return MB_YESNOCANCEL;
}

}  // namespace

void Win32Dialogs::CloseAll() { EnumThreadWindows(GetCurrentThreadId(), &PressLastButton, 0); }

DialogAnswer Win32Dialogs::Show(const std::string& text, DialogButtons buttons, const std::string& title) {
  const UniqueHook filter(SetWindowsHookExW(WH_MSGFILTER, &DropHeldPresses, nullptr, GetCurrentThreadId()));
  const UINT kind = MB_SETFOREGROUND | KindOf(buttons);
  const HWND owner = screen_ ? screen_->DialogOwner() : nullptr;
  switch (MessageBoxW(owner, platform::Wide(text).c_str(), platform::Wide(title).c_str(), kind)) {
    case IDYES:
      return DialogAnswer::Yes;
    case IDNO:
      return DialogAnswer::No;
    case IDOK:
      return DialogAnswer::Ok;
    default:
      return platform::UnattendedAnswer(buttons);
  }
}

}  // namespace ui::win32
