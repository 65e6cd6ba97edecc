// Sequences of calls of all families, as the numbered cases and a fuzzer's files make them.
#include "random/file_case.h"

#include "random/calls.h"

namespace qnv::test {

void AnyCall(RandomCase& run) {
  const int pick = run.random().Range(0, 99);
  const auto call = pick < 25   ? StateCall
                    : pick < 45 ? BlitCall
                    : pick < 63 ? OutputCall
                    : pick < 76 ? TextCall
                    : pick < 90 ? ImageCall
                                : PixelCall;
  call(run);
}

std::string RunFileCase(const uint8_t* bytes, std::size_t size, CallMemory& memory, bool verbose, CaseTotals& totals) {
  FileNumbers random(bytes, size);
  RandomCase run(random, memory, verbose, totals);
  if (run.failed()) return run.failure();
  if (run.deviceClass() == DeviceClass::kDualPlane && random.Percent(75)) TagOnePixel(run);
  constexpr int kMaxCalls = 16;  // an end for files whose calls take no numbers
  for (int calls = 0; calls < kMaxCalls && !random.used_up() && !run.failed(); ++calls) AnyCall(run);
  return run.failure();
}

}  // namespace qnv::test
