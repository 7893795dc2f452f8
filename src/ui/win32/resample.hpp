#pragma once

#include <cstdint>
#include <functional>

namespace ui::win32 {

struct PixelSize {
  int width = 0, height = 0;
};

// The next row of a picture from the top, 0x00RRGGBB each; null when it cannot be had. Valid until the next
// call.
using NextRow = std::function<const std::uint32_t*()>;

// Brings a picture to another size while its rows come in, so that it is never held whole: each new pixel is
// the mean of the area that it covers, or lies between its neighbours where the picture grows. `out` takes
// the whole result, rows from the top. False when a row was missing.
bool Resample(PixelSize from, const NextRow& next, PixelSize to, std::uint32_t* out);

}  // namespace ui::win32
