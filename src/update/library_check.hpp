#pragma once

#include <string>

#include "controls/main_window.hpp"
#include "startup/services.hpp"

namespace update {

// Registers the component libraries that the game client needs.
class LibraryCheck {
 public:
  LibraryCheck(const startup::Services& services, controls::MainWindow& frmMain)
      : services_(services), frmMain_(frmMain) {}

  void VerificarLibrerias();

 private:
  void RegistrarLibreria(const std::string& folder, const std::string& file);
  void RefreshGraphicsLibrary();

  const startup::Services& services_;
  controls::MainWindow& frmMain_;
};

}  // namespace update
