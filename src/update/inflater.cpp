#include "update/inflater.hpp"

#include <algorithm>
#include <new>

namespace update {
namespace {

constexpr std::size_t kPiece = 128 * 1024;

}  // namespace

Inflater::Inflater() : input_(kPiece), output_(kPiece) {
  if (inflateInit(&stream_) != Z_OK) throw std::bad_alloc();
}

Inflater::~Inflater() { inflateEnd(&stream_); }

bool Inflater::Refill(const Read& read) {
  stream_.next_in = reinterpret_cast<Bytef*>(input_.data());
  stream_.avail_in = static_cast<uInt>(read(input_));
  return stream_.avail_in > 0;
}

Inflater::Outcome Inflater::Expand(Format format, std::uint64_t most, const Read& read, const Take& take,
                                   const std::stop_token& stop) {
  inflateReset2(&stream_, format == Format::Raw ? -MAX_WBITS : MAX_WBITS);
  stream_.avail_in = 0;
  bool holdsOutput = false;  // the last piece was full, so there may be more without further input
  std::uint64_t left = most;
  while (!stop.stop_requested()) {
    if (stream_.avail_in == 0 && !holdsOutput && !Refill(read)) return Outcome::Damaged;
    // One byte of room beyond what is wanted shows whether the stream goes on.
    const std::size_t room = left < output_.size() ? static_cast<std::size_t>(left) + 1 : output_.size();
    stream_.next_out = reinterpret_cast<Bytef*>(output_.data());
    stream_.avail_out = static_cast<uInt>(room);
    const int result = inflate(&stream_, Z_NO_FLUSH);
    // Z_BUF_ERROR only says that there was nothing to do for want of input or room.
    if (result != Z_OK && result != Z_STREAM_END && result != Z_BUF_ERROR) return Outcome::Damaged;
    const std::size_t produced = room - stream_.avail_out;
    const auto wanted = static_cast<std::size_t>(std::min<std::uint64_t>(produced, left));
    if (wanted > 0) take(std::span(output_).first(wanted));
    left -= wanted;
    if (produced > wanted) return Outcome::TooLong;
    if (result == Z_STREAM_END) return Outcome::Whole;
    holdsOutput = produced == room;
  }
  return Outcome::Stopped;
}

}  // namespace update
