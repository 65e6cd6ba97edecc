# What is delivered: the version resource, the second import library, `cmake --install`, and the packages of cpack.
# Components: runtime (the library), development (what hosts are compiled with), tools (qnvtool).
add_library(QNVDRV10::shared ALIAS qnvdrv10)
add_library(QNVDRV10::dll ALIAS qnvdrv10)
add_library(QNVDRV10::static ALIAS qnvdrv10_static)

if(WIN32)
  enable_language(RC)
  configure_file(${PROJECT_SOURCE_DIR}/src/entry/qnvdrv10.rc.in ${PROJECT_BINARY_DIR}/qnvdrv10.rc @ONLY)
  target_sources(qnvdrv10 PRIVATE ${PROJECT_BINARY_DIR}/qnvdrv10.rc)
  # The delivered symbols name no folder of the machine that built them. In gdb: set substitute-path /qnvdrv10 SOURCES
  target_compile_options(qnvdrv10_objects PRIVATE
    -fdebug-prefix-map=${PROJECT_SOURCE_DIR}=/qnvdrv10 -fdebug-prefix-map=${PROJECT_BINARY_DIR}=/qnvdrv10/build)
endif()

# Libraries with sanitizers or other instrumentation are not packaged.
if(QNV_SANITIZERS OR QNV_FUZZ)
  return()
endif()

# cpack and --install build nothing. This target builds the files that they need, without tests and other programs.
add_custom_target(package_files ALL DEPENDS qnvdrv10 qnvdrv10_static)
set(CMAKE_SKIP_INSTALL_ALL_DEPENDENCY ON)

include(GNUInstallDirs)
include(CMakePackageConfigHelpers)
set(qnv_install_cmakedir ${CMAKE_INSTALL_LIBDIR}/cmake/QNVDRV10)
if(WIN32)
  set(qnv_install_docdir .)
else()
  set(qnv_package_name qnvdrv10-dev)
  set(qnv_install_docdir ${CMAKE_INSTALL_DATADIR}/doc/${qnv_package_name})
endif()

# ---- Library, header, CMake package ------------------------------------------------------------------------------
set_target_properties(qnvdrv10 PROPERTIES EXPORT_NAME shared)
set_target_properties(qnvdrv10_static PROPERTIES EXPORT_NAME static)
install(TARGETS qnvdrv10 EXPORT QNVDRV10SharedTargets
  RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR} COMPONENT runtime
  LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT runtime
  ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT development
  INCLUDES DESTINATION ${CMAKE_INSTALL_INCLUDEDIR})
install(TARGETS qnvdrv10_static EXPORT QNVDRV10StaticTargets
  ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT development
  INCLUDES DESTINATION ${CMAKE_INSTALL_INCLUDEDIR})
# Installations that strip files, like that of cpack, do not strip archives.
install(CODE "
  if(CMAKE_INSTALL_DO_STRIP)
    execute_process(COMMAND \"${CMAKE_STRIP}\" --strip-debug --enable-deterministic-archives
      \"\$ENV{DESTDIR}\${CMAKE_INSTALL_PREFIX}/${CMAKE_INSTALL_LIBDIR}/$<TARGET_FILE_NAME:qnvdrv10_static>\"
      COMMAND_ERROR_IS_FATAL ANY)
  endif()" COMPONENT development)
install(FILES ${PROJECT_SOURCE_DIR}/include/qnvdrv10.h ${PROJECT_SOURCE_DIR}/include/qnvrec.h
  DESTINATION ${CMAKE_INSTALL_INCLUDEDIR} COMPONENT development)

foreach(kind IN ITEMS Shared Static)
  install(EXPORT QNVDRV10${kind}Targets NAMESPACE QNVDRV10::
    DESTINATION ${qnv_install_cmakedir} COMPONENT development)
endforeach()
configure_package_config_file(${PROJECT_SOURCE_DIR}/cmake/QNVDRV10Config.cmake.in
  ${PROJECT_BINARY_DIR}/QNVDRV10Config.cmake
  INSTALL_DESTINATION ${qnv_install_cmakedir} PATH_VARS CMAKE_INSTALL_LIBDIR)
write_basic_package_version_file(${PROJECT_BINARY_DIR}/QNVDRV10ConfigVersion.cmake COMPATIBILITY SameMajorVersion)
install(FILES ${PROJECT_BINARY_DIR}/QNVDRV10Config.cmake ${PROJECT_BINARY_DIR}/QNVDRV10ConfigVersion.cmake
  DESTINATION ${qnv_install_cmakedir} COMPONENT development)

if(WIN32)
  install(FILES $<TARGET_FILE:qnvdrv10>.debug DESTINATION ${CMAKE_INSTALL_BINDIR} COMPONENT development)
  install(FILES ${qnv_def_file} DESTINATION ${CMAKE_INSTALL_LIBDIR} RENAME QNVDRV10.def COMPONENT development)

  # For Microsoft's linker: short import records, as its own tools make them from the same file.
  find_program(QNV_DLLTOOL NAMES llvm-dlltool llvm-dlltool-19 llvm-dlltool-14)
  set(ms_import_library ${CMAKE_ARCHIVE_OUTPUT_DIRECTORY}/QNVDRV10.lib)
  if(QNV_DLLTOOL)
    add_custom_command(OUTPUT ${ms_import_library}
      COMMAND ${QNV_DLLTOOL} -m i386 -d ${qnv_def_file} -l ${ms_import_library}
      DEPENDS ${qnv_def_file} VERBATIM)
    add_custom_target(ms_import_library DEPENDS ${ms_import_library})
    add_dependencies(package_files ms_import_library)
  else()
    message(STATUS "No QNVDRV10.lib, and so no package: llvm-dlltool is not installed")
  endif()
  install(FILES ${ms_import_library} DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT development)
endif()

# ---- Documents and example ---------------------------------------------------------------------------------------
install(DIRECTORY ${PROJECT_SOURCE_DIR}/docs DESTINATION ${qnv_install_docdir} COMPONENT development
  FILES_MATCHING PATTERN *.md PATTERN *.png)
install(FILES ${PROJECT_SOURCE_DIR}/examples/host.c ${PROJECT_SOURCE_DIR}/examples/small_font.h
  DESTINATION ${qnv_install_docdir}/examples COMPONENT development)
install(FILES ${PROJECT_SOURCE_DIR}/packaging/example.cmake
  DESTINATION ${qnv_install_docdir}/examples RENAME CMakeLists.txt COMPONENT development)

# qnv_compressed(result source): compresses a file, to the same bytes on every machine
function(qnv_compressed result source)
  find_program(QNV_GZIP gzip REQUIRED)
  get_filename_component(name ${source} NAME)
  set(output ${PROJECT_BINARY_DIR}/packages/${name}.gz)
  add_custom_command(OUTPUT ${output}
    COMMAND ${CMAKE_COMMAND} -E make_directory ${PROJECT_BINARY_DIR}/packages
    COMMAND sh -c "\"$1\" -9nc \"$2\" >\"$3\"" sh ${QNV_GZIP} ${source} ${output}
    DEPENDS ${source} VERBATIM)
  add_custom_target(compressed_${name} DEPENDS ${output})
  add_dependencies(package_files compressed_${name})
  set(${result} ${output} PARENT_SCOPE)
endfunction()

if(WIN32)
  install(FILES ${PROJECT_SOURCE_DIR}/CHANGELOG.md DESTINATION ${qnv_install_docdir} COMPONENT development)
else()
  qnv_compressed(changelog ${PROJECT_SOURCE_DIR}/CHANGELOG.md)
  install(FILES ${changelog} DESTINATION ${qnv_install_docdir} RENAME changelog.gz COMPONENT development)
endif()

# ---- Recorder -----------------------------------------------------------------------------------------------------
if(WIN32 OR QNV_TOOLS)
  add_dependencies(package_files qnvrec)
  install(TARGETS qnvrec
    RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR} COMPONENT tools
    LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT tools)
endif()

# ---- Tools -------------------------------------------------------------------------------------------------------
if(TARGET qnvtool)
  add_dependencies(package_files qnvtool)
  install(TARGETS qnvtool RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR} COMPONENT tools)
  # The filter of print queues lies where the print server looks for it, whatever the prefix is called.
  add_dependencies(package_files qnvfilter)
  install(TARGETS qnvfilter RUNTIME DESTINATION lib/cups/filter COMPONENT tools)
  install(FILES ${PROJECT_SOURCE_DIR}/packaging/cups/qnvdrv10.ppd
    DESTINATION ${CMAKE_INSTALL_DATADIR}/ppd/qnvdrv10 COMPONENT tools)
  # The program generates the options of its man page and its completion from the descriptions that --help shows.
  configure_file(${PROJECT_SOURCE_DIR}/packaging/qnvtool.1.in ${PROJECT_BINARY_DIR}/qnvtool.1.in @ONLY)
  add_custom_command(OUTPUT ${PROJECT_BINARY_DIR}/qnvtool.1
    COMMAND sh -c "\"$1\" --generate man \"$2\" >\"$3\"" sh
      $<TARGET_FILE:qnvtool> ${PROJECT_BINARY_DIR}/qnvtool.1.in ${PROJECT_BINARY_DIR}/qnvtool.1
    DEPENDS qnvtool ${PROJECT_BINARY_DIR}/qnvtool.1.in VERBATIM)
  set(completion ${PROJECT_BINARY_DIR}/packages/qnvtool.bash-completion)
  add_custom_command(OUTPUT ${completion}
    COMMAND ${CMAKE_COMMAND} -E make_directory ${PROJECT_BINARY_DIR}/packages
    COMMAND sh -c "\"$1\" --generate completion >\"$2\"" sh $<TARGET_FILE:qnvtool> ${completion}
    DEPENDS qnvtool VERBATIM)
  add_custom_target(tool_completion DEPENDS ${completion})
  add_dependencies(package_files tool_completion)
  qnv_compressed(man_page ${PROJECT_BINARY_DIR}/qnvtool.1)
  install(FILES ${man_page} DESTINATION ${CMAKE_INSTALL_MANDIR}/man1 COMPONENT tools)
  install(FILES ${completion}
    DESTINATION ${CMAKE_INSTALL_DATADIR}/bash-completion/completions RENAME qnvtool COMPONENT tools)
endif()

# ---- Packages ----------------------------------------------------------------------------------------------------
set(CPACK_PACKAGE_NAME QNVDRV10)
set(CPACK_PACKAGE_VENDOR QNVDRV10)
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY ${PROJECT_DESCRIPTION})
set(CPACK_PACKAGE_DIRECTORY ${PROJECT_BINARY_DIR}/packages)
set(CPACK_STRIP_FILES ON)
set(CPACK_INSTALL_DEFAULT_DIRECTORY_PERMISSIONS
  OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)
if(WIN32)
  set(CPACK_GENERATOR ZIP)
  set(CPACK_PACKAGE_FILE_NAME QNVDRV10-${PROJECT_VERSION}-win32)
elseif(CMAKE_SIZEOF_VOID_P EQUAL 8 AND TARGET qnvtool)
  set(CPACK_GENERATOR DEB)
  set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
  set(CPACK_DEBIAN_PACKAGE_NAME ${qnv_package_name})
  set(CPACK_DEBIAN_PACKAGE_MAINTAINER "QNVDRV10 developers <developers@qnvdrv10.invalid>")
  set(CPACK_DEBIAN_PACKAGE_SECTION libdevel)
  set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
  set(CPACK_DEBIAN_PACKAGE_SUGGESTS "cmake, g++, bash-completion, cups-daemon, poppler-utils")
  set(CPACK_PACKAGE_DESCRIPTION_FILE ${PROJECT_SOURCE_DIR}/packaging/description.txt)
else()
  return()
endif()
include(CPack)
