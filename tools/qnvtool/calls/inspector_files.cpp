// Takes the files of inspector/built into the program. QNV_INSPECTOR_BUILT is their folder.
#include "qnvtool/calls/inspector_files.h"

#include <cstddef>

#ifdef _WIN32
#define QNV_CONSTANTS ".section .rdata,\"dr\"\n"
#define QNV_END_OF_CONSTANTS ".text\n"
#else
#define QNV_CONSTANTS ".section .rodata,\"a\",%progbits\n"
#define QNV_END_OF_CONSTANTS ".text\n"
#endif
#define QNV_QUOTED_AGAIN(text) #text
#define QNV_QUOTED(text) QNV_QUOTED_AGAIN(text)
#define QNV_SYMBOL(name) QNV_QUOTED(__USER_LABEL_PREFIX__) #name
// Two symbols, at the beginning of the file and behind its end.
#define QNV_TAKE_FILE(name, file)                                                                                 \
  __asm__(QNV_CONSTANTS ".globl " QNV_SYMBOL(name) "\n.globl " QNV_SYMBOL(name##_end) "\n.balign 8\n" QNV_SYMBOL( \
      name) ":\n.incbin \"" QNV_INSPECTOR_BUILT "/" file                                                          \
            "\"\n" QNV_SYMBOL(name##_end) ":\n.byte 0\n" QNV_END_OF_CONSTANTS)

QNV_TAKE_FILE(qnv_inspector_page, "inspector.html");
QNV_TAKE_FILE(qnv_inspector_engine, "engine.wasm");

extern "C" {
extern const char qnv_inspector_page[], qnv_inspector_page_end[];
extern const char qnv_inspector_engine[], qnv_inspector_engine_end[];
}

namespace qnv::tool {

std::string_view InspectorPage() {
  return {qnv_inspector_page, static_cast<std::size_t>(qnv_inspector_page_end - qnv_inspector_page)};
}

std::string_view InspectorEngine() {
  return {qnv_inspector_engine, static_cast<std::size_t>(qnv_inspector_engine_end - qnv_inspector_engine)};
}

}  // namespace qnv::tool
