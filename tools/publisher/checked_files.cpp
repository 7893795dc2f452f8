#include "publisher/checked_files.hpp"

#include "platform/files.hpp"
#include "publisher/source_files.hpp"

namespace publisher {

LocalCopy::~LocalCopy() {
  if (kind_ == Kind::Fetched && !path_.empty()) platform::TryRemoveFile(path_);
}

std::optional<LocalCopy> FolderFiles::Fetch(const std::string& name) {
  const std::string path = layout_.At(name);
  if (!platform::IsFile(path)) return std::nullopt;
  return LocalCopy(path, LocalCopy::Kind::Original);
}

std::uint64_t FolderFiles::SizeOf(const std::string& name) const {
  return publisher::SizeOf(layout_.At(name));
}

}  // namespace publisher
