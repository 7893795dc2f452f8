#include "ui/win32/resample.hpp"

#include <algorithm>
#include <cmath>
#include <cstddef>

namespace ui::win32 {
namespace {

// The source pixels that make up one new pixel of a line, with weights that add up to 1.
struct Share {
  int first = 0;
  std::vector<float> weights;
};

Share ShareOf(int index, int from, double ratio) {
  Share share;
  if (ratio < 1) {
    const double centre = std::clamp((index + 0.5) * ratio - 0.5, 0.0, from - 1.0);
    share.first = std::min(static_cast<int>(centre), std::max(from - 2, 0));
    const auto part = static_cast<float>(centre - share.first);
    share.weights = from == 1 ? std::vector<float>{1} : std::vector<float>{1 - part, part};
    return share;
  }
  const double start = index * ratio, end = std::min(start + ratio, static_cast<double>(from));
  share.first = std::min(static_cast<int>(start), from - 1);
  for (int at = share.first; at < end; ++at) {
    const double covered = std::min(end, at + 1.0) - std::max(start, static_cast<double>(at));
    share.weights.push_back(static_cast<float>(covered / (end - start)));
  }
  return share;
}

std::vector<Share> Shares(int from, int to) {
  std::vector<Share> shares;
  for (int i = 0; i < to; ++i) shares.push_back(ShareOf(i, from, static_cast<double>(from) / to));
  return shares;
}

std::uint32_t Mixed(const std::uint32_t* first, std::ptrdiff_t stride, const std::vector<float>& weights) {
  float red = 0.5f, green = 0.5f, blue = 0.5f;
  for (std::size_t i = 0; i < weights.size(); ++i) {
    const std::uint32_t pixel = first[static_cast<std::ptrdiff_t>(i) * stride];
    red += weights[i] * static_cast<float>((pixel >> 16) & 0xFF);
    green += weights[i] * static_cast<float>((pixel >> 8) & 0xFF);
    blue += weights[i] * static_cast<float>(pixel & 0xFF);
  }
  const auto byte = [](float value) { return static_cast<std::uint32_t>(std::min(value, 255.0f)); };
  return byte(red) << 16 | byte(green) << 8 | byte(blue);
}

}  // namespace

Pixels Resampled(const Pixels& source, int width, int height) {
  if (width == source.width && height == source.height) return source;
  const std::vector<Share> columns = Shares(source.width, width), rows = Shares(source.height, height);
  Pixels narrow{width, source.height, {}};
  narrow.data.reserve(static_cast<std::size_t>(width) * static_cast<std::size_t>(source.height));
  for (int y = 0; y < source.height; ++y) {
    const std::uint32_t* line = source.data.data() + static_cast<std::ptrdiff_t>(y) * source.width;
    for (const Share& share : columns) narrow.data.push_back(Mixed(line + share.first, 1, share.weights));
  }
  Pixels result{width, height, {}};
  result.data.reserve(static_cast<std::size_t>(width) * static_cast<std::size_t>(height));
  for (const Share& share : rows) {
    const std::uint32_t* line = narrow.data.data() + static_cast<std::ptrdiff_t>(share.first) * width;
    for (int x = 0; x < width; ++x) result.data.push_back(Mixed(line + x, width, share.weights));
  }
  return result;
}

}  // namespace ui::win32
