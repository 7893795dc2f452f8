// Starts a program and measures it from outside:
//   window_probe KEEP_SECONDS PROGRAM
// prints "painted MS" once its window shows more than one colour, keeps it running for those seconds, prints
// "memory KB" (the most it held) and ends it.
#include <windows.h>
// after windows.h, which it builds on
#include <psapi.h>

#include <cstdio>
#include <cwchar>

#include "platform/win32/handles.hpp"

namespace {

constexpr ULONGLONG kPatienceMs = 60'000;

struct Sought {
  DWORD process;
  HWND window;
};

BOOL CALLBACK Look(HWND window, LPARAM data) {
  auto& sought = *reinterpret_cast<Sought*>(data);
  DWORD owner = 0;
  GetWindowThreadProcessId(window, &owner);
  RECT bounds{};
  GetWindowRect(window, &bounds);
  if (owner != sought.process || !IsWindowVisible(window) || bounds.right - bounds.left < 100) return TRUE;
  sought.window = window;
  return FALSE;
}

// Whether the screen shows at least two colours where the window stands.
bool IsPainted(HWND window) {
  RECT bounds{};
  GetWindowRect(window, &bounds);
  const HDC screen = GetDC(nullptr);
  const int width = bounds.right - bounds.left, height = bounds.bottom - bounds.top;
  const COLORREF first = GetPixel(screen, bounds.left + width / 4, bounds.top + height / 2);
  bool differs = false;
  for (int i = 1; i < 8 && !differs; ++i) {
    differs = GetPixel(screen, bounds.left + width * i / 8, bounds.top + height * 2 / 3) != first;
  }
  ReleaseDC(nullptr, screen);
  return differs;
}

int Fail(const char* what) {
  std::fprintf(stderr, "window_probe: %s\n", what);
  return 1;
}

}  // namespace

int wmain(int count, wchar_t** arguments) {
  if (count != 3) return Fail("window_probe KEEP_SECONDS PROGRAM");
  const auto keepMs = static_cast<DWORD>(std::wcstoul(arguments[1], nullptr, 10)) * 1000;
  LARGE_INTEGER second{}, from{}, to{};
  QueryPerformanceFrequency(&second);
  QueryPerformanceCounter(&from);
  STARTUPINFOW start{};
  start.cb = sizeof start;
  PROCESS_INFORMATION made{};
  if (!CreateProcessW(arguments[2], nullptr, nullptr, nullptr, FALSE, 0, nullptr, nullptr, &start, &made)) {
    return Fail("the program does not start");
  }
  const platform::unique_process process(made.hProcess);
  const platform::unique_thread thread(made.hThread);
  Sought sought{made.dwProcessId, nullptr};
  const ULONGLONG end = GetTickCount64() + kPatienceMs;
  for (;;) {
    sought.window = nullptr;
    EnumWindows(&Look, reinterpret_cast<LPARAM>(&sought));
    if (sought.window && IsPainted(sought.window)) break;
    if (GetTickCount64() > end) {
      TerminateProcess(process.get(), 1);
      return Fail("no window was painted");
    }
    Sleep(1);
  }
  QueryPerformanceCounter(&to);
  std::printf("painted %.0f\n",
              static_cast<double>(to.QuadPart - from.QuadPart) * 1000 / static_cast<double>(second.QuadPart));
  std::fflush(stdout);
  Sleep(keepMs);
  PROCESS_MEMORY_COUNTERS memory{};
  GetProcessMemoryInfo(process.get(), &memory, sizeof memory);
  std::printf("memory %zu\n", static_cast<std::size_t>(memory.PeakWorkingSetSize / 1024));
  TerminateProcess(process.get(), 0);
  WaitForSingleObject(process.get(), 10'000);
  return 0;
}
