#include <span>

#include "base/runtime_error.hpp"
#include "platform/files.hpp"

namespace platform {

std::string ReadWhole(const std::string& path, std::uint64_t limit) {
  InputFile file(path);
  const std::uint64_t size = file.Size();
  if (size > limit) throw base::RuntimeError(base::ErrorNumber::OutOfMemory);
  std::string bytes(static_cast<std::size_t>(size), '\0');
  std::size_t filled = 0;
  while (filled < bytes.size()) {
    const std::size_t count = file.Read(std::as_writable_bytes(std::span(bytes)).subspan(filled));
    if (count == 0) break;
    filled += count;
  }
  bytes.resize(filled);
  return bytes;
}

}  // namespace platform
