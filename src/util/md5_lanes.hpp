#pragma once

#include <cstddef>
#include <span>
#include <stop_token>

#include "util/md5_digest.hpp"

namespace util {

// Messages that are digested side by side, each in a lane of its own. What any of these raises ends them all.
class Md5Messages {
 public:
  virtual ~Md5Messages() = default;
  // Begins another message in `lane`, which is free; false when there is none left.
  virtual bool Next(std::size_t lane) = 0;
  // Fills the front of `into` with the next bytes of the lane's message; how many, 0 at its end.
  virtual std::size_t Read(std::size_t lane, std::span<std::byte> into) = 0;
  virtual void Finish(std::size_t lane, const Md5Digest& digest) = 0;
};

// How many lanes this processor works on at once: 16, 8, 4 or 1.
std::size_t Md5LaneCount();

// Digests (RFC 1321) all messages, up to `lanes` of them at a time on this thread; a lane that is free takes
// the next message at once. Returns early when `stop` is requested. 1 <= lanes <= 16.
void DigestSideBySide(Md5Messages& messages, std::size_t lanes, const std::stop_token& stop);

}  // namespace util
