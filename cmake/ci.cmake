# The target ci_coverage: the share of lines of each library file that the tests reached. Build the preset "coverage"
# and run its tests first.
add_custom_target(ci_coverage
  COMMAND ${PROJECT_SOURCE_DIR}/scripts/coverage.sh ${PROJECT_BINARY_DIR}
  VERBATIM)
