# What is delivered: the version resource, the second import library, `cmake --install`, and the packages of cpack.
# Components: runtime (the library), development (what hosts are compiled with), tools (the programs). Each is a Debian
# package of its own; the zip for Windows has all of them.
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
if(NOT WIN32 AND TARGET qnvtool AND CMAKE_LIBRARY_ARCHITECTURE AND CMAKE_INSTALL_LIBDIR STREQUAL "lib")
  # Where Debian has libraries of each architecture, for all prefixes.
  set(CMAKE_INSTALL_LIBDIR lib/${CMAKE_LIBRARY_ARCHITECTURE})
endif()
set(qnv_install_cmakedir ${CMAKE_INSTALL_LIBDIR}/cmake/QNVDRV10)
set(qnv_components runtime development tools)
set(qnv_package_runtime libqnvdrv10-${PROJECT_VERSION_MAJOR})
set(qnv_package_development libqnvdrv10-dev)
set(qnv_package_tools qnvtool)
foreach(component IN LISTS qnv_components)
  if(WIN32)
    set(qnv_docdir_${component} .)
  else()
    set(qnv_docdir_${component} ${CMAKE_INSTALL_DATADIR}/doc/${qnv_package_${component}})
  endif()
endforeach()

# ---- Library, header, CMake package ------------------------------------------------------------------------------
set_target_properties(qnvdrv10 PROPERTIES EXPORT_NAME shared)
set_target_properties(qnvdrv10_static PROPERTIES EXPORT_NAME static)
install(TARGETS qnvdrv10 EXPORT QNVDRV10SharedTargets
  RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR} COMPONENT runtime
  LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT runtime NAMELINK_COMPONENT development
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

if(NOT WIN32)
  file(RELATIVE_PATH qnv_pc_to_prefix /${CMAKE_INSTALL_LIBDIR}/pkgconfig /)
  string(REGEX REPLACE "/$" "" qnv_pc_to_prefix "${qnv_pc_to_prefix}")
  configure_file(${PROJECT_SOURCE_DIR}/packaging/qnvdrv10.pc.in ${PROJECT_BINARY_DIR}/qnvdrv10.pc @ONLY)
  install(FILES ${PROJECT_BINARY_DIR}/qnvdrv10.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig COMPONENT development)
endif()

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
install(DIRECTORY ${PROJECT_SOURCE_DIR}/docs DESTINATION ${qnv_docdir_development} COMPONENT development
  FILES_MATCHING PATTERN *.md PATTERN *.png)
if(NOT WIN32)
  install(FILES ${PROJECT_SOURCE_DIR}/docs/printing.md DESTINATION ${qnv_docdir_tools}/docs COMPONENT tools)
  install(FILES ${PROJECT_SOURCE_DIR}/examples/print_array.slurm DESTINATION ${qnv_docdir_tools}/examples COMPONENT tools)
  # The guides refer to the headers as they lie beside them in the sources.
  file(RELATIVE_PATH header_folder /${qnv_docdir_development}/include /${CMAKE_INSTALL_INCLUDEDIR})
  file(MAKE_DIRECTORY ${PROJECT_BINARY_DIR}/packages/include)
  foreach(header IN ITEMS qnvdrv10.h qnvrec.h)
    set(header_link ${PROJECT_BINARY_DIR}/packages/include/${header})
    file(CREATE_LINK ${header_folder}/${header} ${header_link} SYMBOLIC)
    install(FILES ${header_link} DESTINATION ${qnv_docdir_development}/include COMPONENT development)
  endforeach()
endif()
install(FILES ${PROJECT_SOURCE_DIR}/examples/host.c ${PROJECT_SOURCE_DIR}/examples/small_font.h
  DESTINATION ${qnv_docdir_development}/examples COMPONENT development)
install(FILES ${PROJECT_SOURCE_DIR}/packaging/example.cmake
  DESTINATION ${qnv_docdir_development}/examples RENAME CMakeLists.txt COMPONENT development)

# qnv_joined(result name part...): a text of several parts
function(qnv_joined result name)
  set(text)
  foreach(part IN LISTS ARGN)
    set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS ${part})
    file(READ ${part} content)
    string(APPEND text "${content}")
  endforeach()
  file(CONFIGURE OUTPUT ${PROJECT_BINARY_DIR}/packages/${name} CONTENT "${text}" @ONLY)
  set(${result} ${PROJECT_BINARY_DIR}/packages/${name} PARENT_SCOPE)
endfunction()
set(parts ${PROJECT_SOURCE_DIR}/packaging/copyright)

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

# What every package has: what it is for, what changed, and whose it is.
if(WIN32)
  install(FILES ${PROJECT_SOURCE_DIR}/CHANGELOG.md DESTINATION . COMPONENT development)
  install(FILES ${PROJECT_SOURCE_DIR}/packaging/readme/windows.md DESTINATION . RENAME README.md COMPONENT development)
  qnv_joined(copyright COPYRIGHT.txt ${parts}/library ${parts}/options ${parts}/windows)
  install(FILES ${copyright} DESTINATION . COMPONENT development)
else()
  qnv_compressed(changelog ${PROJECT_SOURCE_DIR}/CHANGELOG.md)
  qnv_joined(copyright_runtime copyright ${parts}/library)
  set(copyright_development ${copyright_runtime})
  qnv_joined(copyright_tools copyright_tools ${parts}/library ${parts}/options)
  foreach(component IN LISTS qnv_components)
    if(component STREQUAL "tools" AND NOT TARGET qnvtool)
      continue()
    endif()
    set(to DESTINATION ${qnv_docdir_${component}} COMPONENT ${component})
    install(FILES ${changelog} ${to} RENAME changelog.gz)
    install(FILES ${copyright_${component}} ${to} RENAME copyright)
    install(FILES ${PROJECT_SOURCE_DIR}/packaging/readme/${component}.md ${to} RENAME README.md)
  endforeach()
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
endif()
if(TARGET qnvfilter)
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
  configure_file(${PROJECT_SOURCE_DIR}/packaging/qnvfilter.8.in ${PROJECT_BINARY_DIR}/qnvfilter.8 @ONLY)
  qnv_compressed(man_page ${PROJECT_BINARY_DIR}/qnvfilter.8)
  install(FILES ${man_page} DESTINATION ${CMAKE_INSTALL_MANDIR}/man8 COMPONENT tools)
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
  if(NOT TARGET qnvtool)
    return()
  endif()
  set(CPACK_GENERATOR ZIP)
  set(CPACK_PACKAGE_FILE_NAME QNVDRV10-${PROJECT_VERSION}-win32)
elseif(CMAKE_SIZEOF_VOID_P EQUAL 8 AND TARGET qnvtool)
  set(CPACK_GENERATOR DEB)
  set(CPACK_DEB_COMPONENT_INSTALL ON)
  set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "")  # each description begins with its own
  set(CPACK_COMPONENTS_ALL ${qnv_components})
  set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
  set(CPACK_DEBIAN_PACKAGE_MAINTAINER "QNVDRV10 developers <developers@qnvdrv10.invalid>")
  set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
  set(CPACK_DEBIAN_RUNTIME_PACKAGE_SECTION libs)
  # What packages of programs that are linked with the library depend on.
  file(WRITE ${PROJECT_BINARY_DIR}/packages/shlibs
    "libqnvdrv10 ${PROJECT_VERSION_MAJOR} ${qnv_package_runtime} (>= ${PROJECT_VERSION})\n")
  set(CPACK_DEBIAN_RUNTIME_PACKAGE_CONTROL_EXTRA ${PROJECT_BINARY_DIR}/packages/shlibs)
  set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_SECTION libdevel)
  set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_DEPENDS "${qnv_package_runtime} (= ${PROJECT_VERSION})")
  set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_SUGGESTS "cmake, gcc | g++, pkg-config, qnvtool")
  set(CPACK_DEBIAN_TOOLS_PACKAGE_SECTION text)
  set(CPACK_DEBIAN_TOOLS_PACKAGE_RECOMMENDS "${qnv_package_runtime}, fonts-dejavu-core | fonts-liberation2, poppler-utils")
  set(CPACK_DEBIAN_TOOLS_PACKAGE_SUGGESTS "bash-completion, cups-daemon, ${qnv_package_development}")
  foreach(component IN LISTS qnv_components)
    string(TOUPPER ${component} upper)
    set(CPACK_DEBIAN_${upper}_PACKAGE_NAME ${qnv_package_${component}})
    file(READ ${PROJECT_SOURCE_DIR}/packaging/description/${component} text)
    set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS
      ${PROJECT_SOURCE_DIR}/packaging/description/${component})
    string(STRIP "${text}" CPACK_DEBIAN_${upper}_DESCRIPTION)
  endforeach()
else()
  return()
endif()
include(CPack)
