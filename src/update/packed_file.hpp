#pragma once

#include <cstdint>
#include <stop_token>
#include <string>

#include "platform/files.hpp"

namespace update {

// The expanded size that a packed file's header claims; 0 when the file is too short to hold one.
std::int32_t ClaimedSize(const std::string& source);

// Expands the zlib stream behind the header over `destination`, a piece at a time. A claim below the true
// size gives just the claimed bytes; a stream that is corrupt or cut raises 321 and leaves the old
// destination; a claim beyond zlib's best possible ratio raises 321 before anything is written. Nothing is
// written when `stop` is requested.
void ExpandPackedFile(const std::string& source, const std::string& destination, std::stop_token stop,
                      platform::OutputFile::Lasting lasting = platform::OutputFile::Lasting::Yes);

}  // namespace update
