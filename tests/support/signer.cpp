#include "support/signer.hpp"

#include "base/base64.hpp"

namespace support {

std::string Signer::PublicKey() const { return base::Base64(keys_->PublicKey()); }

std::string Signer::Signed(std::string_view body) const {
  return base::Base64(keys_->Sign(body)) + "\n" + std::string(body);
}

}  // namespace support
