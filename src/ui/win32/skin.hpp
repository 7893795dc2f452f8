#pragma once

#include <windows.h>

#include <string>

#include "ui/win32/layout.hpp"
#include "ui/win32/theme.hpp"

// The shapes that are drawn rather than loaded, in the colours of the skin or of high contrast.
namespace ui::win32::skin {

void DrawBox(HDC dc, const Palette& palette, const RECT& rect, int line);
// The filled part, 0 to 1 of the width.
void DrawProgress(HDC dc, const Palette& palette, RECT rect, double share, bool failed);
void DrawButton(HDC dc, const Palette& palette, const RECT& rect, int line, bool pressed);
void DrawArrow(HDC dc, const RECT& rect, COLORREF colour);  // of a drop-down list
void DrawRadio(HDC dc, const Palette& palette, const RECT& rect, bool on);
void DrawTick(HDC dc, const Palette& palette, const RECT& rect, int line, bool on);

// Text as a row of the layout wants it; a single line stands in the middle of its height.
void DrawLabel(HDC dc, RECT rect, HFONT font, COLORREF colour, Align align, Lines lines,
               const std::wstring& text);

}  // namespace ui::win32::skin
