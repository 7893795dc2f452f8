#include "ui/win32/tray_icon.hpp"

#include <windows.h>

#include <utility>

#include "ui/win32/dpi.hpp"

namespace ui::win32 {
namespace {

// The shell reports each mouse message on the icon as a move whose x coordinate is the message's number.
constexpr UINT kCallback = WM_MOUSEMOVE;

// The taskbar's scale is the icon's; it may change at any time.
int IconSize(HWND own) {
  const HWND taskbar = FindWindowW(L"Shell_TrayWnd", nullptr);
  return SystemMetricAt(SM_CXSMICON, DpiOf(taskbar ? taskbar : own));
}

}  // namespace

TrayIcon::TrayIcon(PictureCache& pictures, std::function<void(int)> mouse)
    : pictures_(pictures),
      mouse_(std::move(mouse)),
      handle_(Create()),
      taskbarCreated_(RegisterWindowMessageW(L"TaskbarCreated")),
      shell_(handle_.get(), kCallback) {
  // A program with more rights than the shell would not hear it.
  ChangeWindowMessageFilterEx(handle_.get(), taskbarCreated_, MSGFLT_ALLOW, nullptr);
  SetWindowLongPtrW(handle_.get(), GWLP_USERDATA, reinterpret_cast<LONG_PTR>(this));
}

HWND TrayIcon::Create() {
  WNDCLASSEXW info{};
  info.cbSize = sizeof info;
  info.lpfnWndProc = &TrayIcon::Procedure;
  info.hInstance = GetModuleHandleW(nullptr);
  info.lpszClassName = kTrayClass;
  RegisterClassExW(&info);
  // A top-level window, since the shell's broadcast does not reach others.
  return CreateWindowExW(WS_EX_TOOLWINDOW, kTrayClass, L"Form1", WS_POPUP, 0, 0, 0, 0, nullptr, nullptr,
                         info.hInstance, nullptr);
}

TrayIcon::~TrayIcon() { SetWindowLongPtrW(handle_.get(), GWLP_USERDATA, 0); }

LRESULT CALLBACK TrayIcon::Procedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
  auto* icon = reinterpret_cast<TrayIcon*>(GetWindowLongPtrW(window, GWLP_USERDATA));
  return icon ? icon->Message(message, wParam, lParam) : DefWindowProcW(window, message, wParam, lParam);
}

LRESULT TrayIcon::Message(UINT message, WPARAM wParam, LPARAM lParam) {
  if (message == kCallback) {
    mouse_(LOWORD(lParam));
    return 0;
  }
  if (message == taskbarCreated_ && wanted_) Show();  // the shell started over
  return DefWindowProcW(handle_.get(), message, wParam, lParam);
}

void TrayIcon::LoadIconImage() {
  const int size = IconSize(handle_.get());
  if (icon_ && loadedFile_ == file_ && loadedSize_ == size) return;
  UniqueIcon icon;
  if (!file_.empty()) icon = pictures_.Icon(file_, size);
  if (!icon) {
    icon.reset(static_cast<HICON>(
        LoadImageW(GetModuleHandleW(nullptr), L"AAA", IMAGE_ICON, size, size, LR_DEFAULTCOLOR)));
  }
  icon_ = std::make_shared<const UniqueIcon>(std::move(icon));
  loadedFile_ = file_;
  loadedSize_ = size;
}

void TrayIcon::Show() {
  LoadIconImage();
  shell_.Want(ShellIcon::Look{icon_, tip_});
}

void TrayIcon::Notify(TrayAction action, const std::string& tip) {
  tip_ = platform::Wide(tip);
  wanted_ = action != TrayAction::Remove;
  if (wanted_) {
    Show();
  } else {
    shell_.Want(std::nullopt);
  }
}

void TrayIcon::Popup(controls::Menu& menu) {
  const UniqueMenu shown(CreatePopupMenu());
  UINT id = 0;
  for (const controls::MenuEntry& entry : menu.entries) {
    ++id;
    if (entry.caption == "-") {
      AppendMenuW(shown.get(), MF_SEPARATOR, id, nullptr);
    } else {
      AppendMenuW(shown.get(), entry.enabled ? MF_STRING : MF_STRING | MF_GRAYED, id,
                  platform::Wide(entry.caption).c_str());
    }
  }
  POINT at{};
  GetCursorPos(&at);
  SetForegroundWindow(handle_.get());  // else the menu would stay when the player clicks elsewhere
  const int chosen =
      TrackPopupMenu(shown.get(), TPM_RETURNCMD | TPM_RIGHTBUTTON | TPM_RIGHTALIGN | TPM_BOTTOMALIGN, at.x,
                     at.y, 0, handle_.get(), nullptr);
  PostMessageW(handle_.get(), WM_NULL, 0, 0);
  if (chosen > 0) menu.entries[static_cast<std::size_t>(chosen) - 1].Click();
}

}  // namespace ui::win32
