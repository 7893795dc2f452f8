#pragma once

#include <array>
#include <deque>
#include <functional>
#include <string>
#include <type_traits>

#include "ui/clsGraphicalButton.hpp"
#include "ui/frmCustomK.hpp"
#include "ui/frmMessagesConfigurateds.hpp"
#include "ui/frmOpciones_controls.hpp"
#include "ui/settings_window.hpp"

namespace ui {

// The options window: shows the game's settings and writes every change to their files at once.
class frmOpciones {
 public:
  explicit frmOpciones(SettingsServices& services);

  void Show(const controls::Window& over) { opened_.Show(over); }
  void Unload() { opened_.Close(); }

  OptionsWindow Window;
  frmCustomK CustomK;                              // opened by imgCustomKeys1
  frmMessagesConfigurateds MessagesConfigurateds;  // opened by imgCustomMsg

 private:
  using Body = std::function<void(int& line)>;

  void Form_Load(int& line);
  std::string LoadFailure(const startup::Failure& failure) const;
  void Form_Activate();
  void LoadPictures(int line);
  void FillLists();

  void ShowCheck(std::size_t check);
  void ShowChecks(unsigned trait);
  void ShowGuildChat();
  void ShowVolumes();
  void ShowFrameRate();
  void ShowMemory();
  void ShowSilenced();

  // The event runs `body` as the procedure `name`, which reports its own failures.
  void On(controls::Event<>& event, const std::string& name, Body body);
  void OnClick(controls::Control& control, Body body);
  void ConnectChecks();
  void ConnectLists();
  void ConnectSound();
  void ConnectButtons();

  void ToggleCheck(std::size_t check);
  void chkOptimizedOptions_Click(std::size_t check);
  void imgDefaultOptions_Click();
  void chkSilenciarWav_Click();
  void cmbVideo_Mode_Change();
  void cmbFPS_Change();
  void cmbMemory_Change();
  void OpenPage(const std::string& page);
  void Save();
  const settings::GameConfig& Config() const { return services_.gameIni.Config(); }
  template <class T>
  void Set(T settings::GameConfig::*field, const std::type_identity_t<T>& value) {
    services_.gameIni.Set(field, value);
  }
  int ChosenSound() const;

  SettingsServices& services_;
  clsGraphicalButton nobody_;  // never initialised
  LastPressedHolder lit_{&nobody_};
  std::array<clsGraphicalButton, std::size(kChecks)> checks_;
  std::array<clsGraphicalButton, std::size(kOptionButtons)> buttons_;
  clsGraphicalButton silenciarWav_, mapa_;
  SkinPictures pictures_;
  bool picturesLoaded_ = false;
  bool ready_ = false;  // false while the window is loading: filling the controls writes nothing
  SettingsWindow opened_;
};

}  // namespace ui
