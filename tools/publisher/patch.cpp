#include <algorithm>

#include "platform/files.hpp"
#include "publisher/commands.hpp"
#include "publisher/failure.hpp"
#include "publisher/layout.hpp"
#include "publisher/publication_lock.hpp"
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
  const std::string& folder = line.operands[2];
  RequireCategory(category);
  const Layout layout = Layout::Existing(line.operands[0]);
  const PublicationLock lock(layout, PublicationLock::Kind::Writing);
  const std::vector<SourceFile> files = ReadSource(folder, "", layout.Root(), console.err);
  if (files.empty()) throw Failure(folder + ": there is no file to publish");
  const int number = NewestPatch(layout, category) + 1;
  if (number > kHighestPatch) throw Failure(category + ": launchers count no further than 32767 patches");
  const std::string archive = layout.Patch(category, number);
  Naming(archive, [&] { platform::MakeFolders(platform::FolderOf(archive)); });
  {
    Progress progress(console, "packing " + platform::FileNameOf(archive), TotalSize(files));
    WriteArchive(files, archive, progress);
  }
  SetNewestPatch(layout, category, number);  // last: launchers ask for what this names
  console.out << archive << ": " << files.size() << " files, " << platform::StampOf(archive)->size
              << " bytes\n";
  return true;
}

}  // namespace publisher
