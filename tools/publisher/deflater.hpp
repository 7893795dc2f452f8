#pragma once

#include <zlib.h>

#include <cstddef>
#include <functional>
#include <span>
#include <vector>

namespace publisher {

// A deflate stream fed in pieces, at zlib's default level.
class Deflater {
 public:
  enum class Format { Zlib, Raw };
  using Take = std::function<void(std::span<const std::byte>)>;

  explicit Deflater(Format format);
  ~Deflater();
  Deflater(const Deflater&) = delete;

  void Feed(std::span<const std::byte> input, const Take& take);
  void Finish(const Take& take);  // the end of the stream; nothing may be fed after it

 private:
  void Run(int flush, const Take& take);

  z_stream stream_{};
  std::vector<std::byte> output_;
};

}  // namespace publisher
