#include "ui/frmCustomK.hpp"

#include <vector>

namespace ui {
namespace {

struct KeyFrame {
  const char* name;
  const char* caption;
  std::vector<const char*> actions;
};

const std::vector<KeyFrame>& KeyFrames() {
  static const std::vector<KeyFrame> frames = {
      {"Frame5",
       "Otros",
       {"Macro golpes:", "Ver Mapa del juego", "Modo Combate", "Modo Seguro", "Seg. de Resucitación", "Salir",
        "Capturar Pantalla", "Macro Trabajo o flecha", "Macro Hechizos", "Meditar", "Mostrar Opciones",
        "Mostrar/Ocultar FPS"}},
      {"Frame4", "Hablar", {"Hablar al Clan", "Hablar a Todos"}},
      {"Frame3", "Acciones", {"Atacar", "Usar", "Tirar", "Ocultar", "Robar", "Domar", "Equipar", "Agarrar"}},
      {"Frame2",
       "Opciones Personales",
       {"Efectos de Sonido", "Activar/Desactivar Sonido", "Mostrar/Ocultar Nombres", "Corregir Posicion",
        "Activar/Desactivar Musica"}},
      {"Frame1", "Movimiento", {"Arriba", "Abajo", "Izquierda", "Derecha"}},
      {"Frame6", "", {"/CREARPARTY", "/PARTY"}},
  };
  return frames;
}

struct PicturedButton {
  const char* name;
  const char* picture;
  const char* description;
};

constexpr PicturedButton kButtons[] = {
    {"imgAcept", "aceptar", "Aceptar"},
    {"imgDefault", "default", "Restablecer"},
    {"imgClose", "cerrar", "Cerrar"},
};

}  // namespace

frmCustomK::frmCustomK(SettingsServices& services)
    : services_(services),
      opened_(
          services, Window, [this](int&) { Form_Load(); }, WindowWords("Form_Load", Window.Name())) {
  AddFrames();
  Check1_.emplace_back(Window, "Check1", "Desactivar el efecto de teclas al hablar");
  AddButtons();
}

void frmCustomK::AddFrames() {
  for (const KeyFrame& frame : KeyFrames()) {
    frames_.emplace_back(Window, frame.name, frame.caption);
    for (const char* action : frame.actions) {
      const std::string box = "Text1(" + std::to_string(Text1_.size()) + ")";
      actions_.emplace_back(Window, "(" + box + ")", action);
      Text1_.emplace_back(Window, box);
    }
  }
}

void frmCustomK::AddButtons() {
  for (const PicturedButton& button : kButtons) {
    controls::ImageControl& control = images_.emplace_back(Window, button.name);
    control.description = button.description;
    control.Enabled = false;  // leads nowhere, so it stands dimmed and takes no focus
    buttons_.emplace_back();
  }
}

void frmCustomK::Form_Load() {
  for (controls::TextBox& box : Text1_) box.ShowLaidOut();
  for (controls::CheckBox& check : Check1_) check.Value = false;
  // No skin needs these pictures: what leads nowhere is not worth a report.
  SkinPictures pictures = OptionPictures(services_.folders);
  for (std::size_t i = 0; i < buttons_.size(); ++i) {
    pictures.Load(buttons_[i], images_[i], SkinPictures::Idle(kButtons[i].picture), lit_, 10);
  }
}

}  // namespace ui
