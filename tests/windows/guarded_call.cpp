// Makes the guarded calls and compares the processor's state before and after.
#include "windows/guarded_call.h"

#include <cstddef>
#include <cstring>

namespace qnv::test {
namespace {

// As fnsave stores it.
struct X87State {
  uint32_t control;
  uint32_t status;
  uint32_t tags;
  uint32_t unread[4];  // the last instruction and operand, which are no state of the host's
  uint8_t registers[80];
};
static_assert(sizeof(X87State) == 108);

}  // namespace

extern "C" {

// The assembly below knows these offsets.
struct QnvProbe {
  const void* function;        // 0
  const uint32_t* arguments;   // 4
  uint32_t argumentCount;      // 8
  uint32_t misalignment;       // 12
  uint32_t registers[4];       // 16 ebx, esi, edi, ebp at the call
  uint32_t x87Control;         // 32
  uint32_t mxcsr;              // 36
  uint32_t x87Values;          // 40
  uint32_t mmx;                // 44
  uint32_t hostStack;          // 48
  uint32_t hostX87Control;     // 52
  uint32_t hostMxcsr;          // 56
  uint32_t stackBefore;        // 60
  uint32_t stackAfter;         // 64
  uint32_t registersAfter[4];  // 68
  uint32_t result;             // 84
  uint32_t flagsAfter;         // 88
  uint32_t mxcsrAfter;         // 92
  X87State before;             // 96
  X87State after;              // 204
  double values[8];            // 312
};
static_assert(offsetof(QnvProbe, before) == 96 && offsetof(QnvProbe, after) == 204 &&
              offsetof(QnvProbe, values) == 312);

QnvProbe qnvProbe;
void QnvProbeCall();
}

asm(R"(
  .text
  .globl _QnvProbeCall
_QnvProbeCall:
  pushl %ebp
  pushl %ebx
  pushl %esi
  pushl %edi
  movl %esp, _qnvProbe+48
  fnstcw _qnvProbe+52
  stmxcsr _qnvProbe+56

  movl _qnvProbe+8, %ecx         # room for the arguments, then the odd bytes
  leal 15(,%ecx,4), %edx
  andl $-16, %edx
  andl $-16, %esp
  subl %edx, %esp
  subl _qnvProbe+12, %esp
  movl _qnvProbe+4, %esi
  movl %esp, %edi
  cld
  rep movsl
  movl %esp, _qnvProbe+60

  fninit
  fldcw _qnvProbe+32
  movl $_qnvProbe+312, %edx
  movl _qnvProbe+40, %ecx
  testl %ecx, %ecx
  jz 2f
1:
  fldl (%edx)
  addl $8, %edx
  decl %ecx
  jnz 1b
2:
  cmpl $0, _qnvProbe+44
  je 3f
  movq _qnvProbe+312, %mm0
  movq _qnvProbe+320, %mm3
3:
  fnsave _qnvProbe+96
  frstor _qnvProbe+96
  ldmxcsr _qnvProbe+36

  movl _qnvProbe+16, %ebx
  movl _qnvProbe+20, %esi
  movl _qnvProbe+24, %edi
  movl _qnvProbe+28, %ebp
  call *_qnvProbe

  movl %esp, _qnvProbe+64
  movl %ebx, _qnvProbe+68
  movl %esi, _qnvProbe+72
  movl %edi, _qnvProbe+76
  movl %ebp, _qnvProbe+80
  movl %eax, _qnvProbe+84
  pushfl
  popl _qnvProbe+88
  cld
  fnsave _qnvProbe+204
  stmxcsr _qnvProbe+92

  movl _qnvProbe+48, %esp
  fldcw _qnvProbe+52
  ldmxcsr _qnvProbe+56
  popl %edi
  popl %esi
  popl %ebx
  popl %ebp
  ret
)");

namespace {

constexpr uint32_t kDirectionFlag = 0x400;
constexpr uint32_t kMxcsrStatus = 0x3F;  // exceptions that have happened: these belong to whoever computes

void Compare(const char* what, uint32_t before, uint32_t after, std::string* damage) {
  if (before == after) return;
  *damage += std::string(what) + " was " + std::to_string(before) + " and is " + std::to_string(after) + "; ";
}

}  // namespace

GuardedResult CallGuarded(const void* function, std::span<const uint32_t> arguments, const HostState& state) {
  qnvProbe = {};
  qnvProbe.function = function;
  qnvProbe.arguments = arguments.data();
  qnvProbe.argumentCount = static_cast<uint32_t>(arguments.size());
  qnvProbe.misalignment = state.misalignment;
  const uint32_t registers[4] = {0xB0B1B2B3, 0x51525354, 0xD1D2D3D4, 0xE1E2E3E4};
  std::memcpy(qnvProbe.registers, registers, sizeof registers);
  qnvProbe.x87Control = state.x87Control;
  qnvProbe.mxcsr = state.mxcsr;
  qnvProbe.x87Values = state.mmx ? 0 : state.x87Values;
  qnvProbe.mmx = state.mmx ? 1 : 0;
  for (int i = 0; i < 8; ++i) qnvProbe.values[i] = 1.0 / (3 + i);
  QnvProbeCall();

  GuardedResult result{qnvProbe.result, ""};
  Compare("esp", qnvProbe.stackBefore, qnvProbe.stackAfter, &result.damage);
  const char* const names[4] = {"ebx", "esi", "edi", "ebp"};
  for (int i = 0; i < 4; ++i) Compare(names[i], registers[i], qnvProbe.registersAfter[i], &result.damage);
  Compare("the direction flag", 0, qnvProbe.flagsAfter & kDirectionFlag, &result.damage);
  Compare("MXCSR", state.mxcsr & ~kMxcsrStatus, qnvProbe.mxcsrAfter & ~kMxcsrStatus, &result.damage);
  Compare("the x87 control word", qnvProbe.before.control & 0xFFFF, qnvProbe.after.control & 0xFFFF, &result.damage);
  Compare("the x87 status word", qnvProbe.before.status & 0xFFFF, qnvProbe.after.status & 0xFFFF, &result.damage);
  Compare("the x87 tag word", qnvProbe.before.tags & 0xFFFF, qnvProbe.after.tags & 0xFFFF, &result.damage);
  if (std::memcmp(qnvProbe.before.registers, qnvProbe.after.registers, sizeof qnvProbe.before.registers) != 0) {
    result.damage += "the x87 registers changed; ";
  }
  return result;
}

}  // namespace qnv::test
