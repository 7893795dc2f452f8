#pragma once

#include <string>

#include "controls/main_window.hpp"
#include "platform/host.hpp"
#include "startup/error_recorder.hpp"
#include "startup/folders.hpp"
#include "startup/lifetime.hpp"

namespace update {

// Registers the component libraries that the game client needs.
class LibraryCheck {
 public:
  LibraryCheck(platform::Host& host, const startup::Folders& folders, startup::ErrorRecorder& recorder,
               startup::Lifetime& lifetime, controls::MainWindow& frmMain)
      : host_(host), folders_(folders), recorder_(recorder), lifetime_(lifetime), frmMain_(frmMain) {}

  void VerificarLibrerias();

 private:
  void RegistrarLibreria(const std::string& folder, const std::string& file);
  void RefreshGraphicsLibrary();

  platform::Host& host_;
  const startup::Folders& folders_;
  startup::ErrorRecorder& recorder_;
  startup::Lifetime& lifetime_;
  controls::MainWindow& frmMain_;
};

}  // namespace update
