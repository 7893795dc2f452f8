#pragma once

#include <functional>
#include <optional>
#include <string>
#include <utility>

#include "controls/main_window.hpp"
#include "startup/services.hpp"

namespace update {

// Registers the component libraries that the game client needs.
class LibraryCheck {
 public:
  // What the index says of a file of Bin, by its name there: its digest, none when nothing is known of it.
  using PublishedDigest = std::function<std::optional<std::string>(const std::string& inBin)>;

  LibraryCheck(const startup::Services& services, controls::MainWindow& frmMain,
               PublishedDigest publishedDigest)
      : services_(services), frmMain_(frmMain), publishedDigest_(std::move(publishedDigest)) {}

  void VerificarLibrerias();

 private:
  void RegistrarLibreria(const std::string& folder, const std::string& file);
  void RefreshGraphicsLibrary();

  const startup::Services& services_;
  controls::MainWindow& frmMain_;
  const PublishedDigest publishedDigest_;
};

}  // namespace update
