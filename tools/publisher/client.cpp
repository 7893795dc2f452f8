#include "publisher/commands.hpp"
#include "publisher/failure.hpp"
#include "publisher/layout.hpp"
#include "publisher/publication_lock.hpp"
#include "publisher/zip_writer.hpp"

namespace publisher {

bool Client(const CommandLine& line, Console& console) {
  const Layout layout = Layout::Existing(line.operands[0]);
  const PublicationLock lock(layout, PublicationLock::Kind::Writing);
  const std::vector<SourceFile> files = ReadSource(line.operands[1], "", layout.Root(), console.err);
  if (files.empty()) throw Failure(line.operands[1] + ": there is no file to publish");
  {
    Progress progress(console, "packing Kelvarin.zip", TotalSize(files));
    WriteArchive(files, layout.Client(), progress);
  }
  console.out << layout.Client() << ": " << files.size() << " files, "
              << platform::StampOf(layout.Client())->size << " bytes\n";
  return true;
}

}  // namespace publisher
