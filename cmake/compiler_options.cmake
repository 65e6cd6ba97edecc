# A fresh build spends most of its time reading the same headers. The sources of programs are therefore compiled
# several at a time, as one translation unit: no two of them may define the same name, not even in unnamed namespaces.
# The library's sources are compiled one by one, because flags and instruction sets are set for single files.
option(QNV_UNITY "Compile the sources of tests and tools several at a time" ON)

# qnv_unity(target BATCH): compiles BATCH sources of the target as one unit
function(qnv_unity target batch)
  set_target_properties(${target} PROPERTIES UNITY_BUILD ${QNV_UNITY} UNITY_BUILD_BATCH_SIZE ${batch})
endfunction()

# Debug information of programs in optimized builds: line numbers only. Describing variables too would take a quarter
# of the compile time.
set(QNV_PROGRAM_OPTIONS $<$<CONFIG:RelWithDebInfo>:-g1>)

# Compiler options of every target of this project, but not of third-party sources.
add_library(qnv_options INTERFACE)
target_compile_options(qnv_options INTERFACE
  -Wall -Wextra -Wshadow -Wcast-align -Wconversion -Wsign-conversion
  # A product and a sum are rounded separately even where the processor has a combined instruction, so that all builds
  # paint the same bits.
  -ffp-contract=off
  $<$<BOOL:${QNV_WERROR}>:-Werror>)
# With GCC's instrumentation this warning does not see initialisations; the other builds still check it.
if(QNV_SANITIZERS AND CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
  target_compile_options(qnv_options INTERFACE -Wno-maybe-uninitialized)
endif()
# Warnings for the library's own sources only, not for tests and third-party headers.
set(QNV_LIBRARY_WARNINGS -Wold-style-cast -Wnull-dereference)
