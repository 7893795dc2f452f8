#include <windows.h>
// after windows.h, which it builds on
#include <bcrypt.h>

#include <algorithm>
#include <array>
#include <limits>

#include "base/runtime_error.hpp"
#include "base/unique_handle.hpp"
#include "platform/digest.hpp"

namespace platform {
namespace {

struct AlgorithmTraits : base::NullIsNone<BCRYPT_ALG_HANDLE> {
  static void Close(Type handle) { BCryptCloseAlgorithmProvider(handle, 0); }
};
struct HashTraits : base::NullIsNone<BCRYPT_HASH_HANDLE> {
  static void Close(Type handle) { BCryptDestroyHash(handle); }
};

struct KindEntry {
  const wchar_t* algorithm;
  std::size_t length;  // bytes
};
constexpr KindEntry kKinds[] = {
    {BCRYPT_MD5_ALGORITHM, 16}, {BCRYPT_SHA1_ALGORITHM, 20}, {BCRYPT_SHA256_ALGORITHM, 32}};
constexpr std::size_t kLongestDigest = 32;

void Require(NTSTATUS status) {
  if (!BCRYPT_SUCCESS(status)) throw base::RuntimeError(base::ErrorNumber::DeviceIoError);
}

}  // namespace

struct Digest::State {
  base::UniqueHandle<AlgorithmTraits> algorithm;
  base::UniqueHandle<HashTraits> hash;  // destroyed before its algorithm
  std::size_t length = 0;
};

Digest::Digest(DigestKind kind) : state_(std::make_unique<State>()) {
  const KindEntry& entry = kKinds[static_cast<int>(kind)];
  state_->length = entry.length;
  Require(BCryptOpenAlgorithmProvider(state_->algorithm.receive(), entry.algorithm, nullptr, 0));
  Require(BCryptCreateHash(state_->algorithm.get(), state_->hash.receive(), nullptr, 0, nullptr, 0, 0));
}

Digest::~Digest() = default;
Digest::Digest(Digest&&) noexcept = default;

void Digest::Update(std::span<const std::byte> bytes) {
  while (!bytes.empty()) {
    const auto piece =
        static_cast<ULONG>(std::min<std::size_t>(bytes.size(), std::numeric_limits<ULONG>::max()));
    // The call takes a pointer to plain bytes but only reads them.
    auto* data = reinterpret_cast<UCHAR*>(const_cast<std::byte*>(bytes.data()));
    Require(BCryptHashData(state_->hash.get(), data, piece, 0));
    bytes = bytes.subspan(piece);
  }
}

std::string Digest::Hex() {
  static constexpr char kDigits[] = "0123456789abcdef";
  std::array<UCHAR, kLongestDigest> digest;
  Require(BCryptFinishHash(state_->hash.get(), digest.data(), static_cast<ULONG>(state_->length), 0));
  std::string text;
  for (std::size_t i = 0; i < state_->length; ++i) {
    text += kDigits[digest[i] >> 4];
    text += kDigits[digest[i] & 15];
  }
  return text;
}

}  // namespace platform
