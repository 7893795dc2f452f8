#include "ui/frmMessagesConfigurateds.hpp"

namespace ui {
namespace {

constexpr int kMessages = 10;

}  // namespace

frmMessagesConfigurateds::frmMessagesConfigurateds(SettingsServices& services)
    : lblMensajes_(
          Window, "lblMensajes",
          "Aquí puedes configurar mensajes personalizados, para utilizar con los números del 0 al 9. "
          "También puedes configurar comandos."),
      opened_(
          services, Window,
          [this](int&) {
            for (controls::TextBox& box : messageTxt_) box.ShowLaidOut();
          },
          WindowWords("Form_Load", Window.Name())) {
  for (int i = 0; i < kMessages; ++i) {
    const std::string number = std::to_string(i + 1);
    labels_.emplace_back(Window, "Label" + number, "Mensaje " + number + ":");
    messageTxt_.emplace_back(Window, "messageTxt(" + std::to_string(i) + ")");
  }
  for (const auto& [name, caption] :
       {std::pair{"cmdAceptar", "Aceptar"}, std::pair{"cmdClose", "Cancelar"}}) {
    buttons_.emplace_back(Window, name, caption).Enabled = false;  // leads nowhere
  }
}

}  // namespace ui
