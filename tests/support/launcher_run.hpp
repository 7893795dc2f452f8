#pragma once

#include <functional>
#include <map>
#include <memory>
#include <string>

#include "launcher.hpp"
#include "support/game_mirror.hpp"
#include "support/recording_screen.hpp"
#include "support/temp_folder.hpp"
#include "support/test_host.hpp"

namespace support {

// A whole launcher in a temporary game folder ("juego ñ"), against a mirror, with a stepped clock.
class LauncherRun {
 public:
  LauncherRun();
  ~LauncherRun();

  // Starts it and waits for the end of start-up. The mirror is the second of the ring, the first one refuses.
  void Start(const std::string& commandLine = "");
  void Play() { Launched().MainWindow().cmdIniciar.Click(); }

  // Handles events, stepping the clock, until the condition holds; fails the test after a generous while.
  void Until(const std::function<bool()>& condition, const char* what);
  void UntilEnded();
  void PlayToTheEnd();      // from its start on
  void PlayUntilStopped();  // likewise
  void UntilStopped();      // the run has ended with the timer off and the play button on again

  Launcher& Launched() { return *launcher_; }
  std::string Status() { return Launched().MainWindow().lblEstado.Caption; }
  std::string Counter(const std::string& category) const;
  bool Shown(const std::string& text) const;  // whether a message box had this text

  // Files of the game, by their paths below its folder.
  std::string PathOf(const std::string& file) const { return folder / (game + "/" + file); }
  std::string Get(const std::string& file) const { return folder.Get(game + "/" + file); }
  void Put(const std::string& file, const std::string& bytes) const { folder.Put(game + "/" + file, bytes); }
  bool Has(const std::string& file) const { return folder.Has(game + "/" + file); }
  // The day of last change of a file of the game; whole days, since not every system sets finer times.
  void SetTime(const std::string& file, int day);

  // Every file of the game folder but the launcher's own, path ("/") to bytes.
  std::map<std::string, std::string> GameFiles() const;

  TempFolder folder;
  std::string game = "juego ñ";
  std::string program = "launcher.exe";
  GameMirror mirror;
  RecordingScreen screen;
  TestHost machine;

 private:
  std::unique_ptr<Launcher> launcher_;
};

}  // namespace support
