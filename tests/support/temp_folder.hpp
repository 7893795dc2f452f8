#pragma once

#include <string>
#include <string_view>

namespace support {

// A fresh folder of its own for one test, removed with everything below it at the end.
class TempFolder {
 public:
  // Below `parent` where there is such a folder, or else below the system's own for temporary files.
  explicit TempFolder(const std::string& parent = {});
  ~TempFolder();
  TempFolder(const TempFolder&) = delete;

  const std::string& Path() const { return path_; }
  std::string operator/(std::string_view relative) const;  // relative may use "/" on both platforms

  void Put(std::string_view relative, std::string_view bytes) const;  // makes the folders it needs
  std::string Get(std::string_view relative) const;                   // empty when there is no such file
  bool Has(std::string_view relative) const;                          // file or folder

 private:
  std::string path_;
};

}  // namespace support
