#pragma once

#include <algorithm>
#include <map>
#include <string>
#include <vector>

#include "ui/screen.hpp"

namespace support {

// A screen of 1280 x 1024 with a task bar of 40 below, on which every window measures 340 x 130. Records what
// is asked of it and what changes, in order: "Centre frmMain", "frmMain.WindowState: 1", "frmMain.lblEstado:
// text".
class RecordingScreen : public ui::Screen, public controls::Face {
 public:
  void Attach(controls::Window& window) override {
    windows_[&window] = &window;
    window.SetFace(this);
    Note("Attach", window);
  }
  void Detach(controls::Window& window) override {
    if (windows_.erase(&window) == 0) return;
    window.SetFace(nullptr);
    Note("Detach", window);
  }

  ui::Area WorkArea() override { return {0, 0, 1280, 984}; }
  ui::Area Bounds(const controls::Window&) override { return {0, 0, 340, 130}; }
  double TwipsPerPixel(const controls::Window&) override { return twipsPerPixel; }
  void MoveTo(controls::Window& window, int left, int top) override {
    calls.push_back("MoveTo " + window.Name() + " " + std::to_string(left) + "," + std::to_string(top));
  }
  void Centre(controls::Window& window) override { Note("Centre", window); }
  void BringToForeground(controls::Window& window) override { Note("Foreground", window); }
  void SetTopmost(controls::Window& window) override { Note("Topmost", window); }
  void StartDrag(controls::Window& window) override { Note("Drag", window); }
  void LetOthersComeToFront() override { calls.push_back("Let others come to front"); }
  bool PlayerIsBusy() override { return playerIsBusy; }
  void NotifyIcon(ui::TrayAction action, const std::string& tip) override {
    calls.push_back("Icon " + std::to_string(static_cast<int>(action)) + " " + tip);
  }
  void SetTrayPicture(const std::string& file) override { trayPicture = file; }
  void PopupMenu(controls::Menu& menu) override {
    Note("Popup", menu.name);
    menuShown = &menu;
  }

  void Changed(const controls::Window& window, const controls::Control& control, std::string_view property,
               const std::string& value) override {
    const std::string name(property);
    calls.push_back(window.Name() + "." + control.Name() + (name.empty() ? "" : "." + name) + ": " + value);
  }
  void Changed(const controls::Window& window, std::string_view property, const std::string& value) override {
    calls.push_back(window.Name() + "." + std::string(property) + ": " + value);
    if (property == "WindowState") windows_.at(&window)->Resize();
  }

  int Count(std::string_view call) const {
    return static_cast<int>(std::count(calls.begin(), calls.end(), call));
  }
  // Calls that begin so, in order.
  std::vector<std::string> Matching(std::string_view start) const {
    std::vector<std::string> found;
    for (const std::string& call : calls) {
      if (call.starts_with(start)) found.push_back(call);
    }
    return found;
  }

  std::vector<std::string> calls;
  double twipsPerPixel = 15;
  std::string trayPicture;
  bool playerIsBusy = false;
  controls::Menu* menuShown = nullptr;

 private:
  void Note(const char* what, const controls::Window& window) { Note(what, window.Name()); }
  void Note(const char* what, const std::string& name) { calls.push_back(std::string(what) + " " + name); }

  std::map<const controls::Window*, controls::Window*> windows_;
};

}  // namespace support
