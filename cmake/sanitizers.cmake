# QNV_SANITIZERS reaches third-party sources as well: an address sanitizer has to see every module.
if(QNV_SANITIZERS)
  add_compile_options(-fsanitize=${QNV_SANITIZERS} -fno-sanitize-recover=all)
  add_link_options(-fsanitize=${QNV_SANITIZERS})
  if(CMAKE_CXX_COMPILER_ID STREQUAL Clang)
    # Its runtime is linked by the C++ driver only, and plain C programs use the library.
    add_compile_options(-fno-sanitize=function)
  endif()
endif()

# Environment of every test; the runtimes of the other builds ignore it.
set(QNV_TEST_ENVIRONMENT
  "ASAN_OPTIONS=detect_leaks=1:detect_stack_use_after_return=1:strict_string_checks=1:check_initialization_order=1"
  "UBSAN_OPTIONS=print_stacktrace=1:halt_on_error=1")
