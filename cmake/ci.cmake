# The line coverage, as a target. Formatting and lint need no build: scripts/format.sh and scripts/lint.sh.
# Lines of the library that no test reached, by file. Build and run the tests of the preset "coverage" first.
add_custom_target(ci_coverage
  COMMAND ${PROJECT_SOURCE_DIR}/scripts/coverage.sh ${PROJECT_BINARY_DIR}
  VERBATIM)
