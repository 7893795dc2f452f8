#include "ui/win32/gdi.hpp"

#include <algorithm>
#include <utility>

namespace ui::win32 {
namespace {

RECT ClientOf(HWND window) {
  RECT client{};
  GetClientRect(window, &client);
  return client;
}

}  // namespace

UniqueBitmap MakePixels(int width, int height, std::uint32_t*& pixels) {
  BITMAPINFO info{};
  info.bmiHeader.biSize = sizeof info.bmiHeader;
  info.bmiHeader.biWidth = width;
  info.bmiHeader.biHeight = -height;
  info.bmiHeader.biPlanes = 1;
  info.bmiHeader.biBitCount = 32;
  info.bmiHeader.biCompression = BI_RGB;
  void* bits = nullptr;
  UniqueBitmap bitmap(CreateDIBSection(nullptr, &info, DIB_RGB_COLORS, &bits, nullptr, 0));
  pixels = static_cast<std::uint32_t*>(bits);
  return bitmap;
}

Canvas::Canvas(HDC like, int width, int height)
    : Canvas(like, UniqueBitmap(CreateCompatibleBitmap(like, std::max(width, 1), std::max(height, 1)))) {}

Canvas::Canvas(HDC like, UniqueBitmap bitmap)
    : dc_(CreateCompatibleDC(like)),
      bitmap_(std::move(bitmap)),
      before_(SelectObject(dc_.get(), bitmap_.get())) {}

Canvas::~Canvas() { SelectObject(dc_.get(), before_); }

BufferedPaint::BufferedPaint(HWND window)
    : window_(window),
      target_(BeginPaint(window, &paint_)),
      client_(ClientOf(window)),
      canvas_(target_, Width(client_), Height(client_)) {
  SetBkMode(canvas_.Dc(), TRANSPARENT);
}

BufferedPaint::~BufferedPaint() {
  const RECT& dirty = paint_.rcPaint;
  BitBlt(target_, dirty.left, dirty.top, Width(dirty), Height(dirty), canvas_.Dc(), dirty.left, dirty.top,
         SRCCOPY);
  EndPaint(window_, &paint_);
}

std::wstring TextOf(HWND window) {
  std::wstring text(static_cast<std::size_t>(GetWindowTextLengthW(window)) + 1, L'\0');
  text.resize(static_cast<std::size_t>(GetWindowTextW(window, text.data(), static_cast<int>(text.size()))));
  return text;
}

void Fill(HDC dc, const RECT& rect, COLORREF colour) {
  SetDCBrushColor(dc, colour);
  FillRect(dc, &rect, static_cast<HBRUSH>(GetStockObject(DC_BRUSH)));
}

void Outline(HDC dc, RECT rect, int thickness, COLORREF colour) {
  Fill(dc, {rect.left, rect.top, rect.right, rect.top + thickness}, colour);
  Fill(dc, {rect.left, rect.bottom - thickness, rect.right, rect.bottom}, colour);
  Fill(dc, {rect.left, rect.top, rect.left + thickness, rect.bottom}, colour);
  Fill(dc, {rect.right - thickness, rect.top, rect.right, rect.bottom}, colour);
}

}  // namespace ui::win32
