#include "update/repair.hpp"

#include <utility>

#include "platform/files.hpp"
#include "startup/procedure.hpp"
#include "update/digest_record.hpp"
#include "update/folder_hold.hpp"

namespace update {

template <class Body>
bool Repair::Reported(Body&& body) {
  return startup::Guarded(services_.recorder, std::forward<Body>(body), [&](const startup::Failure& failure) {
    return failure.Opening() +
           " en el procedimiento cmdReiniciarUpdates_Click del modulo Formulario frmMain en la línea " +
           failure.Line() + " reporta esto mediante el soporte WEB en " + services_.deployment.support;
  });
}

void Repair::cmdReiniciarUpdates_Click() {
  Reported([&](int& line) {
    line = 10;
    const auto answer = services_.host.dialogs.Show(
        "¿Estás seguro que deseas reiniciar los Updates para intentar reparar el juego?\r\nEste proceso "
        "puede tardar varios minutos.",
        platform::DialogButtons::RiskyYesNo, "¡ATENCIÓN! Lea con cuidado.");
    if (answer != platform::DialogAnswer::Yes) return;
    line = 20;
    if (!services_.flags.FolderWritable) {
      rights_.Make("no se repara nada");
      return;
    }
    confirmed_();
  });
}

bool Repair::ForgetInstalled() {
  bool forgotten = false;
  Reported([&](int& line) {
    line = 30;
    FolderHold hold;
    const bool installed = platform::IsFolder(services_.folders.InitDir);  // which the hold would make
    if (installed && !hold.Take(services_, frmMain_, [this] { return !services_.lifetime.Ending(); })) return;
    DigestRecord(RecordFile(services_.folders)).Clear();
    for (const char* category : kCategories) {
      line += 10;
      counters_.Store(category, 0);
    }
    forgotten = true;
  });
  return forgotten;
}

}  // namespace update
