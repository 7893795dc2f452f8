#include "update/inflater.hpp"

#include <new>

namespace update {

Inflater::Inflater(Format format) {
  if (inflateInit2(&stream_, format == Format::Raw ? -MAX_WBITS : MAX_WBITS) != Z_OK) throw std::bad_alloc();
}

Inflater::~Inflater() { inflateEnd(&stream_); }

void Inflater::Feed(std::span<const std::byte> input) {
  stream_.next_in = reinterpret_cast<Bytef*>(const_cast<std::byte*>(input.data()));
  stream_.avail_in = static_cast<uInt>(input.size());
}

Inflater::Status Inflater::Expand(std::span<std::byte> output, std::size_t& produced) {
  stream_.next_out = reinterpret_cast<Bytef*>(output.data());
  stream_.avail_out = static_cast<uInt>(output.size());
  const int result = inflate(&stream_, Z_NO_FLUSH);
  produced = output.size() - stream_.avail_out;
  if (result == Z_STREAM_END) return Status::End;
  // Z_BUF_ERROR only says that there was nothing to do for want of input or room.
  return result == Z_OK || result == Z_BUF_ERROR ? Status::More : Status::Corrupt;
}

}  // namespace update
