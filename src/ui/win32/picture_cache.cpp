#include "ui/win32/picture_cache.hpp"

// GDI+ asks for these two by their bare names.
#include <algorithm>
namespace Gdiplus {
using std::max;
using std::min;
}  // namespace Gdiplus
#include <objidl.h>

#include <gdiplus.h>

#include <cstring>

#include "ui/win32/dpi.hpp"
#include "ui/win32/resample.hpp"

namespace ui::win32 {
namespace {

// A picture over this many pixels is no skin.
constexpr UINT kLargestSide = 8192;

bool Decode(const std::string& path, Pixels& pixels) {
  Gdiplus::Bitmap bitmap(platform::Wide(path).c_str());
  if (bitmap.GetLastStatus() != Gdiplus::Ok) return false;
  const UINT width = bitmap.GetWidth(), height = bitmap.GetHeight();
  if (width == 0 || height == 0 || width > kLargestSide || height > kLargestSide) return false;
  const Gdiplus::Rect whole(0, 0, static_cast<int>(width), static_cast<int>(height));
  pixels.width = static_cast<int>(width);
  pixels.height = static_cast<int>(height);
  pixels.data.resize(static_cast<std::size_t>(width) * height);
  // Straight into place: large pictures decide how much memory the program ever needs.
  Gdiplus::BitmapData data{};
  data.Width = width;
  data.Height = height;
  data.Stride = static_cast<INT>(width * sizeof(std::uint32_t));
  data.PixelFormat = PixelFormat32bppRGB;
  data.Scan0 = pixels.data.data();
  constexpr UINT kMode = Gdiplus::ImageLockModeRead | Gdiplus::ImageLockModeUserInputBuf;
  if (bitmap.LockBits(&whole, kMode, PixelFormat32bppRGB, &data) != Gdiplus::Ok) return false;
  bitmap.UnlockBits(&data);
  return true;
}

UniqueBitmap ToBitmap(const Pixels& pixels) {
  BITMAPINFO info{};
  info.bmiHeader.biSize = sizeof info.bmiHeader;
  info.bmiHeader.biWidth = pixels.width;
  info.bmiHeader.biHeight = -pixels.height;  // rows from the top
  info.bmiHeader.biPlanes = 1;
  info.bmiHeader.biBitCount = 32;
  info.bmiHeader.biCompression = BI_RGB;
  void* bits = nullptr;
  UniqueBitmap bitmap(CreateDIBSection(nullptr, &info, DIB_RGB_COLORS, &bits, nullptr, 0));
  if (bitmap) std::memcpy(bits, pixels.data.data(), pixels.data.size() * 4);
  return bitmap;
}

}  // namespace

PictureCache::PictureCache() {
  Gdiplus::GdiplusStartupInput input;
  Gdiplus::GdiplusStartup(&token_, &input, nullptr);
}

PictureCache::~PictureCache() {
  if (token_) Gdiplus::GdiplusShutdown(token_);
}

HBITMAP PictureCache::Picture(const std::string& path, int width, int height) {
  if (path.empty() || width <= 0 || height <= 0) return nullptr;
  const auto [found, isNew] = pictures_.try_emplace({path, width, height});
  Pixels pixels;
  if (isNew && Decode(path, pixels)) found->second = ToBitmap(Resampled(pixels, width, height));
  return found->second.get();
}

HCURSOR PictureCache::Cursor(const std::string& path, int dpi) {
  const auto [found, isNew] = cursors_.try_emplace({path, dpi});
  if (isNew) {
    const int size = SystemMetricAt(SM_CXCURSOR, dpi);
    found->second.reset(static_cast<HCURSOR>(
        LoadImageW(nullptr, platform::Wide(path).c_str(), IMAGE_CURSOR, size, size, LR_LOADFROMFILE)));
  }
  return found->second.get();
}

UniqueIcon PictureCache::Icon(const std::string& path, int size) {
  const std::wstring file = platform::Wide(path);
  UniqueIcon icon(
      static_cast<HICON>(LoadImageW(nullptr, file.c_str(), IMAGE_ICON, size, size, LR_LOADFROMFILE)));
  if (icon) return icon;
  Gdiplus::Bitmap bitmap(file.c_str());
  HICON made = nullptr;
  if (bitmap.GetLastStatus() == Gdiplus::Ok) bitmap.GetHICON(&made);
  return UniqueIcon(made);
}

void PictureCache::Forget(const std::string& path) {
  std::erase_if(pictures_, [&](const auto& entry) { return std::get<0>(entry.first) == path; });
}

void PictureCache::Clear() {
  pictures_.clear();
  cursors_.clear();
}

}  // namespace ui::win32
