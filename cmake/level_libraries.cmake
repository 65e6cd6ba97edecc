# For each level of row kernels but the highest, builds the shared library as a processor of that level runs it: from
# the same objects, but with a detection that stops at the level. These libraries are for tests and comparisons and are
# not delivered. Each has the name of the delivered library and is in bin/levels/NAME, where qnv_level_tests puts the
# test programs: a program loads the library from its own folder only.
set(QNV_CAPPED_LEVELS ${QNV_LEVELS})
list(POP_BACK QNV_CAPPED_LEVELS)

foreach(level IN LISTS QNV_CAPPED_LEVELS)
  set(target qnvdrv10_${level})
  add_library(${target} SHARED EXCLUDE_FROM_ALL
    ${PROJECT_SOURCE_DIR}/src/raster/rows/cpu_level.cpp
    $<FILTER:$<TARGET_OBJECTS:qnvdrv10_objects>,EXCLUDE,/cpu_level\\.cpp\\.>)
  target_compile_definitions(${target} PRIVATE QNV_HIGHEST_LEVEL=${QNV_LEVEL_${level}})
  target_include_directories(${target} PRIVATE ${PROJECT_SOURCE_DIR}/src)
  target_compile_options(${target} PRIVATE $<TARGET_PROPERTY:qnvdrv10_objects,COMPILE_OPTIONS>)
  target_link_libraries(${target} PRIVATE qnv_options)
  target_link_options(${target} PRIVATE $<TARGET_PROPERTY:qnvdrv10,LINK_OPTIONS>)
  set(folder ${PROJECT_BINARY_DIR}/bin/levels/${level})
  set_target_properties(${target} PROPERTIES
    CXX_VISIBILITY_PRESET hidden
    VISIBILITY_INLINES_HIDDEN ON
    RUNTIME_OUTPUT_DIRECTORY ${folder}
    LIBRARY_OUTPUT_DIRECTORY ${folder}
    ARCHIVE_OUTPUT_DIRECTORY ${folder})
  if(WIN32)
    target_sources(${target} PRIVATE ${qnv_def_file})
    set_target_properties(${target} PROPERTIES PREFIX "" OUTPUT_NAME QNVDRV10)
  else()
    set_target_properties(${target} PROPERTIES OUTPUT_NAME qnvdrv10 SOVERSION ${PROJECT_VERSION_MAJOR})
    set_property(TARGET ${target} APPEND PROPERTY LINK_DEPENDS ${qnv_version_script})
  endif()
endforeach()

# qnv_level_tests(program [ARGUMENTS argument...]): adds a test PROGRAM_LEVEL for each of these libraries, which runs
# the test program with it.
function(qnv_level_tests program)
  cmake_parse_arguments(PARSE_ARGV 1 arg "" "" "ARGUMENTS")
  if(NOT TARGET ${program})
    return()
  endif()
  foreach(level IN LISTS QNV_CAPPED_LEVELS)
    set(folder ${PROJECT_BINARY_DIR}/bin/levels/${level})
    set(copy ${folder}/${program}${CMAKE_EXECUTABLE_SUFFIX})
    add_custom_command(OUTPUT ${copy}
      COMMAND ${CMAKE_COMMAND} -D FROM=$<TARGET_FILE:${program}> -D TO=${copy}
        -P ${PROJECT_SOURCE_DIR}/cmake/link_program.cmake
      DEPENDS ${program} ${PROJECT_SOURCE_DIR}/cmake/link_program.cmake
      VERBATIM)
    add_custom_target(${program}_${level} ALL DEPENDS ${copy})
    add_dependencies(${program}_${level} qnvdrv10_${level})
    add_test(NAME ${program}_${level} COMMAND ${CMAKE_CROSSCOMPILING_EMULATOR} ${copy} ${arg_ARGUMENTS})
    set_tests_properties(${program}_${level} PROPERTIES ENVIRONMENT "${QNV_TEST_ENVIRONMENT}" TIMEOUT 1200)
  endforeach()
endfunction()
