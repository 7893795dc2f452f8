#pragma once

#include <windows.h>

#include <string>

namespace support {

// Runs a whole command line (UTF-8) and waits for its end; the exit status, STILL_ACTIVE when it did not end
// in good time and was ended. Raises std::runtime_error when it could not be started.
DWORD RunProgram(const std::string& commandLine);

}  // namespace support
