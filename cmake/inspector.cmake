# The engine of the inspector: call files, replayed for the page that shows them. The tool and the tests compile it
# natively; the page has it as a WebAssembly module, which scripts/inspector.sh builds from the same sources and those in
# module/.
file(GLOB inspector_sources CONFIGURE_DEPENDS ${PROJECT_SOURCE_DIR}/inspector/engine/*.cpp)
add_library(inspector_engine STATIC ${inspector_sources})
target_link_libraries(inspector_engine PUBLIC calls PRIVATE qnv_options)
target_compile_options(inspector_engine PRIVATE ${QNV_PROGRAM_OPTIONS})
set_target_properties(inspector_engine PROPERTIES EXCLUDE_FROM_ALL ON)
qnv_unity(inspector_engine 20)
