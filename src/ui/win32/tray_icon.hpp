#pragma once

#include <windows.h>

#include <chrono>
#include <functional>
#include <memory>
#include <string>

#include "ui/screen.hpp"
#include "ui/win32/gdi.hpp"
#include "ui/win32/picture_cache.hpp"
#include "ui/win32/shell_icon.hpp"

namespace ui::win32 {

inline constexpr const wchar_t* kTrayClass = L"LauncherTray";

// The program's icon in the notification area, and the invisible window that its mouse messages go to.
class TrayIcon {
 public:
  // `mouse` gets the number of each mouse message on the icon.
  TrayIcon(PictureCache& pictures, std::function<void(int)> mouse);
  ~TrayIcon();
  TrayIcon(const TrayIcon&) = delete;

  void Notify(TrayAction action, const std::string& tip);
  void SetPicture(const std::string& file) { file_ = file; }  // icon or picture; empty: the program's own
  // Until the shell has what it was told, or that long.
  void Await(std::chrono::milliseconds longest) { shell_.Await(longest); }
  // Shows the menu at the pointer and runs what was chosen.
  void Popup(controls::Menu& menu);

 private:
  static LRESULT CALLBACK Procedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam);
  LRESULT Message(UINT message, WPARAM wParam, LPARAM lParam);
  static HWND Create();
  void LoadIconImage();
  void Show();

  PictureCache& pictures_;
  std::function<void(int)> mouse_;
  UniqueWindow handle_;
  UINT taskbarCreated_;
  ShellIcon shell_;
  std::shared_ptr<const UniqueIcon> icon_;
  std::string file_, loadedFile_;
  int loadedSize_ = 0;
  std::wstring tip_;
  bool wanted_ = false;
};

}  // namespace ui::win32
