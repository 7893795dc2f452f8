#pragma once

#include <cstdint>
#include <vector>

namespace ui::win32 {

struct Pixels {
  int width = 0, height = 0;
  std::vector<std::uint32_t> data;  // 0x00RRGGBB, rows from the top
};

// `source` at another size: each new pixel is the mean of the area that it covers, or lies between its
// neighbours where the picture grows.
Pixels Resampled(const Pixels& source, int width, int height);

}  // namespace ui::win32
