// One transfer and everything it has to leave behind, in one line of a test.
#pragma once

#include <gtest/gtest.h>

#include "support/transfer_call.h"
#include "support/transfer_model.h"

namespace qnv::test {

// The call, with `source` as its source when there is one, returns 1 and leaves what `paint(&expected)` makes of the
// band as it was before.
template <class Paint>
testing::AssertionResult TransferLeaves(const TestDevice& device, TransferCall call, const SourceImage* source,
                                        Paint paint) {
  if (source != nullptr) call.source = source->record();
  PlaneImage expected = BandImage(device);
  paint(&expected);
  const uint32_t result = Transfer(device.handle(), call);
  if (result != 1) return testing::AssertionFailure() << "result " << result;
  if (source != nullptr && !source->Unchanged()) return testing::AssertionFailure() << "the source was written";
  return BandShows(device, expected);
}

// It paints `area` of the band (columns and rows) as the model says, source pixel `first` going to the area's first;
// everything else stays.
inline testing::AssertionResult TransferPaints(const TestDevice& device, const TransferCall& call,
                                               const SourceImage* source, const BandRect& area,
                                               TransferPoint first = {}) {
  return TransferLeaves(device, call, source, [&](PlaneImage* expected) {
    PaintExpected(expected, area, first.x, first.y, {call.rop, source, call.brush, call.drawMode});
  });
}

// The call returns 1 and paints nothing.
inline testing::AssertionResult TransferPaintsNothing(const TestDevice& device, const TransferCall& call) {
  return TransferPaints(device, call, nullptr, {0, 0, 0, 0});
}

}  // namespace qnv::test
