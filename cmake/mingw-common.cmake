# What both Windows toolchain files share; MINGW_TRIPLE and CMAKE_SYSTEM_PROCESSOR are set by the one that includes it.

set(CMAKE_SYSTEM_NAME Windows)

# The posix-thread compilers are the ones whose C++ library has std::thread and std::mutex.
set(CMAKE_C_COMPILER ${MINGW_TRIPLE}-gcc-posix)
set(CMAKE_CXX_COMPILER ${MINGW_TRIPLE}-g++-posix)
set(CMAKE_RC_COMPILER ${MINGW_TRIPLE}-windres)
set(CMAKE_AR ${MINGW_TRIPLE}-gcc-ar-posix)
set(CMAKE_RANLIB ${MINGW_TRIPLE}-gcc-ranlib-posix)

# Programs of the build run here; everything that is compiled or linked comes from the target's own tree.
set(CMAKE_FIND_ROOT_PATH /usr/${MINGW_TRIPLE})
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)

# Players do not have zlib1.dll; left alone, FindZLIB prefers its import library.
set(ZLIB_USE_STATIC_LIBS ON)

# -static leaves only DLLs that Windows ships; without the time stamp the same sources give the same bytes.
set(CMAKE_EXE_LINKER_FLAGS_INIT "-static -Wl,--no-insert-timestamp")
