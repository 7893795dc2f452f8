#pragma once

#include <string>

#include "startup/error_recorder.hpp"

namespace startup {

// The system folder in which 32-bit runtime libraries are registered, without a trailing separator: the
// system directory, or its neighbour SysWOW64 where there is one. Empty, and reported with the question
// whether to close, when the system names none.
std::string ObtenerDirectorio(ErrorRecorder& recorder);

}  // namespace startup
