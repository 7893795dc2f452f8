#include "update/smodUnzip.hpp"

#include <random>
#include <vector>

#include "base/runtime_error.hpp"
#include "platform/files.hpp"
#include "platform/unzip.hpp"
#include "startup/blocking.hpp"
#include "startup/procedure.hpp"
#include "update/zip_archive.hpp"

namespace update {
namespace {

[[noreturn]] void Refuse(const std::string& why) {
  throw base::RuntimeError(base::ErrorNumber::InvalidFileFormat, why);
}

// A folder of its own for each archive: an unpacker that outlived a killed launcher may still write into an
// old one.
std::string FreshStaging(const std::string& root) {
  try {
    platform::RemoveTree(root);
  } catch (const base::RuntimeError&) {  // what is left of it goes the next time
  }
  std::random_device random;
  return root + platform::kSeparator + std::to_string(random());
}

void ExtractTo(const std::string& archive, const std::string& staging) {
  platform::MakeFolders(staging);
  const int code = platform::UnzipArchive(archive, staging);
  if (code == platform::kUnzipProgramMissing)
    throw base::RuntimeError(base::ErrorNumber::InterfaceNotSupported);
  if (code != platform::kUnzipOk) Refuse("The unpacker ended with code " + std::to_string(code));
}

// Whether the archive's tree fits over what is there, asked of every name before the first file moves: a file
// cannot take a folder's place, nor a folder a file's.
void JudgeTargets(const std::vector<platform::FoundFile>& files, const std::string& directory) {
  for (const platform::FoundFile& file : files) {
    const std::string target = directory + file.path;
    if (platform::IsFolder(target)) Refuse("\"" + file.path + "\" is a folder of the game");
    for (std::string above = platform::FolderOf(target); above.size() > directory.size();
         above = platform::FolderOf(above)) {
      if (platform::IsFolder(above)) break;
      if (platform::IsFile(above)) Refuse("\"" + above + "\" is a file of the game");
    }
  }
}

void MoveInto(const std::vector<platform::FoundFile>& files, const std::string& staging,
              const std::string& directory) {
  std::string made;
  for (const platform::FoundFile& file : files) {
    const std::string target = directory + file.path;
    if (std::string folder = platform::FolderOf(target); folder != made) {
      platform::MakeFolders(folder);
      made = std::move(folder);
    }
    const std::string staged = staging + platform::kSeparator + file.path;
    platform::ReplaceFileWith(staged, target);
  }
}

void Install(const std::string& archive, const std::string& root, const std::string& directory,
             std::stop_token stop) {
  ZipArchive zip(archive);
  zip.Prove(stop);
  if (stop.stop_requested()) return;
  std::size_t expected = 0;
  for (const ZipArchive::Entry& entry : zip.Entries()) expected += entry.folder ? 0 : 1;
  const std::string staging = FreshStaging(root);
  ExtractTo(archive, staging);
  const std::vector<platform::FoundFile> files = platform::ListTree(staging);
  if (files.size() != expected) Refuse("The archive holds the same name twice");
  JudgeTargets(files, directory);
  if (stop.stop_requested()) return;
  platform::FlushTree(staging);
  MoveInto(files, staging, directory);
  for (const ZipArchive::Entry& entry : zip.Entries()) {
    if (entry.folder) platform::MakeFolders(directory + platform::NativePath(entry.name));
  }
  platform::RemoveTree(root);
}

}  // namespace

Unpacked smodUnzip::Unzip(const std::string& archive, const std::string& directory) {
  const std::string root = services_.folders.Scratch("Unzip");
  Unpacked result;
  try {
    startup::RunBlocking(services_, [&](std::stop_token stop) { Install(archive, root, directory, stop); });
    result.done = !services_.lifetime.Ending();
  } catch (const base::RuntimeError& error) {
    result.reason = error.Description();
    result.ownFailure = !error.Is(base::ErrorNumber::InvalidFileFormat);
  }
  if (!result.done) {
    try {
      platform::RemoveTree(root);
    } catch (const base::RuntimeError&) {  // what is left of it goes the next time
    }
  }
  return result;
}

}  // namespace update
