#pragma once

#include <functional>
#include <optional>
#include <string>
#include <vector>

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

  // The digest (32 lower-case digits) that the content of a packed file must have, by its path below the
  // update folder; none for one that nobody asked for, which is deleted.
  using DigestOf = std::function<std::optional<std::string>(const std::string& packed)>;

  void DescomprimirArchivos(const DigestOf& digestOf);

 private:
  struct Packed {
    std::string path;         // of the packed file
    std::string destination;  // empty: it is refused
    std::string digest;
    modCompression::Outcome outcome{};
    bool ended = false;  // the outcome is there
  };

  std::vector<Packed> Plan(const DigestOf& digestOf) const;
  void Install(std::vector<Packed>& files);
  void Finish(std::size_t number, const Packed& file, startup::FailureList& failures);

  const startup::Services& services_;
  controls::MainWindow& frmMain_;
  modCompression& compression_;
};

}  // namespace update
