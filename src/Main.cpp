// Procedure Main of module modGeneral: the launcher's start-up, step by step.
#include "base/runtime_error.hpp"
#include "base/text.hpp"
#include "launcher.hpp"
#include "platform/crash_reports.hpp"
#include "platform/files.hpp"
#include "platform/user_folders.hpp"
#include "startup/launcher_settings.hpp"
#include "startup/procedure.hpp"

namespace {

namespace keys = startup::keys;

constexpr std::uint32_t kStartedWithSystemMs = 30'000;
constexpr const char* kClientImage = "Kelvarin.exe";

}  // namespace

void Launcher::Main() {
  startup::Guarded(
      recorder_, [&](int& line) { StartUp(line); },
      [](const startup::Failure& failure) {
        return "Error " + std::to_string(failure.number) + " Descripción: & (" + failure.description +
               ") del procedimiento Main del Módulo modGeneral En la linea: " + failure.Line();
      });
  if (lifetime_.Ending()) return;
  // A program that nobody can see could not be ended by anybody either.
  if (!mainForm_.Loaded()) return lifetime_.End(1);
  mode_.StartUpDone();
}

void Launcher::StartUp(int& line) {
  line = 10;
  ProbeFolder();
  if (flags_.FolderWritable) PrepareFolders();
  ReportDeployment();
  if (lifetime_.Ending()) return;
  TellOfCrash();
  line = 30;
  EndStaleClient();
  line = 60;
  if (!flags_.UpdatesOnly) MeetOtherInstances();
  line = 70;
  sounds_.Load();
  line = 80;
  if (flags_.FolderWritable) PrepareScratch();
  line = 100;
  ShowMainWindow();
  if (lifetime_.Ending() || !mainForm_.Loaded()) return;
  line = 120;
  EraseCache();
  line = 130;
  selection_.ClientAddressQuery();
  if (lifetime_.Ending()) return;
  line = 140;
  if (!flags_.UpdatesOnly && servers_.Text().empty()) servers_.GetServersList();
}

// What the game can be updated and played without does not stop the start.
void Launcher::AttemptAndNote(const char* what, const std::function<void()>& step) {
  try {
    step();
  } catch (const base::RuntimeError& error) {
    recorder_.Note(std::string(what) + ": " + error.Description());
  }
}

// A complete game needs nothing written: without the right to, only what would be written has to be left out.
void Launcher::ProbeFolder() {
  flags_.FolderWritable = platform::CanWriteTo(folders_.AppPath);
  if (flags_.FolderWritable) return;
  recorder_.Note("Sin permiso para escribir en " + folders_.AppPath);
  const std::string own = platform::LocalDataFolder();
  if (own.empty()) return;
  AttemptAndNote(own.c_str(), [&] {
    platform::MakeFolders(own);
    folders_.FetchDir = own;
  });
}

void Launcher::PrepareScratch() {
  AttemptAndNote("Kelvarin.exe.manifest", [this] { CopyManifest(); });
  AttemptAndNote("RECURSOS\\INIT\\UPDATE", [this] {
    const std::string scratch = folders_.InitDir + platform::NativePath("\\UPDATE");
    if (!platform::IsFolder(scratch)) platform::MakeFolder(scratch);
  });
}

// A folder that holds only the program can be installed into. On a full disk what is there can still be
// played.
void Launcher::PrepareFolders() {
  for (const std::string& folder :
       {folders_.ResourcesDir, folders_.InitDir, folders_.ResourcesUpdateDir, folders_.BinDir}) {
    try {
      platform::MakeFolders(folder);
    } catch (const base::RuntimeError& error) {
      if (!error.Is(base::ErrorNumber::DiskFull)) throw;
      recorder_.Note(folder + ": " + error.Description());
    }
  }
}

void Launcher::ReportDeployment() {
  for (const std::string& problem : startup::ProblemsOf(deployment_)) recorder_.LogError(problem);
  // Without a mirror the search for one would last for ever, and nobody is there to end it.
  if (flags_.UpdatesOnly && !deployment_.AnyUsable()) lifetime_.End(1);
}

// Where nobody reads it, the next start with a window tells.
void Launcher::TellOfCrash() {
  if (flags_.UpdatesOnly) return;
  const std::string report = platform::TakeCrashReport(platform::CrashFolder());
  if (report.empty()) return;
  host_.dialogs.Show(
      "El launcher se cerró por un error la última vez. Reporta esto mediante el soporte WEB en " +
      deployment_.support + " y adjunta este archivo:\r\n" + report);
}

bool Launcher::IsProcessNameRunning(const std::string& imageName) {
  bool running = false;
  startup::Guarded(
      recorder_,
      [&](int& line) {
        line = 10;
        for (const std::string& name : host_.processes.RunningImageNames()) {
          running = running || base::EqualIgnoringCase(name, imageName);
        }
      },
      [](const startup::Failure& failure) {
        return failure.Opening() +
               " procedimiento IsProcessNameRunning Módulo modProcess línea: " + failure.Line();
      });
  return running;
}

void Launcher::EndStaleClient() {
  if (flags_.IsLauncherExe || !instance_.HeldByAnother() || !IsProcessNameRunning(kClientImage)) return;
  platform::StartRequest request;
  request.program = "taskkill.exe";
  request.commandLine = std::string("taskkill.exe /f /t /im ") + kClientImage;
  request.style = platform::WindowStyle::Minimised;
  AttemptAndNote("taskkill.exe", [&] { host_.processes.Start(request); });
}

// Neither message ends the start-up.
void Launcher::MeetOtherInstances() {
  const bool another = instance_.HeldByAnother();
  if (another) {
    screen_.LetOthersComeToFront();
    host_.settings.Set(keys::kApplication, keys::kConfig, keys::kShow, "1");
    if (flags_.IsLauncherExe) host_.dialogs.Show("Se encontró otra instancia del launcher abierta.");
  }
  // Players know this wording although it is the game client that was found.
  if (!another && IsProcessNameRunning(kClientImage)) {
    host_.dialogs.Show("Se encontró otra instancia ejecutada del launcher abierta.");
  }
}

void Launcher::CopyManifest() {
  const std::string name = platform::NativePath("\\Kelvarin.exe.manifest");
  const std::string source = folders_.InitDir + name, target = folders_.AppPath + name;
  if (platform::IsFile(source) && !platform::IsFile(target)) platform::CloneFile(source, target);
}

void Launcher::ShowMainWindow() {
  mainForm_.Form_Load(!flags_.UpdatesOnly);
  flags_.StaffClient = mainForm_.IsStaff();
  if (lifetime_.Ending() || !mainForm_.Loaded()) return;
  if (host_.clock.SystemUptime() < kStartedWithSystemMs) {
    frmMain_.State = controls::WindowState::Minimised;
  } else if (!flags_.UpdatesOnly) {
    frmMain_.Visible = true;
  }
}

void Launcher::EraseCache() {
  startup::Guarded(
      recorder_,
      [&](int& line) {
        line = 10;
        platform::StartRequest request;
        request.program = "RunDll32.exe";
        request.commandLine = "RunDll32.exe InetCpl.cpl, ClearMyTracksByProcess 8";
        request.style = platform::WindowStyle::Minimised;
        host_.processes.Start(request);
      },
      [](const startup::Failure& failure) {
        return failure.Opening() + " procedimiento EraseCache Módulo línea: " + failure.Line();
      });
}
