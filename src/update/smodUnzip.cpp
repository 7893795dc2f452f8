#include "update/smodUnzip.hpp"

#include <algorithm>
#include <atomic>
#include <memory>
#include <vector>

#include "base/relative_name.hpp"
#include "base/runtime_error.hpp"
#include "base/text.hpp"
#include "platform/files.hpp"
#include "startup/blocking.hpp"
#include "update/counter_store.hpp"
#include "update/patch_failure.hpp"
#include "update/patch_journal.hpp"
#include "update/staged_patch.hpp"
#include "update/zip_archive.hpp"
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

// What the launcher keeps of its own in the game folder; no archive may bring it. Folders end in "/".
void JudgeOwner(const std::string& name) {
  static constexpr const char* kOwn[] = {"RECURSOS/INIT/UPDATE/", "RECURSOS/UPDATE/", "BIN/CODIGOS/",
                                         "BIN/CLIENT.VBP", "BIN/MD5UPDATE.INI"};
  const std::string folded = base::Upper(name);
  const auto isOwn = [&](std::string_view own) {
    return own.ends_with('/') ? folded.starts_with(own) : folded == own;
  };
  const auto isCounter = [&](std::string_view category) {
    return folded == "RECURSOS/INIT/AU" + base::Upper(category) + ".INI";
  };
  if (std::any_of(std::begin(kOwn), std::end(kOwn), isOwn) ||
      std::any_of(kCategories.begin(), kCategories.end(), isCounter))
    RefuseEntry(name, "it is the launcher's own");
}

class Installation {
 public:
  Installation(const std::string& archive, const std::string& directory, const startup::Folders& folders)
      : zip_(OpenArchive(archive)), patch_(folders.Scratch("Unzip"), folders.AppPath) {
    const std::string prefix = PrefixOf(directory, folders.AppPath);
    for (const ZipArchive::Entry& entry : zip_.Entries()) Announce(entry, prefix + entry.name);
  }

  // False when a stop was requested before the first move; once begun, the moves are finished.
  bool Run(const std::stop_token& stop) {
    const std::uint64_t needed = zip_.ExpandedSize(), free = platform::FreeSpace(patch_.Folder());
    if (needed > free) throw DiskFullFailure(needed, free);
    try {
      ExpandAll(stop);
      if (stop.stop_requested()) return false;
      patch_.Apply();
    } catch (const base::RuntimeError& error) {
      if (!error.Is(base::ErrorNumber::DiskFull)) throw;
      throw DiskFullFailure(needed - written_, platform::FreeSpace(patch_.Folder()));
    }
    return true;
  }

 private:
  void Announce(const ZipArchive::Entry& entry, const std::string& name) {
    if (entry.folder) return patch_.AddFolder(name);
    JudgeOwner(name);
    patch_.AddFile(name);
    files_.push_back(&entry);
  }

  void ExpandAll(const std::stop_token& stop) {
    util::ForEachParallelWith(files_.size(), [&] {
      return [this, &stop, inflater = std::make_unique<Inflater>()](std::size_t number) {
        if (!stop.stop_requested()) ExpandOne(number, *inflater, stop);
      };
    });
  }

  void ExpandOne(std::size_t number, Inflater& inflater, const std::stop_token& stop) {
    const ZipArchive::Entry& entry = *files_[number];
    using Kind = platform::NewFile::Kind;
    platform::NewFile file(NewFileOf(patch_.Folder(), number), entry.program ? Kind::Program : Kind::Data);
    const auto write = [&](std::span<const std::byte> bytes) {
      file.Write(bytes);
      written_ += bytes.size();
    };
    zip_.Expand(entry, inflater, write, stop);
  }

  const ZipArchive zip_;
  StagedPatch patch_;
  std::vector<const ZipArchive::Entry*> files_;
  std::atomic<std::uint64_t> written_ = 0;
};

}  // namespace

Unpacked smodUnzip::Unzip(const std::string& archive, const std::string& directory) {
  if (std::string reason = RecoverInterruptedPatch(services_); !reason.empty())
    return {false, std::move(reason), true};
  bool done = false;
  try {
    startup::RunBlocking(services_, [&](std::stop_token stop) {
      done = Installation(archive, directory, services_.folders).Run(stop);
    });
    return {done};
  } catch (const base::RuntimeError& error) {
    if (!error.Is(base::ErrorNumber::InvalidFileFormat)) return {false, ReasonOf(error), true};
    const std::string name = platform::FileNameOf(archive);
    services_.recorder.Note(name + ": " + error.Description());
    return {false, name + " está dañado o no es un archivo ZIP"};
  }
}

}  // namespace update
