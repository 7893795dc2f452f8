#include "ui/win32/gdi.hpp"

#include <algorithm>

namespace ui::win32 {
namespace {

RECT ClientOf(HWND window) {
  RECT client{};
  GetClientRect(window, &client);
  return client;
}

}  // namespace

Canvas::Canvas(HDC like, int width, int height)
    : dc_(CreateCompatibleDC(like)),
      bitmap_(CreateCompatibleBitmap(like, std::max(width, 1), std::max(height, 1))),
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
