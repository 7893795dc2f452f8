#include "platform/posix/system_error.hpp"

#include <cerrno>

#include "platform/files.hpp"
#include "util/runtime_error.hpp"

namespace platform {
namespace {

using util::ErrorNumber;

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

void RaiseErrno(int code, const std::string& path) {
  if (code == ENOENT) {
    const bool folderThere = path.empty() || IsFolder(FolderOf(path) + kSeparator);
    throw util::RuntimeError(folderThere ? ErrorNumber::FileNotFound : ErrorNumber::PathNotFound);
  }
  for (const Translation& entry : kTranslations) {
    if (entry.code == code) throw util::RuntimeError(entry.number);
  }
  throw util::RuntimeError(ErrorNumber::DeviceIoError);
}

}  // namespace platform
