#include "ui/win32/dpi.hpp"

#include "ui/win32/system_library.hpp"

namespace ui::win32 {
namespace {

using GetDpiForWindowFn = UINT(WINAPI*)(HWND);
using GetDpiForMonitorFn = HRESULT(WINAPI*)(HMONITOR, int, UINT*, UINT*);
using AdjustForDpiFn = BOOL(WINAPI*)(RECT*, DWORD, BOOL, DWORD, UINT);
using MetricsForDpiFn = int(WINAPI*)(int, UINT);

int SystemDpi() {
  const HDC screen = GetDC(nullptr);
  const int dpi = GetDeviceCaps(screen, LOGPIXELSY);
  ReleaseDC(nullptr, screen);
  return dpi > 0 ? dpi : kDesignDpi;
}

}  // namespace

int DpiOf(HWND window) {
  static const auto forWindow = SystemFunction<GetDpiForWindowFn>(L"user32.dll", "GetDpiForWindow");
  if (forWindow) {
    if (const UINT dpi = forWindow(window)) return static_cast<int>(dpi);
  }
  // Windows 8.1 has per-monitor scaling only here.
  static const auto forMonitor = SystemFunction<GetDpiForMonitorFn>(L"shcore.dll", "GetDpiForMonitor");
  UINT x = 0, y = 0;
  if (forMonitor && SUCCEEDED(forMonitor(MonitorFromWindow(window, MONITOR_DEFAULTTOPRIMARY), 0, &x, &y)) &&
      y > 0) {
    return static_cast<int>(y);
  }
  return SystemDpi();
}

void GrowToWindow(RECT& client, DWORD style, DWORD extendedStyle, int dpi) {
  static const auto forDpi = SystemFunction<AdjustForDpiFn>(L"user32.dll", "AdjustWindowRectExForDpi");
  if (forDpi && forDpi(&client, style, FALSE, extendedStyle, static_cast<UINT>(dpi))) return;
  AdjustWindowRectEx(&client, style, FALSE, extendedStyle);
}

RECT WorkAreaOf(HWND window) {
  MONITORINFO info{};
  info.cbSize = sizeof info;
  if (GetMonitorInfoW(MonitorFromWindow(window, MONITOR_DEFAULTTOPRIMARY), &info)) return info.rcWork;
  RECT work{};
  SystemParametersInfoW(SPI_GETWORKAREA, 0, &work, 0);
  return work;
}

int SystemMetricAt(int metric, int dpi) {
  static const auto forDpi = SystemFunction<MetricsForDpiFn>(L"user32.dll", "GetSystemMetricsForDpi");
  return forDpi ? forDpi(metric, static_cast<UINT>(dpi)) : GetSystemMetrics(metric);
}

}  // namespace ui::win32
