#include <windows.h>
// after windows.h, which it builds on
#include <oleacc.h>

#include <gtest/gtest.h>

#include "support/settings_form.hpp"
#include "support/win32/one_colour.hpp"
#include "support/win32/window_world.hpp"
#include "ui/win32/layout.hpp"
#include "ui/win32/system_library.hpp"
#include "ui/win32/unique_com.hpp"

namespace {

using ui::win32::UniqueCom;

VARIANT Self() {
  VARIANT self{};
  self.vt = VT_I4;
  self.lVal = CHILDID_SELF;
  return self;
}

// What a screen reader is told of a window.
struct Heard {
  explicit Heard(HWND window) {
    using FromWindow = HRESULT(WINAPI*)(HWND, DWORD, REFIID, void**);
    const auto fromWindow =
        ui::win32::SystemFunction<FromWindow>(L"oleacc.dll", "AccessibleObjectFromWindow");
    object = ui::win32::Made<IAccessible>([&](IAccessible** made) {
      return fromWindow(window, static_cast<DWORD>(OBJID_CLIENT), IID_IAccessible,
                        reinterpret_cast<void**>(made));
    });
  }
  LONG Role() const { return Number(&IAccessible::get_accRole); }
  LONG State() const { return Number(&IAccessible::get_accState); }
  std::string Name() const { return Text(&IAccessible::get_accName); }
  std::string Value() const { return Text(&IAccessible::get_accValue); }
  std::string Action() const { return Text(&IAccessible::get_accDefaultAction); }
  bool Press() const { return SUCCEEDED(object->accDoDefaultAction(Self())); }

  LONG Number(HRESULT (STDMETHODCALLTYPE IAccessible::*get)(VARIANT, VARIANT*)) const {
    VARIANT value{};
    (object.get()->*get)(Self(), &value);
    return value.vt == VT_I4 ? value.lVal : -1;
  }
  std::string Text(HRESULT (STDMETHODCALLTYPE IAccessible::*get)(VARIANT, BSTR*)) const {
    BSTR text = nullptr;
    (object.get()->*get)(Self(), &text);
    const std::string narrow = text ? platform::Narrow(text) : "";
    SysFreeString(text);
    return narrow;
  }

  UniqueCom<IAccessible> object;
};

struct WindowsAccessibleTest : testing::Test, support::WindowWorld {
  WindowsAccessibleTest() { Load(); }
  HWND At(const controls::Window& shown, const std::string& name) {
    return support::ChildAt(screen, shown, name);
  }
  // The text of the label that stands before a window, which is how a reader names a box.
  static std::string LabelBefore(HWND child) {
    const HWND before = GetWindow(child, GW_HWNDPREV);
    wchar_t kind[16] = L"";
    GetClassNameW(before, kind, 16);
    return lstrcmpiW(kind, L"STATIC") == 0 ? platform::Narrow(ui::win32::TextOf(before)) : "";
  }
};

TEST_F(WindowsAccessibleTest, ButtonsOfTheMainWindowSayWhatTheyAreAndWhetherTheyCanBePressed) {
  main.btnConfig.EnableButton(false);
  const struct {
    const controls::ImageControl& image;
    const char* name;
    bool pressable;
  } cases[] = {{window.cmdIniciar, "¡Jugar!", true},
               {window.cmdConfig, "Configuración", false},
               {window.cmdReiniciarUpdates, "Reparar", true},
               {window.cmdReportar, "WhatsApp", true},
               {window.cmdCreditos, "Ayuda", false},
               {window.cmdMinimize, "Minimizar", true},
               {window.cmdClose, "Cerrar: ocultar junto al reloj", true}};
  for (const auto& row : cases) {
    const Heard heard(At(window, row.image.Name()));
    ASSERT_TRUE(heard.object) << row.name;
    EXPECT_EQ(heard.Name(), row.name);
    EXPECT_EQ(heard.Role(), ROLE_SYSTEM_PUSHBUTTON) << row.name;
    EXPECT_EQ((heard.State() & STATE_SYSTEM_UNAVAILABLE) == 0, row.pressable) << row.name;
    EXPECT_EQ(heard.Action(), row.pressable ? "Pulsar" : "") << row.name;
    EXPECT_EQ(heard.State() & STATE_SYSTEM_INVISIBLE, 0) << row.name;
  }
  const Heard play(At(window, "cmdIniciar"));
  EXPECT_TRUE(play.State() & STATE_SYSTEM_FOCUSED) << "where the keyboard starts";
  EXPECT_TRUE(play.Press());
  EXPECT_TRUE(Until([&] { return plays == 1; }));
  EXPECT_FALSE(Heard(At(window, "cmdCreditos")).Press());
}

TEST_F(WindowsAccessibleTest, ProgressIsToldInPercentAndAsAFailure) {
  const Heard bar(At(window, "ProgressBar1"));
  window.ProgressBar1.Value = 38.8;
  EXPECT_EQ(bar.Role(), ROLE_SYSTEM_PROGRESSBAR);
  EXPECT_EQ(bar.Name() + " " + bar.Value(), "Progreso 39%");
  window.ProgressBar1.Failed = true;
  EXPECT_EQ(bar.Value(), "Error");
}

TEST_F(WindowsAccessibleTest, WhatWasAskedForOutlivesItsWindow) {
  HWND gone = At(window, "cmdIniciar");
  const Heard heard(gone);
  screen.Detach(window);
  ASSERT_FALSE(IsWindow(gone));
  EXPECT_EQ(heard.Name(), "");
  EXPECT_EQ(heard.State() & STATE_SYSTEM_CHECKED, 0);
  screen.Attach(window);
}

TEST_F(WindowsAccessibleTest, TheKeyboardWalksByImportance) {
  EXPECT_EQ(GetFocus(), At(window, "cmdIniciar"));
  SetFocus(nullptr);
  SendMessageW(handle, WM_ACTIVATE, WA_INACTIVE,
               0);  // the desktop takes the keyboard before a control has it
  SetFocus(handle);
  EXPECT_EQ(GetFocus(), At(window, "cmdIniciar"));
  for (const char* next :
       {"cmdConfig", "cmdReiniciarUpdates", "cmdReportar", "cmdMinimize", "cmdClose", "cmdIniciar"}) {
    Key(VK_TAB);
    EXPECT_EQ(GetFocus(), At(window, next)) << next;
  }
}

TEST_F(WindowsAccessibleTest, SettingsSayTheirStateAndHaveTheirLabelsBeforeThem) {
  support::SettingsForm settings(*this, screen);
  const auto& config = settings.gameIni.Config();
  ui::frmOpciones& options = settings.form;
  options.Show(window);
  options.CustomK.Show(options.Window);
  options.MessagesConfigurateds.Show(options.Window);
  for (const ui::Check& check : ui::kChecks) {
    const std::string name = (options.Window.*check.control).Name();
    const Heard heard(At(options.Window, name));
    for (int i = 0; i < 2; ++i) {
      const bool on = config.*check.field;
      EXPECT_EQ(heard.Role(), ROLE_SYSTEM_CHECKBUTTON) << name;
      EXPECT_EQ(heard.Name(), (options.Window.*check.caption).Caption.Get());
      EXPECT_EQ((heard.State() & STATE_SYSTEM_CHECKED) != 0, on) << name;
      EXPECT_EQ(heard.Action(), on ? "Desmarcar" : "Marcar") << name;
      EXPECT_TRUE(heard.Press());
      EXPECT_TRUE(Until([&] { return config.*check.field != on; })) << name;
    }
  }
  const std::tuple<const controls::Window*, const char*, const char*> boxes[] = {
      {&options.Window, "cmbVideo_Mode", "Modo de video:"},
      {&options.Window, "cmbFPS", "Límite de FPS:"},
      {&options.Window, "cmbMemory", "Memoria de video:"},
      {&options.Window, "cmbWavsList", "Sonido por número (1 a 305):"},
      {&options.Window, "txtCantMensajes", "mensajes"},
      {&options.CustomK.Window, "Text1(4)", "Seg. de Resucitación"},
      {&options.MessagesConfigurateds.Window, "messageTxt(9)", "Mensaje 10:"},
  };
  for (const auto& [shown, box, label] : boxes) EXPECT_EQ(LabelBefore(At(*shown, box)), label) << box;
  const HWND keys = screen.HandleOf(options.CustomK.Window);
  EXPECT_TRUE(FindWindowExW(keys, nullptr, L"BUTTON", L"Opciones Personales")) << "the frame can be read";
  EXPECT_TRUE(Heard(At(options.CustomK.Window, "imgAcept")).State() & STATE_SYSTEM_UNAVAILABLE);
}

TEST_F(WindowsAccessibleTest, HighContrastTakesPicturesAndColoursAway) {
  folder.Put("RECURSOS/GRAFICOS/Launcher.jpg", support::OneColour(RGB(9, 9, 9)));
  window.Picture = folder / "RECURSOS/GRAFICOS/Launcher.jpg";
  const auto ground = [&] {
    host.events->DoEvents();
    const HDC dc = GetDC(handle);
    const COLORREF seen = GetPixel(dc, 300, 200);
    ReleaseDC(handle, dc);
    return seen;
  };
  EXPECT_TRUE(Until([&] { return ground() == RGB(9, 9, 9); }));
  screen.Look().wantsContrast = [] { return true; };
  SendMessageW(handle, WM_SYSCOLORCHANGE, 0, 0);
  EXPECT_TRUE(Until([&] { return ground() == GetSysColor(COLOR_WINDOW); }));
  screen.Look().wantsContrast = [] { return false; };
  SendMessageW(handle, WM_SETTINGCHANGE, SPI_SETHIGHCONTRAST, 0);
  EXPECT_TRUE(Until([&] { return ground() == RGB(9, 9, 9); }));
}

TEST_F(WindowsAccessibleTest, WindowGrowsWithTheTexts) {
  constexpr const wchar_t* kKey = L"Software\\Microsoft\\Accessibility";
  constexpr const wchar_t* kValue = L"TextScaleFactor";
  const ui::Area before = screen.Bounds(window);
  DWORD percent = 125;
  RegSetKeyValueW(HKEY_CURRENT_USER, kKey, kValue, REG_DWORD, &percent, sizeof percent);
  SendMessageW(handle, WM_SETTINGCHANGE, 0, 0);
  const ui::Area grown = screen.Bounds(window);
  EXPECT_EQ(grown.Width(), before.Width() * 5 / 4);
  EXPECT_EQ(grown.Height(), before.Height() * 5 / 4);
  RegDeleteKeyValueW(HKEY_CURRENT_USER, kKey, kValue);
  SendMessageW(handle, WM_SETTINGCHANGE, 0, 0);
  EXPECT_EQ(screen.Bounds(window).Width(), before.Width());
}

TEST_F(WindowsAccessibleTest, WindowWhoseMonitorIsGoneComesBack) {
  const ui::Area work = screen.WorkArea();
  const std::pair<int, int> places[] = {{-5000, 100}, {100, 9000}, {work.right - 20, work.top}};
  for (const auto& [left, top] : places) {
    screen.MoveTo(window, left, top);
    SendMessageW(handle, WM_DISPLAYCHANGE, 32, MAKELPARAM(work.right, work.bottom));
    const ui::Area bounds = screen.Bounds(window);
    EXPECT_TRUE(bounds.left >= work.left && bounds.right <= work.right && bounds.top >= work.top &&
                bounds.bottom <= work.bottom)
        << left << "," << top;
  }
  window.Visible = false;
  screen.MoveTo(window, -5000, -5000);
  window.Visible = true;
  EXPECT_GE(screen.Bounds(window).left, work.left) << "it went while the window was hidden";
  screen.MoveTo(window, work.left - 100, work.top + 10);
  SendMessageW(handle, WM_DISPLAYCHANGE, 32, MAKELPARAM(work.right, work.bottom));
  EXPECT_EQ(screen.Bounds(window).left, work.left - 100) << "where the player put it";
}

}  // namespace
