#include "update/rights_offer.hpp"

#include "base/runtime_error.hpp"

namespace update {

bool RightsOffer::Make(const std::string& otherwise) {
  const auto answer = services_.host.dialogs.Show(
      "No se puede escribir en la carpeta del juego:\r\n" + services_.folders.AppPath +
          "\r\n\r\n¿Deseas iniciar el launcher como administrador? Si presionas 'NO', " + otherwise + ".",
      platform::DialogButtons::YesNo);
  if (answer != platform::DialogAnswer::Yes || !StartAgain()) return false;
  handOver_();
  return true;
}

// The other launcher is not a second one: it must not find this one's lock.
bool RightsOffer::StartAgain() {
  platform::StartRequest request;
  request.program = executable_;
  request.commandLine = "\"" + executable_ + "\"" + (arguments_.empty() ? "" : " " + arguments_);
  request.workingFolder = services_.folders.AppPath;
  const bool locked = instance_.Taken();
  instance_.Release();
  bool started = false;
  try {
    started = services_.host.processes.StartElevated(request);
  } catch (const base::RuntimeError& error) {
    services_.recorder.Note("Inicio como administrador: " + error.Description());
  }
  if (!started && locked) instance_.HeldByAnother();
  return started;
}

}  // namespace update
