#include "support/temp_folder.hpp"

#include <atomic>
#include <filesystem>

#include "platform/files.hpp"

namespace support {

TempFolder::TempFolder(const std::string& parent) {
  static std::atomic<int> count{0};
  const bool there = !parent.empty() && platform::CanWriteTo(parent);
  const auto base = there ? std::filesystem::path(parent) : std::filesystem::temp_directory_path();
  do {
    const auto name = "launcher-test-" + std::to_string(reinterpret_cast<std::uintptr_t>(&count) >> 4) + "-" +
                      std::to_string(++count);
    const std::u8string text = (base / name).u8string();
    path_.assign(text.begin(), text.end());
  } while (
      !std::filesystem::create_directory(std::filesystem::path(std::u8string(path_.begin(), path_.end()))));
}

TempFolder::~TempFolder() {
  try {
    platform::RemoveTree(path_);
  } catch (const std::exception&) {  // a leftover in the system's temporary folder hurts nobody
  }
}

std::string TempFolder::operator/(std::string_view relative) const {
  return path_ + platform::kSeparator + platform::NativePath(relative);
}

void TempFolder::Put(std::string_view relative, std::string_view bytes) const {
  const std::string path = *this / relative;
  platform::MakeFolders(platform::FolderOf(path));
  platform::WriteWhole(path, bytes);
}

std::string TempFolder::Get(std::string_view relative) const {
  const std::string path = *this / relative;
  return platform::IsFile(path) ? platform::ReadWhole(path, 1u << 30) : std::string{};
}

bool TempFolder::Has(std::string_view relative) const {
  const std::string path = *this / relative;
  return platform::IsFile(path) || platform::IsFolder(path);
}

}  // namespace support
