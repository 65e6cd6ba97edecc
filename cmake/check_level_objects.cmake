# cmake -D OBJECTS=FILE|FILE... -D LEVELS=name|name... -D NM=nm -P check_level_objects.cmake
#
# Checks that no code compiled for the instruction set of a level is used outside that level. The object files of a
# level (*_NAME.cpp.o) may define functions that other files define too, such as templates of shared headers. The linker
# might take their copy for the whole library, which would then fail on a processor without these instructions. So every
# function with external or weak linkage in these files must belong to the namespace qnv::NAME. Data may be shared.
cmake_minimum_required(VERSION 3.24)

string(REPLACE "|" ";" objects "${OBJECTS}")
string(REPLACE "|" ";" levels "${LEVELS}")
set(problems)
set(files 0)
foreach(level IN LISTS levels)
  set(kernels 0)
  string(LENGTH ${level} length)
  foreach(object IN LISTS objects)
    if(NOT object MATCHES "_${level}\\.cpp\\.o(bj)?$")
      continue()
    endif()
    math(EXPR files "${files} + 1")
    execute_process(COMMAND ${NM} --defined-only ${object}
      OUTPUT_VARIABLE output ERROR_VARIABLE errors RESULT_VARIABLE code)
    if(NOT code EQUAL 0)
      message(FATAL_ERROR "${NM} ${object} failed (${code}): ${errors}")
    endif()
    # T and W: external and weak functions; i: functions chosen at load time.
    string(REGEX MATCHALL "[0-9a-f]+ [TWi] [^\n]+" symbols "${output}")
    foreach(symbol IN LISTS symbols)
      # Helpers that GCC generates for position-independent x86 code: a move and a return, the same on every level.
      if(symbol MATCHES " T __x86\\.get_pc_thunk\\.[a-z]+$")
        continue()
      endif()
      if(symbol MATCHES " T _?_ZN3qnv${length}${level}[0-9]")
        math(EXPR kernels "${kernels} + 1")
      else()
        string(REGEX REPLACE "^[0-9a-f]+ " "" symbol "${symbol}")
        list(APPEND problems "${object}: ${symbol}")
      endif()
    endforeach()
  endforeach()
  if(kernels EQUAL 0)
    list(APPEND problems "no kernel of level ${level} found: is its namespace qnv::${level}?")
  endif()
endforeach()

if(problems)
  list(JOIN problems "\n  " problems)
  message(FATAL_ERROR "Functions that another instruction set could be linked to:\n  ${problems}")
endif()
message(STATUS "${files} files of ${levels}: no function that a lower level could be linked to")
