#pragma once

#include <cstdint>
#include <string>

#include "base/runtime_error.hpp"

namespace update {

// Why a good archive could not be applied here; the description is one plain line for the player (Spanish).
class PatchFailure : public base::RuntimeError {
 public:
  using RuntimeError::RuntimeError;
};

// `name`: of a file or folder of the game, relative to its folder; `holder`: the programs that have it open,
// empty when there are none or nobody knows.
PatchFailure TargetFailure(const std::string& name, const base::RuntimeError& cause,
                           const std::string& holder);

// "disco lleno: faltan N MB" for `needed` bytes where only `free` are left; at least 1 MB.
PatchFailure DiskFullFailure(std::uint64_t needed, std::uint64_t free);

// The line for the player about any failure but an archive's own fault.
std::string ReasonOf(const base::RuntimeError& failure);

}  // namespace update
