#include <openssl/evp.h>

#include <array>

#include "base/runtime_error.hpp"
#include "base/unique_handle.hpp"
#include "platform/digest.hpp"

namespace platform {
namespace {

struct ContextTraits : base::NullIsNone<EVP_MD_CTX*> {
  static void Close(EVP_MD_CTX* context) { EVP_MD_CTX_free(context); }
};

void Require(int done) {
  if (done != 1) throw base::RuntimeError(base::ErrorNumber::InvalidProcedureCall);
}

const EVP_MD* AlgorithmOf(DigestKind kind) {
  switch (kind) {
    case DigestKind::Md5:
      return EVP_md5();
    case DigestKind::Sha1:
      return EVP_sha1();
    case DigestKind::Sha256:
      break;
  }
  return EVP_sha256();
}

}  // namespace

struct Digest::State {
  base::UniqueHandle<ContextTraits> context{EVP_MD_CTX_new()};
};

Digest::Digest(DigestKind kind) : state_(std::make_unique<State>()) {
  Require(EVP_DigestInit_ex(state_->context.get(), AlgorithmOf(kind), nullptr));
}
Digest::~Digest() = default;
Digest::Digest(Digest&&) noexcept = default;

void Digest::Update(std::span<const std::byte> bytes) {
  Require(EVP_DigestUpdate(state_->context.get(), bytes.data(), bytes.size()));
}

std::string Digest::Hex() {
  std::array<unsigned char, EVP_MAX_MD_SIZE> digest;
  unsigned size = 0;
  Require(EVP_DigestFinal_ex(state_->context.get(), digest.data(), &size));
  static constexpr char kHex[] = "0123456789abcdef";
  std::string text;
  for (unsigned i = 0; i < size; ++i) text += {kHex[digest[i] >> 4], kHex[digest[i] & 15]};
  return text;
}

}  // namespace platform
