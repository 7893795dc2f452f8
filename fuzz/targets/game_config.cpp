#include "fuzz/support/game_world.hpp"
#include "fuzz/support/promises.hpp"
#include "settings/modGameIni.hpp"
#include "settings/sound_table.hpp"

namespace {

constexpr const char* kFile = "game/RECURSOS/INIT/ConfigVideo.cfg";

settings::GameConfig LoadedAndSaved(fuzz::GameWorld& world) {
  settings::modGameIni ini(*world.host.profiles, world.folders, world.recorder);
  ini.LoadGameConfig();
  ini.SaveGameConfig(ini.Config());
  return ini.Config();
}

}  // namespace

// The same bytes as the game's settings and as the list of muted sounds.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static fuzz::GameWorld world;
  world.host.dialogs.shown.clear();
  world.folder.Put(kFile, fuzz::Text(data, size));
  world.folder.Put("game/RECURSOS/INIT/WavSilenced.ini", fuzz::Text(data, size));

  const settings::GameConfig first = LoadedAndSaved(world);
  const bool good = world.host.dialogs.shown.empty();  // else a number that its field cannot hold
  fuzz::Require(!good || first.Version == settings::kGameConfigVersion, "settings are of this version");
  // The first time leaves out what a file of another version, or a truth that is more than one, says beside.
  const settings::GameConfig second = LoadedAndSaved(world);
  const std::string saved = world.folder.Get(kFile);
  const settings::GameConfig third = LoadedAndSaved(world);
  fuzz::Require(world.folder.Get(kFile) == saved, "saving what was read changes nothing");
  fuzz::Require(!good || (second == third && world.host.dialogs.shown.empty()),
                "what was saved is what is read");

  settings::SoundTable sounds(*world.host.profiles, world.folders);
  sounds.Load();
  const bool muted = sounds.Silenced(1);
  sounds.Silence(2, !sounds.Silenced(2));
  sounds.Load();
  fuzz::Require(sounds.Silenced(1) == muted, "muting a sound mutes no other");
  return 0;
}
