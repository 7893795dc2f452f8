#include "publisher/game_files.hpp"

#include <algorithm>

#include "base/text.hpp"
#include "platform/files.hpp"
#include "publisher/failure.hpp"
#include "publisher/index_writer.hpp"
#include "publisher/packed_file.hpp"
#include "publisher/parallel.hpp"
#include "publisher/published_index.hpp"
#include "update/packed_format.hpp"

namespace publisher {
namespace {

constexpr std::string_view kClientProgram = "KVN-DX8.exe";

void RequirePackable(const std::vector<SourceFile>& files) {
  for (const SourceFile& file : files) {
    // Launchers take this text out of the whole path when they unpack.
    if (base::Contains(file.name, ".kvn")) throw Failure(file.path + ": its name must not hold \".kvn\"");
    if (file.size > update::kLargestPacked) {
      throw Failure(file.path + ": a file of 2 GiB or more cannot be packed");
    }
  }
}

std::map<std::string, std::string> ReadPublished(const Layout& layout, Console& console) try {
  return PublishedDigests(layout);
} catch (const Failure& failure) {
  console.err << "warning: " << failure.what() << "; taken as if nothing were published\n";
  return {};
}

// Whether `packed` is there and good for a file of this content.
bool HoldsContent(const std::string& packed, const Content& content) {
  if (!platform::IsFile(packed)) return false;
  try {
    return ContentOfPacked(packed) == content;
  } catch (const Failure&) {
    return false;
  }
}

}  // namespace

GameFiles::GameFiles(const Layout& layout, std::string bin, std::vector<SourceFile> files, Console& console)
    : layout_(layout),
      bin_(std::move(bin)),
      files_(std::move(files)),
      published_(ReadPublished(layout, console)),
      digests_(files_.size()),
      stays_(files_.size()) {
  RequirePackable(files_);
  Compare(console);
}

void GameFiles::Compare(Console& console) {
  {
    Progress progress(console, "comparing Bin", TotalSize(files_));
    ForEachParallel(files_.size(), [&](std::size_t i) {
      if (files_[i].size == 0) return;
      const Content content = ContentOf(files_[i].path, progress);
      digests_[i] = content.digest;
      stays_[i] = HoldsContent(layout_.Packed(files_[i].name), content) ? 1 : 0;
    });
  }
  for (std::size_t i = 0; i < files_.size(); ++i) {
    if (files_[i].size != 0 && stays_[i] == 0) ++toPack_;
    const auto old = published_.find(files_[i].name);
    if (old == published_.end()) {
      changes_.added.push_back(files_[i].name);
    } else if (old->second != digests_[i]) {
      changes_.changed.push_back(files_[i].name);
    }
  }
  for (const auto& [name, digest] : published_) {
    if (!Holds(name)) changes_.removed.push_back(name);
  }
}

bool GameFiles::Holds(std::string_view name) const {
  const auto found =
      std::lower_bound(files_.begin(), files_.end(), name,
                       [](const SourceFile& file, std::string_view wanted) { return file.name < wanted; });
  return found != files_.end() && found->name == name;
}

std::string GameFiles::WhyDoubtful() const {
  const bool client = std::any_of(files_.begin(), files_.end(), [](const SourceFile& file) {
    return file.size != 0 && base::EqualIgnoringCase(file.name, kClientProgram);
  });
  if (!client)
    return bin_ + "/" + std::string(kClientProgram) + " is missing, so nobody could start the game";
  if (changes_.removed.size() * 2 > published_.size()) {
    return bin_ + " lacks " + std::to_string(changes_.removed.size()) + " of the " +
           std::to_string(published_.size()) + " files that are published, so every player would lose them";
  }
  return {};
}

void GameFiles::WriteInto(const Layout& target, Console& console) const {
  Progress progress(console, "packing Bin", TotalSize(files_));
  std::vector<IndexEntry> entries(files_.size());
  ForEachParallel(files_.size(), [&](std::size_t i) {
    const SourceFile& file = files_[i];
    entries[i] = {file.name, digests_[i]};
    if (file.size == 0) return;
    const std::string packed = target.Packed(file.name);
    Naming(packed, [&] { platform::MakeFolders(platform::FolderOf(packed)); });
    if (stays_[i] != 0) {
      Naming(packed, [&] { platform::ShareFile(layout_.Packed(file.name), packed); });
    } else if (PackFile(file.path, packed, progress).digest != digests_[i]) {
      throw Failure(file.path + ": it changed while it was being published");
    }
  });
  PackText(IndexBytes(entries), target.Index());
  Naming(target.GameFiles(), [&] { platform::FlushTree(target.GameFiles()); });
}

}  // namespace publisher
