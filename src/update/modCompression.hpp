#pragma once

#include <optional>
#include <string>

#include "startup/services.hpp"
#include "update/packed_file.hpp"

namespace update {

// The launcher's packed files (.kvn): a signed 32-bit little-endian expanded size, then a zlib stream (RFC
// 1950).
class modCompression {
 public:
  explicit modCompression(const startup::Services& services) : services_(services) {}

  // What the player is to be told of a file that could not be expanded.
  struct Complaint {
    std::string text;
    bool isError = false;  // one for the error recorder, or else a message box of its own
  };

  // Expands `source` over `destination`, whose folders are made; events are handled meanwhile. On failure,
  // which is shown to the player, the old destination stays and the result is false. Content other than the
  // one asked for is only logged: it is a download that failed.
  bool Descomprimir(const std::string& source, const std::string& destination, const Expansion& how = {});

  struct Outcome {
    bool done = false;                     // the destination was written
    std::optional<Complaint> complaint{};  // none about other content or when a stop was requested
  };
  // As Descomprimir, but on the thread that calls, and leaves it to the caller to tell.
  static Outcome Expand(const std::string& source, const std::string& destination, const Expansion& how,
                        const std::stop_token& stop);

  // What Descomprimir shows or logs of an outcome; on the interface thread.
  void Tell(const std::string& source, const Outcome& outcome);

 private:
  const startup::Services& services_;
};

}  // namespace update
