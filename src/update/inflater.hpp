#pragma once

#include <zlib.h>

#include <cstddef>
#include <span>

namespace update {

// An inflate stream fed in pieces.
class Inflater {
 public:
  enum class Format { Zlib, Raw };
  enum class Status { More, End, Corrupt };

  explicit Inflater(Format format);
  ~Inflater();
  Inflater(const Inflater&) = delete;

  void Feed(std::span<const std::byte> input);  // must stay alive until it is used up
  bool NeedsInput() const { return stream_.avail_in == 0; }

  // Expands into `output`; `produced` is how many bytes came out.
  Status Expand(std::span<std::byte> output, std::size_t& produced);

 private:
  z_stream stream_{};
};

}  // namespace update
