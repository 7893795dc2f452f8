#include "platform/files.hpp"
#include "publisher/commands.hpp"
#include "publisher/failure.hpp"
#include "publisher/publication_lock.hpp"
#include "publisher/signer.hpp"

namespace publisher {

bool Sign(const CommandLine& line, Console& console) {
  const Layout layout = Layout::Existing(line.operands[0]);
  const PublicationLock lock(layout, PublicationLock::Kind::Writing);
  Signing signing = line.options.signing;
  signing.keyFile = line.operands[1];
  const Signature signature = MakeSignature(layout, layout, signing, console);
  const std::string path = layout.At(names::kSigned);
  if (!line.options.dryRun) Naming(path, [&] { platform::WriteWhole(path, signature.text); });
  console.out << WordsOf(layout, signature.file) << (line.options.dryRun ? "; nothing was written\n" : "\n");
  return true;
}

}  // namespace publisher
