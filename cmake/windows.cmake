# The Windows build: one statically linked launcher.exe that needs nothing but system DLLs.
target_compile_definitions(project_options INTERFACE UNICODE _UNICODE NOMINMAX WIN32_LEAN_AND_MEAN
                           WINVER=0x0601 _WIN32_WINNT=0x0601)
# GCC 12's own wait for systems without a futex misses wake-ups: a std::stop_callback, also the one inside
# condition_variable_any::wait, then hangs in its destructor while another thread asks to stop. The semaphore of the
# thread library does not.
target_compile_definitions(project_options INTERFACE _GLIBCXX_USE_POSIX_SEMAPHORE=1)
target_compile_options(project_options INTERFACE -ffunction-sections -fdata-sections -fstack-protector-strong)
# Windows 7 is the oldest system that the program is for, and says so itself.
target_link_options(project_options INTERFACE -Wl,--gc-sections -fstack-protector-strong
                    -Wl,--major-subsystem-version,6,--minor-subsystem-version,1
                    -Wl,--major-os-version,6,--minor-os-version,1)
# GCC takes its stack slots for wide vectors to be aligned, which on Windows they are not.
set_source_files_properties(src/util/md5_kernel.cpp PROPERTIES COMPILE_OPTIONS -Wa,-muse-unaligned-vector-move)
# The window waits for its picture: vectors, whatever size the rest is made for.
set_source_files_properties(src/ui/win32/resample.cpp PROPERTIES COMPILE_OPTIONS -O3)
include(cmake/DelayLoad.cmake)
delay_loaded(DELAYED_LIBRARIES winhttp bcrypt winmm shlwapi comctl32 ole32 oleaut32 shell32 advapi32)
find_package(ZLIB REQUIRED)
target_link_libraries(launcher_core PUBLIC ZLIB::ZLIB ${DELAYED_LIBRARIES} gdi32 uuid user32)

# Icon, version and manifest; the tests carry them too, so that their windows behave as the program's.
enable_language(RC)
set(resource_script ${CMAKE_SOURCE_DIR}/src/ui/win32/launcher.rc)
string(REPLACE "." "," version_numbers ${PROJECT_VERSION},0)
set_source_files_properties(${resource_script} PROPERTIES
  COMPILE_DEFINITIONS "LAUNCHER_VERSION_NUMBERS=${version_numbers};LAUNCHER_VERSION=${PROJECT_VERSION}"
  INCLUDE_DIRECTORIES ${CMAKE_SOURCE_DIR}/assets/skin
  OBJECT_DEPENDS "${CMAKE_SOURCE_DIR}/src/ui/win32/launcher.manifest;${CMAKE_SOURCE_DIR}/assets/skin/AAA.ico")
add_library(launcher_resources OBJECT ${resource_script})

add_executable(launcher WIN32 ${CMAKE_SOURCE_DIR}/src/main/main_win32.cpp ${CMAKE_SOURCE_DIR}/src/main/install_win32.cpp)
target_link_libraries(launcher PRIVATE launcher_core launcher_resources)
target_link_options(launcher PRIVATE -s)

# The demonstration's stand-in for the game client.
add_executable(demo_client WIN32 ${CMAKE_SOURCE_DIR}/tools/demo_client/main.cpp)
set_target_properties(demo_client PROPERTIES OUTPUT_NAME KVN-DX8)
target_compile_options(demo_client PRIVATE -Wall -Wextra -Werror)
target_compile_definitions(demo_client PRIVATE UNICODE _UNICODE)
target_link_options(demo_client PRIVATE -municode -s)

# What bench/start measures with.
add_executable(empty_window WIN32 ${CMAKE_SOURCE_DIR}/bench/empty_window/main.cpp)
add_executable(window_probe ${CMAKE_SOURCE_DIR}/bench/window_probe/main.cpp)
foreach(program empty_window window_probe)
  target_compile_options(${program} PRIVATE -Wall -Wextra -Werror)
  target_compile_definitions(${program} PRIVATE UNICODE _UNICODE)
  target_include_directories(${program} PRIVATE ${CMAKE_SOURCE_DIR}/src)
  target_link_options(${program} PRIVATE -municode -s)
endforeach()
target_link_libraries(window_probe PRIVATE psapi gdi32)
target_link_libraries(empty_window PRIVATE gdi32)
