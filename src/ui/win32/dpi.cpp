#include "ui/win32/dpi.hpp"

#include <memory>

namespace ui::win32 {
namespace {

// A function of a library that is loaded anyway; null where this Windows does not have it.
template <class Function>
Function Find(const wchar_t* library, const char* name) {
  const HMODULE module = GetModuleHandleW(library);
  if (!module) return nullptr;
  return reinterpret_cast<Function>(reinterpret_cast<void*>(GetProcAddress(module, name)));
}

using GetDpiForWindowFn = UINT(WINAPI*)(HWND);
using GetDpiForMonitorFn = HRESULT(WINAPI*)(HMONITOR, int, UINT*, UINT*);
using AdjustForDpiFn = BOOL(WINAPI*)(RECT*, DWORD, BOOL, DWORD, UINT);
using MetricsForDpiFn = int(WINAPI*)(int, UINT);

GetDpiForMonitorFn MonitorFunction() {
  // Windows 8.1 has per-monitor scaling only here; stays loaded for the process.
  static const HMODULE shcore = LoadLibraryExW(L"shcore.dll", nullptr, LOAD_LIBRARY_SEARCH_SYSTEM32);
  return shcore ? Find<GetDpiForMonitorFn>(L"shcore.dll", "GetDpiForMonitor") : nullptr;
}

int SystemDpi() {
  const HDC screen = GetDC(nullptr);
  const int dpi = GetDeviceCaps(screen, LOGPIXELSY);
  ReleaseDC(nullptr, screen);
  return dpi > 0 ? dpi : kDesignDpi;
}

}  // namespace

int DpiOf(HWND window) {
  static const auto forWindow = Find<GetDpiForWindowFn>(L"user32.dll", "GetDpiForWindow");
  if (forWindow) {
    if (const UINT dpi = forWindow(window)) return static_cast<int>(dpi);
  }
  static const auto forMonitor = MonitorFunction();
  UINT x = 0, y = 0;
  if (forMonitor && SUCCEEDED(forMonitor(MonitorFromWindow(window, MONITOR_DEFAULTTOPRIMARY), 0, &x, &y)) &&
      y > 0) {
    return static_cast<int>(y);
  }
  return SystemDpi();
}

void GrowToWindow(RECT& client, DWORD style, DWORD extendedStyle, int dpi) {
  static const auto forDpi = Find<AdjustForDpiFn>(L"user32.dll", "AdjustWindowRectExForDpi");
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
  static const auto forDpi = Find<MetricsForDpiFn>(L"user32.dll", "GetSystemMetricsForDpi");
  return forDpi ? forDpi(metric, static_cast<UINT>(dpi)) : GetSystemMetrics(metric);
}

}  // namespace ui::win32
