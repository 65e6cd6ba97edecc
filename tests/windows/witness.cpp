// Sets up both sides and compares their pixels.
#include "windows/witness.h"

#include <algorithm>
#include <cstdlib>

#include "support/random_bytes.h"

namespace qnv::test {

Witness::Witness(const WitnessShape& shape)
    : shape_(shape),
      device_({.bitsPerPixel = shape.depth,
               .width = shape.width,
               .height = shape.height,
               .resolutionA = shape.resolution,
               .resolutionB = shape.resolution,
               .left = shape.left,
               .top = shape.top}),
      surface_(shape.depth, shape.width, shape.height, shape.left, shape.top) {
  Reset(1);
}

void Witness::Reset(uint64_t seed) {
  RandomBytes random(seed);
  start_.resize(surface_.size());
  for (uint8_t& byte : start_) byte = random.Byte();
  surface_.Load(start_);
  LoadBand(&device_, Start());
}

void Witness::Apply(const DRAWMODE& mode) const {
  SetROP2(dc(), mode.Rop2);
  SetBkMode(dc(), mode.bkMode);
  SetBkColor(dc(), mode.bkColor);
  SetTextColor(dc(), mode.TextColor);
}

PlaneImage Witness::Start() const {
  return {"band", shape_.width, shape_.height, surface_.stride(), device_.bytesPerPixel(), start_};
}

// What the platform painted; the padding, which is nobody's to write, as it was.
PlaneImage Witness::Expected() const {
  const std::vector<uint8_t> painted = surface_.Bytes();
  PlaneImage expected = Start();
  const std::size_t used = std::size_t{shape_.width} * static_cast<uint32_t>(device_.bytesPerPixel());
  for (int32_t row = 0; row < expected.rows(); ++row) {
    const auto from = painted.begin() + static_cast<std::ptrdiff_t>(static_cast<std::size_t>(row) * expected.stride());
    std::copy_n(from, used, expected.At(0, row));
  }
  return expected;
}

testing::AssertionResult Witness::Same() const { return BandShows(device_, Expected()); }

testing::AssertionResult Witness::SameWithin(int tolerance) const {
  const std::vector<uint8_t> expected = Expected().bytes();
  const std::vector<uint8_t> got = device_.BandBytes();
  const auto close = [tolerance](uint8_t a, uint8_t b) { return std::abs(a - b) <= tolerance; };
  if (!device_.FencesIntact() || !std::equal(expected.begin(), expected.end(), got.begin(), got.end(), close)) {
    return Same();
  }
  return testing::AssertionSuccess();
}

testing::AssertionResult Witness::Untouched() const { return BandShows(device_, Start()); }

ClippedTo::ClippedTo(HDC dc, const BandRect& clip) : dc_(dc) {
  IntersectClipRect(dc, clip.left, clip.top, clip.right, clip.bottom);
}

COLORREF ExactColor(const Witness& witness, uint32_t color) {
  return witness.shape().depth == 24 ? color : (color & 0xFF) * 0x010101u;
}

}  // namespace qnv::test
