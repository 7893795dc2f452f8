// The least that a program with a window can be: what the launcher's start and its idling are measured
// beside.
#include <windows.h>

namespace {

constexpr wchar_t kClass[] = L"EmptyWindow";

LRESULT CALLBACK Procedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
  if (message == WM_DESTROY) PostQuitMessage(0);
  if (message == WM_PAINT) {
    PAINTSTRUCT paint;
    const HDC dc = BeginPaint(window, &paint);
    RECT half = paint.rcPaint;
    half.right /= 2;
    FillRect(dc, &half, static_cast<HBRUSH>(GetStockObject(BLACK_BRUSH)));
    EndPaint(window, &paint);
    return 0;
  }
  return DefWindowProcW(window, message, wParam, lParam);
}

}  // namespace

int WINAPI wWinMain(HINSTANCE instance, HINSTANCE, LPWSTR, int) {
  WNDCLASSEXW info{};
  info.cbSize = sizeof info;
  info.lpfnWndProc = &Procedure;
  info.hInstance = instance;
  info.hCursor = LoadCursorW(nullptr, IDC_ARROW);
  info.hbrBackground = static_cast<HBRUSH>(GetStockObject(WHITE_BRUSH));
  info.lpszClassName = kClass;
  RegisterClassExW(&info);
  CreateWindowExW(0, kClass, L"Empty window", WS_POPUP | WS_VISIBLE, 100, 100, 900, 560, nullptr, nullptr,
                  instance, nullptr);
  MSG message;
  while (GetMessageW(&message, nullptr, 0, 0) > 0) DispatchMessageW(&message);
  return 0;
}
