#pragma once

#include <windows.h>

#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <thread>

#include "controls/main_window.hpp"
#include "platform/win32/event_loop_win32.hpp"
#include "platform/win32/wide.hpp"
#include "startup/launcher_settings.hpp"
#include "support/test_services.hpp"
#include "ui/frmMain.hpp"
#include "ui/win32/layout.hpp"
#include "ui/win32/win32_screen.hpp"

namespace support {

// The middle of a control, in its window.
inline POINT MiddleOf(ui::win32::Win32Screen& screen, const controls::Window& shown,
                      const std::string& name) {
  const ui::win32::LayoutRow& row = *ui::win32::LayoutOf(shown.Name()).Find(name);
  const double scale = 15.0 / screen.TwipsPerPixel(shown);
  return {static_cast<LONG>((row.x + row.width / 2.0) * scale),
          static_cast<LONG>((row.y + row.height / 2.0) * scale)};
}

inline HWND ChildAt(ui::win32::Win32Screen& screen, const controls::Window& shown, const std::string& name) {
  return ChildWindowFromPointEx(screen.HandleOf(shown), MiddleOf(screen, shown, name), CWP_ALL);
}

// Handles events until the condition holds; false when it does not in good time.
inline bool HandleUntil(platform::EventLoop& events, const std::function<bool()>& condition) {
  const auto end = GetTickCount64() + 10'000;
  while (!condition()) {
    if (GetTickCount64() > end) return false;
    events.WaitEvents(10);
  }
  return true;
}

// The main window as a real one, driven by real messages, with nothing behind its buttons.
struct WindowWorld : TestServices {
  // Loads and shows it with the pictures that are then in the graphics folder.
  void Load() {
    Ask("0");
    Loop().preTranslate = [this](MSG& message) { return screen.Translate(message); };
    main.Form_Load(true);
    main.btnIniciar.EnableButton(true);
    main.btnConfig.EnableButton(true);
    handle = screen.HandleOf(window);
    SetForegroundWindow(handle);
    host.events->DoEvents();
  }

  platform::Win32EventLoop& Loop() { return dynamic_cast<platform::Win32EventLoop&>(*host.events); }
  void Ask(const char* show) {
    host.settings->Set(startup::keys::kApplication, startup::keys::kConfig, startup::keys::kShow, show);
  }
  ui::frmMain::Actions Actions() {
    ui::frmMain::Actions made;
    made.LoadGameConfig = made.RestoreHosts = made.SwitchURL = made.ComenzarActualizacion = [] {};
    made.GetServersList = made.UnloadOptions = made.ClearNotify = made.CloseLauncher = [] {};
    made.ServerListEmpty = [] { return false; };
    made.Iniciar = [this] { ++plays; };
    made.ReiniciarUpdates = [this] { ++repairs; };
    made.ShowOptions = [this] { ++options; };
    made.DownloadFile = [](const std::string&, const std::string&) { return true; };
    return made;
  }

  bool Until(const std::function<bool()>& condition) { return HandleUntil(*host.events, condition); }
  HWND Child(const controls::ImageControl& image) {
    return FindWindowExW(handle, nullptr, L"BUTTON", platform::Wide(image.description).c_str());
  }
  COLORREF Shown(const controls::ImageControl& image) {
    const HWND child = Child(image);
    const HDC dc = GetDC(child);
    const COLORREF colour = GetPixel(dc, 10, 10);
    ReleaseDC(child, dc);
    return colour;
  }
  bool Shows(const controls::ImageControl& image, COLORREF colour) {
    return Until([&] { return Shown(image) == colour; });
  }
  void Send(HWND to, UINT message, WPARAM keys, int x, int y) {
    SendMessageW(to, message, keys, MAKELPARAM(x, y));
  }
  void Point(const controls::ImageControl& image) { Send(Child(image), WM_MOUSEMOVE, 0, 12, 12); }
  void Click(const controls::ImageControl& image) {
    Point(image);
    Send(Child(image), WM_LBUTTONDOWN, MK_LBUTTON, 12, 12);
    Send(Child(image), WM_LBUTTONUP, 0, 12, 12);
  }
  // `repeats`: how often the system tells of the key again while it is held down.
  void Key(int key, int repeats = 0) {
    for (int i = 0; i <= repeats; ++i) {
      PostMessageW(GetFocus() ? GetFocus() : handle, WM_KEYDOWN, static_cast<WPARAM>(key),
                   i == 0 ? 1 : 0x40000001);
      host.events->DoEvents();
    }
    PostMessageW(GetFocus() ? GetFocus() : handle, WM_KEYUP, static_cast<WPARAM>(key),
                 static_cast<LPARAM>(0xC0000001));
    host.events->DoEvents();
  }
  void TrayMouse(int number) { SendMessageW(FindWindowW(L"LauncherTray", nullptr), WM_MOUSEMOVE, 0, number); }

  // Opens the tray's menu, looks at it while it is open, and closes it.
  void WithMenu(const std::function<void(HMENU)>& look) {
    bool looked = false;
    std::thread looker([&] {
      HWND menu = nullptr;
      for (int i = 0; i < 500 && !(menu = FindWindowW(L"#32768", nullptr)); ++i) Sleep(20);
      if (!menu) return;
      look(reinterpret_cast<HMENU>(SendMessageW(menu, 0x01E1 /* MN_GETHMENU */, 0, 0)));
      looked = true;
      while (FindWindowW(L"#32768", nullptr) == menu) {
        PostMessageW(menu, WM_KEYDOWN, VK_ESCAPE, 1);
        Sleep(20);
      }
    });
    TrayMouse(WM_RBUTTONUP);
    looker.join();
    EXPECT_TRUE(looked);
  }

  web::Hosts hosts;
  ui::win32::Win32Screen screen;
  controls::MainWindow window{host.events->Timers()};
  int plays = 0, repairs = 0, options = 0;
  ui::frmMain main{services, hosts, screen, window, Actions()};
  HWND handle = nullptr;
};

}  // namespace support
