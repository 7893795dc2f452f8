#include "publisher/folder_swap.hpp"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstring>

#include "platform/files.hpp"
#include "publisher/failure.hpp"

namespace publisher {
namespace {

void Rename(const std::string& from, const std::string& to) {
  if (rename(from.c_str(), to.c_str()) != 0) throw Failure(to + ": " + std::strerror(errno));
}

}  // namespace

WorkFolder::WorkFolder(std::string path) : path_(std::move(path)) {
  Naming(path_, [&] {
    platform::RemoveTree(path_);
    platform::MakeFolders(path_);
  });
}

WorkFolder::~WorkFolder() {
  try {
    platform::RemoveTree(path_);
  } catch (const std::exception&) {  // the next WorkFolder of this name tries again and tells
  }
}

void SwapFolder(const std::string& fresh, const std::string& folder) {
  if (!platform::IsFolder(folder)) return Rename(fresh, folder);
  const std::string old = fresh + ".old";
  if (renameat2(AT_FDCWD, fresh.c_str(), AT_FDCWD, folder.c_str(), RENAME_EXCHANGE) == 0) {
    Naming(fresh, [&] { platform::RemoveTree(fresh); });
    return;
  }
  if (errno != EINVAL && errno != ENOSYS) throw Failure(folder + ": " + std::strerror(errno));
  Naming(old, [&] { platform::RemoveTree(old); });
  Rename(folder, old);
  Rename(fresh, folder);
  Naming(old, [&] { platform::RemoveTree(old); });
}

}  // namespace publisher
