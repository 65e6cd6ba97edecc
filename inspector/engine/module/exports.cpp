// The functions of the WebAssembly module. Numbers that stand for memory are addresses in the module's own memory.
#include <cstdlib>

#include "calls/functions.h"
#include "inspector/engine/inspector.h"

#define QNV_EXPORT(name) extern "C" __attribute__((export_name(#name))) auto name

namespace {

qnv::inspector::Inspector& TheInspector() {
  static qnv::inspector::Inspector inspector(qnv::calls::LinkedFunctions());
  return inspector;
}

uint32_t AddressOf(const void* memory) { return static_cast<uint32_t>(reinterpret_cast<uintptr_t>(memory)); }
void* MemoryAt(uint32_t address) { return reinterpret_cast<void*>(static_cast<uintptr_t>(address)); }

std::string_view TextAt(uint32_t address, uint32_t bytes) {
  return {static_cast<const char*>(MemoryAt(address)), bytes};
}

}  // namespace

QNV_EXPORT(inspector_alloc)(uint32_t bytes)->uint32_t { return AddressOf(std::malloc(bytes)); }

QNV_EXPORT(inspector_free)(uint32_t address)->void { std::free(MemoryAt(address)); }

QNV_EXPORT(inspector_open)(uint32_t address, uint32_t bytes)->int32_t {
  void* const memory = MemoryAt(address);
  const int32_t file = TheInspector().Open(static_cast<const uint8_t*>(memory), bytes);
  std::free(memory);
  return file;
}

QNV_EXPORT(inspector_close)(int32_t file)->void { TheInspector().Close(file); }

QNV_EXPORT(inspector_ask)(int32_t file, uint32_t question, uint32_t bytes)->int32_t {
  return TheInspector().Ask(file, TextAt(question, bytes)) ? 1 : 0;
}

QNV_EXPORT(inspector_draw)(int32_t file, uint32_t question, uint32_t bytes)->int32_t {
  return TheInspector().Draw(file, TextAt(question, bytes)) ? 1 : 0;
}

QNV_EXPORT(inspector_text)()->uint32_t { return AddressOf(TheInspector().Text().data()); }
QNV_EXPORT(inspector_text_bytes)()->uint32_t { return static_cast<uint32_t>(TheInspector().Text().size()); }
QNV_EXPORT(inspector_pixels)()->uint32_t { return AddressOf(TheInspector().LastPicture().pixels.data()); }
QNV_EXPORT(inspector_width)()->uint32_t { return TheInspector().LastPicture().width; }
QNV_EXPORT(inspector_height)()->uint32_t { return TheInspector().LastPicture().height; }
