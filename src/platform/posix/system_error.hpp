#pragma once

#include <string>

namespace platform {

// Raises the classic number that belongs to an errno value; `path` (empty: none) tells a missing file from a
// missing folder.
[[noreturn]] void RaiseErrno(int code, const std::string& path = {});

// As RaiseErrno, for a flush that failed: only a file that is missing or bytes that are lost count, not that
// the file system cannot flush or this user may not.
void RaiseUnlessHarmless(int code, const std::string& path);

// As RaiseErrno, described in the system's own words.
[[noreturn]] void RaiseWithText(int code, const std::string& path);

}  // namespace platform
