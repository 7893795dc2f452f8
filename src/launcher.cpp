#include "launcher.hpp"

#include "platform/files.hpp"
#include "startup/launcher_settings.hpp"

namespace {

constexpr std::uint32_t kIdleMs = 60'000;  // a timer, the player or Wake ends the wait before

}  // namespace

Launcher::Launcher(const platform::Host& host, ui::Screen& screen, const Start& start)
    : folders_(platform::FolderOf(start.executable)),
      executableBaseName_(platform::BaseNameOf(start.executable)),
      flags_(executableBaseName_, start.commandLine),
      unattended_(host.dialogs, flags_),
      host_{host.clock, host.events,   unattended_,   host.processes,
            host.shell, host.settings, host.profiles, host.http},
      screen_(screen),
      lifetime_(host.events),
      recorder_(host_, folders_, lifetime_),
      deployment_(startup::LoadDeployment(host_.profiles,
                                          folders_.AppPath + platform::NativePath("\\Deployment.ini"))),
      instance_(host_.processes, flags_, executableBaseName_),
      services_{host_, folders_, deployment_, flags_, recorder_, lifetime_},
      frmMain_(host_.events.Timers()),
      inet_(services_),
      transfers_(services_, frmMain_, state_, hosts_),
      selection_(services_, frmMain_, inet_, transfers_, hosts_, scripts_),
      servers_(services_, frmMain_, inet_, transfers_, hosts_, selection_, scripts_),
      news_(services_, frmMain_, inet_, transfers_, hosts_, selection_, servers_, scripts_),
      gameIni_(host_.profiles, folders_, recorder_),
      sounds_(host_.profiles, folders_),
      mode_(services_, frmMain_,
            {[this](bool on) { mainForm_.btnIniciar.EnableButton(on); },
             [this](bool on) { mainForm_.btnConfig.EnableButton(on); },
             [this](bool hostInDoubt) { return check_.tmrUpdates_Timer(hostInDoubt); },
             [this] { OfferInstalledGame(); }, [this] { return repair_.ForgetInstalled(); }}),
      unzip_(services_),
      compression_(services_),
      counters_(services_),
      mirrors_(services_, mode_, hosts_, selection_),
      trust_(services_, hosts_, mirrors_),
      download_({services_, frmMain_, state_, hosts_, transfers_, mirrors_, trust_, unzip_,
                 [this] { CloseLauncher(); }}),
      chunked_(services_, frmMain_, inet_, state_, [this] { CloseLauncher(); }),
      installation_(services_, frmMain_, compression_),
      index_(services_, frmMain_, download_, trust_, compression_),
      libraries_(services_, frmMain_,
                 [this](const std::string& inBin) { return index_.PublishedDigest(inBin); }),
      launch_(services_, libraries_, [this] { CloseLauncher(); }),
      rights_(services_, instance_, start.executable, start.commandLine, [this] { HandOver(); }),
      installed_(services_, launch_),
      check_({services_, mode_, instance_, frmMain_, state_, hosts_, inet_, selection_, mirrors_, trust_,
              counters_, download_, index_, installation_, launch_, rights_, installed_}),
      repair_(services_, frmMain_, counters_, rights_, [this] { mode_.RepairConfirmed(); }),
      settingsServices_{services_, screen_, gameIni_, sounds_},
      options_(settingsServices_),
      notify_(services_, screen_),
      mainForm_(services_, hosts_, screen_, frmMain_, WindowActions()),
      network_([this] { selection_.NetworkChanged(); }),
      closeBoxes_(lifetime_.Token(), [this] { host_.dialogs.CloseAll(); }) {
  screen_.resumed = [this] { selection_.NetworkChanged(); };
  selection_.ringSilent = [this] { mode_.RingSilent(); };
  inet_.StateChanged += [this](int state) { chunked_.Inet1_StateChanged(state); };
  frmMain_.tmrUpdates.Tick += [this] { mode_.tmrUpdates_Timer(); };
  frmMain_.NewsTimer.Tick += [this] { news_.Timer_Timer(); };
  news_.beginTick = [this] { return mode_.StillSo(); };
  unattended_.announced = [this](const std::string& text) { recorder_.Note(text); };
  news_.showMessage = [this](const std::string& text, const std::string& title, std::int32_t number,
                             std::int32_t milliseconds) {
    notify_.ShowMessage(text, title, number, milliseconds);
  };
}

Launcher::~Launcher() {
  screen_.resumed = nullptr;
  lifetime_.End(0);
}

ui::frmMain::Actions Launcher::WindowActions() {
  ui::frmMain::Actions actions;
  actions.LoadGameConfig = [this] { gameIni_.LoadGameConfig(); };
  actions.RestoreHosts = [this] { selection_.RestoreHosts(); };
  actions.SwitchURL = [this] { selection_.SwitchURL(); };
  actions.ComenzarActualizacion = [this] { selection_.ComenzarActualizacion(); };
  actions.ServerListEmpty = [this] { return servers_.Text().empty(); };
  actions.GetServersList = [this] { servers_.GetServersList(); };
  actions.Iniciar = [this] { mode_.cmdIniciar_Click(); };
  actions.ReiniciarUpdates = [this] { repair_.cmdReiniciarUpdates_Click(); };
  actions.ShowOptions = [this] { ShowOptions(); };
  actions.UnloadOptions = [this] { options_.Unload(); };
  actions.ClearNotify = [this] { news_.showMessage = nullptr; };
  actions.CloseLauncher = [this] { CloseLauncher(); };
  actions.DownloadFile = [this](const std::string& url, const std::string& file) {
    return transfers_.DownloadFile(url, file);
  };
  return actions;
}

// Without the right to write, every change would end in an error.
void Launcher::ShowOptions() {
  const bool asks = !flags_.FolderWritable && !options_.Window.Visible;
  if (asks && rights_.Make("los cambios no se guardan")) return;
  options_.Show(frmMain_);
}

void Launcher::HandOver() {
  handedOver_ = true;
  CloseLauncher();
}

void Launcher::CloseLauncher() {
  if (state_.CancelRequested) return;
  state_.CancelRequested = true;
  mode_.ProgramEnds();
  options_.Unload();
  notify_.window.Visible = false;
  frmMain_.Visible = false;
  mainForm_.Tray().FSys_Unload();
  if (!handedOver_) ForgetShowRequest();
  lifetime_.End(0);
}

void Launcher::ForgetShowRequest() {
  try {
    host_.settings.Set(startup::keys::kApplication, startup::keys::kConfig, startup::keys::kShow, "0");
  } catch (const base::RuntimeError&) {  // the settings store is not worth keeping the program open for
  }
}

// Who would rather wait need not wait for the end of the pause as well.
void Launcher::OfferInstalledGame() {
  if (!installed_.Offer("Ningún servidor de actualizaciones responde.")) selection_.Hurry();
}

int Launcher::RunEvents() {
  while (!lifetime_.Ending()) host_.events.WaitEvents(kIdleMs);
  return lifetime_.ExitStatus();
}
