#pragma once

#include <cstdint>
#include <string>

#include "controls/kinds.hpp"
#include "controls/menu.hpp"
#include "startup/services.hpp"
#include "ui/screen.hpp"

namespace ui {

// The invisible companion of the main window: the notification-area icon, its menu, and hiding the window
// there.
class FrmSysTrays {
 public:
  FrmSysTrays(const startup::Services& services, Screen& screen);
  FrmSysTrays(const FrmSysTrays&) = delete;

  // Shows the icon; `owner` is the window it stands for and outlives this object.
  void Form_Load(controls::Window& owner);
  void QuitarIconoSystray() { FSys_Unload(); }
  void FSys_Unload();  // takes the icon away; again does nothing

  const std::string& Tooltip() const { return tip_; }
  void Tooltip(const std::string& text);  // cut to what the system's field of 64 characters holds
  std::int32_t Interval() const { return static_cast<std::int32_t>(TmrFlash.Interval()); }
  void Interval(std::int32_t milliseconds);
  void TrayIcon(const controls::ImageControl& image) { SetPicture(image.Picture); }
  void TrayIcon(const std::string& file);  // an icon or picture file, or "DEFAULT"
  void Notify(TrayAction action) { screen_.NotifyIcon(action, tip_); }

  void Restore();  // brings the owner back as it was before it was hidden, unless it is on screen
  void MeResize(controls::Window& owner);
  void MeQueryUnload(controls::Window& owner, bool& Cancel, controls::UnloadMode UnloadMode);

  void mMaximize();
  void mMinimize();
  void Max() { Restore(); }
  void About();

  // The name of each mouse message on the icon.
  controls::Event<const std::string&> MouseMessage;

  controls::Menu mPopupMenu{"mPopupMenu", "&PopupMenu", {}};
  controls::WindowState LastState = controls::WindowState::Normal;

 private:
  void BuildMenu();
  void DecodeMessage(int number);
  void PopUp();
  void OpenPage(const std::string& page);
  bool OwnerOnScreen() const;
  void SetPicture(const std::string& file) { screen_.SetTrayPicture(file); }

  const startup::Services& services_;
  Screen& screen_;
  controls::Window window_{"FrmSysTrays", "Form1"};
  controls::Timer TmrFlash;
  controls::Window* owner_ = nullptr;
  controls::MenuEntry* mRestore_ = nullptr;
  std::string tip_;
  bool loaded_ = false;
};

}  // namespace ui
