#include "platform/files.hpp"
#include "publisher/commands.hpp"
#include "publisher/failure.hpp"
#include "publisher/folder_swap.hpp"
#include "publisher/game_files.hpp"
#include "publisher/publication_lock.hpp"
#include "publisher/signer.hpp"

namespace publisher {
namespace {

// An empty file cannot be packed.
void WarnOfEmptyFiles(const std::vector<SourceFile>& files, Console& console) {
  for (const SourceFile& file : files) {
    if (file.size != 0) continue;
    console.err << "warning: " << file.path
                << ": an empty file cannot be packed; launchers keep theirs, but a patch has to bring it\n";
  }
}

}  // namespace

bool Index(const CommandLine& line, Console& console) {
  const Layout layout = Layout::Existing(line.operands[0]);
  const PublicationLock lock(layout, PublicationLock::Kind::Writing);
  const std::string bin = line.operands[1] + "/Bin";
  const GameFiles game(layout, bin, ReadSource(bin, "Bin/", layout, console.err), console);
  WarnOfEmptyFiles(game.Files(), console);
  PrintChanges(game.ForPlayers(), "Bin/", line.options.dryRun, console.out);
  if (const std::string why = game.WhyDoubtful(); !why.empty() && !line.options.force) {
    throw Failure(why + "; nothing was published (--force does it all the same)");
  }
  if (!line.options.dryRun) {
    const WorkFolder work(layout.Own("next"));
    const Layout next(work.Path());
    Naming(next.GameFiles(), [&] { platform::MakeFolders(next.GameFiles() + "/Bin"); });
    game.WriteInto(next, console);
    SwapFolder(next.GameFiles(), layout.GameFiles());
    WarnOfSignature(layout, console);
  }
  console.out << layout.Index() << ": " << game.Files().size() << " files, " << Counted(game.ForPlayers())
              << "; " << game.ToPack() << (line.options.dryRun ? " would be packed\n" : " packed anew\n");
  return true;
}

}  // namespace publisher
