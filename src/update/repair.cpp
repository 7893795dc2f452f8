#include "update/repair.hpp"

#include "platform/files.hpp"
#include "startup/procedure.hpp"
#include "update/counter_store.hpp"

namespace update {

void Repair::cmdReiniciarUpdates_Click() {
  startup::Guarded(
      services_.recorder,
      [&](int& line) {
        line = 10;
        const auto answer = services_.host.dialogs.Show(
            "¿Estás seguro que deseas reiniciar los Updates para intentar reparar el juego?\r\nEste proceso "
            "puede "
            "tardar varios minutos.",
            platform::DialogButtons::YesNo, "¡ATENCIÓN! Lea con cuidado.");
        if (answer != platform::DialogAnswer::Yes) return;
        line = 20;
        frmMain_.NewsTimer.Set(false);
        startOver_();
        line = 30;
        platform::WriteWhole(services_.folders.BinDir + platform::NativePath("\\MD5Update.ini"), " \r\n");
        for (const char* category : kCategories) {
          line += 10;
          platform::WriteWhole(services_.folders.InitDir + "AU" + category + ".ini", "0\r\n");
        }
        frmMain_.tmrUpdates.Set(true);
      },
      [&](const startup::Failure& failure) {
        return failure.Opening() +
               " en el procedimiento cmdReiniciarUpdates_Click del modulo Formulario frmMain en la línea " +
               failure.Line() + " reporta esto mediante el soporte WEB en " + services_.deployment.support;
      });
}

}  // namespace update
