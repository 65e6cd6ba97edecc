# QNV_SANITIZERS applies to third-party sources too, because an address sanitizer has to instrument every module.
if(QNV_SANITIZERS)
  add_compile_options(-fsanitize=${QNV_SANITIZERS} -fno-sanitize-recover=all)
  add_link_options(-fsanitize=${QNV_SANITIZERS})
  if(CMAKE_CXX_COMPILER_ID STREQUAL Clang)
    # Only the C++ driver links its runtime, but plain C programs use the library.
    add_compile_options(-fno-sanitize=function)
  endif()
endif()

# Environment of every test; without sanitizers it has no effect.
set(QNV_TEST_ENVIRONMENT
  "ASAN_OPTIONS=detect_leaks=1:detect_stack_use_after_return=1:strict_string_checks=1:check_initialization_order=1"
  "UBSAN_OPTIONS=print_stacktrace=1:halt_on_error=1")
