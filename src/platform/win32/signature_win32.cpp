#include <algorithm>
#include <span>
#include <vector>

#include "base/unique_handle.hpp"
#include "platform/digest.hpp"
#include "platform/ecdsa_der.hpp"
#include "platform/signature.hpp"
#include "platform/win32/bcrypt_handles.hpp"

namespace platform {
namespace {

// A public key that the system took; it refuses a point that is not on the curve.
class Key {
 public:
  explicit Key(std::string_view publicKey) {
    const auto point = PointOf(publicKey);
    if (!point || !BCRYPT_SUCCESS(BCryptOpenAlgorithmProvider(algorithm_.receive(),
                                                              BCRYPT_ECDSA_P256_ALGORITHM, nullptr, 0))) {
      return;
    }
    const BCRYPT_ECCKEY_BLOB head{BCRYPT_ECDSA_PUBLIC_P256_MAGIC, static_cast<ULONG>(point->size() / 2)};
    std::vector<UCHAR> blob(sizeof head + point->size());
    std::copy_n(reinterpret_cast<const UCHAR*>(&head), sizeof head, blob.begin());
    std::copy(point->begin(), point->end(), blob.begin() + sizeof head);
    good_ =
        BCRYPT_SUCCESS(BCryptImportKeyPair(algorithm_.get(), nullptr, BCRYPT_ECCPUBLIC_BLOB, key_.receive(),
                                           blob.data(), static_cast<ULONG>(blob.size()), 0));
  }

  bool Good() const { return good_; }

  bool Signed(std::vector<UCHAR> digest, P256Pair signature) const {
    return BCRYPT_SUCCESS(BCryptVerifySignature(key_.get(), nullptr, digest.data(),
                                                static_cast<ULONG>(digest.size()), signature.data(),
                                                static_cast<ULONG>(signature.size()), 0));
  }

 private:
  base::UniqueHandle<handle_traits::Algorithm> algorithm_;
  base::UniqueHandle<handle_traits::Key> key_;  // destroyed before its algorithm
  bool good_ = false;
};

}  // namespace

bool IsPublicKey(std::string_view publicKey) { return Key(publicKey).Good(); }

bool IsSignedBy(std::string_view publicKey, std::string_view message, std::string_view signature) {
  const Key key(publicKey);
  const auto numbers = SignatureNumbers(signature);
  if (!key.Good() || !numbers) return false;
  Digest digest(DigestKind::Sha256);
  digest.Update(std::as_bytes(std::span(message)));
  const std::string hex = digest.Hex();
  std::vector<UCHAR> bytes;
  for (std::size_t i = 0; i < hex.size(); i += 2) {
    bytes.push_back(static_cast<UCHAR>(std::stoi(hex.substr(i, 2), nullptr, 16)));
  }
  return key.Signed(std::move(bytes), *numbers);
}

}  // namespace platform
