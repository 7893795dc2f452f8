#include <windows.h>

#include <gtest/gtest.h>

#include <thread>

#include "support/win32/gui_objects.hpp"
#include "support/win32/one_colour.hpp"
#include "support/win32/window_world.hpp"
#include "ui/frmNotify.hpp"
#include "ui/win32/win32_dialogs.hpp"

namespace {

constexpr const char* kStems[] = {"cerrar", "help", "minimizar", "jugar", "config", "reparar", "whatsapp"};
constexpr COLORREF kNormal = RGB(0, 0, 200), kHover = RGB(0, 200, 0), kPressed = RGB(200, 0, 0);

// Real windows of the main window and the news pop-up, driven by real messages.
struct WindowsMainWindowTest : testing::Test, support::WindowWorld {
  WindowsMainWindowTest() {
    const std::pair<const char*, COLORREF> states[] = {{"_n", kNormal}, {"_a", kHover}, {"_c", kPressed}};
    for (const char* stem : kStems) {
      for (const auto& [state, colour] : states) {
        folder.Put(std::string("RECURSOS/GRAFICOS/") + stem + state + ".jpg", support::OneColour(colour));
      }
    }
    folder.Put("RECURSOS/GRAFICOS/Launcher.jpg", support::OneColour(RGB(9, 9, 9)));
    Load();
  }
};

// Moves the system's own pointer, so that the window under it is found by the system too.
TEST_F(WindowsMainWindowTest, RealPointerBringsTheHoverTexts) {
  const auto moveTo = [&](HWND target, int x, int y) {
    POINT at{x, y};
    ClientToScreen(target, &at);
    SetCursorPos(at.x, at.y);
  };
  const auto pointAt = [&](const controls::ImageControl& image) { moveTo(Child(image), 12, 12); };
  pointAt(window.cmdIniciar);
  EXPECT_TRUE(Until([&] { return window.lblEstado.Caption.Get() == "¡Iniciar la aventura de Kelvarin!"; }));
  EXPECT_TRUE(Shows(window.cmdIniciar, kHover));
  EXPECT_FALSE(window.lblErrorWhatsApp.Visible);
  pointAt(window.cmdReportar);
  EXPECT_TRUE(Until([&] { return window.lblErrorWhatsApp.Visible.Get(); }));
  EXPECT_EQ(window.lblEstado.Caption.Get(), "¡Iniciar la aventura de Kelvarin!");
  moveTo(handle, 300, 200);
  EXPECT_TRUE(Until([&] { return window.lblEstado.Caption.Get().empty(); }));
  EXPECT_TRUE(window.lblErrorWhatsApp.Visible) << "the bare window leaves it";
  EXPECT_TRUE(Shows(window.cmdReportar, kNormal));
  pointAt(window.cmdReiniciarUpdates);
  EXPECT_TRUE(Until([&] { return window.lblEstado.Caption.Get().starts_with("¿Errores en el juego?"); }));
  EXPECT_FALSE(window.lblErrorWhatsApp.Visible);
}

TEST_F(WindowsMainWindowTest, RestingPointerDoesNotClearTheStatus) {
  Send(handle, WM_MOUSEMOVE, 0, 5, 5);
  window.lblEstado.Caption = std::string("Descargando");
  Send(handle, WM_MOUSEMOVE, 0, 5, 5);
  EXPECT_EQ(window.lblEstado.Caption.Get(), "Descargando");
  Send(handle, WM_MOUSEMOVE, 0, 6, 5);
  EXPECT_EQ(window.lblEstado.Caption.Get(), "");
}

int dragRequests = 0;
WNDPROC formProcedure = nullptr;
LRESULT CALLBACK CountDrags(HWND target, UINT message, WPARAM wParam, LPARAM lParam) {
  if (message == WM_NCLBUTTONDOWN && wParam == HTCAPTION) {
    ++dragRequests;
    return 0;
  }
  return CallWindowProcW(formProcedure, target, message, wParam, lParam);
}

TEST_F(WindowsMainWindowTest, BarePartsAndLabelsAskTheSystemToMoveTheWindow) {
  dragRequests = 0;
  formProcedure = reinterpret_cast<WNDPROC>(
      SetWindowLongPtrW(handle, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(&CountDrags)));
  Send(handle, WM_LBUTTONDOWN, MK_LBUTTON, 5, 5);
  EXPECT_EQ(dragRequests, 1);
  RECT label{};
  GetWindowRect(
      FindWindowExW(handle, nullptr, L"STATIC", platform::Wide(window.lblEstado.Caption.Get()).c_str()),
      &label);
  POINT at{label.left + 3, label.top + 3};
  ScreenToClient(handle, &at);
  Send(handle, WM_MOUSEMOVE, MK_LBUTTON, at.x, at.y);
  EXPECT_EQ(dragRequests, 1) << "the press of the first drag, told again";
  Send(handle, WM_MOUSEMOVE, 0, at.x + 1, at.y);
  EXPECT_EQ(dragRequests, 1);
  Send(handle, WM_MOUSEMOVE, MK_LBUTTON, at.x, at.y);
  EXPECT_EQ(dragRequests, 2);
  SetWindowLongPtrW(handle, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(formProcedure));
}

TEST_F(WindowsMainWindowTest, CloseHidesAndADoubleClickOnTheIconRestores) {
  Click(window.cmdClose);
  EXPECT_FALSE(IsWindowVisible(handle));
  EXPECT_FALSE(lifetime.Ending());
  TrayMouse(WM_LBUTTONDBLCLK);
  EXPECT_TRUE(IsWindowVisible(handle));
  EXPECT_FALSE(IsIconic(handle));
  EXPECT_TRUE(Shows(window.cmdReportar, kNormal));
}

TEST_F(WindowsMainWindowTest, KeyHeldDownIsOnePress) {
  SetFocus(Child(window.cmdIniciar));
  Key(VK_RETURN, 5);
  EXPECT_EQ(plays, 1);
  Key(VK_SPACE, 5);
  EXPECT_EQ(plays, 2);
  PostMessageW(handle, WM_KEYDOWN, VK_ESCAPE, 0x40000001);  // held since another window closed by it
  host.events->DoEvents();
  EXPECT_FALSE(lifetime.Ending());
  Key(VK_ESCAPE);
  EXPECT_TRUE(lifetime.Ending());
}

TEST_F(WindowsMainWindowTest, EndOfSessionIsAllowedAndEndsTheProgram) {
  EXPECT_EQ(SendMessageW(handle, WM_QUERYENDSESSION, 0, 0), TRUE);
  SendMessageW(handle, WM_ENDSESSION, FALSE, 0);
  EXPECT_FALSE(lifetime.Ending());
  SendMessageW(handle, WM_ENDSESSION, TRUE, 0);
  EXPECT_TRUE(lifetime.Ending());
}

TEST_F(WindowsMainWindowTest, AMachineThatWokeIsToldAndOneThatFallsAsleepIsNot) {
  int woke = 0;
  screen.resumed = [&woke] { ++woke; };
  SendMessageW(handle, WM_POWERBROADCAST, PBT_APMSUSPEND, 0);
  EXPECT_EQ(woke, 0);
  SendMessageW(handle, WM_POWERBROADCAST, PBT_APMRESUMEAUTOMATIC, 0);
  EXPECT_EQ(woke, 1);
}

TEST_F(WindowsMainWindowTest, NewsStandAboveOthersWithoutTakingTheFocus) {
  ui::frmNotify notify(services, screen);
  const HWND active = GetActiveWindow();
  notify.ShowMessage("texto", "título", 7, 15000);
  const HWND notice = screen.HandleOf(notify.window);
  EXPECT_TRUE(IsWindowVisible(notice));
  EXPECT_TRUE(GetWindowLongPtrW(notice, GWL_EXSTYLE) & WS_EX_TOPMOST);
  EXPECT_EQ(GetActiveWindow(), active);
  const ui::Area work = screen.WorkArea(), bounds = screen.Bounds(notify.window);
  EXPECT_EQ(bounds.right, work.right);
  EXPECT_EQ(bounds.bottom, work.bottom);
  notify.Hide();
  EXPECT_FALSE(IsWindowVisible(notice));
}

// A player whose finger still lies on Enter when the box opens, and who then presses it.
TEST_F(WindowsMainWindowTest, MessageBoxIsAnsweredByAFreshPressOfItsDefaultButton) {
  using platform::DialogAnswer;
  using platform::DialogButtons;
  const struct {
    DialogButtons buttons;
    const char* title;
    DialogAnswer answer;
  } cases[] = {{DialogButtons::YesNo, "reintentar", DialogAnswer::Yes},
               {DialogButtons::RiskyYesNo, "reparar", DialogAnswer::No},
               {DialogButtons::YesNoCancel, "cliente", DialogAnswer::Yes},
               {DialogButtons::Ok, "", DialogAnswer::Ok}};
  ui::win32::Win32Dialogs dialogs;
  dialogs.SetScreen(&screen);
  for (const auto& row : cases) {
    bool survived = false;
    std::wstring title = L"?";
    HWND owner = nullptr;
    std::thread player([&] {
      HWND box = nullptr;
      for (int i = 0; i < 500 && !(box = FindWindowW(L"#32770", nullptr)); ++i) Sleep(20);
      title = ui::win32::TextOf(box);
      owner = GetWindow(box, GW_OWNER);
      GUITHREADINFO focus{};
      focus.cbSize = sizeof focus;
      for (int i = 0; i < 500 && !focus.hwndFocus; ++i) {
        GetGUIThreadInfo(GetWindowThreadProcessId(box, nullptr), &focus);
        Sleep(20);
      }
      for (int i = 0; i < 3; ++i) {
        for (const WPARAM key : {VK_RETURN, VK_SPACE, VK_ESCAPE}) {
          PostMessageW(focus.hwndFocus, WM_KEYDOWN, key, 0x40000001);
        }
      }
      SendMessageW(box, WM_NULL, 0, 0);
      Sleep(100);
      survived = IsWindow(box);
      PostMessageW(focus.hwndFocus, WM_KEYDOWN, VK_RETURN, 1);
    });
    EXPECT_EQ(dialogs.Show("¿?", row.buttons, row.title), row.answer) << row.title;
    player.join();
    EXPECT_TRUE(survived) << row.title;
    EXPECT_EQ(title, platform::Wide(row.title));
    EXPECT_EQ(owner, handle);
  }
}

TEST_F(WindowsMainWindowTest, AnHourOfTicksLeaksNothing) {
  const auto tick = [&](int i) {
    window.lblsize.Caption = std::to_string(i) + " kb";
    window.ProgressBar1.Value = i % 100;
    Point(i % 2 ? window.cmdIniciar : window.cmdReportar);
    Send(handle, WM_MOUSEMOVE, 0, i % 7, 5);
    host.clock.Step(1000);
    host.events->DoEvents();
  };
  for (int i = 0; i < 50; ++i) tick(i);
  const support::GuiObjects before = support::CountGuiObjects();
  ASSERT_GT(before.drawing, 0u);
  for (int i = 0; i < 3600; ++i) tick(i);
  const support::GuiObjects after = support::CountGuiObjects();
  EXPECT_LE(after.drawing, before.drawing + 5);
  EXPECT_LE(after.windows, before.windows);
}

}  // namespace
