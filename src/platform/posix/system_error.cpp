#include "platform/posix/system_error.hpp"

#include <cerrno>
#include <system_error>

#include "base/runtime_error.hpp"
#include "platform/files.hpp"

namespace platform {
namespace {

using base::ErrorNumber;

struct Translation {
  int code;
  ErrorNumber number;
};

constexpr Translation kTranslations[] = {
    {EACCES, ErrorNumber::PermissionDenied},
    {EPERM, ErrorNumber::PermissionDenied},
    {EROFS, ErrorNumber::PermissionDenied},
    {EBUSY, ErrorNumber::PermissionDenied},
    {ETXTBSY, ErrorNumber::PermissionDenied},
    {ENOTDIR, ErrorNumber::PathNotFound},
    {EEXIST, ErrorNumber::FileAlreadyExists},
    {EISDIR, ErrorNumber::PathFileAccessError},
    {ENOTEMPTY, ErrorNumber::PathFileAccessError},
    {ENAMETOOLONG, ErrorNumber::PathFileAccessError},
    {ELOOP, ErrorNumber::PathFileAccessError},
    {EINVAL, ErrorNumber::PathFileAccessError},
    {EXDEV, ErrorNumber::PathFileAccessError},
    {ENOSPC, ErrorNumber::DiskFull},
    {EDQUOT, ErrorNumber::DiskFull},
    {EFBIG, ErrorNumber::DiskFull},
    {ENOMEM, ErrorNumber::OutOfMemory},
};

}  // namespace

void RaiseUnlessHarmless(int code, const std::string& path) {
  for (const int harmless : {EINVAL, ENOSYS, ENOTSUP, EROFS, EACCES, EPERM, EBUSY}) {
    if (code == harmless) return;
  }
  RaiseErrno(code, path);
}

void RaiseWithText(int code, const std::string& path) {
  try {
    RaiseErrno(code, path);
  } catch (const base::RuntimeError& error) {
    throw base::RuntimeError(static_cast<base::ErrorNumber>(error.Number()),
                             std::generic_category().message(code));
  }
}

void RaiseErrno(int code, const std::string& path) {
  if (code == ENOENT) {
    const bool folderThere = path.empty() || IsFolder(FolderOf(path) + kSeparator);
    throw base::RuntimeError(folderThere ? ErrorNumber::FileNotFound : ErrorNumber::PathNotFound);
  }
  for (const Translation& entry : kTranslations) {
    if (entry.code == code) throw base::RuntimeError(entry.number);
  }
  throw base::RuntimeError(ErrorNumber::DeviceIoError);
}

}  // namespace platform
