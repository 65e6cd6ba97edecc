// Whole sequences of calls on every device class, drawn from the input as the random cases draw theirs from a number.
// Every result, plane and host record is compared with the slow model after every call; a difference is a crash.
// Elsewhere random_tests replays the inputs: random_tests --files fuzz/corpus/sequences.
#include <cstdio>
#include <cstdlib>

#include "random/file_case.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, std::size_t size) {
  static qnv::test::CallMemory memory;
  qnv::test::CaseTotals totals;
  const std::string failure = qnv::test::RunFileCase(data, size, memory, false, totals);
  if (failure.empty()) return 0;
  qnv::test::RunFileCase(data, size, memory, true, totals);
  std::fprintf(stderr, "DIFFERENCE: %s\n", failure.c_str());
  std::abort();
}
