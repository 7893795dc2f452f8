#include "update/patch_journal.hpp"

#include <filesystem>
#include <set>

#include "base/relative_name.hpp"
#include "fuzz/support/game_world.hpp"
#include "fuzz/support/promises.hpp"
#include "platform/files.hpp"

namespace {

constexpr std::size_t kStaged = 4;  // moves whose files may lie in the staging folder

const std::string kStaging = "game/RECURSOS/INIT/UPDATE/Unzip/1/";

// What a journal that was taken for whole says, and that it is written in one way.
void JudgeMoves(const update::PatchMoves& moves, std::string_view journal, const fuzz::GameWorld& world) {
  for (const auto* names : {&moves.folders, &moves.files}) {
    for (const std::string& name : *names) fuzz::RequireSafeName(name);
  }
  const std::string again = world.folder / "again";
  platform::MakeFolders(again);
  update::WriteJournal(again, moves);
  fuzz::Require(world.folder.Get("again/diario.txt").size() == journal.size(),
                "what is read is written with as many bytes");
  fuzz::Require(update::ReadJournal(again)->files == moves.files, "what is written is read again");
  platform::RemoveTree(again);
}

// Only what the journal names may differ, and what was moved aside is back.
void JudgeGame(const update::PatchMoves& moves, const std::map<std::string, std::string>& before,
               const std::map<std::string, std::string>& after) {
  std::set<std::string> named;
  const auto inGame = [](const std::string& name) {
    return std::filesystem::path("game/" + base::WithSlashes(name)).lexically_normal().string();
  };
  for (const std::string& name : moves.files) named.insert(inGame(name));
  const auto rest = [&](std::map<std::string, std::string> files) {
    std::erase_if(files, [&](const auto& file) {
      return named.contains(file.first) || file.first.starts_with(kStaging);
    });
    return files;
  };
  fuzz::Require(rest(after) == rest(before), "what the journal does not name stays as it is");
  if (named.size() != moves.files.size()) return;
  for (std::size_t i = 0; i < moves.files.size(); ++i) {
    const auto old = before.find(kStaging + "viejo" + std::to_string(i));
    if (old == before.end()) continue;
    const auto found = after.find(inGame(moves.files[i]));
    fuzz::Require(found != after.end() && found->second == old->second, "an old file is back in its place");
  }
}

}  // namespace

// The first byte says which new and old files lie beside the journal.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  if (size == 0) return 0;
  fuzz::GameWorld world;
  const std::string_view journal = fuzz::Text(data + 1, size - 1);
  world.folder.Put(kStaging + "diario.txt", std::string(journal));
  for (std::size_t i = 0; i < kStaged; ++i) {
    const std::string number = std::to_string(i);
    if (data[0] >> i & 1) world.folder.Put(kStaging + "nuevo" + number, "new " + number);
    if (data[0] >> (kStaged + i) & 1) world.folder.Put(kStaging + "viejo" + number, "old " + number);
  }
  const auto before = world.Files();
  const auto moves = update::ReadJournal(world.folder / kStaging.substr(0, kStaging.size() - 1));
  if (moves) JudgeMoves(*moves, journal, world);
  const std::string why = update::RecoverInterruptedPatch(world.services);
  world.RequireOutsideUntouched(before);
  if (!moves) fuzz::Require(why.empty(), "what is no journal hinders nobody");
  if (!why.empty()) return 0;
  fuzz::Require(!world.folder.Has(kStaging + "diario.txt"), "what was taken back is not taken back again");
  JudgeGame(moves.value_or(update::PatchMoves{}), before, world.Files());
  return 0;
}
