#pragma once

#include "util/parallel.hpp"

namespace publisher {

using util::ForEachParallel;

}  // namespace publisher
