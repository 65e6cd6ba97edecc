# Libraries of this machine that consist of headers, and can so be compiled for every target. Compilers for other
# targets must not see the other headers of this machine, so the folders are reached by symbolic links.
set(QNV_HEADER_LINKS ${PROJECT_BINARY_DIR}/tool_headers)
file(MAKE_DIRECTORY ${QNV_HEADER_LINKS})

# FOLDER is that of the headers; HEADER is one of them. QNV_<NAME>_DIR is false when they are missing.
function(qnv_link_headers name folder header)
  find_path(QNV_${name}_DIR ${folder}/${header} PATHS /usr/local/include /usr/include NO_CMAKE_FIND_ROOT_PATH)
  if(QNV_${name}_DIR)
    file(CREATE_LINK ${QNV_${name}_DIR}/${folder} ${QNV_HEADER_LINKS}/${folder} SYMBOLIC)
  endif()
endfunction()
qnv_link_headers(CLI11 CLI App.hpp)
qnv_link_headers(FMT fmt core.h)
qnv_link_headers(JSON nlohmann json.hpp)
