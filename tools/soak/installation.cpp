#include "soak/installation.hpp"

#include <cstdlib>
#include <filesystem>
#include <optional>
#include <stdexcept>
#include <thread>
#include <vector>

#include "platform/files.hpp"
#include "soak/disk.hpp"
#include "soak/mirrors.hpp"
#include "soak/program.hpp"
#include "update/launcher_state.hpp"

namespace soak {
namespace {

using std::chrono::milliseconds;
using Clock = std::chrono::steady_clock;

constexpr milliseconds kPatience{180'000}, kClientsTime{10'000};
constexpr int kMostAgain = 4;
constexpr std::uint64_t kMostKills = 4;
constexpr double kDiskIsFull = 0.3, kDiskFills = 0.6;
constexpr std::uint64_t kLastBytes = 100'000;
constexpr std::uint64_t kLongestDelay = 6;  // of a kill, in times of an undisturbed installation

// Goes with everything in it, unless it is to be kept.
struct Folder {
  explicit Folder(std::string where) : path(std::move(where)) { platform::MakeFolders(path); }
  ~Folder() {
    std::error_code ignored;
    if (!keep) std::filesystem::remove_all(path, ignored);
  }
  Folder(const Folder&) = delete;

  const std::string path;
  bool keep = false;
};

// What happens to a start of the launcher.
struct Trouble {
  std::optional<milliseconds> killedAfter{};
  std::optional<std::uint64_t> room{};  // bytes that are left on the disk ...
  milliseconds fullAfter{0};            // ... from then on
};

// One installation in its folder.
class Installation {
 public:
  Installation(const Setting& setting, const std::string& name, const Dice& dice)
      : setting_(setting),
        folder_(setting.folder + "/" + name),
        disk_(Root() + "/disk"),
        game_(Root() + "/disk/Juego de Jos\xC3\xA9"),
        mirrors_(setting.game, dice) {
    platform::MakeFolders(game_);
    std::filesystem::copy_file(setting.launcher, game_ + "/launcher");
    std::string ring = "[MIRRORS]\n";
    int entry = 0;
    for (const std::string& address : mirrors_.Addresses())
      ring += std::to_string(++entry) + "=" + address + "\n";
    platform::WriteWhole(game_ + "/Deployment.ini",
                         ring + "[SITE]\nWeb=" + mirrors_.Site() + "\nApi=" + mirrors_.Site() +
                             "\n[TRUST]\nPublicKey=" + setting.game.publicKey + "\n");
    for (const char* own : {"config", "data", "run", "tmp"}) platform::MakeFolders(Root() + "/" + own);
  }

  // What lies on its own disk is copied beside it, since that goes.
  void Keep() {
    folder_.keep = true;
    std::filesystem::copy(Root() + "/disk", Root() + "/lost", std::filesystem::copy_options::recursive);
  }

  Mirrors& Ring() { return mirrors_; }
  const Disk& Space() const { return disk_; }
  const std::string& Root() const { return folder_.path; }
  bool GameStarted() const { return gameStarted_; }  // by the last start

  Program::End Start(const Trouble& trouble = {}) {
    platform::TryRemoveFile(Root() + "/client.txt");
    const std::vector<std::string> environment = {"XDG_CONFIG_HOME=" + Root() + "/config",
                                                  "XDG_DATA_HOME=" + Root() + "/data",
                                                  "XDG_RUNTIME_DIR=" + Root() + "/run",
                                                  "HOME=" + Root(),
                                                  "TMPDIR=" + Root() + "/tmp",
                                                  "DEMO_CLIENT=" + Root() + "/client.txt",
                                                  "PATH=/usr/bin:/bin",
                                                  "no_proxy=127.0.0.0/8"};
    mirrors_.NextStart();
    if (trouble.room && (trouble.fullAfter.count() == 0 || !disk_.Mounted())) disk_.LeaveFree(*trouble.room);
    const std::string screen = Root() + "/screen-" + std::to_string(++starts_) + ".txt";
    Program program(disk_.Limited({game_ + "/launcher"}), environment, screen);
    const Program::End end = Await(program, trouble);
    disk_.GiveBack();
    gameStarted_ = program.Says("/Bin/KVN-DX8.exe ") && AwaitClient();
    return end;
  }
  int Starts() const { return starts_; }

  // Files that are no part of the game; of these, counters with their bytes.
  std::map<std::string, std::string> Left() const {
    std::map<std::string, std::string> left;
    for (auto& [name, bytes] : FilesOf(game_)) {
      if (setting_.game.second.contains(name)) continue;
      const bool counter =
          update::IsLauncherState(name) && name.ends_with(".ini") && name.starts_with("RECURSOS/INIT/AU");
      left[name] = counter ? bytes : "";
    }
    return left;
  }

  // A file that has its place in the game is whole: old or new, never half.
  std::string Torn() const {
    for (const auto& [name, bytes] : FilesOf(game_)) {
      const auto first = setting_.game.first.find(name), second = setting_.game.second.find(name);
      const bool known = first != setting_.game.first.end() || second != setting_.game.second.end();
      const bool whole = (first != setting_.game.first.end() && first->second == bytes) ||
                         (second != setting_.game.second.end() && second->second == bytes);
      if (known && !whole) return name + " is half written after a kill or with a full disk";
    }
    return {};
  }

  std::string WrongFiles() const {
    const std::string log = Root() + "/md5sum.txt";
    const std::string command =
        "cd '" + game_ + "' && md5sum --quiet --strict -c '" + setting_.game.list + "' >'" + log + "' 2>&1";
    return std::system(command.c_str()) == 0 ? "" : "files are not as listed: " + log;
  }

 private:
  const Setting& setting_;
  Program::End Await(Program& program, const Trouble& trouble) {
    if (trouble.room && trouble.fullAfter.count() > 0 && disk_.Mounted()) {
      if (const auto end = program.Await(trouble.fullAfter)) return *end;
      disk_.LeaveFree(*trouble.room);
    }
    if (const auto end = program.Await(trouble.killedAfter.value_or(kPatience))) return *end;
    program.Kill();
    return trouble.killedAfter ? Program::End::Killed : Program::End::Stuck;
  }

  // The client is not awaited by the launcher.
  bool AwaitClient() const {
    const auto due = Clock::now() + kClientsTime;
    while (!platform::IsFile(Root() + "/client.txt") && Clock::now() < due)
      std::this_thread::sleep_for(milliseconds(5));
    return platform::IsFile(Root() + "/client.txt");
  }

  Folder folder_;  // first, since it goes when nothing is mounted in it any more
  Disk disk_;
  const std::string game_;
  Mirrors mirrors_;
  int starts_ = 0;
  bool gameStarted_ = false;
};

std::string Difference(const std::map<std::string, std::string>& is,
                       const std::map<std::string, std::string>& should) {
  for (const auto& [name, bytes] : is) {
    const auto found = should.find(name);
    if (found == should.end()) return name + " is left over";
    if (found->second != bytes) return name + " holds another number: " + bytes;
  }
  for (const auto& [name, bytes] : should) {
    if (!is.contains(name)) return name + " is missing";
  }
  return {};
}

// Kills and full disks one after the other. A disk is full from the beginning, or fills meanwhile to the last
// byte that is in use, as nothing that is asked before can tell.
std::vector<Trouble> Troubles(Dice dice, const Setting& setting) {
  const auto moment = [&] {
    const std::uint64_t latest =
        static_cast<std::uint64_t>(setting.time.count()) * (1 + dice.Below(kLongestDelay));
    return milliseconds(1 + dice.Below(latest));
  };
  std::vector<Trouble> troubles;
  for (std::uint64_t i = 0, kills = dice.Below(kMostKills); i < kills; ++i)
    troubles.push_back({.killedAfter = moment()});
  Trouble full;
  if (dice.Chance(kDiskIsFull)) {
    full.room = dice.Below(setting.gameSize * 3 / 2);
  } else if (dice.Chance(kDiskFills)) {
    full = {.room = dice.Below(kLastBytes), .fullAfter = moment()};
  }
  if (full.room)
    troubles.insert(troubles.begin() + static_cast<std::ptrdiff_t>(dice.Below(troubles.size() + 1)), full);
  return troubles;
}

// How the launcher itself failed; empty when it did not.
std::string Failure(Program::End end) {
  if (end == Program::End::Stuck) return "the launcher is stuck";
  if (end == Program::End::Crashed) return "the launcher crashed";
  return {};
}

// Meets the events one after the other; why the launcher is at fault, empty when it is not.
std::string Disturb(Installation& installation, const Setting& setting, Dice dice, Course& course) {
  for (const Trouble& trouble : Troubles(dice, setting)) {
    const Program::End end = installation.Start(trouble);
    if (end == Program::End::Killed) ++course.kills;
    if (trouble.room && !installation.GameStarted()) ++course.fullDisks;
    if (std::string failure = Failure(end); !failure.empty())
      return failure + (trouble.room ? " on a full disk" : "");
    if (std::string torn = installation.Torn(); !torn.empty()) return torn;
  }
  return {};
}

// Starts the launcher until it starts the game, which the first time should do.
std::string Finish(Installation& installation, Course& course) {
  for (int again = 0; again <= kMostAgain; ++again) {
    const Program::End end = installation.Start();
    course.again = again;
    if (std::string failure = Failure(end); !failure.empty()) return failure;
    if (installation.GameStarted()) return {};
    if (end == Program::End::Ended) return "the launcher ended without a reason";
    if (std::string torn = installation.Torn(); !torn.empty()) return torn;
  }
  return "the launcher does not start the game";
}

// What there is once the game was started, and that another start has nothing more to fetch.
std::string Prove(Installation& installation, const Setting& setting) {
  if (std::string wrong = installation.WrongFiles(); !wrong.empty()) return wrong;
  installation.Ring().Behave();
  const int fetched = installation.Ring().Fetched();
  if (installation.Start() != Program::End::Ended || !installation.GameStarted())
    return "the installed game does not start again";
  if (installation.Ring().Fetched() != fetched) return "the installed game is fetched again";
  if (std::string wrong = installation.WrongFiles(); !wrong.empty()) return wrong;
  return Difference(installation.Left(), setting.left);
}

double SecondsSince(Clock::time_point start) {
  return std::chrono::duration<double>(Clock::now() - start).count();
}

}  // namespace

Setting Measured(Setting setting) {
  setting.gameSize = 0;
  for (const auto& [name, bytes] : setting.game.second) setting.gameSize += bytes.size();
  Installation installation(setting, "undisturbed", Dice(0));
  installation.Ring().Behave();
  const auto start = Clock::now();
  installation.Start();
  setting.time = std::chrono::duration_cast<milliseconds>(Clock::now() - start);
  installation.Start();  // which leaves a record of the digests
  setting.left = installation.Left();
  if (!installation.GameStarted() || !installation.WrongFiles().empty())
    throw std::runtime_error("an undisturbed installation fails: " + installation.Root());
  return setting;
}

Course Install(const Setting& setting, const std::string& name, const Dice& dice) {
  Course course;
  const auto start = Clock::now();
  Installation installation(setting, name, dice);
  course.limitedFiles = !installation.Space().Mounted();
  course.lost = Disturb(installation, setting, dice.For("disturb"), course);
  if (course.lost.empty()) course.lost = Finish(installation, course);
  course.seconds = SecondsSince(start);
  course.starts = installation.Starts();
  if (course.lost.empty()) course.lost = Prove(installation, setting);
  course.faults = installation.Ring().Faults();
  if (!course.lost.empty()) installation.Keep();
  return course;
}

}  // namespace soak
