#include "ui/win32/resample.hpp"

#include <algorithm>
#include <cstddef>
#include <deque>
#include <vector>

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

class Mix {
 public:
  void Add(std::uint32_t pixel, float weight) {
    red_ += weight * static_cast<float>((pixel >> 16) & 0xFF);
    green_ += weight * static_cast<float>((pixel >> 8) & 0xFF);
    blue_ += weight * static_cast<float>(pixel & 0xFF);
  }
  std::uint32_t Pixel() const { return Byte(red_) << 16 | Byte(green_) << 8 | Byte(blue_); }

 private:
  static std::uint32_t Byte(float value) { return static_cast<std::uint32_t>(std::min(value, 255.0f)); }

  float red_ = 0.5f, green_ = 0.5f, blue_ = 0.5f;
};

using Row = std::vector<std::uint32_t>;

Row Narrowed(const std::uint32_t* row, const std::vector<Share>& columns) {
  Row narrow;
  narrow.reserve(columns.size());
  for (const Share& share : columns) {
    Mix mix;
    for (std::size_t i = 0; i < share.weights.size(); ++i) {
      mix.Add(row[static_cast<std::size_t>(share.first) + i], share.weights[i]);
    }
    narrow.push_back(mix.Pixel());
  }
  return narrow;
}

}  // namespace

bool Resample(PixelSize from, const NextRow& next, PixelSize to, std::uint32_t* out) {
  const std::vector<Share> columns = Shares(from.width, to.width);
  std::deque<Row> rows;  // of the new width, from `first` on
  int first = 0;
  for (const Share& share : Shares(from.height, to.height)) {
    for (; first < share.first && !rows.empty(); ++first) rows.pop_front();
    while (rows.size() < share.weights.size()) {
      const std::uint32_t* const row = next();
      if (!row) return false;
      rows.push_back(Narrowed(row, columns));
    }
    for (std::size_t x = 0; x < columns.size(); ++x) {
      Mix mix;
      for (std::size_t i = 0; i < share.weights.size(); ++i) mix.Add(rows[i][x], share.weights[i]);
      *out++ = mix.Pixel();
    }
  }
  return true;
}

}  // namespace ui::win32
