#pragma once

#include <string>

namespace platform {

// Exit codes of Info-ZIP's UnZip that callers tell apart, and two of our own above its range (0 to 82).
inline constexpr int kUnzipOk = 0;
inline constexpr int kUnzipNoArchive = 9;       // the archive is missing or is no ZIP file
inline constexpr int kUnzipPathUnusable = 126;  // a path that cannot be handed to the library
inline constexpr int kUnzipProgramMissing =
    127;  // Linux only: `unzip` is not installed or could not be started

// Extracts the whole archive into folder: quietly, with the archive's folders, overwriting without asking.
// The folder is made when only its last part is missing. An encrypted entry is skipped and makes the result
// other than 0. Paths are UTF-8. Blocks; any thread may call it. Returns 0 or the exit code. On Windows the
// current directory is changed for the length of the call when the ANSI code page cannot name a path, and an
// entry's name keeps only the characters of that code page (others become "#U" and their number).
int UnzipArchive(const std::string& archive, const std::string& folder);

}  // namespace platform
