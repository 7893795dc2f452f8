#pragma once

#include <memory>
#include <string>
#include <string_view>

#include "update/signed_file.hpp"

namespace support {

// A fresh key pair for ECDSA on P-256, of the system's own making; bytes as in platform/signature.hpp.
class KeyPair {
 public:
  virtual ~KeyPair() = default;
  virtual std::string PublicKey() const = 0;
  virtual std::string Sign(std::string_view message) const = 0;
};
std::unique_ptr<KeyPair> MakeKeyPair();

// An operator who signs publications.
class Signer {
 public:
  std::string PublicKey() const;  // as Deployment.ini names it
  std::string Signed(std::string_view body) const;
  std::string Signed(const update::SignedFile& file) const { return Signed(update::SignedBody(file)); }

 private:
  std::unique_ptr<KeyPair> keys_ = MakeKeyPair();
};

}  // namespace support
