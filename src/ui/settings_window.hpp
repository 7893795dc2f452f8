#pragma once

#include <functional>
#include <string>

#include "controls/control.hpp"
#include "platform/host.hpp"
#include "settings/modGameIni.hpp"
#include "settings/sound_table.hpp"
#include "startup/deployment.hpp"
#include "startup/procedure.hpp"
#include "ui/screen.hpp"

namespace ui {

// What the windows of the settings work with. Everything outlives the windows.
struct SettingsServices {
  platform::Host& host;
  const startup::Folders& folders;
  const startup::Deployment& deployment;
  startup::ErrorRecorder& recorder;
  Screen& screen;
  settings::modGameIni& gameIni;
  settings::SoundTable& sounds;
};

// The coming and going of one modeless window: given to the screen when it is first shown, loaded each time
// it is opened, hidden when it closes. Esc writes the settings and closes it.
class SettingsWindow {
 public:
  // `load` fills the controls and reports its own failures.
  SettingsWindow(SettingsServices& services, controls::Window& window, std::function<void()> load);
  ~SettingsWindow();
  SettingsWindow(const SettingsWindow&) = delete;

  void Show(const controls::Window& over);  // an open one comes to the front as it is
  void Close();

 private:
  SettingsServices& services_;
  controls::Window& window_;
  std::function<void()> load_;
  bool attached_ = false;
  bool loading_ = false;
};

// "Error ... procedimiento `procedure` Formulario `window` línea: ...", the report of a window's procedure.
std::function<std::string(const startup::Failure&)> WindowWords(std::string procedure, std::string window);

}  // namespace ui
