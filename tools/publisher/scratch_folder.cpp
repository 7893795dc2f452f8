#include "publisher/scratch_folder.hpp"

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <filesystem>

#include "publisher/failure.hpp"

namespace publisher {

ScratchFolder::ScratchFolder() {
  const char* named = std::getenv("TMPDIR");
  path_ = std::string(named != nullptr && *named != '\0' ? named : "/tmp") + "/publisher-XXXXXX";
  if (mkdtemp(path_.data()) == nullptr) throw Failure(path_ + ": " + std::strerror(errno));
}

ScratchFolder::~ScratchFolder() {
  std::error_code ignored;
  std::filesystem::remove_all(path_, ignored);
}

}  // namespace publisher
