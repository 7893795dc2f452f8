#pragma once

#include <cstddef>
#include <cstdint>
#include <span>

namespace util {

inline constexpr std::size_t kMostLanes = 16;
inline constexpr std::size_t kMd5Block = 64;

// The four state words of every lane, word by word.
using Md5States = std::uint32_t[4][kMostLanes];

// The compression function of MD5 on the first lanes, one vector element each: takes `blocks` blocks at
// data[i] into the state of lane i.
struct Md5Kernel {
  std::size_t lanes;
  void (*run)(Md5States& states, const std::byte* const* data, std::size_t blocks);
};

// Those that this processor can run, the narrow ones first; of two as wide the quicker one comes last.
std::span<const Md5Kernel> Md5Kernels();

// The narrowest one that has `lanes` lanes, or the widest one; of those the quickest.
const Md5Kernel& KernelFor(std::size_t lanes);

}  // namespace util
