#include <gtest/gtest.h>
#include <windows.h>

#include <atomic>
#include <chrono>
#include <memory>
#include <thread>

#include "platform/win32/handles.hpp"
#include "ui/win32/shell_icon.hpp"

namespace {

using namespace std::chrono_literals;

// Stands where programs look for the shell, and hears nothing before it is told to.
class DeafShell {
 public:
  DeafShell() {
    thread_ = std::jthread([this] { Live(); });
    WaitForSingleObject(made_.get(), INFINITE);
  }
  ~DeafShell() {
    Hear();
    PostThreadMessageW(threadId_, WM_QUIT, 0, 0);
  }
  void Hear() { SetEvent(hears_.get()); }
  bool InWay() const { return FindWindowW(L"Shell_TrayWnd", nullptr) == window_; }
  std::atomic<int> told = 0;

 private:
  static LRESULT CALLBACK Procedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
    auto* shell = reinterpret_cast<DeafShell*>(GetWindowLongPtrW(window, GWLP_USERDATA));
    if (message != WM_COPYDATA || !shell) return DefWindowProcW(window, message, wParam, lParam);
    ++shell->told;
    return TRUE;
  }

  void Live() {
    WNDCLASSEXW info{};
    info.cbSize = sizeof info;
    info.lpfnWndProc = &DeafShell::Procedure;
    info.hInstance = GetModuleHandleW(nullptr);
    info.lpszClassName = L"Shell_TrayWnd";
    RegisterClassExW(&info);
    window_ = CreateWindowExW(WS_EX_TOPMOST, info.lpszClassName, L"", WS_POPUP, 0, 0, 0, 0, nullptr, nullptr,
                              info.hInstance, nullptr);
    SetWindowLongPtrW(window_, GWLP_USERDATA, reinterpret_cast<LONG_PTR>(this));
    threadId_ = GetCurrentThreadId();
    SetEvent(made_.get());
    WaitForSingleObject(hears_.get(), INFINITE);
    MSG message;
    while (GetMessageW(&message, nullptr, 0, 0) > 0) DispatchMessageW(&message);
    DestroyWindow(window_);
    UnregisterClassW(info.lpszClassName, info.hInstance);
  }

  platform::unique_event made_{CreateEventW(nullptr, TRUE, FALSE, nullptr)};
  platform::unique_event hears_{CreateEventW(nullptr, TRUE, FALSE, nullptr)};
  HWND window_ = nullptr;
  DWORD threadId_ = 0;
  std::jthread thread_;
};

TEST(ShellIcon, AShellThatDoesNotAnswerHoldsNobodyUpAndHearsTheLastWordLater) {
  DeafShell shell;
  ASSERT_TRUE(shell.InWay());
  const auto icon =
      std::make_shared<const ui::win32::UniqueIcon>(CopyIcon(LoadIconW(nullptr, IDI_APPLICATION)));
  {
    ui::win32::ShellIcon tray(GetDesktopWindow(), WM_MOUSEMOVE);
    for (int second = 0; second < 10; ++second) tray.Want(ui::win32::ShellIcon::Look{icon, L"tip"});
    tray.Await(1ms);
    EXPECT_EQ(shell.told, 0);
    shell.Hear();
    tray.Await(10s);
    EXPECT_GE(shell.told, 1);
    EXPECT_LE(shell.told, 2) << "what was said in between was said in vain";
    shell.told = 0;
  }
  EXPECT_EQ(shell.told, 1) << "the icon goes with the program";
}

}  // namespace
