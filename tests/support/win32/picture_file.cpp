#include "support/win32/picture_file.hpp"

#include <algorithm>
namespace Gdiplus {
using std::max;
using std::min;
}  // namespace Gdiplus
#include <objidl.h>

#include <gdiplus.h>

#include <set>

#include "platform/win32/wide.hpp"
#include "ui/win32/gdi.hpp"

namespace support {
namespace {

constexpr CLSID kPngEncoder = {0x557CF406, 0x1A04, 0x11D3, {0x9A, 0x73, 0x00, 0x00, 0xF8, 0x1E, 0xF3, 0x2E}};

BITMAPINFO Layout(int width, int height) {
  BITMAPINFO info{};
  info.bmiHeader.biSize = sizeof info.bmiHeader;
  info.bmiHeader.biWidth = width;
  info.bmiHeader.biHeight = -height;  // rows from the top
  info.bmiHeader.biPlanes = 1;
  info.bmiHeader.biBitCount = 32;
  info.bmiHeader.biCompression = BI_RGB;
  return info;
}

}  // namespace

std::size_t WindowPicture::Colours(RECT area) const {
  if (IsRectEmpty(&area)) area = {0, 0, width, height};
  std::set<std::uint32_t> found;
  for (LONG y = area.top; y < area.bottom; ++y) {
    const auto line = pixels.begin() + static_cast<std::ptrdiff_t>(y) * width;
    found.insert(line + area.left, line + area.right);
  }
  return found.size();
}

WindowPicture TakePicture(HWND window) {
  RECT client{};
  GetClientRect(window, &client);
  WindowPicture picture{static_cast<int>(client.right), static_cast<int>(client.bottom), {}};
  const HDC source = GetDC(window);
  const ui::win32::UniqueDc memory(CreateCompatibleDC(source));
  const BITMAPINFO info = Layout(picture.width, picture.height);
  void* bits = nullptr;
  const ui::win32::UniqueBitmap bitmap(CreateDIBSection(source, &info, DIB_RGB_COLORS, &bits, nullptr, 0));
  const HGDIOBJ before = SelectObject(memory.get(), bitmap.get());
  BitBlt(memory.get(), 0, 0, picture.width, picture.height, source, 0, 0, SRCCOPY);
  GdiFlush();
  const auto* first = static_cast<const std::uint32_t*>(bits);
  picture.pixels.assign(first, first + static_cast<std::ptrdiff_t>(picture.width) * picture.height);
  for (std::uint32_t& pixel : picture.pixels) pixel &= 0xFFFFFF;
  SelectObject(memory.get(), before);
  ReleaseDC(window, source);
  return picture;
}

std::optional<std::wstring> PictureFolder() {
  wchar_t folder[MAX_PATH] = L"";
  const DWORD length = GetEnvironmentVariableW(L"LAUNCHER_PICTURES", folder, MAX_PATH);
  if (length == 0 || length >= MAX_PATH) return std::nullopt;
  return folder;
}

bool WritePng(const WindowPicture& picture, const std::wstring& folder, const std::string& name) {
  std::vector<std::uint32_t> pixels = picture.pixels;
  Gdiplus::Bitmap bitmap(picture.width, picture.height, picture.width * 4, PixelFormat32bppRGB,
                         reinterpret_cast<BYTE*>(pixels.data()));
  const std::wstring file = folder + L"\\" + platform::Wide(name) + L".png";
  return bitmap.Save(file.c_str(), &kPngEncoder, nullptr) == Gdiplus::Ok;
}

}  // namespace support
