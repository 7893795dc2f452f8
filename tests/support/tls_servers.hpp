#pragma once

#include <string>

#include "support/temp_folder.hpp"

namespace support {

// Web servers on loopback behind secure channels, run by this machine's `openssl`, each with another kind of
// certificate (support/tls_servers.sh); they end when this does.
class TlsServers {
 public:
  TlsServers();

  bool Running() const { return running_; }        // false where there is no openssl
  std::string Url(const std::string& kind) const;  // of the page of a server, its host "localhost"
  std::string Authority() const;                   // the file of the certificate to trust, PEM

 private:
  TempFolder folder_;
  bool running_ = false;
};

// Certificates issued by this authority are trusted while this lives, by this process (Linux) or this user.
class TrustedAuthority {
 public:
  explicit TrustedAuthority(const std::string& pemFile);
  ~TrustedAuthority();
  TrustedAuthority(const TrustedAuthority&) = delete;

 private:
  std::string before_;
};

}  // namespace support
