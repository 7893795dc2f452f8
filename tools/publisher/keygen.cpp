#include "base/base64.hpp"
#include "platform/files.hpp"
#include "publisher/commands.hpp"
#include "publisher/failure.hpp"
#include "publisher/signing_key.hpp"

namespace publisher {

bool Keygen(const CommandLine& line, Console& console) {
  const std::string& file = line.operands[0];
  if (line.options.dryRun) {
    if (platform::IsFile(file)) throw Failure(file + ": there is a file of that name already");
    console.out << file << ": would be made\n";
    return true;
  }
  SigningKey::Make(file);
  console.err << file
              << ": keep it secret, and a copy of it: without it nothing can be released any more. For\n"
              << "section [TRUST] of Deployment.ini:\n";
  console.out << "PublicKey=" << base::Base64(SigningKey(file).PublicKey()) << "\n";
  return true;
}

}  // namespace publisher
