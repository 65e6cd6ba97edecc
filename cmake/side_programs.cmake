# The programs beside the library: benchmark, fuzz targets, examples. A folder without sources is skipped.

# The benchmark opens the library by path and is not linked with it. The page that it paints is a call file, which lies
# beside it.
file(GLOB bench_sources CONFIGURE_DEPENDS ${PROJECT_SOURCE_DIR}/bench/*.cpp)
if(bench_sources AND NOT QNV_FUZZ)
  add_executable(qnvbench ${bench_sources})
  target_include_directories(qnvbench PRIVATE ${PROJECT_SOURCE_DIR}/include)
  target_link_libraries(qnvbench PRIVATE calls qnv_options ${CMAKE_DL_LIBS})
  configure_file(${PROJECT_SOURCE_DIR}/bench/pages/qnvbench_page.qnv
    ${CMAKE_RUNTIME_OUTPUT_DIRECTORY}/qnvbench_page.qnv COPYONLY)
  qnv_unity(qnvbench 9)
  # The measured code is in the library, so -O1 is enough. Only the loops that measure the memory itself need -O2.
  target_compile_options(qnvbench PRIVATE ${QNV_PROGRAM_OPTIONS} $<$<CONFIG:RelWithDebInfo>:-O1>)
  set_source_files_properties(${PROJECT_SOURCE_DIR}/bench/memory_limits.cpp PROPERTIES
    COMPILE_OPTIONS $<$<CONFIG:RelWithDebInfo>:-O2>)
  # Built and tested where it is of use to a user; scripts/bench.sh builds it for the other presets.
  if(QNV_SANITIZERS OR NOT (QNV_TOOLS OR WIN32))
    set_target_properties(qnvbench PROPERTIES EXCLUDE_FROM_ALL ON)
  elseif(QNV_TESTS)
    add_test(NAME bench_self_test COMMAND qnvbench --self-test)
    set_tests_properties(bench_self_test PROPERTIES ENVIRONMENT "${QNV_TEST_ENVIRONMENT}" TIMEOUT 300)
  endif()
endif()

file(GLOB example_sources CONFIGURE_DEPENDS ${PROJECT_SOURCE_DIR}/examples/*.c)
foreach(source IN LISTS example_sources)
  get_filename_component(name ${source} NAME_WE)
  add_executable(example_${name} ${source})
  target_compile_options(example_${name} PRIVATE -Wall -Wextra -pedantic $<$<BOOL:${QNV_WERROR}>:-Werror>)
  target_link_libraries(example_${name} PRIVATE qnvdrv10)
endforeach()

# The C code of the guides is compiled, linked with the library and run.
if(QNV_TESTS)
  set(guide_compiler "${CMAKE_C_COMPILER} ${CMAKE_C_FLAGS}")
  if(QNV_SANITIZERS)
    string(APPEND guide_compiler " -fsanitize=${QNV_SANITIZERS} -fno-sanitize-recover=all")
  endif()
  foreach(guide IN ITEMS host-guide pixel-formats)
    string(REGEX REPLACE "-guide$" "" name guide_${guide})
    string(REPLACE "-" "_" name ${name})
    set(guide_run)
    if(CMAKE_CROSSCOMPILING_EMULATOR)
      list(JOIN CMAKE_CROSSCOMPILING_EMULATOR " " guide_emulator)
      set(guide_run -e "${guide_emulator}")
    endif()
    if(WIN32)
      list(APPEND guide_run -o $<TARGET_FILE_DIR:qnvdrv10>/${name}.exe)
      set(guide_link $<TARGET_LINKER_FILE:qnvdrv10>)
    else()
      set(guide_link $<TARGET_FILE:qnvdrv10> -Wl,-rpath,$<TARGET_FILE_DIR:qnvdrv10>)
    endif()
    add_test(NAME ${name} COMMAND ${PROJECT_SOURCE_DIR}/scripts/check_guide.sh ${guide_run}
      ${PROJECT_SOURCE_DIR}/docs/${guide}.md "${guide_compiler}" ${PROJECT_SOURCE_DIR}/include ${guide_link})
    set_tests_properties(${name} PROPERTIES ENVIRONMENT "${QNV_TEST_ENVIRONMENT}" TIMEOUT 300)
  endforeach()
endif()

# A fuzz_NAME.cpp that defines the entry point is a target; the other files of the folder are shared by all targets. In
# the fuzzing build libFuzzer runs a target; in all others a main function replays the files of fuzz/corpus/NAME. Both
# are tests. The target that compares calls with the slow model is built only in the fuzzing build; in the others
# random_tests replays its files.
file(GLOB fuzz_shared CONFIGURE_DEPENDS ${PROJECT_SOURCE_DIR}/fuzz/*.cpp)
set(fuzz_main ${PROJECT_SOURCE_DIR}/fuzz/standalone_main.cpp)
list(REMOVE_ITEM fuzz_shared ${fuzz_main})
set(fuzz_sources)
set(fuzz_comparing ${PROJECT_SOURCE_DIR}/fuzz/fuzz_sequences.cpp)
foreach(source IN LISTS fuzz_shared)
  file(STRINGS ${source} entry_point REGEX "LLVMFuzzerTestOneInput")
  if(entry_point)
    list(APPEND fuzz_sources ${source})
  endif()
endforeach()
list(REMOVE_ITEM fuzz_shared ${fuzz_sources})
# The memory sanitizer does not see what functions inside the standard library write, and the model's side uses those.
if(NOT QNV_FUZZ OR QNV_SANITIZERS STREQUAL "memory")
  list(REMOVE_ITEM fuzz_sources ${fuzz_comparing})
endif()
# The target that reads files as the page printer does takes the sources it needs; its headers include fmt, and so it
# is built only for this machine.
set(fuzz_of_tool ${PROJECT_SOURCE_DIR}/fuzz/fuzz_bmp_file.cpp)
file(GLOB fuzz_tool_sources CONFIGURE_DEPENDS ${PROJECT_SOURCE_DIR}/tools/qnvtool/input/*.cpp)
list(FILTER fuzz_tool_sources EXCLUDE REGEX "/(png|jpeg|tiff)_reader\\.cpp$")
foreach(name IN ITEMS file_bytes interruption phase_times temporary_file)
  list(APPEND fuzz_tool_sources ${PROJECT_SOURCE_DIR}/tools/qnvtool/base/${name}.cpp)
endforeach()
if(NOT (QNV_FUZZ OR QNV_TOOLS) OR QNV_SANITIZERS STREQUAL "memory")
  list(REMOVE_ITEM fuzz_sources ${fuzz_of_tool})
endif()
add_library(fuzz_support OBJECT ${fuzz_shared})
target_include_directories(fuzz_support PRIVATE ${PROJECT_SOURCE_DIR}/include ${PROJECT_SOURCE_DIR}/src)
target_link_libraries(fuzz_support PRIVATE qnv_options)
set(fuzz_engine -fsanitize=fuzzer)
if(QNV_SANITIZERS STREQUAL "memory")
  # libFuzzer brings templates of the standard library that the sanitizer knows nothing of, and comes first when the
  # linker chooses among copies. Here its copies are its own.
  execute_process(COMMAND ${CMAKE_CXX_COMPILER} -print-resource-dir OUTPUT_VARIABLE resources
    OUTPUT_STRIP_TRAILING_WHITESPACE COMMAND_ERROR_IS_FATAL ANY)
  set(fuzz_engine ${PROJECT_BINARY_DIR}/fuzz_engine.o)
  add_custom_command(OUTPUT ${fuzz_engine}
    COMMAND ld.bfd -r --force-group-allocation
      --whole-archive ${resources}/lib/linux/libclang_rt.fuzzer-x86_64.a -o ${fuzz_engine}
    COMMAND objcopy --wildcard --localize-symbol=_ZNSt* --localize-symbol=_ZNKSt* --localize-symbol=_ZSt*
      --localize-symbol=_ZN*__cxx11* ${fuzz_engine}
    VERBATIM)
  add_custom_target(fuzz_engine DEPENDS ${fuzz_engine})
endif()
if(fuzz_comparing IN_LIST fuzz_sources)
  file(GLOB fuzz_case_sources CONFIGURE_DEPENDS ${PROJECT_SOURCE_DIR}/tests/random/*.cpp
    ${PROJECT_SOURCE_DIR}/tests/reference/*.cpp ${PROJECT_SOURCE_DIR}/tests/support/fenced_buffer.cpp)
  list(FILTER fuzz_case_sources EXCLUDE REGEX "/random_tests\\.cpp$")
  add_library(fuzz_cases OBJECT ${fuzz_case_sources})
  target_include_directories(fuzz_cases PUBLIC ${PROJECT_SOURCE_DIR}/include ${PROJECT_SOURCE_DIR}/tests)
  target_link_libraries(fuzz_cases PRIVATE qnv_options)
endif()
foreach(source IN LISTS fuzz_sources)
  get_filename_component(target ${source} NAME_WE)
  string(REGEX REPLACE "^fuzz_" "" name ${target})
  if(QNV_FUZZ)
    list(APPEND fuzz_targets ${target})
    add_executable(${target} ${source} $<TARGET_OBJECTS:fuzz_support>)
    if(source IN_LIST fuzz_comparing)
      target_link_libraries(${target} PRIVATE fuzz_cases)
    endif()
    target_link_options(${target} PRIVATE ${fuzz_engine})
    if(TARGET fuzz_engine)
      add_dependencies(${target} fuzz_engine)
    endif()
    # With zero runs libFuzzer runs each file of the corpus once and makes no new inputs.
    add_test(NAME fuzz_corpus_${name} COMMAND ${target} -runs=0 ${PROJECT_SOURCE_DIR}/fuzz/corpus/${name})
    set_tests_properties(fuzz_corpus_${name} PROPERTIES ENVIRONMENT "${QNV_TEST_ENVIRONMENT}" TIMEOUT 300)
  else()
    set(target fuzz_replay_${name})
    add_executable(${target} ${source} ${fuzz_main} $<TARGET_OBJECTS:fuzz_support>)
    if(QNV_TESTS)
      add_test(NAME ${target} COMMAND ${target} ${PROJECT_SOURCE_DIR}/fuzz/corpus/${name})
      set_tests_properties(${target} PROPERTIES ENVIRONMENT "${QNV_TEST_ENVIRONMENT}" TIMEOUT 300)
    endif()
  endif()
  target_include_directories(${target} PRIVATE ${PROJECT_SOURCE_DIR}/src)
  target_link_libraries(${target} PRIVATE qnv_options qnvdrv10_static)
  if(name STREQUAL "call_file")
    target_link_libraries(${target} PRIVATE inspector_engine calls)
  elseif(source IN_LIST fuzz_of_tool AND QNV_TOOLS)
    target_link_libraries(${target} PRIVATE printing)
  elseif(source IN_LIST fuzz_of_tool)
    target_sources(${target} PRIVATE ${fuzz_tool_sources})
    target_include_directories(${target} PRIVATE ${PROJECT_SOURCE_DIR}/tools)
    target_compile_definitions(${target} PRIVATE FMT_HEADER_ONLY)
  endif()
endforeach()
if(QNV_FUZZ)
  # The slow model is not instrumented: a new path through the model does not make an input interesting.
  foreach(target qnvdrv10_objects calls inspector_engine fuzz_support ${fuzz_targets})
    target_compile_options(${target} PRIVATE -fsanitize=fuzzer-no-link)
  endforeach()
endif()
