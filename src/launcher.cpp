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
      frmMainControls_(host_.events.Timers()),
      inet_(host_, lifetime_),
      transfers_(host_, folders_, lifetime_, frmMainControls_, state_, hosts_),
      selection_(host_, deployment_, recorder_, lifetime_, frmMainControls_, inet_, transfers_, hosts_),
      servers_(deployment_, recorder_, lifetime_, frmMainControls_, inet_, transfers_, hosts_, selection_),
      news_(deployment_, recorder_, lifetime_, frmMainControls_, inet_, transfers_, hosts_, selection_,
            servers_),
      gameIni_(host_.profiles, folders_, recorder_),
      sounds_(host_.profiles, folders_),
      unzip_(host_, folders_, recorder_, lifetime_),
      compression_(host_, recorder_, lifetime_),
      counters_(folders_, deployment_, recorder_),
      download_({host_, folders_, deployment_, recorder_, lifetime_, frmMainControls_, state_, hosts_,
                 transfers_, unzip_, [this] { CloseLauncher(); }}),
      chunked_(host_, deployment_, recorder_, lifetime_, frmMainControls_, inet_, state_,
               [this] { CloseLauncher(); }),
      installation_(host_, folders_, recorder_, lifetime_, frmMainControls_, compression_),
      index_(host_, folders_, flags_, recorder_, lifetime_, frmMainControls_, download_),
      libraries_(host_, folders_, recorder_, lifetime_, frmMainControls_),
      launch_(
          host_, folders_, flags_, recorder_, frmMainControls_, libraries_,
          [this](bool on) { EnablePlay(on); }, [this] { CloseLauncher(); }),
      repair_(host_, folders_, deployment_, recorder_, frmMainControls_, [this] { check_.StartOver(); }),
      check_({host_, folders_, deployment_, flags_, recorder_, lifetime_, instance_, frmMainControls_, state_,
              hosts_, inet_, selection_, counters_, download_, index_, installation_, launch_,
              [this](bool on) { EnablePlay(on); }}),
      settingsServices_{host_, folders_, deployment_, recorder_, screen_, gameIni_, sounds_},
      options_(settingsServices_),
      notify_(host_, folders_, deployment_, recorder_, lifetime_, screen_),
      frmMain_(host_, folders_, deployment_, recorder_, lifetime_, hosts_, screen_, frmMainControls_,
               WindowActions()),
      closeBoxes_(lifetime_.Token(), [this] { host_.dialogs.CloseAll(); }) {
  inet_.StateChanged += [this](int state) { chunked_.Inet1_StateChanged(state); };
  frmMainControls_.tmrUpdates.Tick += [this] { check_.tmrUpdates_Timer(); };
  frmMainControls_.NewsTimer.Tick += [this] { news_.Timer_Timer(); };
  news_.showMessage = [this](const std::string& text, const std::string& title, std::int32_t number,
                             std::int32_t milliseconds) {
    notify_.ShowMessage(text, title, number, milliseconds);
  };
}

Launcher::~Launcher() { lifetime_.End(0); }

ui::frmMain::Actions Launcher::WindowActions() {
  ui::frmMain::Actions actions;
  actions.LoadGameConfig = [this] { gameIni_.LoadGameConfig(); };
  actions.RestoreHosts = [this] { selection_.RestoreHosts(); };
  actions.SwitchURL = [this] { selection_.SwitchURL(); };
  actions.ComenzarActualizacion = [this] { selection_.ComenzarActualizacion(); };
  actions.ServerListEmpty = [this] { return servers_.Text().empty(); };
  actions.GetServersList = [this] { servers_.GetServersList(); };
  actions.Iniciar = [this] { launch_.cmdIniciar_Click(); };
  actions.ReiniciarUpdates = [this] { repair_.cmdReiniciarUpdates_Click(); };
  actions.ShowOptions = [this] { options_.Show(frmMainControls_); };
  actions.UnloadOptions = [this] { options_.Unload(); };
  actions.ClearNotify = [this] { news_.showMessage = nullptr; };
  actions.CloseLauncher = [this] { CloseLauncher(); };
  actions.DownloadFile = [this](const std::string& url, const std::string& file) {
    return transfers_.DownloadFile(url, file);
  };
  return actions;
}

void Launcher::EnablePlay(bool enable) { frmMain_.btnIniciar.EnableButton(enable); }

void Launcher::CloseLauncher() {
  if (state_.CancelRequested) return;
  state_.CancelRequested = true;
  frmMainControls_.tmrUpdates.Set(false);
  frmMainControls_.NewsTimer.Set(false);
  options_.Unload();
  notify_.window.Visible = false;
  frmMainControls_.Visible = false;
  frmMain_.Tray().FSys_Unload();
  try {
    host_.settings.Set(startup::keys::kApplication, startup::keys::kConfig, startup::keys::kShow, "0");
  } catch (const util::RuntimeError&) {  // the settings store is not worth keeping the program open for
  }
  lifetime_.End(0);
}

int Launcher::RunEvents() {
  while (!lifetime_.Ending()) host_.events.WaitEvents(kIdleMs);
  return lifetime_.ExitStatus();
}
