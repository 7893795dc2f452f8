#pragma once

#include <functional>
#include <string>

#include "controls/main_window.hpp"
#include "startup/services.hpp"
#include "update/library_check.hpp"

namespace update {

// The play button and what it ends in.
class GameLaunch {
 public:
  GameLaunch(const startup::Services& services, controls::MainWindow& frmMain, LibraryCheck& libraries,
             std::function<void(bool)> enablePlay, std::function<void()> closeLauncher);

  // Sets the update engine going; the button is off until a run ends without the game.
  void cmdIniciar_Click();

  // Starts the chosen client with `parameter`, the libraries being checked first when their set is new, and
  // closes the launcher in every case.
  void EjecutarKelvar(const std::string& parameter);

 private:
  void Launch(const std::string& parameter, int& line);

  const startup::Services& services_;
  controls::MainWindow& frmMain_;
  LibraryCheck& libraries_;
  std::function<void(bool)> enablePlay_;
  std::function<void()> closeLauncher_;
};

}  // namespace update
