#pragma once

#include <windows.h>
// after windows.h, which it builds on
#include <wincodec.h>

#include <string>

#include "ui/win32/gdi.hpp"
#include "ui/win32/unique_com.hpp"

namespace ui::win32 {

// The system's reader and writer of pictures; null when it has none. The caller's thread has COM.
UniqueCom<IWICImagingFactory> MakeImagingFactory();

// The picture of a file (UTF-8, full path) in exactly this size; null when it cannot be read. It is read row
// by row: a background drawn for twice the scale would decide how much memory the program ever needs. The
// caller's thread has COM.
UniqueBitmap ReadPicture(const std::string& path, int width, int height);
// The same as an icon, with the picture's transparency.
UniqueIcon ReadIcon(const std::string& path, int size);

}  // namespace ui::win32
