// The resolution-mapping device at several ratios, and the dual-plane device with its tags.
#include "golden/scene.h"
#include "output/output_call.h"
#include "support/transfer_call.h"

namespace qnv::test {
namespace {

// One page in caller pixels of 160 x 120: text, hatched and solid figures, an image, a transfer.
void PaintPage(const TestDevice& device) {
  FillRectangle(device, {4, 4, 156, 26}, 0xF0E0C0);
  const DRAWMODE mode = MakeDrawMode({.bkMode = TRANSPARENT, .text = 0x800000});
  DrawLetters(device, 8, 6, "MAPPED PAGE", 2, mode);
  Stretch(device, PhotoDib(24), PhotoAt(4, 32, 72, 60));
  FillRectangle(device, {84, 32, 118, 62}, HatchBrush(device.handle(), HS_CROSS, 0x0000FF), mode);
  FillRectangle(device, {122, 32, 156, 62}, 0x00A000);
  // A triangle whose rows thin out or spread.
  std::vector<int> deltas(27, 0x1F);
  const PhysicalPen pen = SolidPen(device.handle(), 0xC000C0);
  const DRAWMODE copy = MakeDrawMode();
  CallOutput(device, OS_NIBBLE_DELTAS, 28, SpanListBytes({64, 101, 102}, deltas), {.pen = &pen, .drawMode = &copy});
  std::vector<int> wide;
  for (int i = 0; i < 27; ++i) wide.insert(wide.end(), {-1, 1});
  CallOutput(device, OS_BYTE_DELTAS, 28, SpanListBytes({64, 139, 140}, wide), {.pen = &pen, .drawMode = &copy});
  Stretch(device, PhotoDib(8), PhotoAt(4, 96, 40, 20), {.rop = NOTSRCCOPY});
  const PhysicalBrush brush = SolidBrush(device.handle(), 0x0080FF);
  EXPECT_EQ(1u, Transfer(device.handle(),
                         {.at = {50, 96}, .size = {106, 20}, .rop = PATCOPY, .brush = &brush, .drawMode = &copy}));
  DrawLetters(device, 54, 98, "SMALL", 2, mode);
}

PlaneImage MappedPage(const char* name, uint16_t bitsPerPixel, uint16_t resolutionA, uint16_t resolutionB) {
  const Cleared<ScaledDevice> device({.bitsPerPixel = bitsPerPixel,
                                      .width = 160u * resolutionB / resolutionA,
                                      .height = 120u * resolutionB / resolutionA,
                                      .resolutionA = resolutionA,
                                      .resolutionB = resolutionB});
  PaintPage(device);
  return BandPicture(name, device);
}

std::vector<PlaneImage> PaintMappedPages() {
  return {MappedPage("mapped_600_400", 24, 600, 400), MappedPage("mapped_720_360", 24, 720, 360),
          MappedPage("mapped_300_450", 24, 300, 450), MappedPage("mapped_gray_600_400", 0, 600, 400)};
}

std::vector<PlaneImage> PaintDualPlanePage() {
  const Cleared<DualPlaneDevice> device({.width = 160, .height = 120});
  // Before any image nothing is tagged; afterwards everything is.
  Caption(device, 4, 2, "FIRST TEXT");
  const Dib photo = PhotoDib(24);
  Stretch(device, photo, PhotoAt(4, 14, 72, 60));
  Stretch(device, photo, PhotoAt(84, 14, 72, 60), {.rop = SRCAND});
  Stretch(device, photo, PhotoAt(4, 78, 72, 38), {.rop = ROP_MINIMUM});
  // Graphics on the images.
  DRAWMODE mode = MakeDrawMode({.text = 0x0000FF});
  DrawLetters(device, 8, 36, "OPAQUE", 1, mode);
  mode.bkMode = TRANSPARENT;
  DrawLetters(device, 8, 48, "CLEAR", 2, mode);
  FillRectangle(device, {90, 20, 110, 40}, HatchBrush(device.handle(), HS_FDIAGONAL, 0x008000), mode);
  FillRectangle(device, {114, 20, 134, 40}, 0x00C0F0);
  const DRAWMODE masked = MakeDrawMode({.rop2 = R2_MASKPEN});
  FillRectangle(device, {90, 46, 110, 66}, HatchBrush(device.handle(), HS_CROSS, 0x0000FF), masked);
  const DRAWMODE inverted = MakeDrawMode({.rop2 = R2_NOT});
  FillRectangle(device, {114, 46, 134, 66}, SolidBrush(device.handle(), 0), inverted);
  const BandRect rect{12, 84, 60, 100};
  mode.bkMode = OPAQUE;
  mode.bkColor = 0xC0FFFF;
  DrawLetters(device, 16, 88, "IN A RECT", 1, mode, {.opaqueRect = &rect, .options = ETO_OPAQUE});
  const PhysicalBrush brush = SolidBrush(device.handle(), 0xFF8000);
  EXPECT_EQ(1u, Transfer(device.handle(),
                         {.at = {84, 78}, .size = {72, 38}, .rop = PATCOPY, .brush = &brush, .drawMode = &mode}));
  return {BandPicture("dual_plane_colors", device), TagPicture("dual_plane_tags", device)};
}

}  // namespace

std::vector<PaintedScene> DeviceScenes() {
  return {{"mapped_pages", PaintMappedPages}, {"dual_plane_page", PaintDualPlanePage}};
}

}  // namespace qnv::test
