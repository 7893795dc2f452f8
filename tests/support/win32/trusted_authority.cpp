#include <windows.h>
// after windows.h, which it builds on
#include <wincrypt.h>

#include <vector>

#include "base/unique_handle.hpp"
#include "platform/files.hpp"
#include "support/tls_servers.hpp"

namespace support {
namespace {

struct StoreTraits : base::NullIsNone<HCERTSTORE> {
  static void Close(HCERTSTORE store) { CertCloseStore(store, 0); }
};
struct CertificateTraits : base::NullIsNone<PCCERT_CONTEXT> {
  static void Close(PCCERT_CONTEXT certificate) { CertFreeCertificateContext(certificate); }
};

std::vector<BYTE> Decoded(const std::string& pem) {
  DWORD size = 0;
  CryptStringToBinaryA(pem.data(), static_cast<DWORD>(pem.size()), CRYPT_STRING_BASE64HEADER, nullptr, &size,
                       nullptr, nullptr);
  std::vector<BYTE> bytes(size);
  CryptStringToBinaryA(pem.data(), static_cast<DWORD>(pem.size()), CRYPT_STRING_BASE64HEADER, bytes.data(),
                       &size, nullptr, nullptr);
  return bytes;
}

}  // namespace

// Only under Wine, whose prefix is thrown away: Windows itself would ask the user.
TrustedAuthority::TrustedAuthority(const std::string& pemFile) : before_(pemFile) {
  const std::vector<BYTE> bytes = Decoded(platform::ReadWhole(pemFile, 1 << 20));
  const base::UniqueHandle<StoreTraits> roots(CertOpenSystemStoreW(0, L"ROOT"));
  CertAddEncodedCertificateToStore(roots.get(), X509_ASN_ENCODING, bytes.data(),
                                   static_cast<DWORD>(bytes.size()), CERT_STORE_ADD_REPLACE_EXISTING,
                                   nullptr);
}

TrustedAuthority::~TrustedAuthority() {
  const std::vector<BYTE> bytes = Decoded(platform::ReadWhole(before_, 1 << 20));
  const base::UniqueHandle<StoreTraits> roots(CertOpenSystemStoreW(0, L"ROOT"));
  const base::UniqueHandle<CertificateTraits> own(
      CertCreateCertificateContext(X509_ASN_ENCODING, bytes.data(), static_cast<DWORD>(bytes.size())));
  const PCCERT_CONTEXT stored =
      CertFindCertificateInStore(roots.get(), X509_ASN_ENCODING, 0, CERT_FIND_EXISTING, own.get(), nullptr);
  if (stored) CertDeleteCertificateFromStore(stored);
}

}  // namespace support
