#pragma once

#include <zlib.h>

#include <cstddef>
#include <cstdint>
#include <functional>
#include <span>
#include <stop_token>
#include <vector>

namespace update {

// Expands deflate streams of any size a piece at a time; one object serves one stream after another.
class Inflater {
 public:
  enum class Format { Zlib, Raw };  // RFC 1950, RFC 1951
  enum class Outcome {
    Whole,    // the stream ended
    TooLong,  // it goes on beyond the bytes that were asked for, and those were handed on
    Damaged,  // it is corrupt or cut short
    Stopped,  // a stop was requested
  };
  // Fills the front of `into` with the next packed bytes; how many, 0 when there are none left.
  using Read = std::function<std::size_t(std::span<std::byte> into)>;
  using Take = std::function<void(std::span<const std::byte> bytes)>;

  Inflater();
  ~Inflater();
  Inflater(const Inflater&) = delete;

  // Hands at most `most` bytes of the stream to `take`. What these two raise is passed on.
  Outcome Expand(Format format, std::uint64_t most, const Read& read, const Take& take,
                 const std::stop_token& stop);

  // Packed bytes that were read for the last stream and lie behind its end.
  std::size_t Unused() const { return stream_.avail_in; }

 private:
  bool Refill(const Read& read);

  z_stream stream_{};
  std::vector<std::byte> input_, output_;
};

}  // namespace update
