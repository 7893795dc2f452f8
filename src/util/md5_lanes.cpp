#include "util/md5_lanes.hpp"

#include <algorithm>
#include <cstring>
#include <memory>
#include <vector>

#include "util/md5_kernel.hpp"

namespace util {
namespace {

constexpr std::size_t kPiece = 32 * 1024;            // of each lane at a time: all of them fit a small cache
constexpr std::size_t kMostPadding = kMd5Block + 8;  // a byte, zeros and the length

// A message on its way through a lane: the piece of it that is in memory.
struct Lane {
  std::size_t number = 0;  // by which the messages know it
  std::unique_ptr<std::byte[]> piece = std::make_unique_for_overwrite<std::byte[]>(kPiece + kMostPadding);
  const std::byte* next = nullptr;
  std::size_t blocks = 0;    // from `next` on
  std::uint64_t length = 0;  // of the message so far, in bytes
  bool whole = false;        // the piece holds its end
};

class Lanes {
 public:
  Lanes(Md5Messages& messages, std::size_t count) : messages_(messages), lanes_(count) {
    for (std::size_t i = 0; i < count; ++i) lanes_[i].number = i;
  }

  void Run(const std::stop_token& stop) {
    while (active_ < lanes_.size() && Begin(active_)) ++active_;
    while (active_ > 0 && !stop.stop_requested()) {
      Compress();
      for (std::size_t i = active_; i-- > 0;) {
        if (lanes_[i].blocks == 0) Advance(i);
      }
    }
  }

 private:
  bool Begin(std::size_t i) {
    Lane& lane = lanes_[i];
    if (!messages_.Next(lane.number)) return false;
    static constexpr std::uint32_t kStart[4] = {0x67452301, 0xefcdab89, 0x98badcfe, 0x10325476};
    for (int word = 0; word < 4; ++word) states_[word][i] = kStart[word];
    lane.length = 0;
    Fill(lane);
    return true;
  }

  void Fill(Lane& lane) {
    std::size_t held = 0, got = 1;
    while (held < kPiece && got > 0) {
      got = messages_.Read(lane.number, std::span(lane.piece.get(), kPiece).subspan(held));
      held += got;
    }
    lane.length += held;
    lane.whole = got == 0;
    if (lane.whole) held = Pad(lane, held);
    lane.next = lane.piece.get();
    lane.blocks = held / kMd5Block;
  }

  // The bytes that the piece holds then.
  static std::size_t Pad(Lane& lane, std::size_t held) {
    std::byte* end = lane.piece.get() + held;
    const std::size_t zeros = (2 * kMd5Block - 9 - held % kMd5Block) % kMd5Block;
    *end++ = std::byte{0x80};
    std::memset(end, 0, zeros);
    end += zeros;
    for (int shift = 0; shift < 64; shift += 8) *end++ = static_cast<std::byte>(lane.length * 8 >> shift);
    return static_cast<std::size_t>(end - lane.piece.get());
  }

  // As many blocks as every lane has. A kernel that is wider than there are messages takes the first one's
  // data into lanes that nobody looks at.
  void Compress() {
    std::size_t blocks = lanes_[0].blocks;
    for (std::size_t i = 1; i < active_; ++i) blocks = std::min(blocks, lanes_[i].blocks);
    const std::byte* data[kMostLanes];
    for (std::size_t i = 0; i < kMostLanes; ++i) data[i] = lanes_[i < active_ ? i : 0].next;
    KernelFor(active_).run(states_, data, blocks);
    for (std::size_t i = 0; i < active_; ++i) {
      lanes_[i].next += blocks * kMd5Block;
      lanes_[i].blocks -= blocks;
    }
  }

  void Advance(std::size_t i) {
    if (!lanes_[i].whole) return Fill(lanes_[i]);
    Md5Digest digest;
    for (std::size_t at = 0; at < digest.bytes.size(); ++at)
      digest.bytes[at] = static_cast<std::uint8_t>(states_[at / 4][i] >> (at % 4 * 8));
    messages_.Finish(lanes_[i].number, digest);
    if (Begin(i)) return;
    --active_;  // the last lane closes the gap
    std::swap(lanes_[i], lanes_[active_]);
    for (auto& words : states_) words[i] = words[active_];
  }

  Md5Messages& messages_;
  std::vector<Lane> lanes_;
  std::size_t active_ = 0;  // lanes at the front that work
  Md5States states_{};
};

}  // namespace

std::size_t Md5LaneCount() { return KernelFor(kMostLanes).lanes; }

void DigestSideBySide(Md5Messages& messages, std::size_t lanes, const std::stop_token& stop) {
  Lanes(messages, std::clamp<std::size_t>(lanes, 1, kMostLanes)).Run(stop);
}

}  // namespace util
