#include "update/installed_game.hpp"

namespace update {

bool InstalledGame::Offer(const std::string& why) {
  platform::Dialogs& dialogs = services_.host.dialogs;
  if (services_.flags.UpdatesOnly) return false;
  if (!launch_.Installed()) {
    dialogs.Show(why + "\r\nEl juego todavía no está instalado.");
    return false;
  }
  const auto answer = dialogs.Show(why + "\r\n¿Deseas iniciar el juego instalado sin actualizarlo?",
                                   platform::DialogButtons::YesNo);
  if (answer != platform::DialogAnswer::Yes) return false;
  launch_.EjecutarKelvar(services_.deployment.parameter);
  return true;
}

}  // namespace update
