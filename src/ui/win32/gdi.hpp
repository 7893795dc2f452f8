#pragma once

#include <windows.h>

#include <memory>
#include <string>
#include <type_traits>

#include "platform/win32/wide.hpp"
#include "ui/screen.hpp"

// Owners of what the drawing functions of the system hand out, and small helpers around them.
namespace ui::win32 {

struct GdiDeleter {
  void operator()(void* object) const { DeleteObject(object); }
};
template <class Handle>
using UniqueGdi = std::unique_ptr<std::remove_pointer_t<Handle>, GdiDeleter>;
using UniqueBitmap = UniqueGdi<HBITMAP>;
using UniqueFont = UniqueGdi<HFONT>;
using UniqueBrush = UniqueGdi<HBRUSH>;

struct DcDeleter {
  void operator()(HDC dc) const { DeleteDC(dc); }
};
using UniqueDc = std::unique_ptr<std::remove_pointer_t<HDC>, DcDeleter>;

struct IconDeleter {
  void operator()(HICON icon) const { DestroyIcon(icon); }
};
using UniqueIcon = std::unique_ptr<std::remove_pointer_t<HICON>, IconDeleter>;

struct CursorDeleter {
  void operator()(HCURSOR cursor) const { DestroyCursor(cursor); }
};
using UniqueCursor = std::unique_ptr<std::remove_pointer_t<HCURSOR>, CursorDeleter>;

struct MenuDeleter {
  void operator()(HMENU menu) const { DestroyMenu(menu); }
};
using UniqueMenu = std::unique_ptr<std::remove_pointer_t<HMENU>, MenuDeleter>;

struct WindowDeleter {
  void operator()(HWND window) const { DestroyWindow(window); }
};
using UniqueWindow = std::unique_ptr<std::remove_pointer_t<HWND>, WindowDeleter>;

// A drawing surface in memory with its bitmap; gives back everything.
class Canvas {
 public:
  Canvas(HDC like, int width, int height);
  ~Canvas();
  Canvas(const Canvas&) = delete;
  HDC Dc() const { return dc_.get(); }

 private:
  UniqueDc dc_;
  UniqueBitmap bitmap_;
  HGDIOBJ before_;
};

// Paints a window's invalid part through memory, so that nothing half drawn is ever seen. The client area is
// the drawing surface.
class BufferedPaint {
 public:
  explicit BufferedPaint(HWND window);
  ~BufferedPaint();
  BufferedPaint(const BufferedPaint&) = delete;
  HDC Dc() const { return canvas_.Dc(); }
  const RECT& Client() const { return client_; }

 private:
  HWND window_;
  PAINTSTRUCT paint_{};
  HDC target_;
  RECT client_{};
  Canvas canvas_;
};

std::wstring TextOf(HWND window);

inline COLORREF Rgb(std::uint32_t rrggbb) {
  return RGB((rrggbb >> 16) & 0xFF, (rrggbb >> 8) & 0xFF, rrggbb & 0xFF);
}
inline Area ToArea(const RECT& rect) {
  return {static_cast<int>(rect.left), static_cast<int>(rect.top), static_cast<int>(rect.right),
          static_cast<int>(rect.bottom)};
}
inline int Width(const RECT& rect) { return static_cast<int>(rect.right - rect.left); }
inline int Height(const RECT& rect) { return static_cast<int>(rect.bottom - rect.top); }

void Fill(HDC dc, const RECT& rect, COLORREF colour);
void Outline(HDC dc, RECT rect, int thickness, COLORREF colour);  // inside the rectangle

}  // namespace ui::win32
