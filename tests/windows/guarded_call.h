// Calls of a function from a host as awkward as the platform allows: with a stack aligned to four bytes only, values on
// the x87 stack or in the MMX registers, and control words of the host's own. What the call leaves behind is compared.
#pragma once

#include <cstdint>
#include <span>
#include <string>

namespace qnv::test {

struct HostState {
  uint32_t misalignment = 0;     // of the stack pointer at the call, in bytes below a multiple of 16: 0, 4, 8 or 12
  uint16_t x87Control = 0x037F;  // 64-bit mantissa, to nearest, all exceptions masked
  uint32_t mxcsr = 0x1F80;       // to nearest, all exceptions masked
  uint32_t x87Values = 0;        // how many registers hold values, 0..8
  bool mmx = false;              // the values are MMX registers instead
};

struct GuardedResult {
  uint32_t value = 0;
  std::string damage;  // what the call changed that it has to keep; empty when it kept everything
};

// Calls a cdecl function with 32-bit arguments. Not for several threads.
GuardedResult CallGuarded(const void* function, std::span<const uint32_t> arguments, const HostState& state);

}  // namespace qnv::test
