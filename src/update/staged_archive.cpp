#include "update/staged_archive.hpp"

#include <memory>
#include <span>

#include "base/relative_name.hpp"
#include "base/runtime_error.hpp"
#include "platform/files.hpp"
#include "update/launcher_state.hpp"
#include "update/patch_failure.hpp"
#include "update/patch_journal.hpp"
#include "update/zip_entry.hpp"
#include "util/parallel.hpp"

namespace update {
namespace {

// An archive that is not there or cannot be read is as bad as a damaged one.
ZipArchive OpenArchive(const std::string& path) {
  try {
    return ZipArchive(path);
  } catch (const base::RuntimeError& error) {
    throw base::RuntimeError(base::ErrorNumber::InvalidFileFormat, error.Description());
  }
}

// The part of `directory` below the game folder, with "/" behind each of its folders.
std::string PrefixOf(const std::string& directory, const std::string& game) {
  if (!directory.starts_with(game)) throw base::RuntimeError(base::ErrorNumber::InvalidProcedureCall);
  const std::string below = base::WithSlashes(std::string_view(directory).substr(game.size()));
  return below.empty() ? below : below + "/";
}

}  // namespace

StagedArchive::StagedArchive(const std::string& archive, const std::string& directory,
                             const startup::Folders& folders, const std::stop_token& stop)
    : patch_(StagingRoot(folders), folders.AppPath) {
  const ZipArchive zip = OpenArchive(archive);
  const std::string prefix = PrefixOf(directory, folders.AppPath);
  for (const ZipArchive::Entry& entry : zip.Entries()) {
    pieces_.push_back({prefix + entry.name, entry.folder});
    if (!entry.folder && IsLauncherState(pieces_.back().name))
      RefuseEntry(pieces_.back().name, "it is the launcher's own");
  }
  const std::uint64_t needed = zip.ExpandedSize(), free = platform::FreeSpace(patch_.Folder());
  if (needed > free) throw DiskFullFailure(needed, free);
  try {
    Expand(zip, stop);
  } catch (const base::RuntimeError& error) {
    if (!error.Is(base::ErrorNumber::DiskFull)) throw;
    throw DiskFullFailure(needed - written_, platform::FreeSpace(patch_.Folder()));
  }
  whole_ = !stop.stop_requested();
}

void StagedArchive::Expand(const ZipArchive& zip, const std::stop_token& stop) {
  std::vector<const ZipArchive::Entry*> files;
  for (const ZipArchive::Entry& entry : zip.Entries()) {
    if (!entry.folder) files.push_back(&entry);
  }
  util::ForEachParallelWith(files.size(), [&] {
    return [&, inflater = std::make_unique<Inflater>()](std::size_t number) {
      if (!stop.stop_requested()) ExpandOne(zip, *files[number], number, *inflater, stop);
    };
  });
}

void StagedArchive::ExpandOne(const ZipArchive& zip, const ZipArchive::Entry& entry, std::size_t number,
                              Inflater& inflater, const std::stop_token& stop) {
  using Kind = platform::NewFile::Kind;
  platform::NewFile file(NewFileOf(patch_.Folder(), number), entry.program ? Kind::Program : Kind::Data);
  const auto write = [&](std::span<const std::byte> bytes) {
    file.Write(bytes);
    written_ += bytes.size();
  };
  zip.Expand(entry, inflater, write, stop);
}

void StagedArchive::Apply(const std::string& archive, const std::optional<AddedFile>& added) {
  std::size_t files = 0;
  for (const Piece& piece : pieces_) {
    if (piece.folder) {
      patch_.AddFolder(piece.name);
    } else {
      patch_.AddFile(piece.name);
      ++files;
    }
  }
  try {
    if (added) {
      patch_.AddFile(added->name);
      platform::NewFile(NewFileOf(patch_.Folder(), files)).Write(std::as_bytes(std::span(added->content)));
      platform::TryRemoveFile(archive);
    }
    patch_.Apply();
  } catch (const base::RuntimeError& error) {
    if (!error.Is(base::ErrorNumber::DiskFull)) throw;
    throw DiskFullFailure(0, platform::FreeSpace(patch_.Folder()));
  }
}

}  // namespace update
