#include "publisher/checks.hpp"
#include "publisher/commands.hpp"
#include "publisher/publication_lock.hpp"

namespace publisher {

bool Check(const CommandLine& line, Console& console) {
  const Layout layout = Layout::Existing(line.operands[0]);
  const PublicationLock lock(layout, PublicationLock::Kind::Reading);
  Findings findings(layout);
  CheckAnswers(layout, findings);
  CheckPatches(layout, findings, console);
  CheckIndex(layout, findings, console);
  CheckClient(layout, findings);
  findings.WarnOfStrayFiles();
  for (const std::string& warning : findings.Warnings()) console.out << "warning: " << warning << "\n";
  for (const std::string& problem : findings.Problems()) console.out << "problem: " << problem << "\n";
  console.out << layout.Root() << ": " << findings.Expected() << " files asked for, "
              << findings.Problems().size() << " problems, " << findings.Warnings().size() << " warnings\n";
  return findings.Problems().empty();
}

}  // namespace publisher
