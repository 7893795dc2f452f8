#pragma once

#include <windows.h>

#include <map>
#include <string>
#include <tuple>

#include "platform/win32/com_apartment.hpp"
#include "ui/win32/gdi.hpp"

namespace ui::win32 {

// Pictures and cursors of the skin, read and brought to size once. Everything returned belongs to the cache.
class PictureCache {
 public:
  PictureCache();
  ~PictureCache();
  PictureCache(const PictureCache&) = delete;

  // The picture of a file (full path), resampled to exactly this size; null when it cannot be read.
  HBITMAP Picture(const std::string& path, int width, int height);
  HCURSOR Cursor(const std::string& path, int dpi);
  // An icon made of any icon or picture file; null when it cannot be read. Owned by the caller.
  UniqueIcon Icon(const std::string& path, int size);

  void Forget(const std::string& path);  // frees its pictures in every size
  void Clear();                          // after a change of scale; pictures in use must be asked for again

 private:
  platform::ComApartment apartment_;
  ULONG_PTR token_ = 0;
  std::map<std::tuple<std::string, int, int>, UniqueBitmap> pictures_;
  std::map<std::pair<std::string, int>, UniqueCursor> cursors_;
};

}  // namespace ui::win32
