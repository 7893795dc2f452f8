#include <windows.h>

#include <gtest/gtest.h>

#include <functional>

#include "platform/files.hpp"
#include "support/win32/one_colour.hpp"
#include "support/win32/window_world.hpp"
#include "ui/frmOpciones.hpp"

namespace {

using GC = settings::GameConfig;

constexpr const char* kFile = "RECURSOS/INIT/ConfigVideo.cfg";
constexpr const char* kStems[] = {"cerrar", "teclas",   "donar", "manual",  "mapa", "reglamento",
                                  "web",    "mensajes", "check", "default", "mas",  "menos"};
constexpr COLORREF kNormal = RGB(0, 0, 200), kHover = RGB(0, 200, 0), kPressed = RGB(200, 0, 0);

// The settings' real windows, driven by the messages that a player's mouse and keyboard cause.
struct WindowsOptionsTest : testing::Test, support::TestServices {
  WindowsOptionsTest() {
    const std::pair<const char*, COLORREF> states[] = {{"_n", kNormal}, {"_a", kHover}, {"_c", kPressed}};
    for (const char* stem : kStems) {
      for (const auto& [state, colour] : states) {
        folder.Put(std::string("RECURSOS/GRAFICOS/Opciones/") + stem + state + ".jpg",
                   support::OneColour(colour));
      }
    }
    folder.Put(kFile, "[INIT]\r\nVERSION=1.0.03\r\nFPS=1000\r\nMaxVideoMemory=52428800\r\nVIDEO_MODE=2\r\n");
    gameIni.LoadGameConfig();
    sounds.Load();
    asLoaded = folder.Get(kFile);
    dynamic_cast<platform::Win32EventLoop&>(*host.events).preTranslate = [this](MSG& message) {
      return screen.Translate(message);
    };
    screen.Attach(main);
    main.Visible = true;
    Show();
  }
  ~WindowsOptionsTest() override { screen.Detach(main); }

  void Show() {
    form.Show(main);
    EXPECT_TRUE(Until([&] { return GetForegroundWindow() == Handle(form.Window); }));
  }
  HWND Handle(const controls::Window& window) { return screen.HandleOf(window); }

  bool Until(const std::function<bool()>& condition) { return support::HandleUntil(*host.events, condition); }
  POINT Middle(const controls::Window& window, const std::string& name) {
    return support::MiddleOf(screen, window, name);
  }
  HWND Child(const std::string& name) { return Child(form.Window, name); }
  HWND Child(const controls::Window& window, const std::string& name) {
    return support::ChildAt(screen, window, name);
  }
  std::string TextOf(const std::string& name) { return platform::Narrow(ui::win32::TextOf(Child(name))); }

  // Presses what the system finds below the pointer.
  void Click(const std::string& name) { ClickAt(Handle(form.Window), Middle(form.Window, name)); }
  void ClickAt(HWND window, POINT at) {
    ClientToScreen(window, &at);
    const HWND under = WindowFromPoint(at);
    ScreenToClient(under, &at);
    for (const auto& [message, keys] :
         {std::pair{WM_MOUSEMOVE, 0}, std::pair{WM_LBUTTONDOWN, MK_LBUTTON}, std::pair{WM_LBUTTONUP, 0}}) {
      PostMessageW(under, static_cast<UINT>(message), static_cast<WPARAM>(keys), MAKELPARAM(at.x, at.y));
    }
    host.events->DoEvents();
  }
  void Key(int key) {
    PostMessageW(GetFocus(), WM_KEYDOWN, static_cast<WPARAM>(key), 1);
    PostMessageW(GetFocus(), WM_KEYUP, static_cast<WPARAM>(key), 0xC0000001);
    host.events->DoEvents();
  }
  // Types over what the box with the focus holds.
  void Type(const char* text) {
    SendMessageW(GetFocus(), EM_SETSEL, 0, -1);
    if (!*text) PostMessageW(GetFocus(), WM_CHAR, VK_BACK, 1);
    for (; *text; ++text) PostMessageW(GetFocus(), WM_CHAR, static_cast<WPARAM>(*text), 1);
    host.events->DoEvents();
  }

  bool Shows(const std::string& name, COLORREF colour) {
    const HWND child = Child(name);
    return Until([&] {
      const HDC dc = GetDC(child);
      const COLORREF seen = GetPixel(dc, 5, 5);
      ReleaseDC(child, dc);
      return seen == colour;
    });
  }
  std::string Stored(const std::string& key, const char* file = "ConfigVideo.cfg") {
    return host.profiles->GetVar(folders.InitDir + file, "INIT", key);
  }

  ui::win32::Win32Screen screen;
  settings::modGameIni gameIni{*host.profiles, folders, recorder};
  settings::SoundTable sounds{*host.profiles, folders};
  controls::Window main{"frmMain", "Launcher - Kelvarin"};
  ui::SettingsServices with{services, screen, gameIni, sounds};
  ui::frmOpciones form{with};
  std::string asLoaded;
};

TEST_F(WindowsOptionsTest, ChecksAndTheirCaptionsAreFoundWhereTheyStand) {
  for (const ui::Check& check : ui::kChecks) {
    if (check.traits & ui::kSwitchesEffects) continue;
    const controls::ImageControl& box = form.Window.*check.control;
    for (const std::string& pressed : {box.Name(), (form.Window.*check.caption).Name()}) {
      const bool on = !(gameIni.Config().*check.field);
      Click(pressed);
      EXPECT_EQ(gameIni.Config().*check.field, on) << pressed;
      EXPECT_TRUE(Shows(box.Name(), on ? kPressed : kNormal)) << pressed;
    }
  }
  gameIni.Set(&GC::MusicVolume, 100);
  Click("imgLessMusicVolume");
  Click("imgLessMusicVolume");  // a quick pair is two presses
  EXPECT_EQ(TextOf("lblMusicVolume"), "90%");
}

TEST_F(WindowsOptionsTest, KeyboardReachesAndTogglesTheChecks) {
  SetFocus(Child("chkMiniMap"));
  Key(VK_SPACE);
  EXPECT_EQ(Stored("MiniMapa"), "1");
  Key(VK_TAB);
  EXPECT_EQ(GetFocus(), Child("chkCast"));
  Key(VK_RETURN);
  EXPECT_EQ(Stored("Effect_Cast_Spells"), "1");
  EXPECT_TRUE(Shows("chkCast", kPressed));
  for (int i = 0; i < 100 && GetFocus() != Child("imgDefaultOptions"); ++i) {
    Key(VK_TAB);
    EXPECT_NE(GetFocus(), Child("imgMapa")) << "leads nowhere";
  }
  EXPECT_EQ(GetFocus(), Child("imgDefaultOptions"));
}

TEST_F(WindowsOptionsTest, ListsAreChosenFromByKeyboardAndMouse) {
  SetFocus(Child("cmbFPS"));
  Key(VK_DOWN);
  EXPECT_EQ(Stored("FPS"), "500");
  EXPECT_EQ(ui::win32::TextOf(Handle(form.Window)), L"Efectos de Video - ¡Cambios!");
  const HWND memory = Child("cmbMemory");
  ClickAt(Handle(form.Window), Middle(form.Window, "cmbMemory"));
  ASSERT_TRUE(Until([&] { return SendMessageW(memory, CB_GETDROPPEDSTATE, 0, 0) != 0; }));
  COMBOBOXINFO info{};
  info.cbSize = sizeof info;
  GetComboBoxInfo(memory, &info);
  RECT entry{};
  SendMessageW(info.hwndList, LB_GETITEMRECT, 3, reinterpret_cast<LPARAM>(&entry));
  for (const UINT message : {WM_LBUTTONDOWN, WM_LBUTTONUP}) {
    SendMessageW(info.hwndList, message, 0, MAKELPARAM(entry.left + 5, entry.top + 5));
  }
  EXPECT_EQ(Stored("MaxVideoMemory"), "314572800");
  EXPECT_EQ(TextOf("lblMemory"), "300 MB");
  SetFocus(Child("cmbVideo_Mode"));
  Key(VK_HOME);
  EXPECT_EQ(Stored("VIDEO_MODE") + TextOf("cmbVideo_Mode"), "0Sofware");
  SendMessageW(memory, CB_SHOWDROPDOWN, TRUE, 0);
  SetFocus(memory);
  Key(VK_ESCAPE);
  EXPECT_TRUE(IsWindowVisible(Handle(form.Window))) << "closes the list only";
  EXPECT_EQ(SendMessageW(memory, CB_GETDROPPEDSTATE, 0, 0), 0);
}

TEST_F(WindowsOptionsTest, WheelTurnsOnlyTheListThatHasTheFocus) {
  const auto turn = [&](const char* list) {
    SendMessageW(Child(list), WM_MOUSEWHEEL, MAKEWPARAM(0, -WHEEL_DELTA), 0);
    host.events->DoEvents();
  };
  SetFocus(Child("chkMiniMap"));
  for (const char* list : {"cmbFPS", "cmbMemory", "cmbVideo_Mode", "cmbWavsList"}) turn(list);
  EXPECT_EQ(folder.Get(kFile), asLoaded);
  EXPECT_EQ(TextOf("cmbFPS") + TextOf("cmbWavsList"), "10001");
  SetFocus(Child("cmbFPS"));
  turn("cmbFPS");
  EXPECT_EQ(Stored("FPS"), "500");
  Click("cmbWavsList");
  turn("cmbWavsList");
  EXPECT_EQ(TextOf("cmbWavsList"), "2");
}

TEST_F(WindowsOptionsTest, SoundsAreMutedByTypingTheirNumber) {
  Click("cmbWavsList");
  Type("12");
  Click("chkSilenciarWav");
  EXPECT_EQ(Stored("WAV12", "WavSilenced.ini"), "1");
  Click("cmbWavsList");
  Type("306");
  EXPECT_TRUE(Shows("chkSilenciarWav", kNormal));
  EXPECT_EQ(TextOf("cmbWavsList"), "306");
  Type("12");
  EXPECT_TRUE(Shows("chkSilenciarWav", kPressed));
  Key(VK_DOWN);  // the next number of the list
  Click("chkSilenciarWav");
  EXPECT_EQ(Stored("WAV13", "WavSilenced.ini"), "1");
}

TEST_F(WindowsOptionsTest, NumberOfMessagesAndPlaceOfTheClanChat) {
  Click("txtCantMensajes");
  Type("abc");
  Key(VK_TAB);
  EXPECT_EQ(TextOf("txtCantMensajes"), "5");
  const auto marked = [&](const char* name) { return SendMessageW(Child(name), BM_GETCHECK, 0, 0); };
  for (const bool onScreen : {true, false}) {
    Click(onScreen ? "optPantalla" : "optConsola");
    EXPECT_EQ(marked("optPantalla"), onScreen ? BST_CHECKED : BST_UNCHECKED);
    EXPECT_EQ(marked("optConsola"), onScreen ? BST_UNCHECKED : BST_CHECKED);
    EXPECT_EQ(Stored("Guild_Chat_OnScreen"), onScreen ? "1" : "0");
  }
}

TEST_F(WindowsOptionsTest, EscAndCloseEndEachWindow) {
  int rate = 200;
  const auto closes = [&](controls::Window& window, const std::function<void()>& close) {
    ASSERT_TRUE(Until([&] { return GetForegroundWindow() == Handle(window); })) << window.Name();
    gameIni.Set(&GC::FPS, ++rate);
    close();
    EXPECT_FALSE(IsWindowVisible(Handle(window))) << window.Name();
    EXPECT_EQ(Stored("FPS"), std::to_string(rate)) << "the record is written";
  };
  const std::tuple<const char*, controls::Window*, const char*> others[] = {
      {"imgCustomKeys1", &form.CustomK.Window, "Text1(0)"},
      {"imgCustomMsg", &form.MessagesConfigurateds.Window, "messageTxt(0)"}};
  for (const auto& [opener, window, name] : others) {
    SetForegroundWindow(Handle(form.Window));
    Click(opener);
    const HWND box = Child(*window, name);
    closes(*window, [&] {
      SetFocus(box);
      Type("x");
      EXPECT_EQ(ui::win32::TextOf(box), L"x");
      Key(VK_ESCAPE);
    });
  }
  SetForegroundWindow(Handle(form.Window));
  SetFocus(Child("txtCantMensajes"));
  closes(form.Window, [&] { Key(VK_ESCAPE); });
  Show();
  closes(form.Window, [&] { Click("imgCerrar"); });
  Show();
  SendMessageW(Handle(form.Window), WM_SYSCOMMAND, SC_CLOSE, 0);
  EXPECT_FALSE(IsWindowVisible(Handle(form.Window)));
}

}  // namespace
