#include <windows.h>

#include <gtest/gtest.h>

#include <set>
#include <vector>

#include "support/settings_form.hpp"
#include "support/win32/picture_file.hpp"
#include "support/win32/window_world.hpp"
#include "ui/frmNotify.hpp"
#include "ui/win32/layout.hpp"

namespace {

using support::WindowPicture;
using ui::win32::LayoutRow;
using ui::win32::Lines;

constexpr const char* kRepairText =
    "¿Errores en el juego? Presiona aquí para intentar repararlos automáticamente. De lo contrario, ve al "
    "botón de WhatsApp y comunícate con el Staff para reportar el error.";
constexpr const char* kUnreadable =
    "Error no se ha logrado leer las actualizaciones de la base de datos de Kelvarin.";
constexpr controls::Colour kUp = 0x00FF00, kDown = 0x0000FF;

RECT InForm(HWND form, HWND child) {
  RECT box{};
  GetWindowRect(child, &box);
  MapWindowPoints(nullptr, form, reinterpret_cast<POINT*>(&box), 2);
  return box;
}

bool IsButton(HWND child) {
  wchar_t name[16] = L"";
  GetClassNameW(child, name, 16);
  return lstrcmpiW(name, L"BUTTON") == 0;
}

std::vector<HWND> ShownChildren(HWND form) {
  std::vector<HWND> children;
  for (HWND at = GetWindow(form, GW_CHILD); at; at = GetWindow(at, GW_HWNDNEXT)) {
    const bool ground = (GetWindowLongPtrW(at, GWL_STYLE) & BS_TYPEMASK) == BS_GROUPBOX;
    if (IsWindowVisible(at) && !(ground && IsButton(at))) children.push_back(at);
  }
  return children;
}

// How much room a text takes in a label's font.
SIZE TextSize(HWND label, const std::wstring& text, int width, Lines lines) {
  const HDC dc = GetDC(label);
  const HGDIOBJ before = SelectObject(dc, reinterpret_cast<HFONT>(SendMessageW(label, WM_GETFONT, 0, 0)));
  RECT room{0, 0, width, 0};
  const UINT kind = lines == Lines::Wrapped ? DT_WORDBREAK : DT_SINGLELINE;
  DrawTextW(dc, text.c_str(), -1, &room, DT_CALCRECT | DT_NOPREFIX | kind);
  SelectObject(dc, before);
  ReleaseDC(label, dc);
  return {room.right, room.bottom};
}

// The real windows with the real skin, photographed.
struct WindowsPicturesTest : testing::Test, support::WindowWorld {
  WindowsPicturesTest() {
    folders.GraphicsDir = LAUNCHER_SKIN;
    Load();
    Servers("Kelvarin ONLINE - 137 Users.", kUp, "Torneos ONLINE - 12 Users. - Torneo 1vs1 en 20 minutos",
            kUp, "Pruebas OFFLINE - Mantenimiento", kDown);
  }

  void SetUp() override {
    destination = support::PictureFolder();
    if (!destination) GTEST_SKIP() << "LAUNCHER_PICTURES does not name a folder";
  }

  void Servers(const char* first, controls::Colour a, const char* second, controls::Colour b,
               const char* third, controls::Colour c) {
    const std::pair<const char*, controls::Colour> states[] = {{first, a}, {second, b}, {third, c}};
    for (std::size_t i = 0; i < window.lblServerState.size(); ++i) {
      window.lblServerState[i]->Caption = std::string(states[i].first);
      window.lblServerState[i]->ForeColor = states[i].second;
    }
  }
  void Progress(const char* status, const char* name, const char* folderShown, const char* speed,
                const char* size, double done) {
    window.lblEstado.Caption = std::string(status);
    window.lblName.Caption = std::string(name);
    window.lblDirectorio.Caption = std::string(folderShown);
    window.lblVelocity.Caption = std::string(speed);
    window.lblsize.Caption = std::string(size);
    window.ProgressBar1.Value = done;
  }

  // Paints what is due, writes the picture and returns it.
  WindowPicture Photograph(HWND form, const std::string& name) {
    host.events->DoEvents();
    RedrawWindow(form, nullptr, nullptr, RDW_UPDATENOW | RDW_ALLCHILDREN);
    WindowPicture picture = support::TakePicture(form);
    EXPECT_GT(picture.Colours(), 30u) << name << " is blank";
    EXPECT_TRUE(support::WritePng(picture, *destination, name)) << name;
    return picture;
  }

  // Everything keeps to itself, and every text has the room that it needs.
  void Judge(HWND form, const controls::Window& shown, const std::string& name) {
    const std::vector<HWND> children = ShownChildren(form);
    EXPECT_GT(children.size(), 1u) << name;
    RECT client{};
    GetClientRect(form, &client);
    for (std::size_t i = 0; i < children.size(); ++i) {
      const RECT box = InForm(form, children[i]);
      RECT common{};
      IntersectRect(&common, &box, &client);
      EXPECT_TRUE(EqualRect(&common, &box)) << name << ": outside: " << Words(children[i]);
      for (std::size_t j = i + 1; j < children.size(); ++j) {
        const RECT other = InForm(form, children[j]);
        EXPECT_FALSE(IntersectRect(&common, &box, &other))
            << name << ": " << Words(children[i]) << " overlaps " << Words(children[j]);
      }
    }
    for (const controls::Control* control : shown.Controls()) JudgeText(form, shown, *control, name);
  }

  void JudgeText(HWND form, const controls::Window& shown, const controls::Control& control,
                 const std::string& name) {
    const auto* label = dynamic_cast<const controls::Label*>(&control);
    const LayoutRow* row = ui::win32::LayoutOf(shown.Name()).Find(control.Name());
    if (!label || !row || !label->Visible || row->lines == Lines::Path) return;
    const std::wstring text = platform::Wide(label->Caption.Get());
    const HWND child = text.empty() ? nullptr : FindWindowExW(form, nullptr, L"STATIC", text.c_str());
    if (!child) return;
    RECT box{};
    GetClientRect(child, &box);
    const SIZE needed = TextSize(child, text, static_cast<int>(box.right), row->lines);
    EXPECT_LE(needed.cx, box.right) << name << ": too wide: " << label->Caption.Get();
    EXPECT_LE(needed.cy, box.bottom) << name << ": too high: " << label->Caption.Get();
  }
  static std::string Words(HWND child) { return "\"" + platform::Narrow(ui::win32::TextOf(child)) + "\""; }

  // As the system tells a window that it stands on a screen of another scale now.
  void Scale(HWND form, int dpi) {
    RECT suggested{40, 40, 0, 0};
    SendMessageW(form, WM_DPICHANGED, MAKEWPARAM(dpi, dpi), reinterpret_cast<LPARAM>(&suggested));
  }
  // Scales and photographs a window; each control must have gone to its scaled place.
  void PhotographScaled(HWND form, const controls::Window& shown, const std::string& name,
                        std::initializer_list<int> percents) {
    const std::vector<HWND> children = ShownChildren(form);
    std::vector<RECT> design;
    for (const HWND child : children) design.push_back(InForm(form, child));
    for (const int percent : percents) {
      const std::string whole = name + "-" + std::to_string(percent);
      Scale(form, 96 * percent / 100);
      RECT client{};
      GetClientRect(form, &client);
      EXPECT_EQ(client.right, ui::win32::LayoutOf(shown.Name()).width * percent / 100) << whole;
      EXPECT_EQ(client.bottom, ui::win32::LayoutOf(shown.Name()).height * percent / 100) << whole;
      for (std::size_t i = 0; i < children.size(); ++i) {
        const RECT box = InForm(form, children[i]);
        const LONG want[] = {design[i].left, design[i].top, design[i].right, design[i].bottom};
        const LONG have[] = {box.left, box.top, box.right, box.bottom};
        for (int side = 0; side < 4; ++side) {  // a line of text is not scaled to the pixel
          EXPECT_NEAR(have[side], MulDiv(want[side], percent, 100), 1 + percent / 50)
              << whole << ": " << Words(children[i]) << ", side " << side;
        }
      }
      Judge(form, shown, whole);
      Photograph(form, whole);
    }
  }

  std::optional<std::wstring> destination;
};

TEST_F(WindowsPicturesTest, MainWindowThroughAnUpdate) {
  const struct {
    const char *picture, *status, *name, *folder, *speed, *size;
    double done;
  } rows[] = {
      {"main-idle", "Presione el botón ¡JUGAR!", "", "", "", "", 0},
      {"main-downloading", "Actualizando, aguarde un momento...", "Descargando actualizaciones: 7/12",
       "C:\\Juegos\\Kelvarin\\RECURSOS\\INIT\\UPDATE\\Graficos\\Una carpeta de nombre muy "
       "largo\\Graficos7.zip",
       "18734kb de 48211kb a 1250kb/s", "48211kb", 38.8},
      {"main-verifying", "Archivos verificados: 1284", "KVN-DX8.exe", "C:\\Juegos\\Kelvarin\\Bin\\", "", "",
       74},
      {"main-error", kUnreadable, "No se pudo acceder a 127.0.0.1", "", "", "", 0},
  };
  std::set<std::vector<std::uint32_t>> pictures;
  for (const auto& row : rows) {
    Progress(row.status, row.name, row.folder, row.speed, row.size, row.done);
    pictures.insert(Photograph(handle, row.picture).pixels);
    Judge(handle, window, row.picture);
  }
  window.ProgressBar1.Failed = true;
  const WindowPicture failed = Photograph(handle, "main-failed");
  EXPECT_GT(failed.Colours({45, 489, 477, 501}), 5u) << "no bar";
  pictures.insert(failed.pixels);
  EXPECT_EQ(pictures.size(), std::size(rows) + 1) << "two states look the same";
}

TEST_F(WindowsPicturesTest, MainWindowAtEveryScale) {
  Progress(kRepairText, "Descargando actualizaciones: 7/12", "C:\\Juegos\\Kelvarin\\RECURSOS\\INIT\\UPDATE",
           "18734kb de 48211kb a 1250kb/s", "48211kb", 38.8);
  Servers("Kelvarin ONLINE - 1137 Users. - Doble experiencia hasta el domingo a medianoche", kUp,
          "Servidor de Torneos OFFLINE - Mantenimiento programado, vuelve a las 18 horas", kDown,
          "Servidor de Pruebas ONLINE - 3 Users.", kUp);
  if (screen.WorkArea().Width() < 1800) GTEST_SKIP() << "the display is too small for 200 percent";
  PhotographScaled(handle, window, "main", {100, 125, 150, 200});
}

TEST_F(WindowsPicturesTest, News) {
  ui::frmNotify notify(services, screen);
  notify.ShowMessage("06/01/2019 20/30 hs. en la arena de la fortaleza",
                     "    Kelvarin      ¡Record de usuarios! 255.                   Torneo 1vs1 en 20 mins",
                     7, 15000);
  const HWND notice = screen.HandleOf(notify.window);
  Judge(notice, notify.window, "news");
  PhotographScaled(notice, notify.window, "news", {100, 150, 200});
}

TEST_F(WindowsPicturesTest, SettingsWindows) {
  support::SettingsForm settings(*this, screen);
  ui::frmOpciones& options = settings.form;
  options.Show(window);
  options.CustomK.Show(options.Window);
  options.MessagesConfigurateds.Show(options.Window);
  const std::pair<controls::Window*, const char*> windows[] = {
      {&options.Window, "options"},
      {&options.CustomK.Window, "keys"},
      {&options.MessagesConfigurateds.Window, "messages"},
  };
  for (const auto& [shown, name] : windows) {
    const HWND form = screen.HandleOf(*shown);
    SetForegroundWindow(form);
    PhotographScaled(form, *shown, name, {100, 150, 200});
  }
}

}  // namespace
