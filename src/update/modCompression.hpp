#pragma once

#include <string>

#include "platform/host.hpp"
#include "startup/error_recorder.hpp"
#include "startup/lifetime.hpp"

namespace update {

// The launcher's packed files (.kvn): a signed 32-bit little-endian expanded size, then a zlib stream (RFC
// 1950).
class modCompression {
 public:
  modCompression(platform::Host& host, startup::ErrorRecorder& recorder, startup::Lifetime& lifetime)
      : host_(host), recorder_(recorder), lifetime_(lifetime) {}

  // Expands `source` over `destination`, whose folders are made; events are handled meanwhile. On failure,
  // which is shown to the player, the old destination stays and the result is false.
  bool Descomprimir(const std::string& source, const std::string& destination);

 private:
  platform::Host& host_;
  startup::ErrorRecorder& recorder_;
  startup::Lifetime& lifetime_;
};

}  // namespace update
