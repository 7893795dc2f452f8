#include "ui/frmOpciones.hpp"

#include <algorithm>

#include "base/numeric.hpp"
#include "platform/files.hpp"

namespace ui {
namespace {

const std::vector<std::string> kFrameRates = {"1000", "500", "250", "150", "100", "50", "15"};
const std::vector<std::string> kMemories = {"1048576000", "524288000", "419430400", "314572800",
                                            "209715200",  "157286400", "104857600", "52428800"};
const std::vector<std::string> kVideoModes = {"Sofware", "Hardware", "Mixed"};

constexpr double kMegabyte = 1024.0 * 1024.0;

std::vector<std::string> SoundNumbers() {
  std::vector<std::string> numbers;
  for (int i = 1; i <= settings::kSoundCount; ++i) numbers.push_back(std::to_string(i));
  return numbers;
}

}  // namespace

frmOpciones::frmOpciones(SettingsServices& services)
    : CustomK(services),
      MessagesConfigurateds(services),
      services_(services),
      pictures_(OptionPictures(services.folders)),
      opened_(
          services, Window, [this](int& line) { Form_Load(line); },
          [this](const startup::Failure& failure) { return LoadFailure(failure); }) {
  const auto describe = [](controls::ImageControl& control, const controls::Label& caption) {
    control.description = caption.Caption;
    control.isCheck = true;
  };
  for (const Check& check : kChecks) describe(Window.*check.control, Window.*check.caption);
  describe(Window.chkSilenciarWav, Window.captionSilenciarWav);
  for (const auto& button : kOptionButtons) {
    (Window.*button.control).description = button.description;
    (Window.*button.control).sign = button.sign;
  }
  Window.imgMapa.description = "Mapa";
  Window.imgMapa.Enabled = false;  // leads nowhere, so it takes no focus
  Window.Activate += [this] { Form_Activate(); };
  Window.MouseMove += [this](controls::MouseButton) { lit_.LastPressed->ToggleToNormal(); };
  ConnectChecks();
  ConnectLists();
  ConnectSound();
  ConnectButtons();
}

std::string frmOpciones::LoadFailure(const startup::Failure& failure) const {
  return WindowWords("Form_Load", Window.Name())(failure) +
         " por favor reportelo en nuestra página de Facebook:, " + services_.deployment.social;
}

void frmOpciones::Form_Load(int& line) {
  ready_ = false;
  Window.Caption = OptionsWindow::kCaption;
  Window.FrameRateChanged = Window.VideoModeChanged = false;
  line = 30;
  if (!picturesLoaded_) LoadPictures(line);
  line = 40;
  for (std::size_t i = 0; i < checks_.size(); ++i) ShowCheck(i);
  ShowVolumes();
  Window.txtCantMensajes.Text = "9";
  ShowGuildChat();
  line = 50;
  FillLists();
  ShowSilenced();
  ready_ = true;
  line = 60;
  pictures_.ReportMissing(services_.recorder,
                          [this](const startup::Failure& failure) { return LoadFailure(failure); });
}

void frmOpciones::LoadPictures(int line) {
  picturesLoaded_ = true;
  Window.Picture = pictures_.Optional("Opciones.jpg");
  const auto load = [&](clsGraphicalButton& button, controls::ImageControl& control,
                        const SkinPictures::Button& look) {
    pictures_.Load(button, control, look, lit_, line);
  };
  for (std::size_t i = 0; i < checks_.size(); ++i) load(checks_[i], Window.*kChecks[i].control, {"check"});
  load(silenciarWav_, Window.chkSilenciarWav, {"check"});
  for (std::size_t i = 0; i < buttons_.size(); ++i) {
    load(buttons_[i], Window.*kOptionButtons[i].control, {kOptionButtons[i].picture});
  }
  load(mapa_, Window.imgMapa, SkinPictures::Idle("mapa"));
}

void frmOpciones::FillLists() {
  static const std::vector<std::string> sounds = SoundNumbers();
  Window.cmbWavsList.Fill(sounds);
  Window.cmbWavsList.Select(0);
  Window.cmbFPS.Fill(kFrameRates);
  ShowFrameRate();
  Window.cmbMemory.Fill(kMemories);
  Window.cmbMemory.Select(Window.cmbMemory.IndexOf(std::to_string(Config().MaxVideoMemory)));
  ShowMemory();
  Window.cmbVideo_Mode.Fill(kVideoModes);
  Window.cmbVideo_Mode.Select(Config().VIDEO_MODE);
}

void frmOpciones::Form_Activate() {
  ShowChecks(kOnActivate);
  ShowGuildChat();
  ShowVolumes();
}

// A check that is on is a disabled button: its disabled picture is the ticked one, and it still takes clicks.
void frmOpciones::ShowCheck(std::size_t check) {
  const bool on = Config().*kChecks[check].field;
  checks_[check].EnableButton(!on);
  (Window.*kChecks[check].control).Checked = on;
}

void frmOpciones::ShowChecks(unsigned trait) {
  for (std::size_t i = 0; i < checks_.size(); ++i) {
    if (kChecks[i].traits & trait) ShowCheck(i);
  }
}

void frmOpciones::ShowGuildChat() {
  Window.optPantalla.Value = Config().Guild_Chat_OnScreen;
  Window.optConsola.Value = !Config().Guild_Chat_OnScreen;
}

void frmOpciones::ShowVolumes() {
  if (Config().MusicVolume > 100) Set(&GC::MusicVolume, 100);
  Window.lblMusicVolume.Caption = std::to_string(Config().MusicVolume) + "%";
  Window.lblSoundVolume.Caption = std::to_string(Config().SoundVolume) + "%";
}

void frmOpciones::ShowFrameRate() {
  Window.cmbFPS.Select(Window.cmbFPS.IndexOf(std::to_string(Config().FPS)));
}

void frmOpciones::ShowMemory() {
  Window.lblMemory.Caption =
      base::NumberText(base::RoundHalfEven(Config().MaxVideoMemory / kMegabyte)) + " MB";
}

void frmOpciones::ShowSilenced() {
  const bool silenced = services_.sounds.Silenced(ChosenSound());
  silenciarWav_.EnableButton(!silenced);
  Window.chkSilenciarWav.Checked = silenced;
}

}  // namespace ui
