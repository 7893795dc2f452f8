#include <span>
#include <stdexcept>
#include <vector>

#include "platform/digest.hpp"
#include "platform/win32/bcrypt_handles.hpp"
#include "support/signer.hpp"

namespace support {
namespace {

constexpr std::size_t kNumber = 32;
// A DER SubjectPublicKeyInfo for P-256 up to its point, with the mark of an uncompressed one.
constexpr std::string_view kKeyStart{
    "\x30\x59\x30\x13\x06\x07\x2A\x86\x48\xCE\x3D\x02\x01\x06\x08\x2A\x86\x48\xCE\x3D\x03\x01\x07\x03\x42"
    "\x00\x04",
    27};

void Require(NTSTATUS status) {
  if (!BCRYPT_SUCCESS(status)) throw std::runtime_error("CNG: " + std::to_string(status));
}

// A positive DER INTEGER.
std::string Integer(std::string_view number) {
  while (number.size() > 1 && number.front() == 0) number.remove_prefix(1);
  const bool negative = (static_cast<unsigned char>(number.front()) & 0x80) != 0;
  const std::string digits = (negative ? std::string(1, '\0') : std::string()) + std::string(number);
  return std::string("\x02") + static_cast<char>(digits.size()) + digits;
}

std::vector<UCHAR> Sha256(std::string_view message) {
  platform::Digest digest(platform::DigestKind::Sha256);
  digest.Update(std::as_bytes(std::span(message)));
  const std::string hex = digest.Hex();
  std::vector<UCHAR> bytes;
  for (std::size_t i = 0; i < hex.size(); i += 2)
    bytes.push_back(static_cast<UCHAR>(std::stoi(hex.substr(i, 2), nullptr, 16)));
  return bytes;
}

class SystemKey : public KeyPair {
 public:
  SystemKey() {
    Require(BCryptOpenAlgorithmProvider(algorithm_.receive(), BCRYPT_ECDSA_P256_ALGORITHM, nullptr, 0));
    Require(BCryptGenerateKeyPair(algorithm_.get(), key_.receive(), 256, 0));
    Require(BCryptFinalizeKeyPair(key_.get(), 0));
  }

  std::string PublicKey() const override {
    std::vector<UCHAR> blob(sizeof(BCRYPT_ECCKEY_BLOB) + 2 * kNumber);
    ULONG size = 0;
    Require(BCryptExportKey(key_.get(), nullptr, BCRYPT_ECCPUBLIC_BLOB, blob.data(),
                            static_cast<ULONG>(blob.size()), &size, 0));
    return std::string(kKeyStart) + std::string(blob.begin() + sizeof(BCRYPT_ECCKEY_BLOB), blob.end());
  }

  std::string Sign(std::string_view message) const override {
    std::vector<UCHAR> digest = Sha256(message);
    std::string numbers(2 * kNumber, '\0');
    ULONG size = 0;
    Require(BCryptSignHash(key_.get(), nullptr, digest.data(), static_cast<ULONG>(digest.size()),
                           reinterpret_cast<UCHAR*>(numbers.data()), static_cast<ULONG>(numbers.size()),
                           &size, 0));
    const std::string_view both(numbers);
    const std::string pair = Integer(both.substr(0, kNumber)) + Integer(both.substr(kNumber));
    return std::string("\x30") + static_cast<char>(pair.size()) + pair;
  }

 private:
  base::UniqueHandle<platform::handle_traits::Algorithm> algorithm_;
  base::UniqueHandle<platform::handle_traits::Key> key_;  // destroyed before its algorithm
};

}  // namespace

std::unique_ptr<KeyPair> MakeKeyPair() { return std::make_unique<SystemKey>(); }

}  // namespace support
