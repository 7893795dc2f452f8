#include "ui/win32/resample.hpp"

#include <algorithm>
#include <cstddef>
#include <deque>
#include <vector>

namespace ui::win32 {
namespace {

constexpr std::size_t kChannels = 4;  // blue, green, red and one that is not used: a whole vector register

// Which source pixels make up each new one of a line, with weights that add up to 1.
struct Shares {
  struct One {
    int first = 0;
    std::size_t count = 0, weights = 0;  // from there on in `weights`
  };
  std::vector<One> each;
  std::vector<float> weights;

  Shares(int from, int to) {
    for (int i = 0; i < to; ++i) Add(i, from, static_cast<double>(from) / to);
  }

 private:
  void Add(int index, int from, double ratio) {
    One one{0, 0, weights.size()};
    if (ratio < 1) {
      const double centre = std::clamp((index + 0.5) * ratio - 0.5, 0.0, from - 1.0);
      one.first = std::min(static_cast<int>(centre), std::max(from - 2, 0));
      const auto part = static_cast<float>(centre - one.first);
      weights.push_back(1 - part);
      if (from > 1) weights.push_back(part);
    } else {
      const double start = index * ratio, end = std::min(start + ratio, static_cast<double>(from));
      one.first = std::min(static_cast<int>(start), from - 1);
      for (int at = one.first; at < end; ++at) {
        const double covered = std::min(end, at + 1.0) - std::max(start, static_cast<double>(at));
        weights.push_back(static_cast<float>(covered / (end - start)));
      }
    }
    one.count = weights.size() - one.weights;
    each.push_back(one);
  }
};

using Row = std::vector<float>;  // kChannels a pixel, each 0 to 255

Row Narrowed(const std::uint32_t* row, const Shares& columns) {
  Row narrow(columns.each.size() * kChannels);
  float* out = narrow.data();
  for (const Shares::One& share : columns.each) {
    const std::uint32_t* pixel = row + share.first;
    const float* weight = columns.weights.data() + share.weights;
    float mix[kChannels] = {};
    for (std::size_t i = 0; i < share.count; ++i) {
      for (std::size_t channel = 0; channel < kChannels; ++channel) {
        mix[channel] += weight[i] * static_cast<float>(pixel[i] >> (8 * channel) & 0xFF);
      }
    }
    out = std::copy_n(mix, kChannels, out);
  }
  return narrow;
}

void AddRow(Row& sum, const Row& row, float weight) {
  for (std::size_t i = 0; i < sum.size(); ++i) sum[i] += weight * row[i];
}

void PutPixels(const Row& row, std::uint32_t* out) {
  const auto byte = [](float value) { return static_cast<std::uint32_t>(std::min(value, 255.0f)); };
  for (std::size_t i = 0; i < row.size(); i += kChannels) {
    *out++ = byte(row[i + 2]) << 16 | byte(row[i + 1]) << 8 | byte(row[i]);
  }
}

}  // namespace

bool Resample(PixelSize from, const NextRow& next, PixelSize to, std::uint32_t* out) {
  const Shares columns(from.width, to.width), lines(from.height, to.height);
  const auto width = static_cast<std::size_t>(to.width);
  std::deque<Row> rows;  // of the new width, from `first` on
  int first = 0;
  Row sum(width * kChannels);
  for (const Shares::One& share : lines.each) {
    for (; first < share.first && !rows.empty(); ++first) rows.pop_front();
    while (rows.size() < share.count) {
      const std::uint32_t* const row = next();
      if (!row) return false;
      rows.push_back(Narrowed(row, columns));
    }
    std::fill(sum.begin(), sum.end(), 0.5f);  // what follows is cut, not rounded
    for (std::size_t i = 0; i < share.count; ++i) AddRow(sum, rows[i], lines.weights[share.weights + i]);
    PutPixels(sum, out);
    out += width;
  }
  return true;
}

}  // namespace ui::win32
