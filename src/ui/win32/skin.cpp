#include "ui/win32/skin.hpp"

#include <algorithm>
namespace Gdiplus {
using std::max;
using std::min;
}  // namespace Gdiplus
#include <objidl.h>

#include <gdiplus.h>

#include "ui/win32/gdi.hpp"

namespace ui::win32::skin {
namespace {

Gdiplus::Color Solid(COLORREF colour) {
  return Gdiplus::Color(255, GetRValue(colour), GetGValue(colour), GetBValue(colour));
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
  Gdiplus::Graphics graphics(dc);
  graphics.SetSmoothingMode(Gdiplus::SmoothingModeAntiAlias);
  const auto middle = static_cast<float>(rect.left + rect.right) / 2;
  const auto centre = static_cast<float>(rect.top + rect.bottom) / 2;
  const float reach = static_cast<float>(Height(rect)) / 5;
  const Gdiplus::PointF corners[] = {{middle - reach, centre - reach / 2},
                                     {middle + reach, centre - reach / 2},
                                     {middle, centre + reach / 2}};
  const Gdiplus::SolidBrush brush(Solid(colour));
  graphics.FillPolygon(&brush, corners, 3);
}

void DrawRadio(HDC dc, const Palette& palette, const RECT& rect, bool on) {
  Gdiplus::Graphics graphics(dc);
  graphics.SetSmoothingMode(Gdiplus::SmoothingModeAntiAlias);
  const auto size = static_cast<float>(Width(rect)) - 1;
  const auto left = static_cast<float>(rect.left), top = static_cast<float>(rect.top);
  const Gdiplus::SolidBrush inside(Solid(palette.box));
  const Gdiplus::Pen ring(Solid(palette.border), std::max(size / 12, 1.0f));
  graphics.FillEllipse(&inside, left, top, size, size);
  graphics.DrawEllipse(&ring, left, top, size, size);
  if (!on) return;
  const Gdiplus::SolidBrush dot(Solid(palette.focus));
  graphics.FillEllipse(&dot, left + size * 0.27f, top + size * 0.27f, size * 0.46f, size * 0.46f);
}

void DrawTick(HDC dc, const Palette& palette, const RECT& rect, int line, bool on) {
  DrawBox(dc, palette, rect, line);
  if (!on) return;
  Gdiplus::Graphics graphics(dc);
  graphics.SetSmoothingMode(Gdiplus::SmoothingModeAntiAlias);
  const auto size = static_cast<float>(Width(rect));
  const auto left = static_cast<float>(rect.left), top = static_cast<float>(rect.top);
  const Gdiplus::PointF stroke[] = {{left + size * 0.22f, top + size * 0.52f},
                                    {left + size * 0.42f, top + size * 0.72f},
                                    {left + size * 0.78f, top + size * 0.28f}};
  const Gdiplus::Pen pen(Solid(palette.focus), size / 8);
  graphics.DrawLines(&pen, stroke, 3);
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
