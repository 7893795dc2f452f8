#include "update/patch_installation.hpp"

#include <mutex>
#include <utility>

#include "base/relative_name.hpp"
#include "base/text.hpp"
#include "platform/files.hpp"
#include "startup/blocking.hpp"
#include "startup/procedure.hpp"
#include "util/parallel.hpp"

namespace update {

std::string InstalledName(const std::string& inUpdate) {
  const std::string name = base::Replaced(inUpdate, ".kvn", "");
  // Judged again, since taking text out can make a name that climbs or that a device bears.
  return base::WhyUnsafe(name).empty() ? name : std::string{};
}

std::vector<PatchInstallation::Packed> PatchInstallation::Plan(const DigestOf& digestOf) const {
  std::vector<Packed> files;
  for (const platform::FoundFile& found : platform::ListTree(services_.folders.ResourcesUpdateDir)) {
    Packed& file = files.emplace_back();
    file.path = services_.folders.ResourcesUpdateDir + platform::kSeparator + found.path;
    const std::string name = InstalledName(found.path);
    const std::optional<std::string> digest = digestOf(found.path);
    if (name.empty() || !digest) continue;
    file.destination = services_.folders.BinDir + platform::kSeparator + name;
    file.digest = *digest;
  }
  return files;
}

// On all processors; what became of them is told in their order.
void PatchInstallation::Install(std::vector<Packed>& files) {
  startup::FailureList failures(services_.recorder);
  std::mutex mutex;  // over the outcomes
  std::size_t told = 0;
  const auto tell = [&] {
    for (; told < files.size(); ++told) {
      {
        const std::lock_guard lock(mutex);
        if (!files[told].ended) return;
      }
      Finish(told + 1, files[told], failures);
    }
  };
  const auto expand = [&](const std::stop_token& stop, std::size_t i) {
    Packed& file = files[i];
    modCompression::Outcome outcome;
    if (!file.destination.empty())
      outcome = modCompression::Expand(file.path, file.destination, {.md5 = file.digest}, stop);
    if (stop.stop_requested() && !outcome.done) return;  // for want of time: it is fetched once more
    {
      const std::lock_guard lock(mutex);
      file.outcome = std::move(outcome);
      file.ended = true;
    }
    services_.host.events.Wake();
  };
  startup::RunBlocking(
      services_,
      [&](std::stop_token stop) {
        util::ForEachParallel(files.size(), [&](std::size_t i) {
          if (!stop.stop_requested()) expand(stop, i);
        });
      },
      tell);
}

void PatchInstallation::Finish(std::size_t number, const Packed& file, startup::FailureList& failures) {
  const auto& complaint = file.outcome.complaint;
  if (file.destination.empty()) {
    services_.recorder.Note("Archivo rechazado: " + file.path);
  } else if (!complaint) {
    compression_.Tell(file.path, file.outcome);
  } else if (complaint->isError) {
    failures.LogError(complaint->text);
  } else {
    failures.Show(complaint->text);
  }
  if (platform::IsFile(file.path)) platform::RemoveFile(file.path);
  const std::string text = std::to_string(number);
  frmMain_.lblName.Caption = "Instalando parche: " + text + ", por favor aguarde.";
  frmMain_.lblsize.Caption = "Archivos verificados: " + text;
  frmMain_.ProgressBar1.Value = static_cast<double>(number) / 10;
}

void PatchInstallation::DescomprimirArchivos(const DigestOf& digestOf) {
  startup::Guarded(
      services_.recorder,
      [&](int& line) {
        line = 10;
        platform::MakeFolders(services_.folders.ResourcesUpdateDir);
        line = 20;
        std::vector<Packed> files = Plan(digestOf);
        if (files.empty()) return;
        frmMain_.lblEstado.Caption = "Verificando archivos...";
        frmMain_.ProgressBar1.Value = static_cast<double>(files.size()) / 10;
        line = 30;
        Install(files);
      },
      [&](const startup::Failure& failure) {
        return failure.Opening() +
               " en el procedimiento DescomprimirArchivos of Formulario frmMain in line " + failure.Line();
      });
}

}  // namespace update
