#include <algorithm>

#include "random/calls.h"
#include "random/random_records.h"

namespace qnv::test {

void PixelCall(RandomCase& run) {
  Numbers& random = run.random();
  const bool many = random.Percent(40);
  run.BeginCall(many ? "QNVPolyPixel" : "QNVPixel");
  const BandRect band = run.CallerBand();
  int x = random.Range(band.left - 2, band.right + 2);
  int y = random.Range(band.top - 2, band.bottom + 2);
  if (run.tame()) {
    x = random.Range(band.left, std::max(int{band.left}, band.right - 1));
    y = random.Range(band.top, std::max(int{band.top}, band.bottom - 1));
  }
  const int x2 = x + random.Range(-12, 12);
  const int y2 = y + random.Range(-5, 5);
  const uint32_t color = RandomColor(random);
  run.Say("  %d, %d", x, y);
  if (many) run.Say(" to %d, %d", x2, y2);
  run.Say(", color 0x%08X\n", color);
  const DRAWMODE* mode = random.Percent(many ? 3 : 25) ? nullptr : GiveDrawMode(run, false);
  if (mode == nullptr) run.Say("  draw mode null\n");
  const BandRect* clip = GiveClip(run, true);
  run.Ready();
  reference::Model* model = run.model();
  uint32_t expected = 0;
  uint32_t got;
  if (many) {
    if (model != nullptr) expected = model->PolyPixel(x, y, x2, y2, color, mode, clip);
    got = QNVPolyPixel(run.handle(), x, y, x2, y2, color, mode, clip);
  } else {
    if (model != nullptr) expected = model->Pixel(x, y, color, mode, clip);
    got = QNVPixel(run.handle(), x, y, color, mode, clip);
  }
  run.Check(expected, got);
}

}  // namespace qnv::test
