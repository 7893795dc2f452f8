#include "base/runtime_error.hpp"
#include "platform/files.hpp"

namespace platform {

void RequireSpace(const std::string& folder, std::uint64_t bytes) {
  constexpr std::uint64_t kMegabyte = 1024 * 1024;
  const std::uint64_t available = FreeSpace(folder);
  if (bytes <= available) return;
  const std::uint64_t missing = (bytes - available + kMegabyte - 1) / kMegabyte;
  throw base::RuntimeError(base::ErrorNumber::DiskFull,
                           "disco lleno: faltan " + std::to_string(missing) + " MB");
}

}  // namespace platform
