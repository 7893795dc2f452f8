#pragma once

#include <string>

#include "controls/main_window.hpp"
#include "platform/host.hpp"
#include "startup/error_recorder.hpp"
#include "startup/folders.hpp"
#include "startup/lifetime.hpp"
#include "update/modCompression.hpp"

namespace update {

// Where the packed file `inUpdate`, relative to the update folder, belongs below Bin: every ".kvn" is taken
// out, of folder names too. Empty when what remains may not be used as a name there. Platform separators are
// understood.
std::string InstalledName(const std::string& inUpdate);

// Expands the single files that were downloaded into the update folder over their old ones in Bin.
class PatchInstallation {
 public:
  PatchInstallation(platform::Host& host, const startup::Folders& folders, startup::ErrorRecorder& recorder,
                    startup::Lifetime& lifetime, controls::MainWindow& frmMain, modCompression& compression)
      : host_(host),
        folders_(folders),
        recorder_(recorder),
        lifetime_(lifetime),
        frmMain_(frmMain),
        compression_(compression) {}

  void DescomprimirArchivos();

 private:
  void InstallOne(const std::string& inUpdate);

  platform::Host& host_;
  const startup::Folders& folders_;
  startup::ErrorRecorder& recorder_;
  startup::Lifetime& lifetime_;
  controls::MainWindow& frmMain_;
  modCompression& compression_;
};

}  // namespace update
