#pragma once

#include <windows.h>

#include <map>
#include <string>

#include "platform/win32/com_apartment.hpp"
#include "ui/win32/gdi.hpp"
#include "ui/win32/picture_reader.hpp"

namespace ui::win32 {

// Pictures and cursors of the skin, read and brought to size once. Everything returned belongs to the cache.
class PictureCache {
 public:
  // Pictures will be asked for soon.
  void Expect() { reader_.Expect(); }
  // Begins to read a picture that will be asked for soon.
  void Prepare(const std::string& path, int width, int height);
  // The picture of a file (full path), resampled to exactly this size; null when it cannot be read.
  HBITMAP Picture(const std::string& path, int width, int height);
  // As Picture, for a surface that keeps it: owned by the caller, and not in the cache.
  UniqueBitmap OwnPicture(const std::string& path, int width, int height);
  HCURSOR Cursor(const std::string& path, int dpi);
  // An icon made of any icon or picture file; null when it cannot be read. Owned by the caller.
  UniqueIcon Icon(const std::string& path, int size);

  void Clear();  // after a change of scale; pictures in use must be asked for again

 private:
  platform::ComApartment apartment_;
  std::map<PictureKey, UniqueBitmap> pictures_;
  std::map<std::pair<std::string, int>, UniqueCursor> cursors_;
  PictureReader reader_;
};

}  // namespace ui::win32
