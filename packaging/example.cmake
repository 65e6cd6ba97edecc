# Builds the example host against an installed QNVDRV10:
#   cmake -B build -D CMAKE_PREFIX_PATH=WHERE-THE-PACKAGE-IS && cmake --build build
cmake_minimum_required(VERSION 3.21)
project(qnv_example LANGUAGES C)

find_package(QNVDRV10 REQUIRED)

set(CMAKE_C_STANDARD 99)
set(CMAKE_C_STANDARD_REQUIRED ON)
set(CMAKE_C_EXTENSIONS OFF)

add_executable(host host.c)
target_link_libraries(host PRIVATE QNVDRV10::shared)
if(WIN32)
  # The program finds the DLL beside itself.
  add_custom_command(TARGET host POST_BUILD
    COMMAND ${CMAKE_COMMAND} -E copy_if_different $<TARGET_RUNTIME_DLLS:host> $<TARGET_FILE_DIR:host>
    COMMAND_EXPAND_LISTS VERBATIM)
endif()

# Microsoft's linker cannot take the static library.
if(TARGET QNVDRV10::static)
  add_executable(host_static host.c)
  target_link_libraries(host_static PRIVATE QNVDRV10::static)
endif()
