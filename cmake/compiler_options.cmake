# Options shared by every target of this project. Third-party sources do not get them.
add_library(qnv_options INTERFACE)
target_compile_options(qnv_options INTERFACE
  -Wall -Wextra -Wshadow -Wcast-align -Wconversion -Wsign-conversion
  # The same bits on every build: a product and a sum are two roundings, whatever the processor offers.
  -ffp-contract=off
  $<$<BOOL:${QNV_WERROR}>:-Werror>)
# GCC's instrumentation hides initialisations from this warning; the other builds give it.
if(QNV_SANITIZERS AND CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
  target_compile_options(qnv_options INTERFACE -Wno-maybe-uninitialized)
endif()
