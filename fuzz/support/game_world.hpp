#pragma once

#include <map>
#include <string>
#include <string_view>

#include "support/test_services.hpp"

namespace fuzz {

// A game folder below a folder with other things, for the length of one input.
struct GameWorld : support::TestServices {
  GameWorld();

  // Every file, path below the outer folder to bytes; Errores.log, which is the launcher's own, left out.
  std::map<std::string, std::string> Files() const;
  // Nothing but the game folder may differ from what there was before.
  void RequireOutsideUntouched(const std::map<std::string, std::string>& before) const;
  // No file differs.
  void RequireUntouched(const std::map<std::string, std::string>& before) const;
};

}  // namespace fuzz
