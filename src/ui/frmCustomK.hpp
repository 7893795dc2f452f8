#pragma once

#include <deque>

#include "controls/kinds.hpp"
#include "ui/clsGraphicalButton.hpp"
#include "ui/settings_window.hpp"

namespace ui {

// The game client's key bindings, for display only.
class frmCustomK {
 public:
  explicit frmCustomK(SettingsServices& services);

  void Show(const controls::Window& over) { opened_.Show(over); }
  void Unload() { opened_.Close(); }

  controls::Window Window{"frmCustomK", "Configurar Teclado:"};

 private:
  void AddFrames();
  void AddButtons();
  void Form_Load();

  SettingsServices& services_;
  std::deque<controls::Frame> frames_;
  std::deque<controls::Label> actions_;  // named "(Text1(n))", beside Text1(n)
  std::deque<controls::TextBox> Text1_;
  std::deque<controls::CheckBox> Check1_;
  std::deque<controls::ImageControl> images_;
  std::deque<clsGraphicalButton> buttons_;
  clsGraphicalButton nobody_;  // never initialised
  LastPressedHolder lit_{&nobody_};
  SettingsWindow opened_;
};

}  // namespace ui
