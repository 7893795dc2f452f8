#include "publisher/checks.hpp"

#include <cstdlib>
#include <filesystem>

#include "base/text.hpp"
#include "platform/files.hpp"
#include "platform/machine.hpp"
#include "publisher/answers.hpp"
#include "publisher/failure.hpp"
#include "publisher/packed_file.hpp"
#include "publisher/parallel.hpp"
#include "publisher/source_files.hpp"
#include "publisher/update_list.hpp"
#include "update/counter_store.hpp"
#include "update/index_file.hpp"
#include "update/packed_file.hpp"
#include "update/zip_archive.hpp"

namespace publisher {
namespace {

constexpr std::uint64_t kLargestAnswer = 16u << 20;  // launchers take no more

// A folder outside the publication for what has to be unpacked to be read.
class ScratchFolder {
 public:
  ScratchFolder() : path_(std::filesystem::temp_directory_path() / "publisher-XXXXXX") {
    if (mkdtemp(path_.data()) == nullptr) throw Failure(path_ + ": cannot be made");
  }
  ~ScratchFolder() {
    std::error_code ignored;
    std::filesystem::remove_all(path_, ignored);
  }
  ScratchFolder(const ScratchFolder&) = delete;
  std::string operator/(const char* name) const { return path_ + "/" + name; }

 private:
  std::string path_;
};

std::uint64_t SizeOf(const std::string& path) {
  const auto stamp = platform::StampOf(path);
  return stamp ? stamp->size : 0;
}

struct AnswerRule {
  std::string path;
  std::string (*why)(const std::string& body);
};

// The counts as launchers read them: every blank of the list is a line end to them.
std::vector<int> ReadCounts(const Layout& layout) {
  const std::string text = platform::ReadWhole(layout.UpdateList(), kLargestAnswer);
  const ScratchFolder scratch;
  const Layout asRead(scratch / "list");
  platform::MakeFolders(asRead.Patches());
  platform::WriteWhole(asRead.UpdateList(), base::Replaced(text, " ", "\r\n"));
  std::vector<int> counts;
  for (const char* category : update::kCategories) {
    try {
      counts.push_back(NewestPatch(asRead, category));
    } catch (const Failure&) {
      throw Failure(layout.UpdateList() + ": it gives no number of patches for " + category);
    }
  }
  return counts;
}

void ProveArchive(const std::string& path) {
  update::ZipArchive archive(path);
  if (archive.Entries().empty()) throw Failure(path + ": it is empty");
  for (const auto& entry : archive.Entries()) {
    if (const std::string why = WhyUnpublishable(entry.name); !why.empty()) {
      throw Failure(path + ": entry \"" + entry.name + "\": " + why);
    }
  }
  archive.Prove();
}

void CheckRecord(const Layout& layout, const update::IndexRecord& record, Findings& findings,
                 Progress& progress) {
  if (!record.refusal.empty()) {
    return findings.Problem(layout.Index() + ": launchers refuse \"" + record.path + "\": " + record.refusal);
  }
  if (!record.HasDigest()) return;
  const std::string packed = layout.Packed(record.inBin);
  if (!findings.Expect(packed)) return;
  findings.Judge(packed, [&] {
    if (ContentOfPacked(packed).digest != record.digest) throw Failure("it is not the file of the index");
  });
  progress.Add(SizeOf(packed));
}

}  // namespace

bool Findings::Expect(const std::string& path) {
  {
    const std::lock_guard lock(mutex_);
    expected_.insert(path);
  }
  if (platform::IsFile(path)) return true;
  Problem(path + ": it is missing");
  return false;
}

void Findings::Problem(const std::string& text) {
  const std::lock_guard lock(mutex_);
  problems_.insert(text);
}

void Findings::Warning(const std::string& text) {
  const std::lock_guard lock(mutex_);
  warnings_.insert(text);
}

void Findings::WarnOfStrayFiles() {
  for (const platform::FoundFile& found : platform::ListTree(layout_.Root())) {
    const std::string path = layout_.Root() + "/" + found.path;
    if (!expected_.contains(path)) Warning(path + ": no launcher asks for it");
  }
}

void CheckAnswers(const Layout& layout, Findings& findings) {
  const AnswerRule rules[] = {
      {layout.Online(), WhyBadProbe},
      {layout.WebScript("info.php"), WhyBadServers},
      {layout.WebScript("noticiasbase.php"), WhyBadNews},
      {layout.WebScript("ipdate.php"), WhyBadAddress},
  };
  for (const AnswerRule& rule : rules) {
    if (!findings.Expect(rule.path)) continue;
    findings.Judge(rule.path, [&] {
      if (const std::string why = rule.why(platform::ReadWhole(rule.path, kLargestAnswer)); !why.empty()) {
        throw Failure(why);
      }
    });
  }
}

void CheckPatches(const Layout& layout, Findings& findings, Console& console) {
  std::vector<std::string> archives;
  std::uint64_t total = 0;
  if (!findings.Expect(layout.UpdateList())) return;
  findings.Judge(layout.UpdateList(), [&] {
    const std::vector<int> counts = ReadCounts(layout);
    for (std::size_t i = 0; i < counts.size(); ++i) {
      for (int n = 1; n <= counts[i]; ++n) {
        archives.push_back(layout.Patch(update::kCategories[i], n));
        total += SizeOf(archives.back());
      }
    }
  });
  Progress progress(console, "checking patches", total);
  ForEachParallel(archives.size(), [&](std::size_t i) {
    if (findings.Expect(archives[i])) findings.Judge(archives[i], [&] { ProveArchive(archives[i]); });
    progress.Add(SizeOf(archives[i]));
  });
}

void CheckIndex(const Layout& layout, Findings& findings, Console& console) {
  if (!findings.Expect(layout.Index())) return;
  const ScratchFolder scratch;
  const std::string unpacked = scratch / "index";
  update::IndexFile index;
  findings.Judge(layout.Index(), [&] {
    ContentOfPacked(layout.Index());
    update::ExpandPackedFile(layout.Index(), unpacked, {});
    index.Read(unpacked);
  });
  std::set<std::string> seen;
  std::uint64_t total = 0;
  for (const update::IndexRecord& record : index.Records()) {
    if (!seen.insert(base::Upper(record.path)).second) {
      findings.Problem(layout.Index() + ": it names \"" + record.path + "\" twice");
    }
    total += SizeOf(layout.Packed(record.inBin));
  }
  Progress progress(console, "checking Bin", total);
  ForEachParallel(index.Records().size(),
                  [&](std::size_t i) { CheckRecord(layout, index.Records()[i], findings, progress); });
}

void CheckClient(const Layout& layout, Findings& findings) {
  if (!platform::IsFile(layout.Client())) {
    return findings.Warning(layout.Client() + ": there is no full client (\"publisher client\" makes it)");
  }
  findings.Expect(layout.Client());
  findings.Judge(layout.Client(), [&] { ProveArchive(layout.Client()); });
}

}  // namespace publisher
