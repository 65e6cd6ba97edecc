// The exported functions, called by hosts with any stack and any floating-point state.

#include <gtest/gtest.h>

#include <algorithm>
#include <set>
#include <string>

#include "windows/guarded_call.h"
#include "windows/host_work.h"
#include "windows/loaded_library.h"

namespace qnv::test {
namespace {

// Does the work with every call guarded; whatever a call damages is reported with its name, once for each function.
WorkResult DoGuardedWork(const HostState& state, std::string* damage) {
  std::set<std::string> damaged;
  return DoHostWork([&](const char* name, const std::vector<uint32_t>& arguments) {
    const FARPROC function = GetProcAddress(LinkedLibrary(), name);
    const GuardedResult result = CallGuarded(reinterpret_cast<const void*>(function), arguments, state);
    if (!result.damage.empty() && damaged.insert(name).second) *damage += std::string(name) + ": " + result.damage;
    return result.value;
  });
}

struct StateCase {
  const char* name;
  HostState state;
};

void PrintTo(const StateCase& c, std::ostream* out) { *out << c.name; }

class CallingState : public testing::TestWithParam<StateCase> {};

TEST_P(CallingState, IsLeftAsItWasAndDoesNotMatter) {
  const WorkResult expected = DoHostWork(PlainCaller(LinkedLibrary()));
  std::string damage;
  const WorkResult got = DoGuardedWork(GetParam().state, &damage);
  EXPECT_EQ("", damage);
  EXPECT_TRUE(expected.results == got.results);
  EXPECT_TRUE(expected.pictures == got.pictures);
}

INSTANTIATE_TEST_SUITE_P(
    Hosts, CallingState,
    testing::Values(StateCase{"stack at a multiple of 16", {.misalignment = 0}},
                    StateCase{"stack 4 bytes below", {.misalignment = 4}},
                    StateCase{"stack 8 bytes below", {.misalignment = 8}},
                    StateCase{"stack 12 bytes below", {.misalignment = 12}},
                    StateCase{"the runtime's 53-bit mantissa", {.misalignment = 4, .x87Control = 0x027F}},
                    StateCase{"24-bit mantissa, rounding up", {.misalignment = 4, .x87Control = 0x087F}},
                    StateCase{"invalid, zero divide and overflow not masked",
                              {.misalignment = 4, .x87Control = 0x1332, .mxcsr = 0x1900}},
                    StateCase{"three values on the x87 stack", {.misalignment = 4, .x87Values = 3}},
                    StateCase{"a full x87 stack", {.misalignment = 4, .x87Values = 8}},
                    StateCase{"MMX in use", {.misalignment = 4, .mmx = true}}));

TEST(CallingStateWork, CallsEveryFunction) {
  const WorkResult result = DoHostWork(PlainCaller(LinkedLibrary()));
  for (const PublishedExport& published : kPublishedExports) {
    EXPECT_TRUE(std::ranges::find(result.names, published.name) != result.names.end()) << published.name;
  }
  EXPECT_GT(std::ranges::count(result.results, 1u), 500);
}

// The guard itself: it sees what it is there to see.
extern "C" void QnvDamageX87();
extern "C" void QnvDamageDirection();
extern "C" void QnvDamageControl();
asm(R"(
  .text
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

TEST(CallingStateGuard, SeesDamage) {
  const uint32_t nothing = 0;
  const auto damage = [&nothing](void (*function)()) {
    return CallGuarded(reinterpret_cast<const void*>(function), {&nothing, 1}, {}).damage;
  };
  EXPECT_NE(std::string::npos, damage(QnvDamageX87).find("tag word"));
  EXPECT_NE(std::string::npos, damage(QnvDamageDirection).find("direction"));
  const std::string control = damage(QnvDamageControl);
  EXPECT_NE(std::string::npos, control.find("MXCSR"));
  EXPECT_NE(std::string::npos, control.find("control word"));
  EXPECT_NE(std::string::npos, control.find("esi"));
}

}  // namespace
}  // namespace qnv::test
