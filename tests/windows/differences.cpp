// Whether this is Wine, and the check that a claimed difference is one.
#include "windows/differences.h"

namespace qnv::test {

const char* WineVersion() {
  using Version = const char*(CDECL*)();
  const FARPROC address = GetProcAddress(GetModuleHandleA("ntdll.dll"), "wine_get_version");
  return address == nullptr ? nullptr : reinterpret_cast<Version>(reinterpret_cast<void*>(address))();
}

void ExpectDifference(const Difference& why, const Witness& witness) {
  if (why.nature != Nature::kPromised && !RunsUnderWine()) return;
  EXPECT_FALSE(witness.Same()) << "\"" << why.name << "\" makes no difference here";
}

}  // namespace qnv::test
