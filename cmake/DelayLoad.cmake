# Libraries of the system that are loaded at the first call of one of their functions and not with the program. The
# system looks for a library that a program imports in the program's own folder first, so a foreign file of that name
# there would run before anything of ours does; what is loaded later comes from the system folder (see harden.cpp).

# Sets `out` to import libraries for the named DLLs, made from those of the toolchain.
function(delay_loaded out)
  set(made)
  foreach(name ${ARGN})
    execute_process(COMMAND ${CMAKE_C_COMPILER} -print-file-name=lib${name}.a
                    OUTPUT_VARIABLE source OUTPUT_STRIP_TRAILING_WHITESPACE COMMAND_ERROR_IS_FATAL ANY)
    set(definition ${CMAKE_CURRENT_BINARY_DIR}/delay/${name}.def)
    set(library ${CMAKE_CURRENT_BINARY_DIR}/delay/lib${name}-delayed.a)
    list(APPEND made ${library})
    if(EXISTS ${library})
      continue()
    endif()
    execute_process(COMMAND ${CMAKE_NM} --defined-only ${source}
                    OUTPUT_VARIABLE symbols ERROR_QUIET COMMAND_ERROR_IS_FATAL ANY)
    # 32-bit names begin with an underscore and end in the size of the arguments, which is no part of the DLL's name.
    set(prefix)
    set(kill_at)
    if(CMAKE_SIZEOF_VOID_P EQUAL 4)
      set(prefix _)
      set(kill_at --kill-at)
    endif()
    string(REGEX MATCHALL " T ${prefix}[^\n]+" functions "${symbols}")
    list(TRANSFORM functions REPLACE "^ T ${prefix}" "")
    list(JOIN functions "\n" functions)
    file(WRITE ${definition} "LIBRARY ${name}.dll\nEXPORTS\n${functions}\n")
    execute_process(COMMAND ${CMAKE_DLLTOOL} ${kill_at} --input-def ${definition} --output-delaylib ${library}
                    COMMAND_ERROR_IS_FATAL ANY)
  endforeach()
  set(${out} ${made} PARENT_SCOPE)
endfunction()
