#pragma once

#include <windows.h>

#include <map>
#include <memory>
#include <string>

#include "ui/screen.hpp"
#include "ui/win32/form.hpp"
#include "ui/win32/tray_icon.hpp"

namespace ui::win32 {

// Real windows. Everything happens on the interface thread.
class Win32Screen : public Screen, public controls::Face {
 public:
  Win32Screen();

  // A window will be shown soon: what reads its pictures is brought in meanwhile.
  void ExpectWindow() { share_.pictures.Expect(); }

  // For the message loop, before a message is dispatched; true when nothing is left to do with it.
  bool Translate(MSG& message);

  // The window of an attached one; null when there is none.
  HWND HandleOf(const controls::Window& window) const;
  // The window that a message box belongs to: the active one, else the first that is on screen; may be null.
  HWND DialogOwner() const;

  // Colours and sizes are asked for anew; what differs reaches every window.
  void SettingsChanged();
  Theme& Look() { return share_.theme; }

  void Attach(controls::Window& window) override;
  void Detach(controls::Window& window) override;
  Area WorkArea() override;
  double TwipsPerPixel(const controls::Window& window) override;
  Area Bounds(const controls::Window& window) override;
  void MoveTo(controls::Window& window, int left, int top) override;
  void Centre(controls::Window& window) override;
  void BringToForeground(controls::Window& window) override;
  void SetTopmost(controls::Window& window) override;
  void StartDrag(controls::Window& window) override;
  void NotifyIcon(TrayAction action, const std::string& tip) override;
  bool PlayerIsBusy() override;
  void LetOthersComeToFront() override;
  void SetTrayPicture(const std::string& file) override;
  void PopupMenu(controls::Menu& menu) override;

  void Changed(const controls::Window& window, const controls::Control& control, std::string_view property,
               const std::string& value) override;
  void Changed(const controls::Window& window, std::string_view property, const std::string& value) override;

 private:
  Form& FormOf(const controls::Window& window) const { return *forms_.at(&window); }

  FormShare share_;
  std::map<const controls::Window*, std::unique_ptr<Form>> forms_;
  TrayIcon tray_;
};

}  // namespace ui::win32
