#include "publisher/checks.hpp"

#include <vector>

#include "base/text.hpp"
#include "platform/files.hpp"
#include "publisher/answers.hpp"
#include "publisher/client_archive.hpp"
#include "publisher/packed_file.hpp"
#include "publisher/parallel.hpp"
#include "publisher/published_index.hpp"
#include "publisher/source_files.hpp"
#include "publisher/update_list.hpp"
#include "update/counter_store.hpp"
#include "update/zip_archive.hpp"

namespace publisher {
namespace {

constexpr std::uint64_t kLargestSigned = 64u << 20;
constexpr std::uint64_t kLargestAnswer = 16u << 20;  // launchers take no more

struct AnswerRule {
  const char* name;
  std::string (*why)(const std::string& body);
};
constexpr AnswerRule kAnswerRules[] = {{names::kOnline, WhyBadProbe},
                                       {names::kServers, WhyBadServers},
                                       {names::kNews, WhyBadNews},
                                       {names::kAddress, WhyBadAddress}};

void ProveArchive(const std::string& path) {
  update::ZipArchive archive(path);
  if (archive.Entries().empty()) throw Failure("it is empty");
  for (const auto& entry : archive.Entries()) {
    if (const std::string why = WhyUnpublishable(entry.name); !why.empty()) {
      throw Failure("entry \"" + entry.name + "\": " + why);
    }
  }
  archive.Prove();
}

}  // namespace

void Examination::CheckAll() {
  CheckAnswers();
  CheckContent();
}

void Examination::CheckContent() {
  CheckSignature();
  CheckPatches();
  CheckIndex();
  CheckClient();
}

void Examination::Expect(const std::string& name) {
  const std::lock_guard lock(mutex_);
  expected_.insert(name);
}

// First, since everything else is held against it.
void Examination::CheckSignature() {
  const std::string called = files_.Called(names::kSigned);
  findings_.Judge(called, {}, [&] {
    const std::optional<LocalCopy> copy = files_.Fetch(names::kSigned);
    if (!copy) {
      if (signature_.Wanted()) throw Failure("it is missing, though launchers want it");
      return;
    }
    Expect(names::kSigned);
    findings_.Judge(called, copy->Path(),
                    [&] { signature_.TakeIn(platform::ReadWhole(copy->Path(), kLargestSigned), called); });
  });
}

void Examination::CheckAnswers() {
  for (const AnswerRule& rule : kAnswerRules) {
    Examine(rule.name, [&](const std::string& path) {
      if (const std::string why = rule.why(platform::ReadWhole(path, kLargestAnswer)); !why.empty()) {
        throw Failure(why);
      }
    });
  }
}

void Examination::CheckPatches() {
  std::vector<std::string> archives;
  std::uint64_t total = 0;
  Examine(names::kUpdateList, [&](const std::string& list) {
    const std::vector<int> counts = PatchCountsIn(platform::ReadWhole(list, kLargestAnswer));
    for (std::size_t i = 0; i < counts.size(); ++i) {
      for (int n = 1; n <= counts[i]; ++n) {
        archives.push_back(names::Patch(update::kCategories[i], n));
        total += files_.SizeOf(archives.back());
      }
    }
    counts_ = counts;
    signature_.CompareCounts(counts, files_.Called(names::kUpdateList));
  });
  Progress progress(console_, "checking patches", total);
  ForEachParallel(archives.size(), [&](std::size_t i) {
    Examine(archives[i], [&](const std::string& path) {
      ProveArchive(path);
      progress.Add(SizeOf(path));
    });
  });
}

void Examination::CheckIndex() {
  update::IndexFile index;
  Examine(names::kIndex, [&](const std::string& path) { index = ReadIndex(path); });
  const std::string called = files_.Called(names::kIndex);
  for (const update::IndexFile::Refusal& refusal : index.Refusals())
    findings_.Problem(called + ": launchers refuse \"" + refusal.path + "\": " + refusal.why);
  if (index.RefusedCount() > index.Refusals().size())
    findings_.Problem(called + ": launchers refuse " + std::to_string(index.RefusedCount()) +
                      " records in all");
  std::set<std::string> seen;
  std::uint64_t total = 0;
  for (std::size_t i = 0; i < index.Count(); ++i) {
    const update::IndexRecord record = index[i];
    if (record.inBin.empty()) continue;
    if (!seen.insert(base::UpperLatin(record.inBin)).second)
      findings_.Problem(called + ": it names \"" + record.Path() + "\" twice");
    total += files_.SizeOf(names::Packed(std::string(record.inBin)));
  }
  Progress progress(console_, "checking Bin", total);
  ForEachParallel(index.Count(), [&](std::size_t i) { CheckRecord(index[i], progress); });
}

void Examination::CheckRecord(const update::IndexRecord& record, Progress& progress) {
  if (record.inBin.empty() || !record.hasDigest) return;
  Examine(names::Packed(std::string(record.inBin)), [&](const std::string& packed) {
    if (ContentOfPacked(packed).digest != record.digest.Hex())
      throw Failure("it is not the file of the index");
    progress.Add(SizeOf(packed));
  });
}

void Examination::CheckClient() {
  Expect(names::kClient);
  const std::string called = files_.Called(names::kClient);
  findings_.Judge(called, {}, [&] {
    const std::optional<LocalCopy> copy = files_.Fetch(names::kClient);
    if (!copy) {
      return findings_.Warning(called + ": there is no full client (\"publisher client\" makes it)");
    }
    findings_.Judge(called, copy->Path(), [&] {
      signature_.Compare(names::kClient, copy->Path(), called);
      ProveArchive(copy->Path());
      if (counts_.empty()) return;
      if (const std::string why = WhyNotCurrent(copy->Path(), CountersOf(counts_)); !why.empty()) {
        findings_.Warning(called + ": " + why);
      }
    });
  });
}

void CheckHistory(const Layout& layout, Findings& findings) try {
  const PublicationRecord record(layout);
  std::vector<std::string> archives;
  for (const auto& [archive, digest] : record.Digests()) archives.push_back(archive);
  ForEachParallel(archives.size(), [&](std::size_t i) {
    const std::string path = layout.At(archives[i]);
    if (!platform::IsFile(path) || Sha256Of(path) == record.Digests().at(archives[i])) return;
    findings.Problem(path + ": it was replaced after it had been published; players who have the old one " +
                     "keep it, so publish the next number instead");
  });
  for (const char* category : update::kCategories) {
    const int published = record.Newest(category), listed = NewestPatch(layout, category);
    if (listed >= published) continue;
    findings.Problem(layout.UpdateList() + ": " + category + " went back from " + std::to_string(published) +
                     " to " + std::to_string(listed) + ", but players may have had all " +
                     std::to_string(published));
  }
} catch (const Failure& failure) {  // which names its file
  findings.Problem(failure.what());
}

void WarnOfStrayFiles(const Layout& layout, const std::set<std::string>& expected, Findings& findings) {
  for (const std::string& name : layout.Files()) {
    if (!expected.contains(name)) findings.Warning(layout.At(name) + ": no launcher asks for it");
  }
}

}  // namespace publisher
