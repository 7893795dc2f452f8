#pragma once

#include <string>

#include "startup/services.hpp"
#include "support/temp_folder.hpp"
#include "support/test_host.hpp"

namespace support {

// What a module is given, of a launcher whose game folder lies below a temporary one.
struct TestServices {
  // `game`: the game folder's name below the temporary folder; empty: that folder itself.
  explicit TestServices(const std::string& game = {})
      : folders(game.empty() ? folder.Path() : folder / game) {}

  TestHost host;
  TempFolder folder;
  startup::Folders folders;
  startup::Deployment deployment;
  startup::RunFlags flags;
  startup::Lifetime lifetime{*host.events};
  startup::ErrorRecorder recorder{host.host, folders, lifetime};
  startup::Services services{host.host, folders, deployment, flags, recorder, lifetime};
};

}  // namespace support
