#include "util/sha256.hpp"

#include <span>

#include "platform/digest.hpp"

namespace util {

std::string Sha256(std::string_view bytes) {
  platform::Digest digest(platform::DigestKind::Sha256);
  digest.Update(std::as_bytes(std::span(bytes)));
  return digest.Hex();
}

}  // namespace util
