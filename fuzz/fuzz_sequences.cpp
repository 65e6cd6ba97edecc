// Fuzz target: sequences of calls on every device class. The bytes of the input replace the random numbers from which
// the random tests draw their cases. After every call each result, plane and host record is compared with the slow
// model; the target aborts on a difference. In builds without libFuzzer random_tests replays the inputs:
// random_tests --files fuzz/corpus/sequences.
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
