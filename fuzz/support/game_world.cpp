#include "fuzz/support/game_world.hpp"

#include "fuzz/support/promises.hpp"
#include "platform/files.hpp"

namespace fuzz {

GameWorld::GameWorld() : TestServices("game") {
  folder.Put("neighbour.txt", "not the launcher's");
  folder.Put("game/Bin/old.dat", "an installed file");
}

std::map<std::string, std::string> GameWorld::Files() const {
  std::map<std::string, std::string> files;
  for (const platform::FoundFile& found : platform::ListTree(folder.Path())) {
    if (found.path != "Errores.log") files[found.path] = folder.Get(found.path);
  }
  return files;
}

void GameWorld::RequireOutsideUntouched(const std::map<std::string, std::string>& before) const {
  const auto outside = [](std::map<std::string, std::string> files) {
    std::erase_if(files, [](const auto& file) { return file.first.starts_with("game/"); });
    return files;
  };
  Require(outside(Files()) == outside(before), "nothing outside the game folder changes");
}

void GameWorld::RequireUntouched(const std::map<std::string, std::string>& before) const {
  Require(Files() == before, "what was refused leaves everything as it was");
}

}  // namespace fuzz
