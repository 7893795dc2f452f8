# 32-bit Windows programs, built on Linux with Debian's MinGW-w64. Nothing runs them here: the 64-bit Wine has no
# 32-bit half, so this build proves that the sources compile and link.

set(CMAKE_SYSTEM_PROCESSOR i686)
set(MINGW_TRIPLE i686-w64-mingw32)
include(${CMAKE_CURRENT_LIST_DIR}/mingw-common.cmake)
