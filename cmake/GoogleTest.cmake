# Target `gtest_for_tests`: GoogleTest with its main(), compiled from the sources that Debian's `googletest` package
# installs, by the same compiler and with the same flags (sanitizers included) as the tests that link it.

set(GOOGLETEST_SOURCE_DIR /usr/src/googletest/googletest CACHE PATH "GoogleTest's sources")

if(NOT EXISTS ${GOOGLETEST_SOURCE_DIR}/src/gtest-all.cc)
  message(FATAL_ERROR "GoogleTest's sources are not in ${GOOGLETEST_SOURCE_DIR}: run scripts/install-tools build")
endif()

find_package(Threads REQUIRED)
add_library(gtest_for_tests STATIC EXCLUDE_FROM_ALL
  ${GOOGLETEST_SOURCE_DIR}/src/gtest-all.cc ${GOOGLETEST_SOURCE_DIR}/src/gtest_main.cc)
target_compile_features(gtest_for_tests PUBLIC cxx_std_20)
target_include_directories(gtest_for_tests SYSTEM PUBLIC ${GOOGLETEST_SOURCE_DIR}/include)
target_include_directories(gtest_for_tests PRIVATE ${GOOGLETEST_SOURCE_DIR})
target_compile_options(gtest_for_tests PRIVATE -w)
target_link_libraries(gtest_for_tests PUBLIC Threads::Threads)
