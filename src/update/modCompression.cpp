#include "update/modCompression.hpp"

#include "base/runtime_error.hpp"
#include "platform/files.hpp"
#include "startup/blocking.hpp"
#include "startup/procedure.hpp"
#include "update/packed_file.hpp"

namespace update {

bool modCompression::Descomprimir(const std::string& source, const std::string& destination) {
  int line = 10;
  try {
    const std::int32_t size = ClaimedSize(source);
    line = 20;
    if (size < 1) {
      services_.host.dialogs.Show("Error al descomprimir " + source + ". El archivo pesaba " +
                                  std::to_string(size) + " kb.");
      return false;
    }
    line = 30;
    platform::MakeFolders(platform::FolderOf(destination));
    line = 40;
    startup::RunBlocking(services_,
                         [&](std::stop_token stop) { ExpandPackedFile(source, destination, stop); });
    return !services_.lifetime.Ending();
  } catch (...) {
    const startup::Failure failure = startup::CurrentFailure(line);
    const auto inUse = [&](base::ErrorNumber number) { return failure.number == static_cast<int>(number); };
    // Which of the two numbers a file in use gives depends on how it is held.
    if (inUse(base::ErrorNumber::PathFileAccessError) || inUse(base::ErrorNumber::PermissionDenied)) {
      services_.host.dialogs.Show(
          failure.Opening() + " al descomprimir el update " + source +
          "\r\nEl archivo está en ejecución o siendo usado por el sistema, si el problema persiste, "
          "reinicie el sistema operativo por completo y vuelva a intentarlo.");
    } else if (failure.number == static_cast<int>(base::ErrorNumber::InvalidFileFormat)) {
      // What is wrong with the packed data itself is reported by its own procedure.
      services_.recorder.LogError(failure.Opening() +
                                  " in procedure Decompress_Data of Módulo modCompression");
    } else {
      services_.recorder.LogError(failure.Opening() +
                                  " in procedure Descomprimir of Módulo modCompression in line " +
                                  failure.Line() + "Parametro 1: " + source + "Parametro 2: " + destination);
    }
    return false;
  }
}

}  // namespace update
