// Makes one transfer on both sides.
#include "windows/transfer_pair.h"

#include "support/transfer_call.h"
#include "support/transfer_model.h"

namespace qnv::test {

void PaintBoth(const Witness& witness, const TransferPair& pair, const DRAWMODE& mode) {
  const TransferArea& area = pair.area;
  EXPECT_EQ(1u, Transfer(witness.handle(), {.at = {area.destX, area.destY},
                                            .source = pair.source ? pair.source->library->record() : nullptr,
                                            .from = {area.srcX, area.srcY},
                                            .size = {area.width, area.height},
                                            .rop = pair.rop,
                                            .brush = pair.brush ? &pair.brush->library : nullptr,
                                            .drawMode = &mode,
                                            .clip = &pair.clip}));

  const bool usesSource = IndexUsesSource(static_cast<uint8_t>(pair.rop >> 16));
  const ClippedTo clipped(witness.dc(), pair.clip);
  const Selected brush(witness.dc(), pair.brush ? pair.brush->platform.get() : GetStockObject(NULL_BRUSH));
  EXPECT_NE(0, BitBlt(witness.dc(), area.destX, area.destY, area.width, area.height,
                      usesSource ? pair.source->platform->dc() : nullptr, area.srcX, area.srcY, pair.rop));
}

uint32_t CodeOf(uint8_t index) {
  for (uint32_t named : {SRCCOPY, SRCPAINT, SRCAND, SRCINVERT, SRCERASE, NOTSRCCOPY, NOTSRCERASE, MERGECOPY, MERGEPAINT,
                         PATCOPY, PATPAINT, PATINVERT, DSTINVERT, BLACKNESS, WHITENESS}) {
    if (named >> 16 == index) return named;
  }
  return uint32_t{index} << 16;
}

}  // namespace qnv::test
