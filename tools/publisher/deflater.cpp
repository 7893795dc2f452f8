#include "publisher/deflater.hpp"

#include <new>

namespace publisher {
namespace {

constexpr std::size_t kPiece = 128 * 1024;
constexpr int kMemoryLevel = 8;  // zlib's own default, which only deflateInit2 asks for

}  // namespace

Deflater::Deflater(Format format) : output_(kPiece) {
  const int windowBits = format == Format::Raw ? -MAX_WBITS : MAX_WBITS;
  if (deflateInit2(&stream_, Z_DEFAULT_COMPRESSION, Z_DEFLATED, windowBits, kMemoryLevel,
                   Z_DEFAULT_STRATEGY) != Z_OK) {
    throw std::bad_alloc();
  }
}

Deflater::~Deflater() { deflateEnd(&stream_); }

void Deflater::Feed(std::span<const std::byte> input, const Take& take) {
  stream_.next_in = reinterpret_cast<Bytef*>(const_cast<std::byte*>(input.data()));
  stream_.avail_in = static_cast<uInt>(input.size());
  Run(Z_NO_FLUSH, take);
}

void Deflater::Finish(const Take& take) { Run(Z_FINISH, take); }

void Deflater::Run(int flush, const Take& take) {
  do {
    stream_.next_out = reinterpret_cast<Bytef*>(output_.data());
    stream_.avail_out = static_cast<uInt>(output_.size());
    deflate(&stream_, flush);
    take(std::span(output_).first(output_.size() - stream_.avail_out));
  } while (stream_.avail_out == 0);
}

}  // namespace publisher
