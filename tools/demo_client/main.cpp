// Stands in for the game client in the demonstration: a plain window that shows the command line it was
// started with, and ends when it is closed or Esc is pressed.
#include <windows.h>

#include <string>

namespace {

constexpr const wchar_t* kTitle = L"KVN-DX8";
constexpr int kWidth = 860, kHeight = 260, kMargin = 24;  // pixels at 96 DPI

std::wstring Shown() {
  std::wstring program(32768, L'\0');  // the longest path there is
  program.resize(GetModuleFileNameW(nullptr, program.data(), static_cast<DWORD>(program.size())));
  return L"El juego ha comenzado.\n\nPrograma:\n" + program + L"\n\nLínea de comandos recibida:\n" +
         GetCommandLineW();
}

void Paint(HWND window) {
  PAINTSTRUCT paint;
  const HDC context = BeginPaint(window, &paint);
  RECT area;
  GetClientRect(window, &area);
  InflateRect(&area, -kMargin, -kMargin);
  NONCLIENTMETRICSW metrics{};
  metrics.cbSize = sizeof metrics;
  SystemParametersInfoW(SPI_GETNONCLIENTMETRICS, metrics.cbSize, &metrics, 0);
  metrics.lfMessageFont.lfHeight = -16;
  const HFONT font = CreateFontIndirectW(&metrics.lfMessageFont);
  const HGDIOBJ before = SelectObject(context, font);
  const std::wstring text = Shown();
  DrawTextW(context, text.c_str(), static_cast<int>(text.size()), &area,
            DT_NOPREFIX | DT_WORDBREAK | DT_EDITCONTROL);
  SelectObject(context, before);
  DeleteObject(font);
  EndPaint(window, &paint);
}

LRESULT CALLBACK Procedure(HWND window, UINT message, WPARAM wide, LPARAM longer) {
  switch (message) {
    case WM_PAINT:
      Paint(window);
      return 0;
    case WM_KEYDOWN:
      if (wide == VK_ESCAPE) DestroyWindow(window);
      return 0;
    case WM_DESTROY:
      PostQuitMessage(0);
      return 0;
    default:
      return DefWindowProcW(window, message, wide, longer);
  }
}

}  // namespace

int WINAPI wWinMain(HINSTANCE instance, HINSTANCE, PWSTR, int show) {
  WNDCLASSW kind{};
  kind.lpfnWndProc = Procedure;
  kind.hInstance = instance;
  kind.hCursor = LoadCursorW(nullptr, IDC_ARROW);
  kind.hbrBackground = GetSysColorBrush(COLOR_WINDOW);
  kind.lpszClassName = kTitle;
  RegisterClassW(&kind);
  const HWND window = CreateWindowW(kTitle, kTitle, WS_OVERLAPPEDWINDOW, CW_USEDEFAULT, CW_USEDEFAULT, kWidth,
                                    kHeight, nullptr, nullptr, instance, nullptr);
  if (!window) return 1;
  ShowWindow(window, show);
  MSG message;
  while (GetMessageW(&message, nullptr, 0, 0) > 0) {
    TranslateMessage(&message);
    DispatchMessageW(&message);
  }
  return 0;
}
