#pragma once

#include <cstddef>
#include <memory>
#include <span>
#include <string>

namespace platform {

enum class DigestKind { Md5, Sha1, Sha256 };

// A message digest fed in pieces; the operating system's own implementation.
class Digest {
 public:
  explicit Digest(DigestKind kind);
  ~Digest();
  Digest(Digest&&) noexcept;

  void Update(std::span<const std::byte> bytes);
  std::string Hex();  // lower case; call once, after the last Update

 private:
  struct State;
  std::unique_ptr<State> state_;
};

}  // namespace platform
