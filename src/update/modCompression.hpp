#pragma once

#include <string>

#include "startup/services.hpp"

namespace update {

// The launcher's packed files (.kvn): a signed 32-bit little-endian expanded size, then a zlib stream (RFC
// 1950).
class modCompression {
 public:
  explicit modCompression(const startup::Services& services) : services_(services) {}

  // Expands `source` over `destination`, whose folders are made; events are handled meanwhile. On failure,
  // which is shown to the player, the old destination stays and the result is false.
  bool Descomprimir(const std::string& source, const std::string& destination);

 private:
  const startup::Services& services_;
};

}  // namespace update
