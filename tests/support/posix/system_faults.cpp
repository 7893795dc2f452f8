#include "support/system_faults.hpp"

namespace support {

bool LosesChunksWithSplitLines() { return false; }

}  // namespace support
