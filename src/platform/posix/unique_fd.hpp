#pragma once

#include <unistd.h>

#include "base/unique_handle.hpp"

namespace platform {

struct FdTraits {
  using Type = int;
  static Type Invalid() { return -1; }
  static void Close(Type fd) { close(fd); }
};
using UniqueFd = base::UniqueHandle<FdTraits>;

}  // namespace platform
