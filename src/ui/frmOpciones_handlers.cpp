#include <algorithm>
#include <cmath>

#include "base/numeric.hpp"
#include "base/runtime_error.hpp"
#include "base/text.hpp"
#include "platform/files.hpp"
#include "ui/frmOpciones.hpp"

namespace ui {
namespace {

constexpr const char* kNoTitle = "";
constexpr int kVolumeStep = 5;
constexpr std::int32_t kOptimisedFrameRate = 70;
constexpr int kFactoryMemoryEntry = 4;

struct Page {
  controls::ImageControl OptionsWindow::*control;
  const char* path;
};

constexpr Page kPages[] = {
    {&OW::imgManual, "/manual"},
    {&OW::imgReglamento, "/web/index.php?op=Reglamento"},
    {&OW::imgDonar, "/web/index.php?op=Donaciones"},
    {&OW::imgWeb, "/"},
};

// What a reset puts back; everything else stays. On purpose not the factory values of the file.
struct ResetField {
  bool settings::GameConfig::*field;
  bool value;
};

constexpr ResetField kReset[] = {
    {&GC::Effect_Clic_Spells, false}, {&GC::Effect_Arrows, true},   {&GC::Effect_Filter, true},
    {&GC::Music_Activated, true},     {&GC::Sound_Activated, true}, {&GC::Sound3D_Activated, true},
    {&GC::Effect_Die, false},         {&GC::Effect_Keys, false},    {&GC::Effect_Nicks, false},
    {&GC::Effect_Text, false},        {&GC::Effect_Time, false},    {&GC::IntervalMessages, false},
    {&GC::MiniMapa, false},
};

constexpr bool settings::GameConfig::*kCostlyEffects[] = {
    &GC::Effect_Die, &GC::Effect_Keys, &GC::Effect_KeysUnstored, &GC::Effect_Arrows, &GC::Effect_Time};

template <class Volume>
Volume Stepped(Volume volume, int by) {
  const std::int64_t stepped = std::int64_t{volume} + by;
  return static_cast<Volume>(by > 0 ? std::min<std::int64_t>(stepped, 100) : stepped < 1 ? 0 : stepped);
}

std::int32_t ChosenNumber(const controls::ComboBox& list) {
  return base::ToInt32(base::Val(list.Entries().at(static_cast<std::size_t>(list.ListIndex.Get()))));
}

}  // namespace

void frmOpciones::On(controls::Event<>& event, const std::string& name, Body body) {
  event += [this, body = std::move(body), words = WindowWords(name, Window.Name())] {
    startup::Guarded(services_.recorder, body, words);
  };
}

void frmOpciones::OnClick(controls::Control& control, Body body) {
  On(control.Click, control.Name() + "_Click", std::move(body));
}

void frmOpciones::Save() { services_.gameIni.SaveGameConfig(Config()); }

void frmOpciones::ConnectChecks() {
  for (std::size_t i = 0; i < checks_.size(); ++i) {
    const bool switchesEffects = (kChecks[i].traits & kSwitchesEffects) != 0;
    const Body body = [this, i, switchesEffects](int& line) {
      line = 10;
      switchesEffects ? chkOptimizedOptions_Click(i) : ToggleCheck(i);
    };
    OnClick(Window.*kChecks[i].control, body);
    OnClick(Window.*kChecks[i].caption, body);
  }
  const std::pair<controls::OptionButton*, bool> guildChat[] = {{&Window.optConsola, false},
                                                                {&Window.optPantalla, true}};
  for (const auto& [option, onScreen] : guildChat) {
    OnClick(*option, [this, onScreen = onScreen](int& line) {
      line = 10;
      Set(&GC::Guild_Chat_OnScreen, onScreen);
      ShowGuildChat();
      Save();
    });
  }
}

void frmOpciones::ToggleCheck(std::size_t index) {
  const Check& check = kChecks[index];
  const bool on = !(Config().*check.field);
  Set(check.field, on);
  ShowCheck(index);
  if (check.traits & kShowsVolumes) ShowVolumes();
  if (const char* text = on ? check.textOn : check.textOff) {
    services_.host.dialogs.Show(text, platform::DialogButtons::Ok, kNoTitle);
  }
  Save();
}

void frmOpciones::chkOptimizedOptions_Click(std::size_t index) {
  if (!ready_) return;
  const bool optimised = !(Config().*kChecks[index].field);
  Set(kChecks[index].field, optimised);
  services_.gameIni.SaveOptimizarRendimiento();
  if (optimised) {
    for (const auto effect : kCostlyEffects) Set(effect, false);
    Set(&GC::FPS, kOptimisedFrameRate);
    ShowFrameRate();
    services_.host.dialogs.Show(
        "Se se han desactivado la mayoría de los efectos. Si el juego presenta pocos FPS, es recomendable "
        "cambiar "
        "el MODO DE VIDEO desde Opciones> Configurar Pantalla> Y colocar MIXED o HARDWARE y verificar cual "
        "funciona mejor.");
  }
  ShowChecks(kOnOptimise);
  Save();
}

void frmOpciones::ConnectLists() {
  const std::tuple<controls::ComboBox*, void (frmOpciones::*)()> lists[] = {
      {&Window.cmbFPS, &frmOpciones::cmbFPS_Change},
      {&Window.cmbMemory, &frmOpciones::cmbMemory_Change},
      {&Window.cmbVideo_Mode, &frmOpciones::cmbVideo_Mode_Change},
  };
  for (const auto& [list, change] : lists) {
    On(list->Change, list->Name() + "_Change", [this, change = change](int& line) {
      line = 10;
      if (ready_) (this->*change)();
    });
  }
}

void frmOpciones::cmbFPS_Change() {
  if (Window.cmbFPS.ListIndex < 0) return;
  Set(&GC::FPS, ChosenNumber(Window.cmbFPS));
  Window.Caption = "Efectos de Video - ¡Cambios!";
  Window.FrameRateChanged = Window.VideoModeChanged = true;
  Save();
}

void frmOpciones::cmbMemory_Change() {
  if (Window.cmbMemory.ListIndex < 0) return;
  Set(&GC::MaxVideoMemory, ChosenNumber(Window.cmbMemory));
  ShowMemory();
  Save();
}

void frmOpciones::cmbVideo_Mode_Change() {
  if (Window.cmbVideo_Mode.ListIndex < 0) Window.cmbVideo_Mode.Select(0);
  Set(&GC::VIDEO_MODE, base::ToByte(Window.cmbVideo_Mode.ListIndex.Get()));
  Window.VideoModeChanged = true;
  Save();
}

void frmOpciones::ConnectSound() {
  const auto step = [this](auto volume, int by) {
    return [=, this] { Set(volume, Stepped(Config().*volume, by)); };
  };
  const std::pair<controls::ImageControl*, std::function<void()>> steps[] = {
      {&Window.imgPlusSoundVolume, step(&GC::SoundVolume, kVolumeStep)},
      {&Window.imgLessSoundVolume, step(&GC::SoundVolume, -kVolumeStep)},
      {&Window.imgPlusMusicVolume, step(&GC::MusicVolume, kVolumeStep)},
      {&Window.imgLessMusicVolume, step(&GC::MusicVolume, -kVolumeStep)},
  };
  for (const auto& [button, change] : steps) {
    OnClick(*button, [this, change = change](int& line) {
      line = 10;
      change();
      Save();
      ShowVolumes();
    });
  }
  const auto show = [this](int& line) {
    line = 10;
    ShowSilenced();
  };
  On(Window.cmbWavsList.KeyUp, "cmbWavsList_KeyUp", show);
  On(Window.cmbWavsList.Change, "cmbWavsList_Change", show);
  for (controls::Control* control : {static_cast<controls::Control*>(&Window.chkSilenciarWav),
                                     static_cast<controls::Control*>(&Window.captionSilenciarWav)}) {
    OnClick(*control, [this](int& line) {
      line = 10;
      chkSilenciarWav_Click();
    });
  }
}

// The number in the list's text; 0, which is no sound, for anything that no sound could have.
int frmOpciones::ChosenSound() const {
  const double number = base::RoundHalfEven(base::Val(Window.cmbWavsList.Text.Get()));
  return std::fabs(number) < 1e9 ? static_cast<int>(number) : 0;
}

void frmOpciones::chkSilenciarWav_Click() {
  const bool silenced = silenciarWav_.isEnabled();
  services_.sounds.Silence(ChosenSound(), silenced);
  silenciarWav_.EnableButton(!silenced);
  Window.chkSilenciarWav.Checked = silenced;
  Save();
}

void frmOpciones::ConnectButtons() {
  OnClick(Window.imgDefaultOptions, [this](int& line) {
    line = 10;
    imgDefaultOptions_Click();
  });
  OnClick(Window.imgCerrar, [this](int& line) {
    line = 10;
    Save();
    opened_.Close();
  });
  OnClick(Window.imgCustomKeys1, [this](int& line) {
    line = 10;
    CustomK.Show(Window);
  });
  OnClick(Window.imgCustomMsg, [this](int& line) {
    line = 10;
    MessagesConfigurateds.Show(Window);
  });
  for (const Page& page : kPages) {
    OnClick(Window.*page.control, [this, path = page.path](int& line) {
      line = 10;
      OpenPage(path);
    });
  }
  On(Window.txtCantMensajes.LostFocus, "txtCantMensajes_LostFocus", [this](int& line) {
    line = 10;
    const std::string text(base::Trim(Window.txtCantMensajes.Text.Get()));
    Window.txtCantMensajes.Text = base::IsNumeric(text) ? text : "5";
  });
}

void frmOpciones::imgDefaultOptions_Click() {
  if (!ready_) return;
  const auto answer = services_.host.dialogs.Show(
      "¿Estás seguro que deseas reiniciar la configuración de TODO el juego?",
      platform::DialogButtons::RiskyYesNo, "Confirmar configuración por defecto.");
  if (answer != platform::DialogAnswer::Yes) return;
  for (const ResetField& reset : kReset) Set(reset.field, reset.value);
  Set(&GC::FPS, 100);
  ShowChecks(kOnReset);
  ShowFrameRate();
  Window.cmbMemory.Select(kFactoryMemoryEntry);
  Window.cmbVideo_Mode.Select(0);
  Save();
}

void frmOpciones::OpenPage(const std::string& path) {
  const std::string above = services_.folders.AppPath + platform::NativePath("\\..");
  if (!services_.host.shell.OpenPage(services_.deployment.web + path, above)) {
    throw base::RuntimeError(base::ErrorNumber::InvalidProcedureCall);
  }
}

}  // namespace ui
