#include "support/win32/gui_objects.hpp"

#include <windows.h>

#include <cstddef>

namespace support {
namespace {

// One drawing object in the table that the process shares with the window system.
struct TableEntry {
  unsigned long long object;
  unsigned owner;
  unsigned short unique;
  unsigned char type;  // 0: free
  unsigned char flags;
  unsigned long long user;
};
constexpr std::size_t kTableSize = 0x4000;
constexpr std::size_t kTableInBlock = sizeof(void*) == 8 ? 0xF8 : 0x94;  // of the process environment block

// Wine does not answer the system's own question for this number.
unsigned CountInTable() {
  using Block = const std::byte*(NTAPI*)();
  const auto currentBlock = reinterpret_cast<Block>(
      reinterpret_cast<void*>(GetProcAddress(GetModuleHandleW(L"ntdll.dll"), "RtlGetCurrentPeb")));
  if (!currentBlock) return 0;
  const std::byte* const block = currentBlock();
  const auto* table = *reinterpret_cast<const TableEntry* const*>(block + kTableInBlock);
  unsigned count = 0;
  for (std::size_t i = 0; table && i < kTableSize; ++i) count += table[i].type != 0;
  return count;
}

BOOL CALLBACK CountOne(HWND, LPARAM count) {
  ++*reinterpret_cast<unsigned*>(count);
  return TRUE;
}

BOOL CALLBACK CountWithChildren(HWND window, LPARAM count) {
  EnumChildWindows(window, &CountOne, count);
  return CountOne(window, count);
}

}  // namespace

GuiObjects CountGuiObjects() {
  GuiObjects found;
  found.drawing = GetGuiResources(GetCurrentProcess(), GR_GDIOBJECTS);
  if (found.drawing == 0) found.drawing = CountInTable();
  EnumThreadWindows(GetCurrentThreadId(), &CountWithChildren, reinterpret_cast<LPARAM>(&found.windows));
  return found;
}

}  // namespace support
