// Growing the memory of a module is slow, and the allocator asks for 64 KB at a time: here it gets parts of larger
// pieces. Takes the place of the function of the C library.
#include <cerrno>
#include <cstddef>
#include <cstdint>

extern "C" void* sbrk(intptr_t increment) {
  constexpr std::size_t kPageBytes = 65536, kPiecePages = 256;
  static std::size_t end = __builtin_wasm_memory_size(0) * kPageBytes;
  if (increment < 0) {
    errno = ENOMEM;
    return reinterpret_cast<void*>(-1);
  }
  const std::size_t before = end, wanted = end + static_cast<std::size_t>(increment);
  const std::size_t pages = __builtin_wasm_memory_size(0);
  const bool isEnough = wanted >= end && wanted <= pages * kPageBytes;
  if (!isEnough) {
    const std::size_t needed = (wanted - pages * kPageBytes + kPageBytes - 1) / kPageBytes;
    const bool grew =
        wanted >= end && (__builtin_wasm_memory_grow(0, needed > kPiecePages ? needed : kPiecePages) != SIZE_MAX ||
                          __builtin_wasm_memory_grow(0, needed) != SIZE_MAX);
    if (!grew) {
      errno = ENOMEM;
      return reinterpret_cast<void*>(-1);
    }
  }
  end = wanted;
  return reinterpret_cast<void*>(before);
}
