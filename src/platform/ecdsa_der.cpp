#include "platform/ecdsa_der.hpp"

#include <algorithm>

namespace platform {
namespace {

constexpr std::size_t kNumber = 32;
constexpr std::uint8_t kInteger = 0x02, kSequence = 0x30, kSign = 0x80;

// SEQUENCE { SEQUENCE { id-ecPublicKey, prime256v1 }, BIT STRING } up to the point, with the mark of an
// uncompressed one.
constexpr std::uint8_t kKeyStart[] = {0x30, 0x59, 0x30, 0x13, 0x06, 0x07, 0x2A, 0x86, 0x48,
                                      0xCE, 0x3D, 0x02, 0x01, 0x06, 0x08, 0x2A, 0x86, 0x48,
                                      0xCE, 0x3D, 0x03, 0x01, 0x07, 0x03, 0x42, 0x00, 0x04};

std::uint8_t ByteAt(std::string_view bytes, std::size_t i) { return static_cast<std::uint8_t>(bytes[i]); }

// Takes one positive INTEGER of at most 32 bytes off `bytes` into `number`.
bool TakeNumber(std::string_view& bytes, std::uint8_t* number) {
  if (bytes.size() < 2 || ByteAt(bytes, 0) != kInteger) return false;
  const std::size_t length = ByteAt(bytes, 1);
  if (length == 0 || length > kNumber + 1 || bytes.size() - 2 < length) return false;
  std::string_view digits = bytes.substr(2, length);
  bytes.remove_prefix(2 + length);
  if ((ByteAt(digits, 0) & kSign) != 0) return false;
  if (ByteAt(digits, 0) == 0) {
    digits.remove_prefix(1);  // allowed only before a byte that would make the number negative
    if (digits.empty() || (ByteAt(digits, 0) & kSign) == 0) return false;
  }
  if (digits.size() > kNumber) return false;
  std::copy(digits.begin(), digits.end(), number + (kNumber - digits.size()));
  return true;
}

}  // namespace

std::optional<P256Pair> PointOf(std::string_view publicKey) {
  P256Pair point;
  if (publicKey.size() != sizeof kKeyStart + point.size()) return std::nullopt;
  for (std::size_t i = 0; i < sizeof kKeyStart; ++i) {
    if (ByteAt(publicKey, i) != kKeyStart[i]) return std::nullopt;
  }
  publicKey.remove_prefix(sizeof kKeyStart);
  std::copy(publicKey.begin(), publicKey.end(), point.begin());
  return point;
}

std::optional<P256Pair> SignatureNumbers(std::string_view signature) {
  if (signature.size() < 2 || ByteAt(signature, 0) != kSequence) return std::nullopt;
  if (ByteAt(signature, 1) != signature.size() - 2) return std::nullopt;
  signature.remove_prefix(2);
  P256Pair numbers{};
  if (!TakeNumber(signature, numbers.data()) || !TakeNumber(signature, numbers.data() + kNumber)) {
    return std::nullopt;
  }
  return signature.empty() ? std::optional(numbers) : std::nullopt;
}

}  // namespace platform
