#include "web/transfer_report.hpp"

#include <algorithm>
#include <array>

namespace web {
namespace {

using platform::HttpError;

struct Wording {
  HttpError error;
  const char* words;
};

constexpr std::array<Wording, 9> kWordings = {{
    {HttpError::BadUrl, "la dirección no es válida"},
    {HttpError::CannotConnect, "no se pudo conectar con el servidor"},
    {HttpError::Insecure, "la conexión segura no fue aceptada"},
    {HttpError::RefusedRedirect, "el servidor envía a una dirección que no se admite"},
    {HttpError::Stalled, "el servidor dejó de enviar datos"},
    {HttpError::CutShort, "la conexión se cortó antes del final"},
    {HttpError::Refused, "la respuesta es demasiado grande"},
    {HttpError::Cancelled, "se canceló"},
    {HttpError::Other, "la respuesta no se entiende"},
}};

}  // namespace

std::string TransferReport::Reason() const {
  if (own) {
    const bool plain = own->Description() == base::DescriptionOf(base::ErrorNumber::DiskFull);
    return plain ? "disco lleno" : own->Description();
  }
  if (otherContent) return "su contenido no es el firmado";
  if (outcome.Complete()) return "el servidor respondió " + std::to_string(outcome.status);
  const auto found = std::find_if(kWordings.begin(), kWordings.end(),
                                  [this](const Wording& wording) { return wording.error == outcome.error; });
  return found == kWordings.end() ? "error desconocido" : found->words;
}

std::string TransferReport::Details() const {
  std::string text = Reason() + " (";
  if (outcome.status != 0) text += "HTTP " + std::to_string(outcome.status) + ", ";
  text += std::to_string(bytes) + (announced ? " de " + std::to_string(*announced) : "") + " bytes";
  if (outcome.systemError != 0) text += "; " + std::to_string(outcome.systemError) + " " + outcome.systemText;
  if (own) text += "; error " + std::to_string(own->Number());
  return text + ")";
}

}  // namespace web
