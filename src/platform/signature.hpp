#pragma once

#include <string_view>

namespace platform {

// ECDSA over the curve P-256 with SHA-256. Keys and signatures are bytes as OpenSSL and CNG users exchange
// them: a public key is a DER SubjectPublicKeyInfo with an uncompressed point, a signature the DER SEQUENCE
// of two INTEGERs.

// Whether `publicKey` can be used at all: exactly such a key, its point on the curve.
bool IsPublicKey(std::string_view publicKey);

// Whether `signature` was made over `message` with the private key that belongs to `publicKey`. False as well
// when either is malformed in any way.
bool IsSignedBy(std::string_view publicKey, std::string_view message, std::string_view signature);

}  // namespace platform
