#include "update/modCompression.hpp"

#include "base/runtime_error.hpp"
#include "platform/files.hpp"
#include "startup/blocking.hpp"
#include "startup/procedure.hpp"

namespace update {
namespace {

using Complaint = modCompression::Complaint;

// Of the error that is being handled.
Complaint ComplaintAbout(const std::string& source, const std::string& destination, int line) {
  using base::ErrorNumber;
  const startup::Failure failure = startup::CurrentFailure(line);
  const auto is = [&](ErrorNumber number) { return failure.number == static_cast<int>(number); };
  // Which of the two numbers a file in use gives depends on how it is held.
  if (is(ErrorNumber::PathFileAccessError) || is(ErrorNumber::PermissionDenied)) {
    const std::string holder = platform::HolderOf(destination);
    return {failure.Opening() + " al descomprimir el update " + source +
            "\r\nEl archivo está en ejecución o siendo usado por el sistema, si el problema persiste, "
            "reinicie el sistema operativo por completo y vuelva a intentarlo." +
            (holder.empty() ? holder : "\r\nLo usa: " + holder + ".")};
  }
  // What is wrong with the packed data itself is reported by its own procedure.
  if (is(ErrorNumber::InvalidFileFormat)) {
    return {failure.Opening() + " in procedure Decompress_Data of Módulo modCompression", true};
  }
  return {failure.Opening() + " in procedure Descomprimir of Módulo modCompression in line " +
              failure.Line() + "Parametro 1: " + source + "Parametro 2: " + destination,
          true};
}

}  // namespace

modCompression::Outcome modCompression::Expand(const std::string& source, const std::string& destination,
                                               const Expansion& how, const std::stop_token& stop) {
  int line = 10;
  try {
    const std::int32_t size = ClaimedSize(source);
    line = 20;
    if (size < 1) {
      return {false, Complaint{"Error al descomprimir " + source + ". El archivo pesaba " +
                               std::to_string(size) + " kb."}};
    }
    line = 30;
    platform::MakeFolders(platform::FolderOf(destination));
    line = 40;
    return {ExpandPackedFile(source, destination, stop, how)};
  } catch (...) {
    return {false, ComplaintAbout(source, destination, line)};
  }
}

bool modCompression::Descomprimir(const std::string& source, const std::string& destination,
                                  const Expansion& how) {
  Outcome outcome;
  startup::RunBlocking(services_,
                       [&](std::stop_token stop) { outcome = Expand(source, destination, how, stop); });
  Tell(source, outcome);
  return outcome.done;
}

void modCompression::Tell(const std::string& source, const Outcome& outcome) {
  if (outcome.complaint && outcome.complaint->isError) {
    services_.recorder.LogError(outcome.complaint->text);
  } else if (outcome.complaint) {
    services_.host.dialogs.Show(outcome.complaint->text);
  } else if (!outcome.done && !services_.lifetime.Ending()) {
    services_.recorder.Note(source + ": su contenido no es el que nombra el índice");
  }
}

}  // namespace update
