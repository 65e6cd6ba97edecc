# ccache is used where it is installed and no other launcher is asked for. It compares the inputs of precompiled headers
# only with this sloppiness: it may then ignore macros that a precompiled header defined but a source never reads.
find_program(QNV_CCACHE ccache)
mark_as_advanced(QNV_CCACHE)
set(QNV_PRECOMPILED_OPTIONS)
if(QNV_CCACHE)
  foreach(language C CXX)
    if(NOT CMAKE_${language}_COMPILER_LAUNCHER)
      set(CMAKE_${language}_COMPILER_LAUNCHER
        ${CMAKE_COMMAND} -E env CCACHE_SLOPPINESS=pch_defines,time_macros ${QNV_CCACHE})
    endif()
  endforeach()
endif()

# What targets with precompiled headers need to be cached at all; harmless without ccache.
if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
  set(QNV_PRECOMPILED_OPTIONS -fpch-preprocess)
endif()
