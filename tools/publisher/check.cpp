#include "platform/files.hpp"
#include "publisher/checks.hpp"
#include "publisher/commands.hpp"
#include "publisher/mirror_checks.hpp"
#include "publisher/publication_lock.hpp"

namespace publisher {
namespace {

std::size_t CheckFolder(const std::string& folder, const std::string& publicKey, Findings& findings,
                        Console& console) {
  const Layout layout = Layout::Existing(folder);
  const PublicationLock lock(layout, PublicationLock::Kind::Reading);
  FolderFiles files(layout);
  Examination examination(files, publicKey, findings, console);
  examination.CheckAll();
  CheckHistory(layout, findings);
  WarnOfStrayFiles(layout, examination.Expected(), findings);
  return examination.Expected().size();
}

std::size_t CheckWhat(const CommandLine& line, Findings& findings, Console& console) {
  const std::string& what = line.operands[0];
  const std::string& publicKey = line.options.publicKey;
  if (what.starts_with("http://") || what.starts_with("https://")) {
    return CheckMirror(what, publicKey, findings, console);
  }
  if (platform::IsFile(what)) return CheckDeployment(what, findings, console);
  return CheckFolder(what, publicKey, findings, console);
}

}  // namespace

bool Check(const CommandLine& line, Console& console) {
  const std::string& what = line.operands[0];
  Findings findings;
  const std::size_t files = CheckWhat(line, findings, console);
  findings.Print(console);
  console.out << what << ": " << files << " files asked for, " << findings.Problems().size() << " problems, "
              << findings.Warnings().size() << " warnings\n";
  return findings.Problems().empty();
}

}  // namespace publisher
