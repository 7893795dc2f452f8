#include "util/clsHashing.hpp"

#include <span>
#include <vector>

#include "platform/digest.hpp"
#include "platform/encoding.hpp"
#include "platform/files.hpp"

namespace util {
namespace {

constexpr std::size_t kPiece = 256 * 1024;

std::string DigestOf(platform::DigestKind kind, std::string_view utf8) {
  const std::string narrow = platform::ToAnsi(utf8);
  platform::Digest digest(kind);
  digest.Update(std::as_bytes(std::span(narrow)));
  return digest.Hex();
}

}  // namespace

std::string clsHashing::MD5String(std::string_view text) const {
  return DigestOf(platform::DigestKind::Md5, text);
}

std::string clsHashing::SHA1(std::string_view text) const {
  return DigestOf(platform::DigestKind::Sha1, text);
}

std::string clsHashing::MD5File(const std::string& File, std::stop_token stop) const {
  platform::InputFile file(File);
  platform::Digest digest(platform::DigestKind::Md5);
  std::vector<std::byte> piece(kPiece);
  for (;;) {
    if (stop.stop_requested()) return {};
    const std::size_t got = file.Read(piece);
    if (got == 0) return digest.Hex();
    digest.Update(std::span(piece).first(got));
  }
}

}  // namespace util
