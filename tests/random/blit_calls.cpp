// Bit-block transfers, single pixels and rectangles of them.
#include <algorithm>

#include "random/calls.h"

namespace qnv::test {
namespace {

constexpr uint32_t kNamedIndices[] = {0x00, 0x11, 0x33, 0x44, 0x55, 0x5A, 0x66, 0x88, 0xAA,
                                      0xBB, 0xC0, 0xCC, 0xE2, 0xEE, 0xF0, 0xFB, 0xFF, 0xB8};

uint32_t RandomRop(Numbers& random) {
  const uint32_t index = random.Percent(45) ? random.Pick(kNamedIndices) : static_cast<uint32_t>(random.Range(0, 255));
  uint32_t rop = index << 16 | (random.Word() & 0xFFFF);
  if (random.Percent(4)) rop |= random.Word() & 0xFF000000;
  return rop;
}

SourceBitmap* GiveSource(RandomCase& run) {
  Numbers& random = run.random();
  if (!run.tame() && random.Percent(6)) {
    run.Say("  source null\n");
    return nullptr;
  }
  SourceBitmap source{};
  source.bmType = static_cast<int16_t>(random.Word());
  source.bmWidth = static_cast<int16_t>(random.Percent(97) ? random.Range(1, run.MaxWidth(90)) : random.Range(-3, 0));
  source.bmHeight = static_cast<int16_t>(random.Percent(97) ? random.Range(1, run.MaxHeight(20)) : random.Range(-3, 0));
  source.bmPlanes = 1;
  const int form = random.Range(0, 99);
  const bool gray = run.deviceClass() == DeviceClass::kPlain8;
  if (form < 40) {
    source.bmBitsPixel = 1;
  } else if (form < 90) {
    source.bmBitsPixel = gray ? 8 : 24;
  } else {
    // Forms that are read as whole pixels although they say otherwise.
    constexpr uint8_t kDepths[] = {1, 4, 8, 16, 24, 32};
    source.bmBitsPixel = random.Pick(kDepths);
    source.bmPlanes = static_cast<uint8_t>(random.Range(0, 3));
  }
  const int width = std::max<int>(source.bmWidth, 0);
  const int height = std::max<int>(source.bmHeight, 0);
  const bool oneBit = source.bmPlanes == 1 && source.bmBitsPixel == 1;
  // The first pixel of a row lies at its own depth; the device then steps one or three bytes a pixel.
  const int step = gray ? 1 : 3;
  const int rowBytes = oneBit ? (width + 7) / 8 : width * std::max(step, (source.bmBitsPixel + 7) / 8);
  source.bmWidthBytes = static_cast<uint16_t>(rowBytes + (random.Percent(50) ? random.Range(0, 9) : 0));
  if (random.Percent(5)) source.bmWidthBytes = static_cast<uint16_t>(random.Range(0, 7));
  const int size = height == 0 || width == 0 ? 1 : (height - 1) * source.bmWidthBytes + rowBytes;
  std::vector<uint8_t> bits(static_cast<std::size_t>(size));
  random.Fill(bits.data(), bits.size());
  source.bmBits = run.GiveBytes(bits);
  run.Say("  source %d x %d, %u bytes a row, planes %u, bits %u\n", source.bmWidth, source.bmHeight,
          source.bmWidthBytes, source.bmPlanes, source.bmBitsPixel);
  run.SayBytes("source bits", bits);
  return run.Give(source);
}

}  // namespace

void BlitCall(RandomCase& run) {
  Numbers& random = run.random();
  run.BeginCall("QNVDevBitBlt");
  const BandRect band = run.CallerBand();
  reference::BlitArgs args{};
  args.destX = random.Range(band.left - 30, band.right + 6);
  args.destY = random.Range(band.top - 10, band.bottom + 3);
  args.width = random.Percent(96) ? random.Range(0, run.MaxWidth(75)) : random.Range(-10, 200);
  args.height = random.Percent(96) ? random.Range(0, 22) : random.Range(-10, 60);
  args.srcX = random.Percent(50) ? 0 : random.Range(-12, 60);
  args.srcY = random.Percent(50) ? 0 : random.Range(-6, 15);
  args.rop = RandomRop(random);
  if (run.tame()) {
    args.destX = random.Range(band.left - 6, band.left + 6);
    args.destY = random.Range(band.top - 2, band.top + 2);
    args.width = random.Range(1, run.MaxWidth(75));
    args.height = random.Range(1, 16);
    args.srcX = random.Range(-2, 12);
    args.srcY = random.Range(-1, 3);
  }
  run.Say("  dest %d, %d, source at %d, %d, %d x %d, rop 0x%08X\n", args.destX, args.destY, args.srcX, args.srcY,
          args.width, args.height, args.rop);
  args.source = GiveSource(run);
  args.brush = GiveBrush(run);
  args.drawMode = GiveDrawMode(run);
  args.clip = GiveClip(run);
  const uint32_t expected = run.OnModel([&](reference::Model& model) { return model.BitBlt(args); });
  const uint32_t got = QNVDevBitBlt(run.handle(), args.destX, args.destY, args.source, args.srcX, args.srcY, args.width,
                                    args.height, args.rop, args.brush, args.drawMode, args.clip);
  run.Check(expected, got, 0xFFFF);
}

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
  const BandRect* clip = GiveClip(run);
  const uint32_t expected = run.OnModel([&](reference::Model& model) {
    return many ? model.PolyPixel(x, y, x2, y2, color, mode, clip) : model.Pixel(x, y, color, mode, clip);
  });
  run.Check(expected, many ? QNVPolyPixel(run.handle(), x, y, x2, y2, color, mode, clip)
                           : QNVPixel(run.handle(), x, y, color, mode, clip));
}

}  // namespace qnv::test
