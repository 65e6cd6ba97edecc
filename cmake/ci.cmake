# What a reviewer asks for beside the tests, each as a target that runs locally.
find_program(CLANG_FORMAT NAMES clang-format-14 clang-format)
if(CLANG_FORMAT)
  file(GLOB_RECURSE format_sources CONFIGURE_DEPENDS
    ${PROJECT_SOURCE_DIR}/src/*.cpp ${PROJECT_SOURCE_DIR}/src/*.h ${PROJECT_SOURCE_DIR}/tests/*.cpp
    ${PROJECT_SOURCE_DIR}/tests/*.h ${PROJECT_SOURCE_DIR}/tools/*.cpp ${PROJECT_SOURCE_DIR}/tools/*.h
    ${PROJECT_SOURCE_DIR}/bench/*.cpp ${PROJECT_SOURCE_DIR}/bench/*.h ${PROJECT_SOURCE_DIR}/fuzz/*.cpp
    ${PROJECT_SOURCE_DIR}/fuzz/*.h)
  set(format_list ${PROJECT_BINARY_DIR}/format_files.txt)
  list(JOIN format_sources "\n" format_lines)
  file(CONFIGURE OUTPUT ${format_list} CONTENT "@format_lines@\n" @ONLY)
  add_custom_target(ci_format
    COMMAND ${CLANG_FORMAT} --dry-run --Werror --style=file --files=${format_list}
    WORKING_DIRECTORY ${PROJECT_SOURCE_DIR} VERBATIM)
  add_custom_target(format
    COMMAND ${CLANG_FORMAT} -i --style=file --files=${format_list}
    WORKING_DIRECTORY ${PROJECT_SOURCE_DIR} VERBATIM)
endif()

# Lines of the library that no test reached, by file. Build and run the tests of the preset "coverage" first.
add_custom_target(ci_coverage
  COMMAND ${PROJECT_SOURCE_DIR}/scripts/coverage.sh ${PROJECT_BINARY_DIR}
  VERBATIM)
