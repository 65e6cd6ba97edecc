# Row kernels are compiled for speed, and each instruction set has its own files, named by suffix. Nothing else
# may use those instructions: the processor is asked for them only where a kernel table is chosen.
function(qnv_row_kernel_flags)
  foreach(source IN LISTS ARGN)
    set(flags)
    if(source MATCHES "/src/raster/rows/")
      # Short loops differ by a quarter with the place that the linker happens to give them.
      list(APPEND flags $<$<CONFIG:RelWithDebInfo>:-O3> $<$<CONFIG:RelWithDebInfo>:-falign-loops=64>)
    endif()
    if(source MATCHES "_(sse2|ssse3|avx2)\\.cpp$")
      list(APPEND flags -m${CMAKE_MATCH_1})
    endif()
    if(flags)
      set_source_files_properties(${source} PROPERTIES COMPILE_OPTIONS "${flags}")
    endif()
  endforeach()
endfunction()
