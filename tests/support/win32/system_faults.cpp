#include "support/system_faults.hpp"

#include <windows.h>

namespace support {

bool LosesChunksWithSplitLines() {
  return GetProcAddress(GetModuleHandleW(L"ntdll.dll"), "wine_get_version") != nullptr;
}

}  // namespace support
