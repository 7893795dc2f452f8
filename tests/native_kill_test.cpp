// The real program, killed at random moments of an installation and started again.
#include <fcntl.h>
#include <gtest/gtest.h>
#include <signal.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <filesystem>
#include <random>
#include <thread>

#include "base/relative_name.hpp"
#include "platform/files.hpp"
#include "support/game_mirror.hpp"
#include "support/test_services.hpp"
#include "update/patch_journal.hpp"

extern char** environ;

namespace {

using Clock = std::chrono::steady_clock;
constexpr auto kGenerous = std::chrono::seconds(60);

// One run of the launcher with the play button pressed.
class Program {
 public:
  explicit Program(const std::string& executable) {
    int ends[2];
    if (pipe2(ends, O_CLOEXEC) != 0) throw std::runtime_error("pipe");
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_adddup2(&actions, ends[0], STDIN_FILENO);
    posix_spawn_file_actions_addopen(&actions, STDOUT_FILENO, "/dev/null", O_WRONLY, 0);
    char* arguments[] = {const_cast<char*>(executable.c_str()), nullptr};
    if (posix_spawn(&pid_, executable.c_str(), &actions, nullptr, arguments, environ) != 0) pid_ = -1;
    posix_spawn_file_actions_destroy(&actions);
    close(ends[0]);
    static constexpr std::string_view kPlay = "frmMain.cmdIniciar\n";
    EXPECT_EQ(write(ends[1], kPlay.data(), kPlay.size()), static_cast<ssize_t>(kPlay.size()));
    close(ends[1]);
  }
  ~Program() { Kill(); }
  Program(const Program&) = delete;

  // The exit status; -1 when it had to be killed because it never ended.
  int Wait() {
    for (const auto end = Clock::now() + kGenerous; Clock::now() < end;) {
      int status = 0;
      if (waitpid(pid_, &status, WNOHANG) == pid_) {
        pid_ = -1;
        return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
      }
      std::this_thread::sleep_for(std::chrono::milliseconds(2));
    }
    return -1;
  }
  void Kill() {
    if (pid_ < 0) return;
    kill(pid_, SIGKILL);
    waitpid(pid_, nullptr, 0);
    pid_ = -1;
  }

 private:
  pid_t pid_ = -1;
};

void PublishManyPatches(support::GameMirror& mirror) {
  for (const char* category : {"Init", "Mapas", "Graficos"}) {
    for (int number = 1; number <= 3; ++number) {
      std::vector<support::ZipItem> files;
      for (int file = 0; file < 6; ++file) {
        files.push_back({"RECURSOS/" + std::string(category) + "/" + std::to_string(number + file) + ".dat",
                         std::string(20'000 + 1000 * file, static_cast<char>('a' + number))});
      }
      mirror.AddPatch(category, files);
    }
  }
  for (int i = 0; i < 8; ++i)
    mirror.AddBinFile("lib" + std::to_string(i) + ".dll", std::string(30'000 + i, 'b'));
  mirror.Publish();
}

std::map<std::string, std::string> GameFiles(const support::TempFolder& folder, const std::string& game) {
  std::map<std::string, std::string> files;
  for (const platform::FoundFile& found : platform::ListTree(folder / game)) {
    const std::string name = base::WithSlashes(found.path);
    const bool own = name.starts_with("RECURSOS/INIT/") || name.starts_with("RECURSOS/UPDATE/");
    const bool ofGame = name.starts_with("Bin/") || (name.starts_with("RECURSOS/") && !own);
    if (ofGame && name != "Bin/MD5Update.ini") files[name] = folder.Get(game + "/" + name);
  }
  return files;
}

TEST(Kill, AnyMomentLeadsToTheSameVerifiedFolder) {
  constexpr int kKills = 36, kKillsPerFolder = 3;
  support::GameMirror mirror;
  PublishManyPatches(mirror);
  support::TempFolder folder;
  const auto prepare = [&](const std::string& game) {
    support::Deploy(folder, game, {mirror.Url()}, mirror.server.Url(""));
    std::filesystem::create_hard_link(LAUNCHER_PROGRAM, folder / (game + "/launcher"));
    return folder / (game + "/launcher");
  };
  const auto start = Clock::now();
  ASSERT_EQ(Program(prepare("whole")).Wait(), 0);
  const auto whole = std::chrono::duration_cast<std::chrono::microseconds>(Clock::now() - start);
  ASSERT_EQ(GameFiles(folder, "whole"), mirror.Expected());

  std::mt19937 random(20261121);
  int kills = 0;
  for (int round = 0; kills < kKills; ++round) {
    const std::string game = "round" + std::to_string(round), executable = prepare(game);
    for (int i = 0; i < kKillsPerFolder; ++i, ++kills) {
      Program program(executable);
      std::this_thread::sleep_for(std::chrono::microseconds(random() % whole.count()));
      program.Kill();
      for (const auto& [name, bytes] : GameFiles(folder, game)) {
        // Whatever has its place in the game is whole: old or new, never half.
        ASSERT_TRUE(bytes.size() >= 20'000 && bytes.find_first_not_of(bytes[0]) == std::string::npos) << name;
      }
    }
    ASSERT_EQ(Program(executable).Wait(), 0);
    ASSERT_EQ(GameFiles(folder, game), mirror.Expected()) << "round " << round;
    EXPECT_EQ(folder.Get(game + "/RECURSOS/INIT/AUGraficos.ini"), "3\r\n");
    EXPECT_FALSE(folder.Has(game + "/RECURSOS/INIT/UPDATE/Unzip"));
  }
}

// Killed between the moves of a large patch, the launcher leaves a game that is put back whole.
TEST(Kill, APatchIsAppliedWholeOrNotAtAll) {
  constexpr int kFiles = 1500, kKills = 6;
  support::GameMirror mirror;
  const auto patch = [&](char letter) {
    std::vector<support::ZipItem> files;
    for (int i = 0; i < kFiles; ++i)
      files.push_back(
          {"RECURSOS/d" + std::to_string(i % 20) + "/" + std::to_string(i), std::string(100, letter)});
    if (letter == 'b') files.push_back({"RECURSOS/nuevo/mas", "b"});
    mirror.AddPatch("Extras", files);
    mirror.Publish();
  };
  support::TestServices with("juego");
  support::Deploy(with.folder, "juego", {mirror.Url()}, mirror.server.Url(""));
  std::filesystem::create_hard_link(LAUNCHER_PROGRAM, with.folder / "juego/launcher");
  patch('a');
  ASSERT_EQ(Program(with.folder / "juego/launcher").Wait(), 0);
  const auto before = GameFiles(with.folder, "juego");
  patch('b');
  std::mt19937 random(17);
  int torn = 0;
  for (int i = 0; i < kKills; ++i) {
    Program program(with.folder / "juego/launcher");
    const std::string last = with.folder / "juego/RECURSOS/nuevo";
    for (const auto end = Clock::now() + kGenerous; !platform::IsThere(last) && Clock::now() < end;) {
    }
    std::this_thread::sleep_for(std::chrono::microseconds(random() % 8000));
    program.Kill();
    const auto left = GameFiles(with.folder, "juego");
    EXPECT_EQ(update::RecoverInterruptedPatch(with.services), "");
    EXPECT_FALSE(with.folder.Has("juego/RECURSOS/INIT/UPDATE/Unzip"));
    const auto after = GameFiles(with.folder, "juego");
    if (after == mirror.Expected()) break;  // the last move was made before the kill
    ASSERT_EQ(after, before);
    EXPECT_FALSE(platform::IsThere(last));
    torn += left != before;
  }
  EXPECT_GT(torn, 0) << "no kill came between two moves";
  ASSERT_EQ(Program(with.folder / "juego/launcher").Wait(), 0);
  EXPECT_EQ(GameFiles(with.folder, "juego"), mirror.Expected());
}

}  // namespace
