#include "update/staged_patch.hpp"

#include <random>

#include "base/runtime_error.hpp"
#include "platform/files.hpp"
#include "update/patch_failure.hpp"

namespace update {
namespace {

std::string FreshFolder(const std::string& root) {
  std::random_device random;
  const std::string folder = root + platform::kSeparator + std::to_string(random());
  platform::MakeFolders(folder);
  return folder;
}

[[noreturn]] void Misfit(const std::string& name, const char* isThere) {
  throw PatchFailure(base::ErrorNumber::PathFileAccessError,
                     "no se pudo reemplazar " + name + ": en su lugar hay " + isThere);
}

}  // namespace

StagedPatch::StagedPatch(const std::string& root, const std::string& game)
    : game_(game), folder_(FreshFolder(root)) {}

StagedPatch::~StagedPatch() {
  if (halfApplied_) return;
  try {
    platform::RemoveTree(folder_);
  } catch (const base::RuntimeError&) {  // an old program that still runs; it goes at the next recovery
  }
}

void StagedPatch::AddFolder(const std::string& name) {
  if (!looked_.insert(name).second) return;
  if (const std::size_t at = name.rfind('/'); at != std::string::npos) AddFolder(name.substr(0, at));
  const std::string path = InGame(game_, name);
  if (platform::IsFolder(path)) return;
  if (platform::IsThere(path)) Misfit(name, "un archivo");
  moves_.folders.push_back(name);
}

void StagedPatch::AddFile(const std::string& name) {
  if (const std::size_t at = name.rfind('/'); at != std::string::npos) AddFolder(name.substr(0, at));
  if (platform::IsFolder(InGame(game_, name))) Misfit(name, "una carpeta");
  moves_.files.push_back(name);
}

void StagedPatch::MoveAll() {
  const auto named = [this](const std::string& name, auto action) {
    try {
      action();
    } catch (const base::RuntimeError& error) {
      throw TargetFailure(name, error, platform::HolderOf(InGame(game_, name)));
    }
  };
  for (const std::string& name : moves_.folders)
    named(name, [&] { platform::MakeFolder(InGame(game_, name)); });
  for (std::size_t number = 0; number < moves_.files.size(); ++number) {
    const std::string& name = moves_.files[number];
    named(name, [&] {
      const std::string target = InGame(game_, name);
      if (platform::IsThere(target)) platform::RenameFile(target, OldFileOf(folder_, number));
      platform::RenameFile(NewFileOf(folder_, number), target);
    });
  }
}

void StagedPatch::Apply() {
  WriteJournal(folder_, moves_);
  platform::FlushTree(folder_);
  halfApplied_ = true;
  try {
    MoveAll();
    RemoveJournal(folder_);
  } catch (const base::RuntimeError&) {
    try {
      UndoMoves(folder_, game_, moves_);
      halfApplied_ = false;
    } catch (const base::RuntimeError&) {  // the recovery says of which file
    }
    throw;
  }
  halfApplied_ = false;
}

}  // namespace update
