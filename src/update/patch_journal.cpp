#include "update/patch_journal.hpp"

#include <charconv>
#include <exception>
#include <set>

#include "base/relative_name.hpp"
#include "base/runtime_error.hpp"
#include "base/text.hpp"
#include "platform/files.hpp"
#include "update/patch_failure.hpp"

namespace update {
namespace {

constexpr std::string_view kHeading = "; Parche a medio instalar";
constexpr std::string_view kFolder = "carpeta ", kFile = "archivo ", kTotal = "; total ";
constexpr std::uint64_t kLargestJournal = 64u << 20;

std::string JournalOf(const std::string& staging) { return staging + platform::kSeparator + "diario.txt"; }

std::string Numbered(const std::string& staging, const char* kind, std::size_t number) {
  return staging + platform::kSeparator + kind + std::to_string(number);
}

// False for a line that no journal has.
bool TakeLine(std::string_view line, PatchMoves& moves) {
  const bool folder = line.starts_with(kFolder);
  if (!folder && !line.starts_with(kFile)) return false;
  const std::string_view name = line.substr(folder ? kFolder.size() : kFile.size());
  if (!base::WhyUnsafe(name).empty()) return false;
  (folder ? moves.folders : moves.files).emplace_back(name);
  return true;
}

// While the new file is missing in the staging folder, what lies in the game is not the old one. So the new
// one goes back first, and a recovery that is killed as well can be repeated. A folder there is the player's.
void PutBack(const std::string& staging, std::size_t number, const std::string& target) {
  const std::string made = NewFileOf(staging, number), old = OldFileOf(staging, number);
  if (!platform::IsThere(made)) {
    if (platform::IsFile(target)) {
      platform::RenameFile(target, made);
    } else {
      platform::NewFile(made).Write({});
    }
  }
  if (platform::IsThere(old)) platform::RenameFile(old, target);
}

}  // namespace

std::string StagingRoot(const startup::Folders& folders) { return folders.Scratch("Unzip"); }

std::string NewFileOf(const std::string& staging, std::size_t number) {
  return Numbered(staging, "nuevo", number);
}
std::string OldFileOf(const std::string& staging, std::size_t number) {
  return Numbered(staging, "viejo", number);
}
std::string InGame(const std::string& game, const std::string& name) {
  return game + platform::kSeparator + platform::NativePath(name);
}

void WriteJournal(const std::string& staging, const PatchMoves& moves) {
  std::string text(kHeading);
  text += '\n';
  for (const std::string& folder : moves.folders) text.append(kFolder).append(folder) += '\n';
  for (const std::string& file : moves.files) text.append(kFile).append(file) += '\n';
  text.append(kTotal).append(std::to_string(moves.folders.size() + moves.files.size())) += '\n';
  platform::NewFile(JournalOf(staging)).Write(std::as_bytes(std::span(text)));
}

std::optional<PatchMoves> ReadJournal(const std::string& staging) {
  if (!platform::IsFile(JournalOf(staging))) return std::nullopt;
  const std::string text = platform::ReadWhole(JournalOf(staging), kLargestJournal);
  const std::vector<std::string_view> lines = base::Split(text, '\n');
  const std::size_t count = lines.size() - 1;  // the last line is the empty one behind the last line end
  if (count < 2 || lines[0] != kHeading || !lines[count].empty()) return std::nullopt;
  PatchMoves moves;
  for (std::size_t i = 1; i + 1 < count; ++i) {
    if (!TakeLine(lines[i], moves)) return std::nullopt;
  }
  if (lines[count - 1] != std::string(kTotal) + std::to_string(count - 2)) return std::nullopt;
  return moves;
}

void RemoveJournal(const std::string& staging) { platform::RemoveFile(JournalOf(staging)); }

void UndoMoves(const std::string& staging, const std::string& game, const PatchMoves& moves) {
  std::exception_ptr failure;
  for (std::size_t number = moves.files.size(); number-- > 0;) {
    try {
      PutBack(staging, number, InGame(game, moves.files[number]));
    } catch (const base::RuntimeError& error) {
      if (failure) continue;
      const std::string& name = moves.files[number];
      const std::string holder = platform::HolderOf(InGame(game, name));
      failure = std::make_exception_ptr(TargetFailure(name, error, holder));
    }
  }
  if (failure) std::rethrow_exception(failure);
  for (auto folder = moves.folders.rbegin(); folder != moves.folders.rend(); ++folder)
    platform::TryRemoveEmptyFolder(InGame(game, *folder));
  RemoveJournal(staging);
}

std::string UndoInterruptedPatch(const startup::Services& services) {
  const std::string root = StagingRoot(services.folders);
  if (!platform::IsThere(root)) return {};
  try {
    for (const platform::FolderEntry& entry : platform::ListFolder(root)) {
      const std::string staging = root + platform::kSeparator + entry.name;
      const auto moves = ReadJournal(staging);
      if (!moves) continue;
      UndoMoves(staging, services.folders.AppPath, *moves);
      services.recorder.Note("Parche interrumpido: " + std::to_string(moves->files.size()) +
                             " archivos vuelven a su estado anterior");
    }
  } catch (const base::RuntimeError& error) {
    return ReasonOf(error);
  }
  return {};
}

std::string RecoverInterruptedPatch(const startup::Services& services) {
  if (std::string why = UndoInterruptedPatch(services); !why.empty()) return why;
  try {
    platform::RemoveTree(StagingRoot(services.folders));
  } catch (const base::RuntimeError&) {  // an old program that still runs; it goes the next time
  }
  return {};
}

}  // namespace update
