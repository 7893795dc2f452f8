#include "startup/system_directory.hpp"

#include "platform/files.hpp"
#include "startup/procedure.hpp"

namespace startup {

std::string ObtenerDirectorio(ErrorRecorder& recorder) {
  int line = 10;
  try {
    const std::string system = platform::SystemFolder();
    line = 20;
    const std::string wow64 = system + platform::NativePath("\\..\\SysWOW64");
    return platform::IsFolder(wow64 + platform::kSeparator) ? wow64 : system;
  } catch (...) {
    const Failure failure = CurrentFailure(line);
    recorder.LogError(
        failure.Opening() + " procedimiento ObtenerDirectorio Módulo modGeneral línea: " + failure.Line(),
        true);
    return {};
  }
}

}  // namespace startup
