// Calls an entry point with arguments that are held in slots, whatever their types are.
#pragma once

#include <cstddef>
#include <cstdint>
#include <type_traits>
#include <utility>

#include "calls/entry_points.h"
#include "calls/functions.h"

namespace qnv::calls {

// The arguments of a call: pointers as they are, numbers of 32 bits without a sign in the low half.
struct Slots {
  uintptr_t at[kMaxArguments];

  int32_t Signed(std::size_t i) const { return static_cast<int32_t>(static_cast<uint32_t>(at[i])); }
  uint32_t Unsigned(std::size_t i) const { return static_cast<uint32_t>(at[i]); }
  uint16_t Low16(std::size_t i) const { return static_cast<uint16_t>(at[i]); }
  template <class T>
  const T* Pointer(std::size_t i) const {
    return reinterpret_cast<const T*>(at[i]);
  }
};

template <class T>
uintptr_t ToSlot(T value) {
  if constexpr (std::is_pointer_v<T>) {
    return reinterpret_cast<uintptr_t>(value);
  } else {
    return static_cast<uint32_t>(value);
  }
}

template <class T>
T FromSlot(uintptr_t slot) {
  if constexpr (std::is_pointer_v<T>) {
    return reinterpret_cast<T>(slot);
  } else {
    return static_cast<T>(static_cast<uint32_t>(slot));
  }
}

template <class R, class... A, std::size_t... kIndex>
uintptr_t InvokeAt(R (*function)(A...), const Slots& slots, std::index_sequence<kIndex...>) {
  if constexpr (std::is_void_v<R>) {
    function(FromSlot<A>(slots.at[kIndex])...);
    return 0;
  } else {
    return ToSlot(function(FromSlot<A>(slots.at[kIndex])...));
  }
}

template <class R, class... A>
uintptr_t InvokeOne(R (*function)(A...), const Slots& slots) {
  return InvokeAt(function, slots, std::index_sequence_for<A...>{});
}

// Returns the result as a slot, 0 for QNVDisable.
inline uintptr_t Invoke(const Functions& functions, Function function, const Slots& slots) {
  switch (function) {
    case Function::kEnable: return InvokeOne(functions.enable, slots);
    case Function::kDisable: return InvokeOne(functions.disable, slots);
    case Function::kGetDeviceInfo: return InvokeOne(functions.getDeviceInfo, slots);
    case Function::kControl: return InvokeOne(functions.control, slots);
    case Function::kColorInfo: return InvokeOne(functions.colorInfo, slots);
    case Function::kRealizeObject: return InvokeOne(functions.realizeObject, slots);
    case Function::kPixel: return InvokeOne(functions.pixel, slots);
    case Function::kPolyPixel: return InvokeOne(functions.polyPixel, slots);
    case Function::kDevBitBlt: return InvokeOne(functions.bitBlt, slots);
    case Function::kOutput: return InvokeOne(functions.output, slots);
    case Function::kDevExtTextOut: return InvokeOne(functions.extTextOut, slots);
    case Function::kStretchDIBits: return InvokeOne(functions.stretchDIBits, slots);
    case Function::kDevSetDIBitsToDevice: return InvokeOne(functions.setDIBitsToDevice, slots);
  }
  return 0;
}

}  // namespace qnv::calls
