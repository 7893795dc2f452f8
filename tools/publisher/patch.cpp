#include <algorithm>

#include "platform/files.hpp"
#include "publisher/commands.hpp"
#include "publisher/failure.hpp"
#include "publisher/layout.hpp"
#include "publisher/publication_lock.hpp"
#include "publisher/publication_record.hpp"
#include "publisher/signer.hpp"
#include "publisher/update_list.hpp"
#include "publisher/zip_writer.hpp"
#include "update/counter_store.hpp"

namespace publisher {
namespace {

void RequireCategory(const std::string& category) {
  std::string all;
  for (const char* each : update::kCategories) {
    if (category == each) return;
    all.append(all.empty() ? "" : ", ").append(each);
  }
  throw UsageError("\"" + category + "\" is no category; there are " + all);
}

}  // namespace

bool Patch(const CommandLine& line, Console& console) {
  const std::string& category = line.operands[1];
  RequireCategory(category);
  const Layout layout = Layout::Existing(line.operands[0]);
  const PublicationLock lock(layout, PublicationLock::Kind::Writing);
  const std::vector<SourceFile> files = ReadSource(line.operands[2], "", layout, console.err);
  PublicationRecord record(layout);
  const int number = NextPatch(layout, record, category);
  const std::string archive = layout.Patch(category, number);
  if (line.options.dryRun) {
    for (const SourceFile& file : files) console.out << "+ " << file.name << "\n";
    console.out << archive << ": would hold " << files.size() << " files, " << TotalSize(files)
                << " bytes before packing\n";
    return true;
  }
  Naming(archive, [&] { platform::MakeFolders(platform::FolderOf(archive)); });
  {
    Progress progress(console, "packing " + platform::FileNameOf(archive), TotalSize(files));
    WriteArchive(files, archive, progress);
  }
  SetNewestPatch(layout, category, number);  // last: launchers ask for what this names
  record.TakeInListed();
  WarnOfSignature(layout, console);
  console.out << archive << ": " << files.size() << " files, " << SizeOf(archive) << " bytes\n";
  return true;
}

}  // namespace publisher
