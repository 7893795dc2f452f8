#include "update/repair.hpp"

#include "startup/procedure.hpp"
#include "update/digest_record.hpp"

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
            platform::DialogButtons::RiskyYesNo, "¡ATENCIÓN! Lea con cuidado.");
        if (answer != platform::DialogAnswer::Yes) return;
        line = 20;
        if (!services_.flags.FolderWritable) {
          rights_.Make("no se repara nada");
          return;
        }
        line = 30;
        DigestRecord(RecordFile(services_.folders)).Clear();
        for (const char* category : kCategories) {
          line += 10;
          counters_.Store(category, 0);
        }
        confirmed_();
      },
      [&](const startup::Failure& failure) {
        return failure.Opening() +
               " en el procedimiento cmdReiniciarUpdates_Click del modulo Formulario frmMain en la línea " +
               failure.Line() + " reporta esto mediante el soporte WEB en " + services_.deployment.support;
      });
}

}  // namespace update
