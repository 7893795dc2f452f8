#pragma once

#include <functional>
#include <string>

#include "startup/services.hpp"
#include "update/library_check.hpp"

namespace update {

// What a run ends in: the game.
class GameLaunch {
 public:
  GameLaunch(const startup::Services& services, LibraryCheck& libraries, std::function<void()> closeLauncher)
      : services_(services), libraries_(libraries), closeLauncher_(std::move(closeLauncher)) {}

  // Starts the chosen client with `parameter`, the libraries being checked first when their set is new, and
  // closes the launcher in every case.
  void EjecutarKelvar(const std::string& parameter);

  bool Installed() const;  // whether there is a client for players

 private:
  void Launch(const std::string& parameter, int& line);
  std::string PathOf(const std::string& client) const;

  const startup::Services& services_;
  LibraryCheck& libraries_;
  std::function<void()> closeLauncher_;
};

}  // namespace update
