#include <cstdlib>

#include "support/tls_servers.hpp"

namespace support {

TrustedAuthority::TrustedAuthority(const std::string& pemFile) {
  if (const char* before = std::getenv("SSL_CERT_FILE")) before_ = before;
  setenv("SSL_CERT_FILE", pemFile.c_str(), 1);
}

TrustedAuthority::~TrustedAuthority() {
  before_.empty() ? unsetenv("SSL_CERT_FILE") : setenv("SSL_CERT_FILE", before_.c_str(), 1);
}

}  // namespace support
