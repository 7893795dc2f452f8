#include "ui/win32/win32_screen.hpp"

#include <windows.h>
// after windows.h, which it builds on
#include <shellapi.h>

#include "ui/win32/dpi.hpp"

namespace ui::win32 {

namespace {

// The icon stands before a window does: where the shell makes a window of its own for it, that one would take
// the keyboard away. A shell that does not answer is not waited for.
constexpr std::chrono::milliseconds kForTheIcon{250};

}  // namespace

Win32Screen::Win32Screen() : tray_(share_.pictures, [this](int number) { TrayMessage(number); }) {
  share_.aboutToShow = [this] { tray_.Await(kForTheIcon); };
  share_.settingsChanged = [this] { SettingsChanged(); };
  share_.resumed = [this] {
    if (resumed) resumed();
  };
}

// Every form is told of the same change; the first one to tell it settles it.
void Win32Screen::SettingsChanged() {
  if (!share_.theme.Refresh()) return;
  share_.pictures.Clear();
  for (const auto& [window, form] : forms_) form->ThemeChanged();
}

bool Win32Screen::Translate(MSG& message) {
  if (!message.hwnd) return false;
  const HWND root = GetAncestor(message.hwnd, GA_ROOT);
  for (const auto& [window, form] : forms_) {
    if (form->Handle() == root) return form->Translate(message);
  }
  return false;
}

HWND Win32Screen::HandleOf(const controls::Window& window) const {
  const auto found = forms_.find(&window);
  return found == forms_.end() ? nullptr : found->second->Handle();
}

HWND Win32Screen::DialogOwner() const {
  const HWND active = GetActiveWindow();
  HWND visible = nullptr;
  for (const auto& [window, form] : forms_) {
    const HWND handle = form->Handle();
    const bool notice = (GetWindowLongPtrW(handle, GWL_EXSTYLE) & WS_EX_NOACTIVATE) != 0;
    if (notice || !IsWindowVisible(handle) || IsIconic(handle) || !IsWindowEnabled(handle)) continue;
    if (handle == active) return active;
    visible = handle;
  }
  return visible;
}

void Win32Screen::Attach(controls::Window& window) {
  forms_[&window] = std::make_unique<Form>(share_, window);
  window.SetFace(this);
}

void Win32Screen::Detach(controls::Window& window) {
  if (!forms_.contains(&window)) return;
  window.SetFace(nullptr);
  forms_.erase(&window);
}

Area Win32Screen::WorkArea() {
  RECT work{};
  SystemParametersInfoW(SPI_GETWORKAREA, 0, &work, 0);
  return ToArea(work);
}

double Win32Screen::TwipsPerPixel(const controls::Window& window) { return 1440.0 / FormOf(window).Dpi(); }

Area Win32Screen::Bounds(const controls::Window& window) {
  RECT bounds{};
  GetWindowRect(FormOf(window).Handle(), &bounds);
  return ToArea(bounds);
}

void Win32Screen::MoveTo(controls::Window& window, int left, int top) {
  SetWindowPos(FormOf(window).Handle(), nullptr, left, top, 0, 0, SWP_NOSIZE | SWP_NOZORDER | SWP_NOACTIVATE);
}

void Win32Screen::Centre(controls::Window& window) { FormOf(window).Centre(); }
void Win32Screen::BringToForeground(controls::Window& window) { FormOf(window).ToForeground(); }

void Win32Screen::SetTopmost(controls::Window& window) {
  SetWindowPos(FormOf(window).Handle(), HWND_TOPMOST, 0, 0, 0, 0, SWP_NOSIZE | SWP_NOMOVE | SWP_NOACTIVATE);
}

bool Win32Screen::PlayerIsBusy() {
  QUERY_USER_NOTIFICATION_STATE state{};
  if (FAILED(SHQueryUserNotificationState(&state))) return false;
  return state == QUNS_BUSY || state == QUNS_RUNNING_D3D_FULL_SCREEN || state == QUNS_PRESENTATION_MODE;
}

// Only the program that the player is using may give this right, and only to one that asks soon.
void Win32Screen::LetOthersComeToFront() {
  const DWORD own = GetCurrentProcessId();
  for (HWND tray = nullptr; (tray = FindWindowExW(nullptr, tray, kTrayClass, nullptr)) != nullptr;) {
    DWORD process = 0;
    GetWindowThreadProcessId(tray, &process);
    if (process != own) AllowSetForegroundWindow(process);
  }
}

void Win32Screen::StartDrag(controls::Window& window) { FormOf(window).StartDrag(); }
void Win32Screen::NotifyIcon(TrayAction action, const std::string& tip) { tray_.Notify(action, tip); }
void Win32Screen::SetTrayPicture(const std::string& file) { tray_.SetPicture(file); }
void Win32Screen::PopupMenu(controls::Menu& menu) { tray_.Popup(menu); }

void Win32Screen::Changed(const controls::Window& window, const controls::Control& control,
                          std::string_view property, const std::string&) {
  FormOf(window).Changed(control, property);
}

void Win32Screen::Changed(const controls::Window& window, std::string_view property, const std::string&) {
  FormOf(window).Changed(property);
}

}  // namespace ui::win32
