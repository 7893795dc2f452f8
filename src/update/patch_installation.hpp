#pragma once

#include <string>

#include "controls/main_window.hpp"
#include "startup/services.hpp"
#include "update/modCompression.hpp"

namespace update {

// Where the packed file `inUpdate`, relative to the update folder, belongs below Bin: every ".kvn" is taken
// out, of folder names too. Empty when what remains may not be used as a name there. Platform separators are
// understood.
std::string InstalledName(const std::string& inUpdate);

// Expands the single files that were downloaded into the update folder over their old ones in Bin.
class PatchInstallation {
 public:
  PatchInstallation(const startup::Services& services, controls::MainWindow& frmMain,
                    modCompression& compression)
      : services_(services), frmMain_(frmMain), compression_(compression) {}

  void DescomprimirArchivos();

 private:
  void InstallOne(const std::string& inUpdate);

  const startup::Services& services_;
  controls::MainWindow& frmMain_;
  modCompression& compression_;
};

}  // namespace update
