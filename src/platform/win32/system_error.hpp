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

// As RaiseSystemError, for a flush that failed: only a file that is missing or bytes that are lost count, not
// that somebody holds the file or that the file system cannot flush.
void RaiseUnlessHarmless(DWORD code, const std::string& path = {});

// Whether the cause of a failure may be gone in a moment, as when another program, such as a virus scanner,
// holds the file.
bool MayPass(DWORD code);

// Repeats `attempt` for about half a second while its failure may pass; returns ERROR_SUCCESS or the last
// error. attempt() is true when it succeeded.
template <class Attempt>
DWORD WithPatience(Attempt&& attempt) {
  for (DWORD pause = 8;; pause *= 2) {
    if (attempt()) return ERROR_SUCCESS;
    const DWORD code = GetLastError();
    if (!MayPass(code) || pause > 256) return code;
    Sleep(pause);
  }
}

}  // namespace platform
