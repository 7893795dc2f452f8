#pragma once

#include <string>

namespace platform {

// Raises the classic number that belongs to an errno value; `path` (empty: none) tells a missing file from a
// missing folder.
[[noreturn]] void RaiseErrno(int code, const std::string& path = {});

// As RaiseErrno, described in the system's own words.
[[noreturn]] void RaiseWithText(int code, const std::string& path);

}  // namespace platform
