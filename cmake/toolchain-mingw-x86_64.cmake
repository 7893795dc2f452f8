# 64-bit Windows programs, built on Linux with Debian's MinGW-w64.

set(CMAKE_SYSTEM_PROCESSOR x86_64)
set(MINGW_TRIPLE x86_64-w64-mingw32)
include(${CMAKE_CURRENT_LIST_DIR}/mingw-common.cmake)

# scripts/under-wine gives a display and a fresh prefix; a single program that needs neither is run plainly.
set(CMAKE_CROSSCOMPILING_EMULATOR wine)
