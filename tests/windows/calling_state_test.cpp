// The exported functions, called by hosts with any stack and any floating-point state: with a stack aligned to four
// bytes only, values on the x87 stack or in the MMX registers, and control words of the host's own. What a call leaves
// behind is compared.

#include <gtest/gtest.h>
#include <windows.h>

#include <algorithm>
#include <cstddef>
#include <cstring>
#include <set>
#include <string>

#include "windows/host_work.h"

namespace qnv::test {

struct HostState {
  uint32_t misalignment = 0;     // of the stack pointer at the call, in bytes below a multiple of 16: 0, 4, 8 or 12
  uint32_t x87Control = 0x037F;  // 64-bit mantissa, to nearest, all exceptions masked
  uint32_t mxcsr = 0x1F80;       // to nearest, all exceptions masked
  uint32_t x87Values = 0;        // how many registers hold values, 0..8
  uint32_t mmx = 0;              // 1: the values are MMX registers instead
};

// As fnsave stores it.
struct X87State {
  uint32_t control;
  uint32_t status;
  uint32_t tags;
  uint32_t unread[4];  // the last instruction and operand, which are no state of the host's
  uint8_t registers[80];
};
static_assert(sizeof(X87State) == 108);

constexpr uint32_t kRegisters[4] = {0xB0B1B2B3, 0x51525354, 0xD1D2D3D4, 0xE1E2E3E4};

extern "C" {

// The assembly below knows these offsets.
struct QnvProbe {
  const void* function;        // 0
  const uint32_t* arguments;   // 4
  uint32_t argumentCount;      // 8
  HostState state;             // 12, 16, 20, 24, 28
  uint32_t registers[4];       // 32 ebx, esi, edi, ebp at the call
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
void QnvDamageX87();
void QnvDamageDirection();
void QnvDamageControl();
}

asm(R"(
  .text
  .globl _QnvProbeCall
_QnvProbeCall:
  pushal
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
  fldcw _qnvProbe+16
  movl $_qnvProbe+312, %edx
  movl _qnvProbe+24, %ecx
  testl %ecx, %ecx
  jz 2f
1:
  fldl (%edx)
  addl $8, %edx
  decl %ecx
  jnz 1b
2:
  cmpl $0, _qnvProbe+28
  je 3f
  movq _qnvProbe+312, %mm0
  movq _qnvProbe+320, %mm3
3:
  fnsave _qnvProbe+96
  frstor _qnvProbe+96
  ldmxcsr _qnvProbe+20

  movl _qnvProbe+32, %ebx
  movl _qnvProbe+36, %esi
  movl _qnvProbe+40, %edi
  movl _qnvProbe+44, %ebp
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
  popal
  ret

# Functions that change what they have to keep.
_QnvDamageX87:
  fldz
  ret
_QnvDamageDirection:
  std
  ret
_QnvDamageControl:
  pushl $0x1F00
  ldmxcsr (%esp)
  movl $0x027F, (%esp)
  fldcw (%esp)
  addl $4, %esp
  movl $0, %esi
  ret
)");

namespace {

// Calls a cdecl function with 32-bit arguments. Adds to `damage` what the call changed that it has to keep. Not for
// several threads.
uint32_t CallGuarded(const void* function, const std::vector<uint32_t>& arguments, const HostState& state,
                     std::string* damage) {
  qnvProbe = {};
  qnvProbe.function = function;
  qnvProbe.arguments = arguments.data();
  qnvProbe.argumentCount = static_cast<uint32_t>(arguments.size());
  qnvProbe.state = state;
  std::memcpy(qnvProbe.registers, kRegisters, sizeof kRegisters);
  for (int i = 0; i < 8; ++i) qnvProbe.values[i] = 1.0 / (3 + i);
  QnvProbeCall();

  const X87State& before = qnvProbe.before;
  const X87State& after = qnvProbe.after;
  constexpr uint32_t kDirectionFlag = 0x400;
  constexpr uint32_t kMxcsrControl = ~0x3Fu;  // the exceptions that have happened belong to whoever computes
  const struct {
    const char* what;
    uint32_t before, after;
  } checks[] = {{"esp", qnvProbe.stackBefore, qnvProbe.stackAfter},
                {"ebx", kRegisters[0], qnvProbe.registersAfter[0]},
                {"esi", kRegisters[1], qnvProbe.registersAfter[1]},
                {"edi", kRegisters[2], qnvProbe.registersAfter[2]},
                {"ebp", kRegisters[3], qnvProbe.registersAfter[3]},
                {"the direction flag", 0, qnvProbe.flagsAfter & kDirectionFlag},
                {"MXCSR", state.mxcsr & kMxcsrControl, qnvProbe.mxcsrAfter & kMxcsrControl},
                {"the x87 control word", before.control & 0xFFFF, after.control & 0xFFFF},
                {"the x87 status word", before.status & 0xFFFF, after.status & 0xFFFF},
                {"the x87 tag word", before.tags & 0xFFFF, after.tags & 0xFFFF}};
  for (const auto& check : checks) {
    if (check.before == check.after) continue;
    *damage += std::string(check.what) + " was " + std::to_string(check.before) + " and is " +
               std::to_string(check.after) + "; ";
  }
  if (std::memcmp(before.registers, after.registers, sizeof before.registers) != 0) {
    *damage += "the x87 registers changed; ";
  }
  return qnvProbe.result;
}

struct StateCase {
  const char* name;
  HostState state;
};

void PrintTo(const StateCase& c, std::ostream* out) { *out << c.name; }

class CallingState : public testing::TestWithParam<StateCase> {};

TEST_P(CallingState, IsLeftAsItWasAndDoesNotMatter) {
  const WorkResult expected = DoHostWork(PlainCaller(LinkedLibrary()));
  std::set<std::string> damages;
  const WorkResult got = DoHostWork([&](const char* name, const std::vector<uint32_t>& arguments) {
    const FARPROC function = GetProcAddress(LinkedLibrary(), name);
    std::string damage;
    const uint32_t result = CallGuarded(reinterpret_cast<const void*>(function), arguments, GetParam().state, &damage);
    if (!damage.empty()) damages.insert(std::string(name) + ": " + damage);
    return result;
  });
  EXPECT_EQ(std::set<std::string>(), damages);
  EXPECT_TRUE(expected.results == got.results);
  EXPECT_TRUE(expected.pictures == got.pictures);
}

INSTANTIATE_TEST_SUITE_P(
    Hosts, CallingState,
    testing::Values(StateCase{"stack at a multiple of 16", {}}, StateCase{"stack 4 bytes below", {4}},
                    StateCase{"stack 8 bytes below", {8}}, StateCase{"stack 12 bytes below", {12}},
                    StateCase{"the runtime's 53-bit mantissa", {4, 0x027F}},
                    StateCase{"24-bit mantissa, rounding up", {4, 0x087F}},
                    StateCase{"invalid, zero divide and overflow not masked", {4, 0x1332, 0x1900}},
                    StateCase{"three values on the x87 stack", {.misalignment = 4, .x87Values = 3}},
                    StateCase{"a full x87 stack", {.misalignment = 4, .x87Values = 8}},
                    StateCase{"MMX in use", {.misalignment = 4, .mmx = 1}}));

TEST(CallingStateWork, CallsEveryFunction) {
  const WorkResult result = DoHostWork(PlainCaller(LinkedLibrary()));
  for (const auto& [ordinal, name] : PublishedExports()) EXPECT_TRUE(result.names.contains(name)) << name;
  EXPECT_GT(std::ranges::count(result.results, 1u), 500);
}

// The guard sees what it is there to see.
TEST(CallingStateGuard, SeesDamage) {
  const auto damage = [](void (*function)()) {
    std::string seen;
    CallGuarded(reinterpret_cast<const void*>(function), {0}, {}, &seen);
    return seen;
  };
  EXPECT_NE(std::string::npos, damage(QnvDamageX87).find("tag word"));
  EXPECT_NE(std::string::npos, damage(QnvDamageDirection).find("direction"));
  const std::string control = damage(QnvDamageControl);
  for (const char* part : {"MXCSR", "control word", "esi"}) EXPECT_NE(std::string::npos, control.find(part)) << part;
}

}  // namespace
}  // namespace qnv::test
