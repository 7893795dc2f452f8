#pragma once

#include <windows.h>

#include <cstdint>
#include <string>

#include "base/unique_handle.hpp"
#include "platform/win32/handles.hpp"
#include "platform/win32/wide.hpp"
#include "ui/screen.hpp"

// Owners of what the drawing functions of the system hand out, and small helpers around them.
namespace ui::win32 {

template <class Handle>
struct GdiTraits : base::NullIsNone<Handle> {
  static void Close(Handle object) { DeleteObject(object); }
};
using UniqueBitmap = base::UniqueHandle<GdiTraits<HBITMAP>>;
using UniqueFont = base::UniqueHandle<GdiTraits<HFONT>>;
using UniqueBrush = base::UniqueHandle<GdiTraits<HBRUSH>>;
using UniquePen = base::UniqueHandle<GdiTraits<HPEN>>;

struct DcTraits : base::NullIsNone<HDC> {
  static void Close(HDC dc) { DeleteDC(dc); }
};
using UniqueDc = base::UniqueHandle<DcTraits>;

struct CursorTraits : base::NullIsNone<HCURSOR> {
  static void Close(HCURSOR cursor) { DestroyCursor(cursor); }
};
using UniqueCursor = base::UniqueHandle<CursorTraits>;

struct MenuTraits : base::NullIsNone<HMENU> {
  static void Close(HMENU menu) { DestroyMenu(menu); }
};
using UniqueMenu = base::UniqueHandle<MenuTraits>;

using UniqueIcon = platform::unique_icon;
using UniqueWindow = platform::unique_window;

// A bitmap whose pixels (0x00RRGGBB, rows from the top) lie in this process's memory at `pixels`.
UniqueBitmap MakePixels(int width, int height, std::uint32_t*& pixels);

// A drawing surface in memory with its bitmap; gives back everything.
class Canvas {
 public:
  Canvas(HDC like, int width, int height);
  Canvas(HDC like, UniqueBitmap bitmap);
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
