#pragma once

#include <windows.h>

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace support {

// What a window shows, 0x00RRGGBB in rows from the top.
struct WindowPicture {
  int width = 0, height = 0;
  std::vector<std::uint32_t> pixels;

  // How many different colours it has below `area` (of the whole when empty): one for a window that was not
  // painted.
  std::size_t Colours(RECT area = {}) const;
};

// The client area of a window, with its children, as it stands on the screen's surface.
WindowPicture TakePicture(HWND window);

// The folder that pictures are wanted in, a Windows path; none when nobody wants any.
std::optional<std::wstring> PictureFolder();

// Writes `name`.png into a folder; false when it cannot be written.
bool WritePng(const WindowPicture& picture, const std::wstring& folder, const std::string& name);

}  // namespace support
