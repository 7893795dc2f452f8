#include "update/patch_failure.hpp"

#include <algorithm>

namespace update {
namespace {

using base::ErrorNumber;

constexpr std::uint64_t kMegabyte = 1024 * 1024;

std::string InWords(const base::RuntimeError& cause) {
  static constexpr struct {
    ErrorNumber number;
    const char* words;
  } kWords[] = {
      {ErrorNumber::PermissionDenied, "está en uso o falta el permiso"},
      {ErrorNumber::PathFileAccessError, "no es accesible o está en otra unidad"},
      {ErrorNumber::PathNotFound, "no existe su carpeta"},
      {ErrorNumber::DiskFull, "disco lleno"},
  };
  for (const auto& [number, words] : kWords) {
    if (cause.Is(number)) return words;
  }
  return "Error " + std::to_string(cause.Number()) + " (" + cause.Description() + ")";
}

}  // namespace

PatchFailure TargetFailure(const std::string& name, const base::RuntimeError& cause,
                           const std::string& holder) {
  return {static_cast<ErrorNumber>(cause.Number()),
          "no se pudo reemplazar " + name + ": " + (holder.empty() ? InWords(cause) : "lo usa " + holder)};
}

PatchFailure DiskFullFailure(std::uint64_t needed, std::uint64_t free) {
  const std::uint64_t missing = std::max(needed > free ? needed - free : 0, kMegabyte);
  return {ErrorNumber::DiskFull,
          "disco lleno: faltan " + std::to_string((missing + kMegabyte - 1) / kMegabyte) + " MB"};
}

std::string ReasonOf(const base::RuntimeError& failure) {
  if (dynamic_cast<const PatchFailure*>(&failure) != nullptr) return failure.Description();
  if (failure.Is(ErrorNumber::DiskFull)) return DiskFullFailure(0, 0).Description();
  return InWords(failure);
}

}  // namespace update
