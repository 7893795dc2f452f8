#pragma once

#include <windows.h>

#include <string>

namespace platform {

// Raises the classic number that belongs to a system error code. `path` (empty: none) tells a folder in the
// place of a file from a file that may not be touched.
[[noreturn]] void RaiseSystemError(DWORD code, const std::string& path = {});

// As RaiseSystemError, described in the system's own words (in the user's language).
[[noreturn]] void RaiseWithText(DWORD code, const std::string& path = {});

// The system's own words for a code, without a line end; `module` (null: the system itself) may know more.
// Empty when there are none.
std::string SystemErrorText(DWORD code, HMODULE module = nullptr);

// Repeats `attempt` for about half a second while another program, such as a virus scanner, holds the file it
// is about; returns ERROR_SUCCESS or the last error. attempt() is true when it succeeded.
template <class Attempt>
DWORD WithPatience(Attempt&& attempt) {
  for (DWORD pause = 8;; pause *= 2) {
    if (attempt()) return ERROR_SUCCESS;
    const DWORD code = GetLastError();
    const bool mayPass = code == ERROR_SHARING_VIOLATION || code == ERROR_ACCESS_DENIED ||
                         code == ERROR_LOCK_VIOLATION || code == ERROR_USER_MAPPED_FILE ||
                         code == ERROR_DELETE_PENDING || code == ERROR_DIR_NOT_EMPTY;
    if (!mayPass || pause > 256) return code;
    Sleep(pause);
  }
}

}  // namespace platform
