#include <atomic>

#include "base/text.hpp"
#include "platform/files.hpp"
#include "publisher/commands.hpp"
#include "publisher/failure.hpp"
#include "publisher/folder_swap.hpp"
#include "publisher/index_writer.hpp"
#include "publisher/layout.hpp"
#include "publisher/packed_file.hpp"
#include "publisher/parallel.hpp"
#include "publisher/publication_lock.hpp"
#include "publisher/source_files.hpp"
#include "update/packed_format.hpp"

namespace publisher {
namespace {

constexpr std::string_view kLaunchersOwn = "MD5Update.ini";

// The files to publish, those aside that launchers write themselves.
std::vector<SourceFile> ReadBin(const std::string& bin, const Layout& layout, Console& console) {
  std::vector<SourceFile> files = ReadSource(bin, "Bin/", layout.Root(), console.err);
  std::erase_if(files, [&](const SourceFile& file) {
    if (!base::EqualIgnoringCase(file.name, kLaunchersOwn)) return false;
    console.err << "warning: " << file.path << ": left out, since launchers keep their own record there\n";
    return true;
  });
  for (const SourceFile& file : files) {
    // Launchers take this text out of the whole path when they unpack.
    if (base::Contains(file.name, ".kvn")) throw Failure(file.path + ": its name must not hold \".kvn\"");
    if (file.size > update::kLargestPacked)
      throw Failure(file.path + ": a file of 2 GiB or more cannot be packed");
    if (file.size == 0) {
      console.err << "warning: " << file.path
                  << ": an empty file cannot be packed; launchers keep theirs, but a patch has to bring it\n";
    }
  }
  return files;
}

// What is published of one file already; nothing when it is missing or damaged.
Content PublishedContent(const std::string& packed) {
  if (!platform::IsFile(packed)) return {};
  try {
    return ContentOfPacked(packed);
  } catch (const Failure&) {
    return {};
  }
}

// Fills a new game-files folder beside the old one, which stays as it is.
class Stage {
 public:
  Stage(const Layout& layout, const std::vector<SourceFile>& files, Console& console)
      : layout_(layout), files_(files), folder_(layout.GameFiles() + ".next"), entries_(files.size()) {
    Progress progress(console, "packing Bin", TotalSize(files));
    ForEachParallel(files.size(), [&](std::size_t i) { entries_[i] = Publish(files_[i], progress); });
    PackText(IndexBytes(entries_), Layout::IndexIn(Folder()));
  }

  const std::string& Folder() const { return folder_.Path(); }
  std::size_t Packed() const { return packed_; }

 private:
  IndexEntry Publish(const SourceFile& file, Progress& progress) {
    if (file.size == 0) return {file.name, ""};
    const std::string old = layout_.Packed(file.name);
    const std::string target = Layout::PackedIn(Folder(), file.name);
    Naming(target, [&] { platform::MakeFolders(platform::FolderOf(target)); });
    const Content published = PublishedContent(old);
    // Only a file of the published size is worth reading twice.
    if (published.size == file.size && ContentOf(file.path, progress) == published) {
      LinkOrCopy(old, target);
      return {file.name, published.digest};
    }
    ++packed_;
    return {file.name, PackFile(file.path, target, progress).digest};
  }

  const Layout& layout_;
  const std::vector<SourceFile>& files_;
  const WorkFolder folder_;
  std::vector<IndexEntry> entries_;
  std::atomic<std::size_t> packed_{0};
};

}  // namespace

bool Index(const CommandLine& line, Console& console) {
  const Layout layout = Layout::Existing(line.operands[0]);
  const PublicationLock lock(layout, PublicationLock::Kind::Writing);
  const std::vector<SourceFile> files = ReadBin(line.operands[1] + "/Bin", layout, console);
  if (files.empty()) throw Failure(line.operands[1] + "/Bin: there is no file to publish");
  const Stage stage(layout, files, console);
  SwapFolder(stage.Folder(), layout.GameFiles());
  console.out << layout.Index() << ": " << files.size() << " files, " << stage.Packed() << " packed anew\n";
  return true;
}

}  // namespace publisher
