#include "platform/file_lock.hpp"
#include "platform/win32/handles.hpp"
#include "platform/win32/system_error.hpp"
#include "platform/win32/wide.hpp"

namespace platform {
namespace {

class HeldFile : public FileLock {
 public:
  explicit HeldFile(unique_file file) : file_(std::move(file)) {}

 private:
  unique_file file_;
};

}  // namespace

// Nobody else can open the file meanwhile, and it goes with its handle.
std::unique_ptr<FileLock> FileLock::TryTake(const std::string& path) {
  const std::wstring name = SystemPath(path);
  unique_file file;
  const auto attempt = [&] {
    file.reset(CreateFileW(name.c_str(), GENERIC_READ | GENERIC_WRITE | DELETE, 0, nullptr, OPEN_ALWAYS,
                           FILE_ATTRIBUTE_NORMAL | FILE_FLAG_DELETE_ON_CLOSE, nullptr));
    return file || GetLastError() == ERROR_SHARING_VIOLATION;
  };
  const DWORD code = WithPatience(attempt);  // the one before may be going just now
  if (code != ERROR_SUCCESS) RaiseSystemError(code, path);
  return file ? std::make_unique<HeldFile>(std::move(file)) : nullptr;
}

}  // namespace platform
