#pragma once

#include <cstdint>
#include <stop_token>
#include <string>

#include "platform/files.hpp"

namespace update {

// The expanded size that a packed file's header claims; 0 when the file is too short to hold one.
std::int32_t ClaimedSize(const std::string& source);

struct Expansion {
  platform::OutputFile::Lasting lasting = platform::OutputFile::Lasting::Yes;
  std::string md5{};  // that the content must have, 32 lower-case digits; empty: any content will do
};

// Expands the zlib stream behind the header over `destination`, a piece at a time. A claim below the true
// size gives just the claimed bytes; a stream that is corrupt or cut raises 321 and leaves the old
// destination; a claim beyond zlib's best possible ratio raises 321 before anything is written, one beyond
// the free space 61. False, and the old destination stays, when `stop` is requested or what came out is not
// what it must be.
bool ExpandPackedFile(const std::string& source, const std::string& destination, std::stop_token stop,
                      const Expansion& how = {});

// Whether the content of a packed file has this MD5 (32 lower-case digits); nothing is written. False for a
// file that cannot be expanded, or when `stop` is requested.
bool PackedFileHolds(const std::string& source, const std::string& md5, std::stop_token stop);

}  // namespace update
