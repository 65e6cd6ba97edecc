// Which families the calls of a sequence belong to.
#include "random/calls.h"

namespace qnv::test {

void AnyCall(RandomCase& run) {
  struct Share {
    int end;  // of the hundred
    void (*call)(RandomCase&);
  };
  constexpr Share kShares[] = {{25, StateCall}, {45, BlitCall},  {63, OutputCall},
                               {76, TextCall},  {90, ImageCall}, {100, PixelCall}};
  const int pick = run.random().Range(0, 99);
  const Share* share = kShares;
  while (pick >= share->end) ++share;
  share->call(run);
}

}  // namespace qnv::test
