#include "ui/frmMain.hpp"

#include <array>
#include <chrono>
#include <utility>

#include "base/numeric.hpp"
#include "base/runtime_error.hpp"
#include "platform/files.hpp"
#include "startup/launcher_settings.hpp"
#include "ui/skin_pictures.hpp"

namespace ui {
namespace {

using controls::MouseButton;
using controls::WindowState;

// Together less than the five seconds after which Windows ends a program that does not answer.
constexpr std::chrono::milliseconds kToFinish{3'000}, kToBreakOff{1'000};

constexpr const char* kPlayText = "¡Iniciar la aventura de Kelvarin!";
constexpr const char* kRepairText =
    "¿Errores en el juego? Presiona aquí para intentar repararlos automáticamente. De lo contrario, ve al "
    "botón "
    "de WhatsApp y comunícate con el Staff para reportar el error.";

}  // namespace

frmMain::frmMain(const startup::Services& services, const web::Hosts& hosts, Screen& screen,
                 controls::MainWindow& window, Actions actions)
    : services_(services),
      hosts_(hosts),
      screen_(screen),
      window_(window),
      actions_(std::move(actions)),
      FSys_(services, screen) {
  WireWindow();
  WireHoverTexts();
  WireButtons();
}

frmMain::~frmMain() {
  FSys_.FSys_Unload();
  screen_.Detach(window_);
}

void frmMain::WireWindow() {
  window_.Activate += [this] { CentreWhenMaximised(); };
  window_.Resize += [this] { FSys_.MeResize(window_); };
  window_.QueryUnload += [this](controls::UnloadMode mode) { Form_QueryUnload(mode); };
  window_.KeyDown += [this](int keyCode) { Form_KeyDown(keyCode); };
  window_.MouseDown += [this](MouseButton button) {
    if (button == MouseButton::Left) screen_.StartDrag(window_);
  };
  window_.MouseMove += [this](MouseButton button) { Form_MouseMove(button); };
  const std::array<controls::Control*, 5> handles = {
      &window_.lblDirectorio, &window_.lblEstado, &window_.lblName, &window_.lblsize, &window_.ProgressBar1};
  for (controls::Control* handle : handles) {
    handle->MouseMove += [this](MouseButton button) {
      if (button == MouseButton::Left) screen_.StartDrag(window_);
    };
  }
  window_.tmrShow.Tick += [this] { tmrShow_Timer(); };
}

void frmMain::WireHoverTexts() {
  const auto explain = [this](const char* text) {
    return [this, text](MouseButton) {
      window_.lblErrorWhatsApp.Visible = false;
      Explain(text);
    };
  };
  window_.cmdIniciar.MouseMove += explain(kPlayText);
  window_.cmdReiniciarUpdates.MouseMove += explain(kRepairText);
  window_.cmdReportar.MouseMove += [this](MouseButton) { window_.lblErrorWhatsApp.Visible = true; };
}

void frmMain::WireButtons() {
  // The close button hides the launcher in the notification area on purpose; Esc and the menu there end it.
  const auto minimise = [this] { window_.State = WindowState::Minimised; };
  window_.cmdClose.Click += minimise;
  window_.cmdMinimize.Click += minimise;
  window_.cmdIniciar.Click += [this] {
    if (btnIniciar.isEnabled()) actions_.Iniciar();
  };
  window_.cmdConfig.Click += [this] {
    if (btnConfig.isEnabled()) actions_.ShowOptions();
  };
  window_.cmdReiniciarUpdates.Click += [this] {
    if (btnReiniciarUpdates.isEnabled()) actions_.ReiniciarUpdates();
  };
  window_.cmdReportar.Click +=
      [this] { services_.host.shell.OpenPage(services_.deployment.chat, OutsideFolder()); };
}

void frmMain::Form_Load(bool showWindow) {
  startup::Guarded(
      services_.recorder, [&](int& line) { SetUp(line, showWindow); },
      [this](const startup::Failure& failure) { return LoadFailure(failure); });
}

std::string frmMain::LoadFailure(const startup::Failure& failure) const {
  return failure.Opening() + " en el procedimiento Form_Load del modulo Formulario frmMain en la línea " +
         failure.Line() + " reporta esto mediante el soporte WEB en " + services_.deployment.support;
}

void frmMain::SetUp(int& line, bool showWindow) {
  line = 20;
  FSys_.Form_Load(window_);
  line = 30;
  actions_.LoadGameConfig();
  line = 40;
  staff_ = !services_.host.settings
                .Get(services_.deployment.staffApplication, startup::keys::kStaff, startup::keys::kStaff)
                .empty();
  line = 50;
  LoadPictures();
  line = 70;
  window_.lblClienteGm.Visible = staff_;
  line = 80;
  if (showWindow) window_.Visible = true;
  screen_.Attach(window_);  // with all that it will show, so that it is on the screen as soon as it is made
  loaded_ = true;
  window_.tmrShow.Set(true);
  services_.host.events.DoEvents();
  line = 90;
  actions_.RestoreHosts();
  if (hosts_.CurrentUpdateURL.empty() && hosts_.WebBaseURL.empty()) actions_.SwitchURL();
  line = 100;
  actions_.ComenzarActualizacion();
  if (services_.lifetime.Ending()) return;
  line = 120;
  const std::string updates = services_.folders.ResourcesUpdateDir + platform::kSeparator;
  if (services_.flags.FolderWritable && !platform::IsFolder(updates)) platform::MakeFolder(updates);
  services_.host.events.DoEvents();
  line = 130;
  if (actions_.ServerListEmpty()) actions_.GetServersList();
  line = 140;
  CentreWhenMaximised();
}

// A launcher without its skin still repairs the game that the skin belongs to.
void frmMain::LoadPictures() {
  SkinPictures pictures(services_.folders.GraphicsDir);
  window_.Picture = pictures.Required("Launcher.jpg", 50);
  const std::string hand = pictures.Optional("HAND-M.CUR");
  const struct {
    clsGraphicalButton& button;
    controls::ImageControl& image;
    const char* stem;
    const char* description;
    const char* sign;
    bool startDisabled;
  } rows[] = {
      {btnClose, window_.cmdClose, "cerrar", "Cerrar: ocultar junto al reloj", "×", false},
      {btnCreditos, window_.cmdCreditos, "help", "Ayuda", "?", false},
      {btnMinimize, window_.cmdMinimize, "minimizar", "Minimizar", "–", false},
      {btnIniciar, window_.cmdIniciar, "jugar", "¡Jugar!", "", true},
      {btnConfig, window_.cmdConfig, "config", "Configuración", "", true},
      {btnReiniciarUpdates, window_.cmdReiniciarUpdates, "reparar", "Reparar", "", false},
      {btnReportar, window_.cmdReportar, "whatsapp", "WhatsApp", "", false},
  };
  for (const auto& row : rows) {
    row.image.description = row.description;
    row.image.sign = row.sign;
    // Skins with three pictures a button show a disabled one as pressed.
    const bool hasDisabled = !pictures.Optional(row.stem + std::string("_d.jpg")).empty();
    pictures.Load(row.button, row.image, {row.stem, hasDisabled ? "_d" : "_c", row.startDisabled, hand},
                  lastPressed_, 60);
  }
  pictures.ReportMissing(services_.recorder,
                         [this](const startup::Failure& failure) { return LoadFailure(failure); });
}

void frmMain::CentreWhenMaximised() {
  if (window_.State == WindowState::Maximised) screen_.Centre(window_);
}

void frmMain::Form_MouseMove(MouseButton button) {
  if (button == MouseButton::Left) screen_.StartDrag(window_);
  lastPressed_.LastPressed->ToggleToNormal();
  Explain("");
}

void frmMain::Explain(const char* text) {
  window_.restingStatus = text;
  window_.lblEstado.Caption = std::string(text);
}

void frmMain::Form_KeyDown(int keyCode) {
  if (keyCode != controls::kKeyEscape) return;
  FSys_.QuitarIconoSystray();
  actions_.CloseLauncher();
  services_.lifetime.End(0);
}

// The session goes on ending, and the process with it, as soon as the system has its answer, while a run
// that is under way still waits below on the stack. So what its worker does is finished here, or broken off
// in good order when it takes too long.
void frmMain::FinishWork() {
  services_.lifetime.AwaitWork(kToFinish);
  services_.lifetime.End(0);
  services_.lifetime.AwaitWork(kToBreakOff);
}

void frmMain::Form_QueryUnload(controls::UnloadMode mode) {
  actions_.UnloadOptions();
  actions_.ClearNotify();
  bool cancel = false;  // the program ends whatever the companion answers
  FSys_.MeQueryUnload(window_, cancel, mode);
  FSys_.FSys_Unload();
  if (mode == controls::UnloadMode::SystemShutdown) FinishWork();
  services_.lifetime.End(0);
}

void frmMain::tmrShow_Timer() {
  using namespace startup::keys;
  startup::Guarded(
      services_.recorder,
      [&](int& line) {
        line = 10;
        const double request = base::Val(services_.host.settings.Get(kApplication, kConfig, kShow));
        if (request == 0) return;
        line = 20;
        services_.host.settings.Set(kApplication, kConfig, kShow,
                                    "0");  // first, so that a bad number is reported once
        line = 30;
        if (base::ToByte(request) != 0) FSys_.Restore();
      },
      [](const startup::Failure& failure) {
        return failure.Opening() + " procedimiento tmrShow_Timer Formulario frmMain línea: " + failure.Line();
      });
}

bool frmMain::DownloadFile(const std::string& Url, const std::string& LocalFilename) {
  return actions_.DownloadFile(Url, LocalFilename);
}

std::string frmMain::OutsideFolder() const {
  return services_.folders.AppPath + platform::NativePath("\\..");
}

}  // namespace ui
