// The real program, at every step of its work on the disk: ended there, out of room from there on, or refused
// that file. Whatever happens the game is whole, the player reads why, and the next start makes it right.
#include <fcntl.h>
#include <gtest/gtest.h>
#include <signal.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <set>

#include "base/relative_name.hpp"
#include "base/text.hpp"
#include "platform/files.hpp"
#include "support/game_mirror.hpp"
#include "update/launcher_state.hpp"

namespace {

namespace fs = std::filesystem;
using Files = std::map<std::string, std::string>;
using support::GameMirror;

// One run of the launcher with the play button pressed: to the start of the game, to where it stops, or to
// its end.
struct Program {
  Program(const std::string& executable, const std::vector<std::string>& faults) {
    int in[2], out[2];
    if (pipe2(in, O_CLOEXEC) != 0 || pipe2(out, O_CLOEXEC) != 0) throw std::runtime_error("pipe");
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_adddup2(&actions, in[0], STDIN_FILENO);
    posix_spawn_file_actions_adddup2(&actions, out[1], STDOUT_FILENO);
    std::vector<std::string> settings = faults;
    for (char** at = environ; *at; ++at) settings.push_back(*at);
    std::vector<char*> environment, arguments = {const_cast<char*>(executable.c_str()), nullptr};
    for (std::string& setting : settings) environment.push_back(setting.data());
    environment.push_back(nullptr);
    pid_t pid = -1;
    if (posix_spawn(&pid, executable.c_str(), &actions, nullptr, arguments.data(), environment.data()) != 0)
      throw std::runtime_error("spawn");
    posix_spawn_file_actions_destroy(&actions);
    close(in[0]);
    close(out[1]);
    static constexpr std::string_view kPlay = "frmMain.cmdIniciar\n";
    EXPECT_EQ(write(in[1], kPlay.data(), kPlay.size()), static_cast<ssize_t>(kPlay.size()));
    close(in[1]);
    Read(out[0]);
    close(out[0]);
    if (Stopped()) kill(pid, SIGTERM);
    int how = 0;
    waitpid(pid, &how, 0);
    ended = WIFEXITED(how) ? WEXITSTATUS(how) : -1;
  }

  bool Stopped() const { return screen.find("ProgressBar1.Failed: True") != std::string::npos; }

  // The status line where it stopped.
  std::string LastStatus() const {
    if (!Stopped()) return {};
    const std::size_t at = screen.rfind("lblEstado: ", screen.find("ProgressBar1.Failed"));
    return screen.substr(at, screen.find('\n', at) - at);
  }

  int ended = -1;  // its exit status
  std::string screen;

 private:
  void Read(int from) {
    char piece[4096];
    for (ssize_t got; !Stopped() && (got = read(from, piece, sizeof piece)) > 0;)
      screen.append(piece, static_cast<std::size_t>(got));
  }
};

// A game with one patch, for which there are two more and new files of Bin.
struct FaultsTest : testing::Test {
  FaultsTest() {
    const auto publish = [this](char version) {
      mirror.AddPatch("Mapas", {{"RECURSOS/MAPAS1/1.map", Bytes(version)},
                                {"RECURSOS/MAPAS1/2.map", Bytes(version)},
                                {std::string("RECURSOS/nuevo ") + version + "/3.map", Bytes(version)}});
      mirror.Publish();
    };
    mirror.AddBinFile("KVN-DX8.exe", "#!/bin/sh\n");
    mirror.AddBinFile("a.dll", Bytes('a'));
    publish('a');
    Deploy(folder, "old", {mirror.Url()}, mirror.server.Url(""));
    fs::copy_file(LAUNCHER_PROGRAM, folder / "launcher");
    fs::create_hard_link(folder / "launcher", folder / "old/launcher");
    EXPECT_EQ(Program(folder / "old/launcher", {}).ended, 0);
    fs::remove(folder / "old/launcher");
    versions.push_back(mirror.Expected());
    EXPECT_EQ(Game("old"), versions.back());
    mirror.AddBinFile("b.dll", Bytes('b'));
    mirror.AddBinFile("Sub/c.dll", Bytes('c'));
    for (const char version : {'b', 'c'}) {
      publish(version);
      versions.push_back(mirror.Expected());
    }
  }

  static std::string Bytes(char version) { return std::string(40'000, version); }

  Files Game(const std::string& game) const {
    Files files;
    for (const platform::FoundFile& found : platform::ListTree(folder / game)) {
      const std::string name = base::WithSlashes(found.path);
      const bool below = name.starts_with("Bin/") || name.starts_with("RECURSOS/");
      if (below && !update::IsLauncherState(name) && !name.starts_with("RECURSOS/INIT/"))
        files[name] = folder.Get(game + "/" + name);
    }
    return files;
  }

  // Which of the versions the patches have brought the game to; none when it is neither.
  std::size_t VersionOf(const Files& game) const {
    const auto patched = [](const Files& files) {
      Files kept;
      for (const auto& entry : files) {
        if (entry.first.starts_with("RECURSOS/")) kept.insert(entry);
      }
      return kept;
    };
    for (std::size_t i = 0; i < versions.size(); ++i) {
      if (patched(game) == patched(versions[i])) return i + 1;
    }
    return 0;
  }

  support::TempFolder folder{"/dev/shm"};  // its hundreds of flushes would wait for everybody's disk
  GameMirror mirror;
  std::vector<Files> versions;
};

// How far apart the steps are that are tried; LAUNCHER_EVERY_STEP in the environment tries all of them.
int StrideOf(int usual) { return getenv("LAUNCHER_EVERY_STEP") ? 1 : usual; }

struct FaultKind {
  const char* name;
  int stride;
  bool goesOn;  // the program does, and has something to say
};

TEST_F(FaultsTest, AtEveryStepNothingIsLostAndTheNextStartMakesItRight) {
  static constexpr FaultKind kKinds[] = {{"kill", 7, false}, {"full", 5, true}, {"denied", 7, true}};
  for (const FaultKind& kind : kKinds) {
    std::set<std::string> said;
    int tried = 0;
    for (int step = 1;; step += StrideOf(kind.stride), ++tried) {
      SCOPED_TRACE(std::string(kind.name) + " at step " + std::to_string(step));
      fs::remove_all(folder / "game");
      fs::copy(folder / "old", folder / "game", fs::copy_options::recursive);
      fs::create_hard_link(folder / "launcher", folder / "game/launcher");
      fs::remove(folder / "hit");
      const Program run(folder / "game/launcher",
                        {"LD_PRELOAD=" LAUNCHER_FAULTS, "ASAN_OPTIONS=verify_asan_link_order=0",
                         "FAULT_BELOW=" + (folder / "game"), std::string("FAULT_KIND=") + kind.name,
                         "FAULT_AT=" + std::to_string(step), "FAULT_REPORT=" + (folder / "hit")});
      if (!folder.Has("hit")) break;
      fs::remove(folder / "Errores.log");
      const std::size_t version = VersionOf(Game("game"));
      if (kind.goesOn) {
        const bool told = run.screen.find("MsgBox") != std::string::npos;
        ASSERT_TRUE(run.Stopped() || run.ended == 0 || (run.ended == 1 && told)) << run.screen;
        ASSERT_NE(version, 0u) << run.screen;
        const std::string counter = folder.Get("game/RECURSOS/INIT/AUMapas.ini");
        ASSERT_EQ(counter, std::to_string(version) + "\r\n") << run.screen;
        for (std::size_t at = 0; (at = run.screen.find("MsgBox", at)) != std::string::npos; ++at)
          said.insert(run.screen.substr(at, run.screen.find('\n', at) - at));
        if (run.Stopped()) said.insert(run.LastStatus());
        EXPECT_EQ(run.LastStatus().find_first_of("()"), std::string::npos)
            << "no system's words: " << run.LastStatus();
      }
      ASSERT_EQ(Program(folder / "game/launcher", {}).ended, 0);
      ASSERT_EQ(Game("game"), versions.back());
      ASSERT_EQ(folder.Get("game/RECURSOS/INIT/AUMapas.ini"), "3\r\n");
      for (const char* left : {"RECURSOS/INIT/UPDATE/Unzip", "RECURSOS/INIT/UPDATE/ahead",
                               "RECURSOS/INIT/UPDATE/parts", "MapasMapas2.zip", "MapasMapas3.zip"})
        ASSERT_FALSE(folder.Has(std::string("game/") + left)) << left;
    }
    RecordProperty(kind.name, tried);
    EXPECT_EQ(said.empty(), !kind.goesOn);
  }
}

}  // namespace
