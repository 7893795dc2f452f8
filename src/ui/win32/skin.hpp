#pragma once

#include <windows.h>

#include <string>

#include "ui/win32/layout.hpp"

// The colours of the skin and the shapes that are drawn rather than loaded.
namespace ui::win32::skin {

inline constexpr COLORREF kPanel = RGB(0x0A, 0x10, 0x26);
inline constexpr COLORREF kBox = RGB(0x06, 0x0B, 0x1C);
inline constexpr COLORREF kBoxText = RGB(0xF2, 0xE6, 0xC4);
inline constexpr COLORREF kBorder = RGB(0x8D, 0x6F, 0x38);
inline constexpr COLORREF kCaption = RGB(0xF3, 0xD6, 0x90);
inline constexpr COLORREF kChosen = RGB(0x24, 0x36, 0x6C);
inline constexpr COLORREF kFocus = RGB(0xFF, 0xD7, 0x78);
inline constexpr COLORREF kDimmed = RGB(0x7C, 0x84, 0x9C);
inline constexpr COLORREF kGroove = RGB(0x02, 0x04, 0x0C);

void DrawBox(HDC dc, const RECT& rect, int line);
void DrawProgress(HDC dc, RECT rect, double share);  // the filled part, 0 to 1 of the width
void DrawButton(HDC dc, const RECT& rect, int line, bool pressed);
void DrawArrow(HDC dc, const RECT& rect, COLORREF colour);  // of a drop-down list
void DrawRadio(HDC dc, const RECT& rect, bool on);
void DrawTick(HDC dc, const RECT& rect, int line, bool on);

// Text as a row of the layout wants it; a single line stands in the middle of its height.
void DrawLabel(HDC dc, RECT rect, HFONT font, COLORREF colour, Align align, Lines lines,
               const std::wstring& text);

}  // namespace ui::win32::skin
