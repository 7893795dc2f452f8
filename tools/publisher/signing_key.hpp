#pragma once

#include <memory>
#include <string>
#include <string_view>

namespace publisher {

// A private key for signing publications: ECDSA on P-256, in a PEM file as openssl reads it.
class SigningKey {
 public:
  explicit SigningKey(const std::string& file);  // Failure when there is no such key in it
  ~SigningKey();

  // Makes a new one, readable to its owner alone. Failure when there is a file of that name already.
  static void Make(const std::string& file);

  std::string PublicKey() const;                     // DER (platform/signature.hpp)
  std::string Sign(std::string_view message) const;  // DER

 private:
  struct State;
  std::unique_ptr<State> state_;
};

}  // namespace publisher
