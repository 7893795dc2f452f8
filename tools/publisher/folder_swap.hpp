#pragma once

#include <string>

namespace publisher {

// Puts the folder `fresh` in the place of `folder`, so that every reader sees the old one or the new one
// whole, and removes what was there before. `folder` need not exist. Where the file system cannot exchange
// two names, the old folder is moved aside first and readers find none for an instant.
void SwapFolder(const std::string& fresh, const std::string& folder);

// An empty folder for work in progress, removed with all in it unless it has been moved away.
class WorkFolder {
 public:
  explicit WorkFolder(std::string path);  // whatever was left there is removed
  ~WorkFolder();
  WorkFolder(const WorkFolder&) = delete;

  const std::string& Path() const { return path_; }

 private:
  std::string path_;
};

}  // namespace publisher
