#include "platform/win32/system_error.hpp"

#include <algorithm>
#include <array>

#include "base/runtime_error.hpp"
#include "base/text.hpp"
#include "platform/files.hpp"
#include "platform/win32/wide.hpp"

namespace platform {
namespace {

using base::ErrorNumber;

// winerror.h of some toolchains lacks these names.
constexpr DWORD kVirusInfected = 225;
constexpr DWORD kDiskQuotaExceeded = 1295;

struct Translation {
  DWORD code;
  ErrorNumber number;
};

constexpr DWORD kPassing[] = {ERROR_SHARING_VIOLATION, ERROR_ACCESS_DENIED,  ERROR_LOCK_VIOLATION,
                              ERROR_USER_MAPPED_FILE,  ERROR_DELETE_PENDING, ERROR_DIR_NOT_EMPTY};
constexpr DWORD kCannotFlush[] = {ERROR_INVALID_FUNCTION, ERROR_NOT_SUPPORTED, ERROR_WRITE_PROTECT};

constexpr Translation kTranslations[] = {
    {ERROR_FILE_NOT_FOUND, ErrorNumber::FileNotFound},
    {ERROR_PATH_NOT_FOUND, ErrorNumber::PathNotFound},
    {ERROR_INVALID_DRIVE, ErrorNumber::PathNotFound},
    {ERROR_DIRECTORY, ErrorNumber::PathNotFound},
    {ERROR_BAD_NETPATH, ErrorNumber::PathNotFound},
    {ERROR_BAD_NET_NAME, ErrorNumber::PathNotFound},
    {ERROR_ACCESS_DENIED, ErrorNumber::PermissionDenied},
    {ERROR_SHARING_VIOLATION, ErrorNumber::PermissionDenied},
    {ERROR_LOCK_VIOLATION, ErrorNumber::PermissionDenied},
    {ERROR_USER_MAPPED_FILE, ErrorNumber::PermissionDenied},
    {ERROR_DELETE_PENDING, ErrorNumber::PermissionDenied},
    {ERROR_WRITE_PROTECT, ErrorNumber::PermissionDenied},
    {kVirusInfected, ErrorNumber::PermissionDenied},
    {ERROR_FILE_EXISTS, ErrorNumber::FileAlreadyExists},
    {ERROR_ALREADY_EXISTS, ErrorNumber::FileAlreadyExists},
    {ERROR_DIR_NOT_EMPTY, ErrorNumber::PathFileAccessError},
    {ERROR_INVALID_NAME, ErrorNumber::PathFileAccessError},
    {ERROR_BAD_PATHNAME, ErrorNumber::PathFileAccessError},
    {ERROR_FILENAME_EXCED_RANGE, ErrorNumber::PathFileAccessError},
    {ERROR_CANT_RESOLVE_FILENAME, ErrorNumber::PathFileAccessError},
    {ERROR_NOT_SAME_DEVICE, ErrorNumber::PathFileAccessError},
    {ERROR_DISK_FULL, ErrorNumber::DiskFull},
    {ERROR_HANDLE_DISK_FULL, ErrorNumber::DiskFull},
    {kDiskQuotaExceeded, ErrorNumber::DiskFull},
    {ERROR_FILE_TOO_LARGE, ErrorNumber::DiskFull},
    {ERROR_NOT_READY, ErrorNumber::DiskNotReady},
    {ERROR_NOT_ENOUGH_MEMORY, ErrorNumber::OutOfMemory},
    {ERROR_OUTOFMEMORY, ErrorNumber::OutOfMemory},
};

}  // namespace

void RaiseSystemError(DWORD code, const std::string& path) {
  if (code == ERROR_ACCESS_DENIED && !path.empty() && IsFolder(path)) {
    throw base::RuntimeError(ErrorNumber::PathFileAccessError);
  }
  for (const Translation& entry : kTranslations) {
    if (entry.code == code) throw base::RuntimeError(entry.number);
  }
  throw base::RuntimeError(ErrorNumber::DeviceIoError);
}

std::string SystemErrorText(DWORD code, HMODULE module) {
  std::array<wchar_t, 512> text{};
  const DWORD from = FORMAT_MESSAGE_FROM_SYSTEM | (module ? FORMAT_MESSAGE_FROM_HMODULE : 0);
  const DWORD length = FormatMessageW(from | FORMAT_MESSAGE_IGNORE_INSERTS | FORMAT_MESSAGE_MAX_WIDTH_MASK,
                                      module, code, 0, text.data(), static_cast<DWORD>(text.size()), nullptr);
  return std::string(base::Trim(Narrow(std::wstring_view(text.data(), length))));
}

void RaiseUnlessHarmless(DWORD code, const std::string& path) {
  const bool flushless =
      std::find(std::begin(kCannotFlush), std::end(kCannotFlush), code) != std::end(kCannotFlush);
  if (code != ERROR_SUCCESS && !MayPass(code) && !flushless) RaiseSystemError(code, path);
}

bool MayPass(DWORD code) {
  return std::find(std::begin(kPassing), std::end(kPassing), code) != std::end(kPassing);
}

void RaiseWithText(DWORD code, const std::string& path) {
  try {
    RaiseSystemError(code, path);
  } catch (const base::RuntimeError& error) {
    const std::string text = SystemErrorText(code);
    if (text.empty()) throw;
    throw base::RuntimeError(static_cast<base::ErrorNumber>(error.Number()), text);
  }
}

}  // namespace platform
