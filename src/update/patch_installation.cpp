#include "update/patch_installation.hpp"

#include "base/relative_name.hpp"
#include "base/text.hpp"
#include "platform/files.hpp"
#include "startup/procedure.hpp"

namespace update {

std::string InstalledName(const std::string& inUpdate) {
  const std::string name = base::Replaced(inUpdate, ".kvn", "");
  // Judged again, since taking text out can make a name that climbs or that a device bears.
  return base::WhyUnsafe(name).empty() ? name : std::string{};
}

void PatchInstallation::InstallOne(const std::string& inUpdate, const DigestOf& digestOf) {
  const std::string packed = services_.folders.ResourcesUpdateDir + platform::kSeparator + inUpdate;
  if (!platform::IsFile(packed)) return;
  const std::string name = InstalledName(inUpdate);
  const std::optional<std::string> digest = digestOf(inUpdate);
  if (name.empty() || !digest) {
    services_.recorder.Note("Archivo rechazado: " + packed);
  } else {
    compression_.Descomprimir(packed, services_.folders.BinDir + platform::kSeparator + name,
                              {.md5 = *digest});
    if (services_.lifetime.Ending()) return;  // not expanded for want of time: the next start does it
  }
  if (platform::IsFile(packed)) platform::RemoveFile(packed);
}

void PatchInstallation::DescomprimirArchivos(const DigestOf& digestOf) {
  startup::Guarded(
      services_.recorder,
      [&](int& line) {
        line = 10;
        platform::MakeFolders(services_.folders.ResourcesUpdateDir);
        line = 20;
        const std::vector<platform::FoundFile> files =
            platform::ListTree(services_.folders.ResourcesUpdateDir);
        if (files.empty()) return;
        frmMain_.lblEstado.Caption = "Verificando archivos...";
        frmMain_.ProgressBar1.Value = static_cast<double>(files.size()) / 10;
        for (std::size_t i = 1; i <= files.size() && !services_.lifetime.Ending(); ++i) {
          line = 30;
          InstallOne(files[i - 1].path, digestOf);
          line = 40;
          const std::string number = std::to_string(i);
          frmMain_.lblName.Caption = "Instalando parche: " + number + ", por favor aguarde.";
          frmMain_.lblsize.Caption = "Archivos verificados: " + number;
          frmMain_.ProgressBar1.Value = static_cast<double>(i) / 10;
          services_.host.events.DoEvents();
        }
      },
      [&](const startup::Failure& failure) {
        return failure.Opening() +
               " en el procedimiento DescomprimirArchivos of Formulario frmMain in line " + failure.Line();
      });
}

}  // namespace update
