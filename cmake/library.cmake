# The library. Its sources are compiled once and linked twice: as a shared library, which exports the published names
# only, and as a static one, for test programs.
file(GLOB_RECURSE qnv_sources CONFIGURE_DEPENDS ${PROJECT_SOURCE_DIR}/src/*.cpp)
qnv_row_kernel_flags(qnv_sources)

add_library(qnvdrv10_objects OBJECT ${qnv_sources})
set_target_properties(qnvdrv10_objects PROPERTIES
  POSITION_INDEPENDENT_CODE ON
  CXX_VISIBILITY_PRESET hidden
  VISIBILITY_INLINES_HIDDEN ON)
target_include_directories(qnvdrv10_objects PRIVATE ${PROJECT_SOURCE_DIR}/include ${PROJECT_SOURCE_DIR}/src)
target_link_libraries(qnvdrv10_objects PRIVATE qnv_options)
target_compile_options(qnvdrv10_objects PRIVATE ${QNV_LIBRARY_WARNINGS} -fno-exceptions -fno-rtti)
# Most sources are so short that reading these takes longer than compiling them.
target_compile_options(qnvdrv10_objects PRIVATE ${QNV_PRECOMPILED_OPTIONS})
target_precompile_headers(qnvdrv10_objects PRIVATE <algorithm> <cstddef> <cstdint> <cstdlib> <cstring>)
if(WIN32)
  # No exception passes through the library, so unwind tables would only make the file larger.
  target_compile_options(qnvdrv10_objects PRIVATE -fno-asynchronous-unwind-tables -fno-unwind-tables)
else()
  # The delivered DLL has a file with all debug information beside it.
  target_compile_options(qnvdrv10_objects PRIVATE ${QNV_PROGRAM_OPTIONS})
endif()
if(QNV_SANITIZERS)
  target_compile_options(qnvdrv10_objects PRIVATE -fno-sanitize=vptr)  # it needs run-time type information
endif()

add_library(qnvdrv10_static STATIC $<TARGET_OBJECTS:qnvdrv10_objects>)
if(NOT WIN32)
  # The name that -lqnvdrv10 finds with -static.
  set_target_properties(qnvdrv10_static PROPERTIES OUTPUT_NAME qnvdrv10)
endif()
target_include_directories(qnvdrv10_static PUBLIC $<BUILD_INTERFACE:${PROJECT_SOURCE_DIR}/include>)

add_library(qnvdrv10 SHARED $<TARGET_OBJECTS:qnvdrv10_objects>)
target_include_directories(qnvdrv10 PUBLIC $<BUILD_INTERFACE:${PROJECT_SOURCE_DIR}/include>)

set(qnv_def_file ${PROJECT_SOURCE_DIR}/src/entry/qnvdrv10.def)
set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS ${qnv_def_file})
if(WIN32)
  target_sources(qnvdrv10 PRIVATE ${qnv_def_file})
  set_target_properties(qnvdrv10 PROPERTIES
    PREFIX "" OUTPUT_NAME QNVDRV10
    IMPORT_PREFIX lib IMPORT_SUFFIX .dll.a ARCHIVE_OUTPUT_NAME qnvdrv10)
  # The delivered file has no symbols; a debugger finds them in the file beside it.
  add_custom_command(TARGET qnvdrv10 POST_BUILD
    COMMAND ${CMAKE_OBJCOPY} --only-keep-debug $<TARGET_FILE:qnvdrv10> $<TARGET_FILE:qnvdrv10>.debug
    COMMAND ${CMAKE_OBJCOPY} --preserve-dates --strip-all --add-gnu-debuglink=$<TARGET_FILE:qnvdrv10>.debug
      $<TARGET_FILE:qnvdrv10>
    VERBATIM)
else()
  # Hosts ask for libqnvdrv10.so.0, so that a later library with another interface can be installed beside it.
  set_target_properties(qnvdrv10 PROPERTIES VERSION ${PROJECT_VERSION} SOVERSION ${PROJECT_VERSION_MAJOR})
  # The exports are listed once, in the module definition, also for builds that are not for Windows.
  file(STRINGS ${qnv_def_file} qnv_exports REGEX "^ +QNV[A-Za-z]+ +@")
  list(TRANSFORM qnv_exports REPLACE "^ +(QNV[A-Za-z]+) +@.*" "\\1")
  list(JOIN qnv_exports ";\n    " qnv_exports)
  set(qnv_version_script ${PROJECT_BINARY_DIR}/qnvdrv10.map)
  file(CONFIGURE OUTPUT ${qnv_version_script}
    CONTENT "{\n  global:\n    @qnv_exports@;\n  local:\n    *;\n};\n" @ONLY)
  target_link_options(qnvdrv10 PRIVATE
    -Wl,--version-script=${qnv_version_script} -Wl,--exclude-libs,ALL -Wl,-z,relro,-z,now)
  if(NOT QNV_SANITIZERS)
    target_link_options(qnvdrv10 PRIVATE -Wl,-z,defs)
  endif()
  set_property(TARGET qnvdrv10 APPEND PROPERTY LINK_DEPENDS ${qnv_version_script})
endif()
