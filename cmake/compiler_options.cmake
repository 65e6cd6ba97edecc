# Most of the time of a fresh build goes into reading headers again and again. Sources of programs are therefore
# compiled several at a time, as one unit: they may not define the same name twice, in unnamed namespaces neither. The
# library's sources stay units of their own, because flags and instruction sets belong to single files.
option(QNV_UNITY "Compile the sources of tests and tools several at a time" ON)

# qnv_unity(target BATCH): BATCH sources a unit
function(qnv_unity target batch)
  set_target_properties(${target} PROPERTIES UNITY_BUILD ${QNV_UNITY} UNITY_BUILD_BATCH_SIZE ${batch})
endfunction()

# Optimised builds of programs keep line numbers and leave out the description of variables, which is a quarter of the
# time that compiling takes.
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
# What else the library's own sources are held to; tests and third-party headers are not.
set(QNV_LIBRARY_WARNINGS -Wold-style-cast -Wnull-dereference)
