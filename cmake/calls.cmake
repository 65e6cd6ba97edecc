# Calls on file: the library that writes, reads and replays them, for every target, and the recorder.
#
# Blocks are compressed by zstd: by its library where that is installed for the target, which is the development
# machine's own, else by its sources where scripts/zstd.sh has fetched them. Elsewhere blocks are stored as they are, and
# only such files can be read.
file(GLOB calls_sources CONFIGURE_DEPENDS ${PROJECT_SOURCE_DIR}/calls/*.cpp)
add_library(calls STATIC ${calls_sources})
target_include_directories(calls PUBLIC ${PROJECT_SOURCE_DIR} ${PROJECT_SOURCE_DIR}/include)
target_link_libraries(calls PRIVATE qnv_options)
set_target_properties(calls PROPERTIES POSITION_INDEPENDENT_CODE ON CXX_VISIBILITY_PRESET hidden
  VISIBILITY_INLINES_HIDDEN ON)
# Files larger than 2 GB on 32-bit systems too.
target_compile_definitions(calls PRIVATE _FILE_OFFSET_BITS=64)
target_compile_options(calls PRIVATE ${QNV_PROGRAM_OPTIONS})
qnv_unity(calls 20)
# Built for what uses it; without tests and tools nothing does.
set_target_properties(calls PROPERTIES EXCLUDE_FROM_ALL ON)

set(QNV_ZSTD OFF)
set(QNV_ZSTD_SOURCES ${PROJECT_SOURCE_DIR}/.cache/zstd CACHE PATH "Sources of zstd for targets without its library")
if(CMAKE_SIZEOF_VOID_P EQUAL 8 AND NOT CMAKE_CROSSCOMPILING AND NOT QNV_SANITIZERS STREQUAL "memory")
  find_path(QNV_ZSTD_DIR zstd.h)
  find_library(QNV_ZSTD_LIBRARY zstd)
  if(QNV_ZSTD_DIR AND QNV_ZSTD_LIBRARY)
    set(QNV_ZSTD ON)
    target_link_libraries(calls PRIVATE ${QNV_ZSTD_LIBRARY})
  endif()
elseif(CMAKE_SIZEOF_VOID_P EQUAL 4 AND EXISTS ${QNV_ZSTD_SOURCES}/lib/zstd.h)
  set(QNV_ZSTD ON)
  file(GLOB zstd_sources CONFIGURE_DEPENDS ${QNV_ZSTD_SOURCES}/lib/common/*.c ${QNV_ZSTD_SOURCES}/lib/compress/*.c
    ${QNV_ZSTD_SOURCES}/lib/decompress/*.c)
  add_library(zstd STATIC EXCLUDE_FROM_ALL ${zstd_sources})
  target_include_directories(zstd SYSTEM PUBLIC ${QNV_ZSTD_SOURCES}/lib)
  # Nothing of it is exported, and its hash function has names of its own.
  target_compile_definitions(zstd PRIVATE ZSTD_DISABLE_ASM ZSTD_LEGACY_SUPPORT=0 XXH_NAMESPACE=ZSTD_ ZSTDLIB_VISIBLE=
    ZSTDERRORLIB_VISIBLE=)
  target_compile_options(zstd PRIVATE -w -O2 -g0 -ffunction-sections -fdata-sections)
  set_target_properties(zstd PROPERTIES POSITION_INDEPENDENT_CODE ON C_VISIBILITY_PRESET hidden)
  target_link_libraries(calls PRIVATE zstd)
endif()
if(QNV_ZSTD)
  target_compile_definitions(calls PRIVATE QNV_ZSTD)
endif()

# The recorder: a drop-in with the exports and ordinals of the library, from the same export list, and a function of
# its own that hosts look up by name.
file(GLOB recorder_sources CONFIGURE_DEPENDS ${PROJECT_SOURCE_DIR}/recorder/*.cpp)
add_library(qnvrec SHARED ${recorder_sources})
target_link_libraries(qnvrec PRIVATE calls qnv_options ${CMAKE_DL_LIBS})
target_include_directories(qnvrec PRIVATE ${PROJECT_SOURCE_DIR})
target_compile_options(qnvrec PRIVATE ${QNV_PROGRAM_OPTIONS})
set_target_properties(qnvrec PROPERTIES CXX_VISIBILITY_PRESET hidden VISIBILITY_INLINES_HIDDEN ON)
if(QNV_SANITIZERS OR NOT QNV_TESTS)
  set_target_properties(qnvrec PROPERTIES EXCLUDE_FROM_ALL ON)
endif()
if(WIN32)
  file(READ ${PROJECT_SOURCE_DIR}/src/entry/qnvdrv10.def recorder_exports)
  string(REPLACE "QNVDRV10.dll" "QNVREC.dll" recorder_exports "${recorder_exports}")
  string(APPEND recorder_exports "  QNVRecOnFinding          @200\n")
  file(CONFIGURE OUTPUT ${PROJECT_BINARY_DIR}/qnvrec.def CONTENT "${recorder_exports}" @ONLY)
  target_sources(qnvrec PRIVATE ${PROJECT_BINARY_DIR}/qnvrec.def)
  set_target_properties(qnvrec PROPERTIES PREFIX "" OUTPUT_NAME QNVREC ARCHIVE_OUTPUT_NAME qnvrec)
else()
  file(READ ${PROJECT_BINARY_DIR}/qnvdrv10.map recorder_exports)
  string(REPLACE "global:" "global:\n    QNVRecOnFinding;" recorder_exports "${recorder_exports}")
  file(CONFIGURE OUTPUT ${PROJECT_BINARY_DIR}/qnvrec.map CONTENT "${recorder_exports}" @ONLY)
  target_link_options(qnvrec PRIVATE
    -Wl,--version-script=${PROJECT_BINARY_DIR}/qnvrec.map -Wl,--exclude-libs,ALL -Wl,-z,relro,-z,now)
endif()

# The recorder exports what the library exports, and its own function.
if(QNV_TESTS AND NOT QNV_SANITIZERS)
  if(WIN32)
    set(recorder_format pe)
  else()
    set(recorder_format elf)
  endif()
  add_test(NAME recorder_exports COMMAND ${CMAKE_COMMAND}
    -D FORMAT=${recorder_format} -D LIBRARY=$<TARGET_FILE:qnvrec> -D NM=${CMAKE_NM} -D OBJDUMP=${CMAKE_OBJDUMP}
    -D PUBLISHED=${PROJECT_SOURCE_DIR}/tests/published_exports.txt "-DADDED=200 QNVRecOnFinding" -P ${PROJECT_SOURCE_DIR}/cmake/check_exports.cmake)
endif()
