#include "update/zip_archive.hpp"

#include "fuzz/support/game_world.hpp"
#include "fuzz/support/promises.hpp"
#include "platform/files.hpp"
#include "update/launcher_state.hpp"
#include "update/smodUnzip.hpp"

namespace {

void JudgeInstalled(const fuzz::GameWorld& world, const std::string& archive,
                    const std::map<std::string, std::string>& before) {
  const update::ZipArchive zip(archive);
  std::map<std::string, std::string> expected = before;
  std::uint64_t written = 0;
  for (const auto& entry : zip.Entries()) {
    fuzz::RequireSafeName(entry.name);
    if (entry.folder) continue;
    fuzz::Require(!update::IsLauncherState(entry.name), "the launcher's own state comes from nobody");
    const std::string name = "game/" + entry.name;
    expected[name] = world.folder.Get(name);
    fuzz::Require(world.folder.Has(name) && expected[name].size() == entry.size, "every file has its size");
    written += entry.size;
  }
  fuzz::Require(written <= zip.ExpandedSize(), "no more is written than was declared");
  fuzz::Require(world.Files() == expected, "an archive brings its files and no others");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  fuzz::GameWorld world;
  world.folder.Put("archive.zip", fuzz::Text(data, size));
  const std::string archive = world.folder / "archive.zip";
  const auto before = world.Files();
  update::smodUnzip unzip(world.services);
  if (unzip.Unzip(archive, world.folders.AppPath).done) {
    JudgeInstalled(world, archive, before);
    world.RequireOutsideUntouched(before);
  } else {
    world.RequireUntouched(before);
  }
  return 0;
}
