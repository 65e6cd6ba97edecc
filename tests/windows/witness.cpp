// Sets up both sides and compares their pixels.
#include "windows/witness.h"

#include <algorithm>
#include <cstdlib>
#include <utility>

#include "support/random_bytes.h"

namespace qnv::test {
namespace {

// A test without its witness proves nothing.
template <class Handle>
Handle Required(Handle handle) {
  if (handle == nullptr) std::abort();
  return handle;
}

}  // namespace

DibHeader::DibHeader(uint16_t depth, int32_t width, int32_t height) {
  header.biSize = sizeof header;
  header.biWidth = width;
  header.biHeight = -height;
  header.biPlanes = 1;
  header.biBitCount = depth;
  for (uint32_t i = 0; i < 256; ++i) {
    const uint8_t level = static_cast<uint8_t>(i);
    colors[i] = {level, level, level, 0};
  }
}

GdiBitmap::GdiBitmap(HBITMAP bitmap) : bitmap_(Required(bitmap)), dc_(Required(CreateCompatibleDC(nullptr))) {
  SelectObject(dc_, bitmap);
  if (GetObject(bitmap, sizeof record_, &record_) == 0) std::abort();
}

GdiBitmap::GdiBitmap(uint16_t depth, int32_t width, int32_t height)
    : GdiBitmap(
          CreateDIBSection(nullptr, DibHeader(depth, width, height).info(), DIB_RGB_COLORS, nullptr, nullptr, 0)) {}

uint8_t* GdiBitmap::Row(int32_t row) const {
  GdiFlush();
  return static_cast<uint8_t*>(Required(record_.bmBits)) + row * record_.bmWidthBytes;
}

Selected::Selected(HDC dc, std::initializer_list<HGDIOBJ> objects, const BandRect& clip) : dc_(dc), saved_(SaveDC(dc)) {
  for (HGDIOBJ object : objects) SelectObject(dc, object);
  IntersectClipRect(dc, clip.left, clip.top, clip.right, clip.bottom);
}

Witness::Witness(const WitnessShape& shape)
    : shape_(shape),
      device_({.bitsPerPixel = shape.depth,
               .width = shape.width,
               .height = shape.height,
               .resolutionA = shape.resolution,
               .resolutionB = shape.resolution,
               .left = shape.left,
               .top = shape.top}),
      bitmap_(shape.depth, static_cast<int32_t>(shape.width), static_cast<int32_t>(shape.height)) {
  SetWindowOrgEx(dc(), shape.left, shape.top, nullptr);
  SetStretchBltMode(dc(), COLORONCOLOR);
  Reset(1);
}

void Witness::Reset(uint64_t seed) {
  RandomBytes random(seed);
  std::vector<uint8_t> noise(std::size_t{device_.stride()} * shape_.height);
  for (uint8_t& byte : noise) byte = random.Byte();
  start_ = {"band", shape_.width, shape_.height, device_.stride(), device_.bytesPerPixel(), std::move(noise)};
  for (int32_t row = 0; row < start_.rows(); ++row) std::copy_n(start_.At(0, row), start_.stride(), bitmap_.Row(row));
  LoadBand(&device_, start_);
}

void Witness::Apply(const DRAWMODE& mode) const {
  SetROP2(dc(), mode.Rop2);
  SetBkMode(dc(), mode.bkMode);
  SetBkColor(dc(), mode.bkColor);
  SetTextColor(dc(), mode.TextColor);
}

testing::AssertionResult Witness::Same(int tolerance) const {
  // What the platform painted; the padding, which is nobody's to write, as it was.
  PlaneImage expected = start_;
  const std::size_t used = std::size_t{shape_.width} * static_cast<uint32_t>(device_.bytesPerPixel());
  for (int32_t row = 0; row < expected.rows(); ++row) std::copy_n(bitmap_.Row(row), used, expected.At(0, row));

  const std::vector<uint8_t> got = device_.BandBytes();
  const auto close = [tolerance](uint8_t a, uint8_t b) { return std::abs(a - b) <= tolerance; };
  const bool same = std::equal(expected.bytes().begin(), expected.bytes().end(), got.begin(), got.end(), close);
  if (same && device_.FencesIntact()) return testing::AssertionSuccess();
  return BandShows(device_, expected);
}

COLORREF ExactColor(const Witness& witness, uint32_t color) {
  return witness.shape().depth == 24 ? color : (color & 0xFF) * 0x010101u;
}

DRAWMODE TwoColors(const Witness& witness, int16_t rop2) {
  DRAWMODE mode = MakeDrawMode();
  mode.Rop2 = rop2;
  mode.TextColor = ExactColor(witness, 0x00123456);
  mode.bkColor = ExactColor(witness, 0x00E0C0A1);
  return mode;
}

}  // namespace qnv::test
