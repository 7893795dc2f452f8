#include "ui/win32/picture_cache.hpp"

// GDI+ asks for these two by their bare names.
#include <algorithm>
namespace Gdiplus {
using std::max;
using std::min;
}  // namespace Gdiplus
#include <objidl.h>

#include <gdiplus.h>

#include "ui/win32/dpi.hpp"
#include "ui/win32/picture_file.hpp"

namespace ui::win32 {

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
  if (isNew) found->second = ReadPicture(path, width, height);
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
