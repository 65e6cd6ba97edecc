// The host records that most calls share, in fenced memory. Each says what it made when the case is verbose.
#pragma once

#include "random/random_case.h"

namespace qnv::test {

uint32_t RandomColor(Numbers& random);

// Null once in a while where the flag allows it.
DRAWMODE* GiveDrawMode(RandomCase& run, bool mayBeNull);
PhysicalBrush* GiveBrush(RandomCase& run);
PhysicalPen* GivePen(RandomCase& run);
BandRect* GiveClip(RandomCase& run, bool mayBeNull);

PhysicalBrush RandomBrush(Numbers& random);
// A rectangle somewhere around the band.
BandRect RectNearBand(RandomCase& run);

}  // namespace qnv::test
