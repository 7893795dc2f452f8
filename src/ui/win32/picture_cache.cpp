#include "ui/win32/picture_cache.hpp"

#include <utility>

#include "ui/win32/dpi.hpp"
#include "ui/win32/picture_file.hpp"

namespace ui::win32 {

namespace {

bool IsNoPicture(const std::string& path, int width, int height) {
  return path.empty() || width <= 0 || height <= 0;
}

}  // namespace

void PictureCache::Prepare(const std::string& path, int width, int height) {
  const PictureKey key{path, width, height};
  if (!IsNoPicture(path, width, height) && !pictures_.contains(key)) reader_.Begin(key);
}

HBITMAP PictureCache::Picture(const std::string& path, int width, int height) {
  if (IsNoPicture(path, width, height)) return nullptr;
  const auto [found, isNew] = pictures_.try_emplace({path, width, height});
  if (isNew) found->second = reader_.Take(found->first);
  return found->second.get();
}

UniqueBitmap PictureCache::OwnPicture(const std::string& path, int width, int height) {
  return IsNoPicture(path, width, height) ? UniqueBitmap{} : reader_.Take({path, width, height});
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
  return icon ? std::move(icon) : ReadIcon(path, size);
}

void PictureCache::Clear() {
  pictures_.clear();
  cursors_.clear();
  reader_.DropAll();
}

}  // namespace ui::win32
