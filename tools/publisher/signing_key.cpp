#include "publisher/signing_key.hpp"

#include <fcntl.h>
#include <openssl/ec.h>
#include <openssl/evp.h>
#include <openssl/pem.h>
#include <openssl/x509.h>

#include <cerrno>
#include <cstring>

#include "platform/files.hpp"
#include "platform/posix/unique_fd.hpp"
#include "platform/signature.hpp"
#include "publisher/failure.hpp"

namespace publisher {
namespace {

constexpr std::uint64_t kLargestKey = 64 * 1024;

struct Free {
  void operator()(EVP_PKEY* key) const { EVP_PKEY_free(key); }
  void operator()(EVP_MD_CTX* context) const { EVP_MD_CTX_free(context); }
  void operator()(BIO* bio) const { BIO_free(bio); }
};
using Key = std::unique_ptr<EVP_PKEY, Free>;
using Bio = std::unique_ptr<BIO, Free>;

std::string PublicKeyOf(EVP_PKEY* key) {
  unsigned char* der = nullptr;
  const int length = i2d_PUBKEY(key, &der);
  if (length <= 0) return {};
  std::string bytes(reinterpret_cast<const char*>(der), static_cast<std::size_t>(length));
  OPENSSL_free(der);
  return bytes;
}

// A key that is protected by a pass phrase is refused: nobody is there to type it.
int NoPassPhrase(char*, int, int, void*) { return -1; }

}  // namespace

struct SigningKey::State {
  Key key;
};

SigningKey::SigningKey(const std::string& file) : state_(std::make_unique<State>()) {
  const std::string pem = Naming(file, [&] { return platform::ReadWhole(file, kLargestKey); });
  const Bio bio(BIO_new_mem_buf(pem.data(), static_cast<int>(pem.size())));
  state_->key.reset(PEM_read_bio_PrivateKey(bio.get(), nullptr, NoPassPhrase, nullptr));
  if (!state_->key || !platform::IsPublicKey(PublicKeyOf(state_->key.get()))) {
    throw Failure(file + ": no private key for ECDSA on P-256 (\"publisher keygen\" makes one)");
  }
}

SigningKey::~SigningKey() = default;

void SigningKey::Make(const std::string& file) {
  const Key key(EVP_EC_gen("P-256"));
  const Bio bio(BIO_new(BIO_s_mem()));
  if (!key ||
      PEM_write_bio_PKCS8PrivateKey(bio.get(), key.get(), nullptr, nullptr, 0, nullptr, nullptr) != 1) {
    throw Failure(file + ": no key could be made");
  }
  char* pem = nullptr;
  const long length = BIO_get_mem_data(bio.get(), &pem);
  const platform::UniqueFd target(open(file.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0600));
  if (!target) throw Failure(file + ": " + std::strerror(errno));
  if (write(target.get(), pem, static_cast<std::size_t>(length)) == length && fsync(target.get()) == 0)
    return;
  const int error = errno;
  platform::TryRemoveFile(file);
  throw Failure(file + ": " + std::strerror(error));
}

std::string SigningKey::PublicKey() const { return PublicKeyOf(state_->key.get()); }

std::string SigningKey::Sign(std::string_view message) const {
  const std::unique_ptr<EVP_MD_CTX, Free> context(EVP_MD_CTX_new());
  const auto* bytes = reinterpret_cast<const unsigned char*>(message.data());
  std::size_t size = 0;
  if (!context || EVP_DigestSignInit(context.get(), nullptr, EVP_sha256(), nullptr, state_->key.get()) != 1 ||
      EVP_DigestSign(context.get(), nullptr, &size, bytes, message.size()) != 1) {
    throw std::bad_alloc();
  }
  std::string signature(size, '\0');
  if (EVP_DigestSign(context.get(), reinterpret_cast<unsigned char*>(signature.data()), &size, bytes,
                     message.size()) != 1) {
    throw std::bad_alloc();
  }
  signature.resize(size);
  return signature;
}

}  // namespace publisher
