#include <algorithm>
#include <set>

#include "base/text.hpp"
#include "publisher/client_archive.hpp"
#include "publisher/commands.hpp"
#include "publisher/installed_files.hpp"
#include "publisher/publication_lock.hpp"
#include "publisher/signer.hpp"
#include "publisher/update_list.hpp"

namespace publisher {
namespace {

bool IsInBin(const std::string& name) { return base::Upper(name).starts_with("BIN/"); }

// Launchers heal Bin by the index; what lies elsewhere is taken as the counters say.
void WarnOfDifferences(const InstalledFiles& installed, const std::vector<SourceFile>& game,
                       const std::string& folder, Console& console) {
  std::set<std::string> there;
  for (const SourceFile& file : game) {
    there.insert(base::UpperLatin(file.name));
    if (IsInBin(file.name) || !installed.Knows(file.name) || installed.Has(file)) continue;
    console.err << "warning: " << file.path
                << ": it is not what the patches install; players who unpack Kelvarin.zip keep it\n";
  }
  const std::vector<std::string> names = installed.Names();
  const auto missing = std::count_if(names.begin(), names.end(), [&](const std::string& name) {
    return !IsInBin(name) && !there.contains(base::UpperLatin(name));
  });
  if (missing == 0) return;
  console.err << "warning: " << folder << ": it lacks " << missing
              << " files that the patches install; players who unpack Kelvarin.zip will not get them\n";
}

}  // namespace

bool Client(const CommandLine& line, Console& console) {
  const std::string& folder = line.operands[1];
  const Layout layout = Layout::Existing(line.operands[0]);
  const PublicationLock lock(layout, PublicationLock::Kind::Writing);
  const std::vector<SourceFile> game = ReadSource(folder, "", layout, console.err);
  WarnOfDifferences(InstalledFiles(layout), game, folder, console);
  const std::vector<TextFile> counters = CountersOf(NewestPatches(layout));
  if (!line.options.dryRun) {
    WriteClient(game, counters, layout.Client(), console);
    WarnOfSignature(layout, console);
  }
  console.out << layout.Client() << ": ";
  if (line.options.dryRun) {
    console.out << "would hold " << game.size() << " files, " << TotalSize(game) << " bytes before packing\n";
  } else {
    console.out << game.size() << " files, " << SizeOf(layout.Client()) << " bytes\n";
  }
  return true;
}

}  // namespace publisher
