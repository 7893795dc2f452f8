#include <unistd.h>

#include <algorithm>
#include <filesystem>

#include "platform/files.hpp"

namespace platform {

const std::string kSeparator = "/";
const std::string kLineEnd = "\n";

std::string NativePath(std::string_view path) {
  std::string native(path);
  std::replace(native.begin(), native.end(), '\\', '/');
  return native;
}

std::string ExecutablePath() {
  std::error_code error;
  return std::filesystem::read_symlink("/proc/self/exe", error).string();
}

std::string FolderOf(const std::string& path) {
  const std::size_t last = path.rfind('/');
  if (last == std::string::npos) return ".";
  const std::size_t end = path.find_last_not_of('/', last);
  return end == std::string::npos ? std::string{} : path.substr(0, end + 1);
}

std::string FileNameOf(const std::string& path) { return path.substr(path.rfind('/') + 1); }

std::string BaseNameOf(const std::string& path) {
  const std::string name = FileNameOf(path);
  return name.substr(0, name.rfind('.'));
}

std::string SystemFolder() { return "/usr/bin"; }

}  // namespace platform
