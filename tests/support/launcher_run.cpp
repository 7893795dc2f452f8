#include "support/launcher_run.hpp"

#include <gtest/gtest.h>

#include <chrono>
#include <filesystem>

#include "base/relative_name.hpp"
#include "platform/files.hpp"
#include "startup/launcher_settings.hpp"

namespace support {
namespace {

constexpr auto kGenerous = std::chrono::seconds(60);
constexpr std::uint64_t kStepMs = 20;

}  // namespace

LauncherRun::LauncherRun() {
  namespace keys = startup::keys;
  for (const char* section : {keys::kLastUrl, keys::kUrlWeb}) {
    machine.settings->Set(keys::kApplication, section, keys::kUrl, "");
  }
  machine.settings->Set(keys::kApplication, keys::kConfig, keys::kShow, "");
  machine.settings->Set(keys::kLibraries, keys::kVersion, keys::kV, "0.4.1");
  machine.settings->Set("LauncherTestStaff", keys::kStaff, keys::kStaff, "");
  platform::MakeFolders(folder / game);
}

LauncherRun::~LauncherRun() = default;

void LauncherRun::Start(const std::string& commandLine) {
  if (!folder.Has(game + "/Deployment.ini")) {
    Deploy(folder, game, {"http://127.0.0.1:1/update/kvn2011/", mirror.Url()}, mirror.server.Url(""));
  }
  launcher_.reset();
  launcher_ =
      std::make_unique<Launcher>(machine.host, screen, ::Start{folder / (game + "/" + program), commandLine});
  launcher_->Main();
  if (!Launched().Life().Ending())
    machine.dialogs.shown.clear();  // the game has no pictures, which was reported
}

void LauncherRun::Until(const std::function<bool()>& condition, const char* what) {
  const auto end = std::chrono::steady_clock::now() + kGenerous;
  while (!condition()) {
    if (std::chrono::steady_clock::now() > end) {
      FAIL() << "waited in vain: " << what;
    }
    machine.clock.Step(kStepMs);
    machine.events->WaitEvents(1);
  }
}

void LauncherRun::UntilEnded() {
  Until([this] { return Launched().Life().Ending(); }, "the end of the program");
}

void LauncherRun::PlayToTheEnd() {
  Start();
  Play();
  UntilEnded();
}

void LauncherRun::PlayUntilStopped() {
  Start();
  Play();
  UntilStopped();
}

void LauncherRun::UntilStopped() {
  Until([this] { return Launched().Mode() != update::Mode::Updating; }, "the end of the run");
}

std::string LauncherRun::Counter(const std::string& category) const {
  return folder.Get(game + "/RECURSOS/INIT/AU" + category + ".ini");
}

bool LauncherRun::Shown(const std::string& text) const {
  for (const ShownDialog& dialog : machine.dialogs.shown) {
    if (dialog.text == text) return true;
  }
  return false;
}

void LauncherRun::SetTime(const std::string& file, int day) {
  const std::string path = folder / (game + "/" + file);
  const std::chrono::sys_time<std::chrono::file_clock::duration> time =
      std::chrono::sys_days(std::chrono::year(2025) / 3 / 4) + std::chrono::days(day);
  std::filesystem::last_write_time(std::u8string(path.begin(), path.end()),
                                   std::chrono::file_clock::from_sys(time));
}

std::map<std::string, std::string> LauncherRun::GameFiles() const {
  std::map<std::string, std::string> files;
  for (const platform::FoundFile& found : platform::ListTree(folder / game)) {
    const std::string name = base::WithSlashes(found.path);
    const bool own = name == "Deployment.ini" || name == "Bin/MD5Update.ini" ||
                     name.starts_with("RECURSOS/INIT/AU") || name == "RECURSOS/INIT/ConfigVideo.cfg" ||
                     name == "RECURSOS/INIT/UPDATE/Tmp.tmp" || name == "RECURSOS/INIT/UPDATE/tmp.tmp";
    if (!own) files[name] = folder.Get(game + "/" + name);
  }
  return files;
}

}  // namespace support
