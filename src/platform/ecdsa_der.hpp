#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string_view>

namespace platform {

// Two 32-byte numbers, high byte first: a point's coordinates, or the halves of a signature.
using P256Pair = std::array<std::uint8_t, 64>;

// The point of a DER SubjectPublicKeyInfo for P-256; none when it is not exactly that.
std::optional<P256Pair> PointOf(std::string_view publicKey);

// The two numbers of a DER signature for P-256; none unless it is the one way in which DER writes them.
std::optional<P256Pair> SignatureNumbers(std::string_view signature);

}  // namespace platform
