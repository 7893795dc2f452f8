# Target `infozip`: Info-ZIP UnZip 6.0 as a static library for Windows, with the entry Wiz_SingleEntryUnzip
# (declared in <windll/decs.h>). The sources are Debian's source package, fetched by scripts/install-tools.

set(INFOZIP_SOURCE_DIR ${CMAKE_SOURCE_DIR}/.deps/unzip-6.0 CACHE PATH "Unpacked source package of Info-ZIP UnZip 6.0")

if(NOT EXISTS ${INFOZIP_SOURCE_DIR}/windll/windll.c)
  message(FATAL_ERROR "UnZip's sources are not in ${INFOZIP_SOURCE_DIR}: run scripts/install-tools build")
endif()

# Compiles a copy of one source with a text replaced; the downloaded sources stay as they are.
function(infozip_correct name)
  set(original ${INFOZIP_SOURCE_DIR}/${name})
  set(copy ${CMAKE_CURRENT_BINARY_DIR}/infozip/${name})
  set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS ${original})
  file(READ ${original} text)
  while(ARGN)
    list(POP_FRONT ARGN from to)
    string(FIND "${text}" "${from}" at)
    if(at EQUAL -1)
      message(FATAL_ERROR "${original} does not contain: ${from}")
    endif()
    string(REPLACE "${from}" "${to}" text "${text}")
  endwhile()
  file(WRITE ${copy}.new "${text}")
  file(COPY_FILE ${copy}.new ${copy} ONLY_IF_DIFFERENT)
endfunction()

# The library is compiled with its state passed as an argument (__G__). Three calls that a distribution patch added
# leave it out, which only the command-line build forgives.
infozip_correct(extract.c "readbuf((char *)buf" "readbuf(__G__ (char *)buf")

# A name marked as UTF-8 is converted while the entry's extra field is read, which is skipped for an entry without one:
# the accents of archives made by many other tools would be lost.
infozip_correct(fileio.c
  "if (!length)\n        return PK_COOL" "if (!length && option != EXTRA_FIELD)\n        return PK_COOL"
  "(G.extra_field = (uch *)malloc(length))" "(G.extra_field = (uch *)malloc(length + 1))"
  "if (readbuf(__G__ (char *)G.extra_field, length) == 0)"
  "if (length && readbuf(__G__ (char *)G.extra_field, length) == 0)")

set(infozip_files
  api.c crc32.c crypt.c explode.c globals.c inflate.c list.c match.c process.c ubz2err.c unreduce.c
  unshrink.c zipinfo.c win32/nt.c win32/win32.c win32/win32i64.c windll/windll.c)
list(TRANSFORM infozip_files PREPEND ${INFOZIP_SOURCE_DIR}/)

add_library(infozip STATIC ${infozip_files}
  ${CMAKE_CURRENT_BINARY_DIR}/infozip/extract.c ${CMAKE_CURRENT_BINARY_DIR}/infozip/fileio.c)
set_target_properties(infozip PROPERTIES C_STANDARD 99 C_EXTENSIONS ON)
target_include_directories(infozip PRIVATE ${INFOZIP_SOURCE_DIR})
target_include_directories(infozip SYSTEM INTERFACE ${INFOZIP_SOURCE_DIR})
# Its own inflate and crc32 would bear the same names as zlib's in one program, so it works with zlib's.
target_compile_definitions(infozip PRIVATE WIN32 FORCE_WIN32_OVER_UNIX DLL WINDLL UNZIPLIB USE_ZLIB)
find_package(ZLIB REQUIRED)
target_link_libraries(infozip PUBLIC ZLIB::ZLIB)
# Written long before today's warnings; -fwrapv and -fno-strict-aliasing are the promises its era's compilers made.
target_compile_options(infozip PRIVATE -w -fwrapv -fno-strict-aliasing)
