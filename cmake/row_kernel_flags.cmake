# Compiler options of the row kernels. They are compiled for speed, and the files of each level, recognised by their
# suffix, for its instruction set. No other file may use these instructions, because the processor is asked for them
# only when a kernel table is chosen.

# The levels of src/raster/rows/levels.h that the target processor has, lowest first:
#   QNV_LEVELS           their names
#   QNV_LEVEL_name       the value of CpuLevel
#   QNV_OPTIONS_name     the compiler options of files named *_name.cpp
set(qnv_level_list ${PROJECT_SOURCE_DIR}/src/raster/rows/levels.h)
set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS ${qnv_level_list})
set(QNV_ALL_LEVELS)
file(READ ${qnv_level_list} level_text)
string(REGEX MATCHALL "\n +X\\([^\n\\]*" level_lines "${level_text}")
foreach(line IN LISTS level_lines)
  if(NOT line MATCHES "X\\(([a-z0-9]+), (k[A-Za-z0-9]+), \"([^\"]*)\",")
    message(FATAL_ERROR "${qnv_level_list}: '${line}' is not understood")
  endif()
  list(APPEND QNV_ALL_LEVELS ${CMAKE_MATCH_1})
  set(QNV_LEVEL_${CMAKE_MATCH_1} ${CMAKE_MATCH_2})
  separate_arguments(QNV_OPTIONS_${CMAKE_MATCH_1} UNIX_COMMAND "${CMAKE_MATCH_3}")
endforeach()
include(CheckCXXSourceCompiles)
check_cxx_source_compiles("
#if !defined(__x86_64__) && !defined(__i386__)
#error another processor
#endif
int main() {}" QNV_TARGET_IS_X86)
if(QNV_TARGET_IS_X86)
  set(QNV_LEVELS ${QNV_ALL_LEVELS})
else()
  set(QNV_LEVELS plain)
endif()
if(NOT QNV_ALL_LEVELS OR NOT "plain" IN_LIST QNV_ALL_LEVELS)
  message(FATAL_ERROR "${qnv_level_list} holds no list of levels")
endif()

# Removes from the list of sources named by `variable` the files of levels that the target processor does not have, and
# gives the others their compiler options.
function(qnv_row_kernel_flags variable)
  foreach(source IN LISTS ${variable})
    set(flags)
    if(source MATCHES "/src/raster/rows/")
      # Aligned, because the speed of short loops varies by a quarter with their address.
      list(APPEND flags $<$<CONFIG:RelWithDebInfo>:-O3> $<$<CONFIG:RelWithDebInfo>:-falign-loops=64>)
    endif()
    if(source MATCHES "/src/raster/rows/.*_([a-z0-9]+)\\.cpp$" AND CMAKE_MATCH_1 IN_LIST QNV_ALL_LEVELS)
      if(NOT CMAKE_MATCH_1 IN_LIST QNV_LEVELS)
        list(REMOVE_ITEM ${variable} ${source})
        continue()
      endif()
      list(APPEND flags ${QNV_OPTIONS_${CMAKE_MATCH_1}})
    endif()
    if(flags)
      # A precompiled header serves one set of options only.
      set_source_files_properties(${source} PROPERTIES COMPILE_OPTIONS "${flags}" SKIP_PRECOMPILE_HEADERS ON)
    endif()
  endforeach()
  set(${variable} ${${variable}} PARENT_SCOPE)
endfunction()
