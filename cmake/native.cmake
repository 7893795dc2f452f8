# The Linux build: terminal face, operator's publisher, benchmarks, fuzzing.
find_package(ZLIB REQUIRED)
find_package(CURL REQUIRED)
find_package(OpenSSL REQUIRED)
find_package(Threads REQUIRED)
find_package(PkgConfig REQUIRED)
pkg_check_modules(HTTPLIB REQUIRED IMPORTED_TARGET cpp-httplib)
target_link_libraries(launcher_core PUBLIC ZLIB::ZLIB CURL::libcurl OpenSSL::Crypto Threads::Threads)

add_executable(launcher ${CMAKE_SOURCE_DIR}/src/main/main_posix.cpp)
target_link_libraries(launcher PRIVATE launcher_core)

file(GLOB publisher_sources CONFIGURE_DEPENDS ${CMAKE_SOURCE_DIR}/tools/publisher/*.cpp)
list(FILTER publisher_sources EXCLUDE REGEX "/main\\.cpp$")
add_library(publisher_core STATIC ${publisher_sources})
target_include_directories(publisher_core PUBLIC ${CMAKE_SOURCE_DIR}/tools)
target_link_libraries(publisher_core PUBLIC launcher_core PRIVATE PkgConfig::HTTPLIB)
add_executable(publisher ${CMAKE_SOURCE_DIR}/tools/publisher/main.cpp)
target_link_libraries(publisher PRIVATE publisher_core)

# Writes what the fuzz targets begin with (fuzz/make-seeds).
set(test_support ${CMAKE_SOURCE_DIR}/tests/support)
add_executable(fuzz_seeds EXCLUDE_FROM_ALL ${CMAKE_SOURCE_DIR}/fuzz/seeds.cpp ${test_support}/archives.cpp
               ${test_support}/signer.cpp ${test_support}/temp_folder.cpp ${test_support}/posix/key_pair.cpp)
target_include_directories(fuzz_seeds PRIVATE ${CMAKE_SOURCE_DIR}/tests)
target_link_libraries(fuzz_seeds PRIVATE publisher_core)

# Installs among bad mirrors, kills and full disks (bench/soak).
file(GLOB soak_sources CONFIGURE_DEPENDS ${CMAKE_SOURCE_DIR}/tools/soak/*.cpp)
add_executable(soak EXCLUDE_FROM_ALL ${soak_sources} ${test_support}/archives.cpp ${test_support}/faulty_server.cpp
               ${test_support}/sockets.cpp ${test_support}/posix/native_sockets.cpp)
target_include_directories(soak PRIVATE ${CMAKE_SOURCE_DIR}/tests ${test_support}/posix)
target_link_libraries(soak PRIVATE publisher_core)
