#include "update/smodUnzip.hpp"

#include <memory>

#include "base/runtime_error.hpp"
#include "platform/files.hpp"
#include "startup/blocking.hpp"
#include "update/patch_failure.hpp"
#include "update/patch_journal.hpp"

namespace update {

Unpacked smodUnzip::Unzip(const std::string& archive, const std::string& directory, const Options& options) {
  if (std::string reason = UndoInterruptedPatch(services_); !reason.empty())
    return {false, std::move(reason), true};
  bool done = false;
  try {
    startup::RunBlocking(services_, [&](std::stop_token stop) {
      std::unique_ptr<StagedArchive> staged = options.prepared ? options.prepared->Take(stop) : nullptr;
      if (!staged) staged = std::make_unique<StagedArchive>(archive, directory, services_.folders, stop);
      if (!staged->Whole()) return;
      staged->Apply(archive, options.added);  // once begun it is finished
      done = true;
    });
    return {done};
  } catch (const base::RuntimeError& error) {
    if (!error.Is(base::ErrorNumber::InvalidFileFormat))
      return {false, ReasonOf(error), true, error.Is(base::ErrorNumber::DiskFull)};
    const std::string name = platform::FileNameOf(archive);
    services_.recorder.Note(name + ": " + error.Description());
    return {false, name + " está dañado o no es un archivo ZIP"};
  }
}

}  // namespace update
