#include "support/system_faults.hpp"

#include <windows.h>

namespace support {
namespace {

bool IsWine() { return GetProcAddress(GetModuleHandleW(L"ntdll.dll"), "wine_get_version") != nullptr; }

}  // namespace

bool LosesChunksWithSplitLines() { return IsWine(); }
bool KeepsToItselfWhyACertificateIsRefused() { return IsWine(); }

}  // namespace support
