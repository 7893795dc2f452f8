#include <openssl/evp.h>
#include <openssl/x509.h>

#include <memory>

#include "platform/ecdsa_der.hpp"
#include "platform/signature.hpp"

namespace platform {
namespace {

struct Free {
  void operator()(EVP_PKEY* key) const { EVP_PKEY_free(key); }
  void operator()(EVP_PKEY_CTX* context) const { EVP_PKEY_CTX_free(context); }
  void operator()(EVP_MD_CTX* context) const { EVP_MD_CTX_free(context); }
};

const unsigned char* Bytes(std::string_view text) {
  return reinterpret_cast<const unsigned char*>(text.data());
}

// None unless the point lies on the curve.
std::unique_ptr<EVP_PKEY, Free> Read(std::string_view publicKey) {
  if (!PointOf(publicKey)) return nullptr;
  const unsigned char* at = Bytes(publicKey);
  std::unique_ptr<EVP_PKEY, Free> key(d2i_PUBKEY(nullptr, &at, static_cast<long>(publicKey.size())));
  if (!key) return nullptr;
  const std::unique_ptr<EVP_PKEY_CTX, Free> context(EVP_PKEY_CTX_new(key.get(), nullptr));
  return context && EVP_PKEY_public_check(context.get()) == 1 ? std::move(key) : nullptr;
}

}  // namespace

bool IsPublicKey(std::string_view publicKey) { return Read(publicKey) != nullptr; }

bool IsSignedBy(std::string_view publicKey, std::string_view message, std::string_view signature) {
  const auto key = Read(publicKey);
  if (!key || !SignatureNumbers(signature)) return false;
  const std::unique_ptr<EVP_MD_CTX, Free> context(EVP_MD_CTX_new());
  return context && EVP_DigestVerifyInit(context.get(), nullptr, EVP_sha256(), nullptr, key.get()) == 1 &&
         EVP_DigestVerify(context.get(), Bytes(signature), signature.size(), Bytes(message),
                          message.size()) == 1;
}

}  // namespace platform
