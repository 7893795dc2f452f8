#include "publisher/signing_key.hpp"
#include "support/signer.hpp"
#include "support/temp_folder.hpp"

namespace support {
namespace {

class PublisherKey : public KeyPair {
 public:
  PublisherKey() : key_(Made(folder_ / "key.pem")) {}
  std::string PublicKey() const override { return key_.PublicKey(); }
  std::string Sign(std::string_view message) const override { return key_.Sign(message); }

 private:
  static std::string Made(const std::string& file) {
    publisher::SigningKey::Make(file);
    return file;
  }

  TempFolder folder_;
  publisher::SigningKey key_;
};

}  // namespace

std::unique_ptr<KeyPair> MakeKeyPair() { return std::make_unique<PublisherKey>(); }

}  // namespace support
