# Uses ccache where it is installed and no other launcher is given. Precompiled headers are cached only with this
# sloppiness, which ignores macros that a precompiled header defines and a source never reads.
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

# ccache needs this option for targets with precompiled headers; without ccache it does no harm.
if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
  set(QNV_PRECOMPILED_OPTIONS -fpch-preprocess)
endif()
