#include "update/library_check.hpp"

#include "base/runtime_error.hpp"
#include "platform/files.hpp"
#include "startup/blocking.hpp"
#include "startup/procedure.hpp"
#include "startup/system_directory.hpp"
#include "util/clsHashing.hpp"

namespace update {
namespace {

constexpr const char* kGraphicsLibrary = "DX8VB.DLL";
constexpr const char* kLibraries[] = {"COMCTL32.OCX", "COMDLG32.OCX",    "CSWSK32.OCX",  "DX8VB.DLL",
                                      "MSCOMCTL.OCX", "MSINET.OCX",      "MSVBVM60.DLL", "MSWINSCK.OCX",
                                      "RICHTX32.OCX", "VBALPROGBAR6.OCX"};

// A missing file has no digest.
std::string DigestOrNone(const std::string& path, std::stop_token stop) {
  try {
    return util::clsHashing().MD5File(path, stop);
  } catch (const base::RuntimeError&) {
    return {};
  }
}

}  // namespace

// The libraries are 32-bit ones, so the tool is the one of the folder for these. Folder and file are joined
// as they are. Bin carries no closing separator, so its libraries are never found, and "/s" keeps regsvr32
// quiet about it; the commands stay as players' machines have always seen them.
void LibraryCheck::RegistrarLibreria(const std::string& folder, const std::string& file) {
  frmMain_.lblName.Caption = "Registrando " + file + "...";
  platform::StartRequest request;
  request.program = startup::ObtenerDirectorio(services_.recorder) + platform::kSeparator + "regsvr32.exe";
  request.commandLine = "regsvr32 \"" + folder + file + "\" /s";
  request.style = platform::WindowStyle::Minimised;
  try {
    services_.host.processes.Start(request);
  } catch (const base::RuntimeError&) {  // a library that cannot be registered keeps nobody from playing
  }
  services_.host.events.DoEvents();
}

// Every program of the machine may load what lies in the system folder, so only the published file goes
// there.
void LibraryCheck::RefreshGraphicsLibrary() {
  const auto published = publishedDigest_(kGraphicsLibrary);
  if (!published) return;
  const std::string own = services_.folders.BinDir + platform::kSeparator + kGraphicsLibrary;
  const std::string system =
      startup::ObtenerDirectorio(services_.recorder) + platform::kSeparator + kGraphicsLibrary;
  startup::RunBlocking(services_, [&](std::stop_token stop) {
    if (DigestOrNone(own, stop) != *published || *published == DigestOrNone(system, stop)) return;
    try {
      platform::CloneFile(own, system);
    } catch (const base::RuntimeError&) {  // without rights to the system folder the game uses what is there
    }
  });
}

void LibraryCheck::VerificarLibrerias() {
  startup::Guarded(
      services_.recorder,
      [&](int& line) {
        line = 10;
        frmMain_.lblName.Caption = "Verificando librerías, por favor aguarde.";
        line = 20;
        for (const char* library : kLibraries) RegistrarLibreria(services_.folders.BinDir, library);
        line = 30;
        RefreshGraphicsLibrary();
        line = 40;
        RegistrarLibreria("", kGraphicsLibrary);
        line = 50;
        frmMain_.lblName.Caption = "Librerias correctas.";
        services_.host.dialogs.Show("Se han registrado las librerias correctamente.");
      },
      [&](const startup::Failure& failure) {
        return failure.Opening() + " in procedure VerificarLibrerias of Formulario frmMain in line " +
               failure.Line();
      });
}

}  // namespace update
