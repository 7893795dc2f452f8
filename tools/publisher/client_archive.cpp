#include "publisher/client_archive.hpp"

#include <map>

#include "base/text.hpp"
#include "platform/files.hpp"
#include "publisher/checksum.hpp"
#include "publisher/failure.hpp"
#include "update/counter_store.hpp"
#include "update/launcher_state.hpp"
#include "update/zip_archive.hpp"

namespace publisher {
namespace {

constexpr const char* kCounterFolder = "RECURSOS/INIT/";

std::map<std::string, Checksum> ReadArchive(const std::string& archive) {
  const update::ZipArchive zip = Naming(archive, [&] { return update::ZipArchive(archive); });
  std::map<std::string, Checksum> files;
  for (const auto& entry : zip.Entries()) {
    if (!entry.folder) files[base::UpperLatin(entry.name)] = {entry.size, entry.crc};
  }
  return files;
}

// Whether `files` has this text under its name.
bool HoldsText(const std::map<std::string, Checksum>& files, const TextFile& text) {
  const auto found = files.find(base::UpperLatin(text.name));
  return found != files.end() && found->second == ChecksumOfText(text.text);
}

}  // namespace

std::vector<TextFile> CountersOf(const std::vector<int>& counts) {
  std::vector<TextFile> counters;
  for (std::size_t i = 0; i < counts.size(); ++i) {
    counters.push_back(
        {kCounterFolder + update::CounterFileName(update::kCategories[i]), update::CounterText(counts[i])});
  }
  return counters;
}

void WriteClient(const std::vector<SourceFile>& game, const std::vector<TextFile>& counters,
                 const std::string& target, Console& console) {
  Progress progress(console, "packing " + platform::FileNameOf(target), TotalSize(game));
  WriteArchive(game, target, progress, counters);
}

bool HoldsExactly(const std::string& archive, const std::vector<SourceFile>& game,
                  const std::vector<TextFile>& counters) try {
  const auto files = ReadArchive(archive);
  if (files.size() != game.size() + counters.size()) return false;
  for (const TextFile& counter : counters) {
    if (!HoldsText(files, counter)) return false;
  }
  for (const SourceFile& file : game) {
    const auto found = files.find(base::UpperLatin(file.name));
    if (found == files.end() || found->second.size != file.size) return false;
    if (found->second != ChecksumOf(file.path)) return false;
  }
  return true;
} catch (const Failure&) {
  return false;
}

std::string WhyNotCurrent(const std::string& archive, const std::vector<TextFile>& counters) {
  const auto files = ReadArchive(archive);
  for (const TextFile& counter : counters) {
    if (!HoldsText(files, counter)) {
      return "its " + counter.name +
             " is not that of the update list, so players who unpack it download patches "
             "again (\"publisher client\" makes it anew)";
    }
  }
  return {};
}

}  // namespace publisher
