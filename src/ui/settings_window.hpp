#pragma once

#include <functional>
#include <string>

#include "controls/control.hpp"
#include "settings/modGameIni.hpp"
#include "settings/sound_table.hpp"
#include "startup/procedure.hpp"
#include "startup/services.hpp"
#include "ui/screen.hpp"
#include "ui/skin_pictures.hpp"

namespace ui {

// What the windows of the settings work with. Everything outlives the windows.
struct SettingsServices : startup::Services {
  Screen& screen;
  settings::modGameIni& gameIni;
  settings::SoundTable& sounds;
};

// The options' own folder of the skin.
SkinPictures OptionPictures(const startup::Folders& folders);

// The report of a window's procedure: "Error ... procedimiento `procedure` Formulario `window` línea: ...".
Words WindowWords(const std::string& procedure, const std::string& window);

// The coming and going of one modeless window: given to the screen when it is first shown, loaded each time
// it is opened, hidden when it closes. Esc writes the settings and closes it.
class SettingsWindow {
 public:
  using Load = std::function<void(int& line)>;

  // `load` fills the controls; what it throws is reported in `words` and the window is shown nevertheless.
  SettingsWindow(SettingsServices& services, controls::Window& window, Load load, Words words);
  ~SettingsWindow();
  SettingsWindow(const SettingsWindow&) = delete;

  void Show(const controls::Window& over);  // an open one comes to the front as it is
  void Close();

 private:
  void Form_Load();

  SettingsServices& services_;
  controls::Window& window_;
  Load load_;
  Words words_;
  bool attached_ = false;
  bool loading_ = false;
};

}  // namespace ui
