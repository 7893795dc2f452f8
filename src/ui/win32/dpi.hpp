#pragma once

#include <windows.h>

// Dots per inch of windows and monitors, on every Windows: where the system lacks a function, the next older
// way.
namespace ui::win32 {

inline constexpr int kDesignDpi = 96;

int DpiOf(HWND window);
// Grows a client area to the window around it.
void GrowToWindow(RECT& client, DWORD style, DWORD extendedStyle, int dpi);
RECT WorkAreaOf(HWND window);  // of the monitor that shows most of it
int SystemMetricAt(int metric, int dpi);

}  // namespace ui::win32
