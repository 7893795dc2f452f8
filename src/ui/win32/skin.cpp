#include "ui/win32/skin.hpp"

#include <algorithm>
#include <cmath>
#include <iterator>

#include "ui/win32/gdi.hpp"
#include "ui/win32/resample.hpp"

namespace ui::win32::skin {
namespace {

constexpr int kFine = 4;  // pixels drawn along each side of one that is shown

// What the drawing of a smooth shape draws on: kFine times as large as what is shown.
class FineSurface {
 public:
  FineSurface(HDC dc, int width, int height) : dc_(dc), width_(width), height_(height) {}

  HDC Dc() const { return dc_; }
  double Width() const { return width_ * kFine; }
  double Height() const { return height_ * kFine; }
  POINT At(double x, double y) const {  // as shares of the sides
    return {std::lround(x * Width()), std::lround(y * Height())};
  }
  void Use(HGDIOBJ pen, COLORREF inside) const {
    SelectObject(dc_, pen);
    SelectObject(dc_, GetStockObject(DC_BRUSH));
    SetDCBrushColor(dc_, inside);
  }
  void Circle(double from, double to) const {
    const POINT corner = At(from, from), opposite = At(to, to);
    Ellipse(dc_, corner.x, corner.y, opposite.x, opposite.y);
  }

 private:
  HDC dc_;
  int width_, height_;
};

UniquePen PenOf(double width, COLORREF colour) {
  return UniquePen(CreatePen(PS_SOLID, static_cast<int>(std::lround(width)), colour));
}

// Draws over what is there, many times as large, and brings it back to size: the system's own drawing has
// hard edges.
template <class Drawing>
void DrawSmooth(HDC dc, const RECT& rect, const Drawing& draw) {
  const int width = Width(rect), height = Height(rect);
  std::uint32_t *fine = nullptr, *shown = nullptr;
  UniqueBitmap large = MakePixels(width * kFine, height * kFine, fine);
  UniqueBitmap small = MakePixels(width, height, shown);
  if (!large || !small) return;
  const Canvas drawn(dc, std::move(large)), result(dc, std::move(small));
  StretchBlt(drawn.Dc(), 0, 0, width * kFine, height * kFine, dc, rect.left, rect.top, width, height,
             SRCCOPY);
  const int state = SaveDC(drawn.Dc());
  draw(FineSurface(drawn.Dc(), width, height));
  RestoreDC(drawn.Dc(), state);
  GdiFlush();  // before the pixels are read past the system
  const auto next = [&fine, width] { return std::exchange(fine, fine + width * kFine); };
  Resample({width * kFine, height * kFine}, next, {width, height}, shown);
  BitBlt(dc, rect.left, rect.top, width, height, result.Dc(), 0, 0, SRCCOPY);
}

// The colour at `share` of the way from one to the next.
COLORREF Between(COLORREF from, COLORREF to, double share) {
  const auto mix = [share](int a, int b) { return static_cast<int>(a + (b - a) * share + 0.5); };
  return RGB(mix(GetRValue(from), GetRValue(to)), mix(GetGValue(from), GetGValue(to)),
             mix(GetBValue(from), GetBValue(to)));
}

constexpr COLORREF kWhite = RGB(255, 255, 255), kBlack = RGB(0, 0, 0);

// From light above to shade below, the colour itself in the middle.
void FillRounded(HDC dc, const RECT& rect, COLORREF colour) {
  const int height = Height(rect);
  for (int y = 0; y < height; ++y) {
    const double at = height > 1 ? static_cast<double>(y) / (height - 1) : 0.5;
    const COLORREF line = at < 0.5 ? Between(Between(colour, kWhite, 0.45), colour, at * 2)
                                   : Between(colour, Between(colour, kBlack, 0.4), at * 2 - 1);
    Fill(dc, {rect.left, rect.top + y, rect.right, rect.top + y + 1}, line);
  }
}

UINT Flags(Align align, Lines lines) {
  UINT flags = DT_NOPREFIX;
  flags |= align == Align::Center ? DT_CENTER : align == Align::Right ? DT_RIGHT : DT_LEFT;
  switch (lines) {
    case Lines::Single:
      return flags | DT_SINGLELINE | DT_VCENTER | DT_END_ELLIPSIS;
    case Lines::Path:
      return flags | DT_SINGLELINE | DT_VCENTER | DT_PATH_ELLIPSIS;
    case Lines::Wrapped:
      break;
  }
  return flags | DT_WORDBREAK | DT_EDITCONTROL | DT_END_ELLIPSIS;
}

}  // namespace

void DrawBox(HDC dc, const Palette& palette, const RECT& rect, int line) {
  Fill(dc, rect, palette.box);
  Outline(dc, rect, line, palette.border);
}

void DrawProgress(HDC dc, const Palette& palette, RECT rect, double share, bool failed) {
  Fill(dc, rect, palette.groove);
  if (palette.plain) Outline(dc, rect, 1, palette.border);
  RECT filled = rect;
  filled.right = static_cast<int>(rect.left + Width(rect) * std::clamp(share, 0.0, 1.0) + 0.5);
  const COLORREF colour = failed ? palette.failed : palette.done;
  if (palette.plain) {
    Fill(dc, filled, colour);
  } else {
    FillRounded(dc, filled, colour);
  }
}

void DrawButton(HDC dc, const Palette& palette, const RECT& rect, int line, bool pressed) {
  const COLORREF top = palette.plain ? palette.box : palette.chosen;
  const COLORREF foot = palette.plain ? palette.box : Between(palette.chosen, palette.box, 0.6);
  const int height = Height(rect);
  for (int y = 0; y < height; ++y) {
    const double at = static_cast<double>(y) / std::max(height - 1, 1);
    const COLORREF colour = Between(top, foot, pressed ? 1 - at : at);
    Fill(dc, {rect.left, rect.top + y, rect.right, rect.top + y + 1}, colour);
  }
  Outline(dc, rect, pressed && palette.plain ? 2 * line : line, palette.border);
}

void DrawArrow(HDC dc, const RECT& rect, COLORREF colour) {
  DrawSmooth(dc, rect, [colour](const FineSurface& surface) {
    const double down = 0.2, across = down * surface.Height() / surface.Width();
    const POINT corners[] = {surface.At(0.5 - across, 0.5 - down / 2),
                             surface.At(0.5 + across, 0.5 - down / 2), surface.At(0.5, 0.5 + down / 2)};
    surface.Use(GetStockObject(NULL_PEN), colour);
    Polygon(surface.Dc(), corners, static_cast<int>(std::size(corners)));
  });
}

void DrawRadio(HDC dc, const Palette& palette, const RECT& rect, bool on) {
  DrawSmooth(dc, rect, [&](const FineSurface& surface) {
    const double line = std::max(surface.Width() / 12, static_cast<double>(kFine));
    const double margin = line / 2 / surface.Width();
    const UniquePen ring = PenOf(line, palette.border);
    surface.Use(ring.get(), palette.box);
    surface.Circle(margin, 1 - margin);
    if (on) {
      surface.Use(GetStockObject(NULL_PEN), palette.focus);
      surface.Circle(0.27, 0.73);
    }
  });
}

void DrawTick(HDC dc, const Palette& palette, const RECT& rect, int line, bool on) {
  DrawBox(dc, palette, rect, line);
  if (!on) return;
  DrawSmooth(dc, rect, [&](const FineSurface& surface) {
    const POINT stroke[] = {surface.At(0.22, 0.52), surface.At(0.42, 0.72), surface.At(0.78, 0.28)};
    const UniquePen pen = PenOf(surface.Width() / 8, palette.focus);
    surface.Use(pen.get(), palette.focus);
    Polyline(surface.Dc(), stroke, static_cast<int>(std::size(stroke)));
  });
}

void DrawLabel(HDC dc, RECT rect, HFONT font, COLORREF colour, Align align, Lines lines,
               const std::wstring& text) {
  const HGDIOBJ before = SelectObject(dc, font);
  SetBkMode(dc, TRANSPARENT);
  SetTextColor(dc, colour);
  UINT flags = Flags(align, lines);
  if (align == Align::Right) {  // a drawn text may be a little wider than the system reckons
    rect.right -= Height(rect) / 8;
    flags |= DT_NOCLIP;
  }
  DrawTextW(dc, text.c_str(), static_cast<int>(text.size()), &rect, flags);
  SelectObject(dc, before);
}

}  // namespace ui::win32::skin
