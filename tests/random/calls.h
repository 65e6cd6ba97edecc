// One random call of each family, made on the library and on the model and compared; and the host records that most
// calls share, in fenced memory.
#pragma once

#include "random/random_case.h"

namespace qnv::test {

void BlitCall(RandomCase& run);
void OutputCall(RandomCase& run);
void TextCall(RandomCase& run);
void ImageCall(RandomCase& run);
void PixelCall(RandomCase& run);
// Origin, band, clearing and unknown escapes; colors, pens and brushes; the page size; other devices, made or
// refused; bad handles.
void StateCall(RandomCase& run);
// One image pixel, so that a dual-plane device no longer knows its tag plane to be uniform.
void TagOnePixel(RandomCase& run);
// One of all these families.
void AnyCall(RandomCase& run);

uint32_t RandomColor(Numbers& random);
// A rectangle somewhere around the band.
BandRect RectNearBand(RandomCase& run);
// Records, null once in a while. Each says what it made when the case is verbose.
DRAWMODE* GiveDrawMode(RandomCase& run, bool mayBeNull = true);
PhysicalBrush* GiveBrush(RandomCase& run);
PhysicalPen* GivePen(RandomCase& run);
BandRect* GiveClip(RandomCase& run);

}  // namespace qnv::test
