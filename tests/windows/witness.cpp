// Sets up both sides, makes sources and brushes for both from the same pixels, paints with both, and compares.
#include "windows/witness.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cstdlib>
#include <cstring>
#include <utility>

#include "support/random_bytes.h"
#include "support/transfer_call.h"
#include "support/transfer_model.h"

namespace qnv::test {
namespace {

// A test without its witness proves nothing.
template <class Handle>
Handle Required(Handle handle) {
  if (handle == nullptr) std::abort();
  return handle;
}

using BitRows = std::array<uint8_t, 8>;

constexpr BitRows kBitPattern = {0x12, 0x34, 0x56, 0x78, 0x9A, 0xBC, 0xDE, 0xF1};

// Rows of the library's hatches: a 0 bit is a line pixel.
constexpr BitRows kHatches[6] = {
    {0x00, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF},  // horizontal
    {0x7F, 0x7F, 0x7F, 0x7F, 0x7F, 0x7F, 0x7F, 0x7F},  // vertical
    {0x7F, 0xBF, 0xDF, 0xEF, 0xF7, 0xFB, 0xFD, 0xFE},  // falling
    {0xFE, 0xFD, 0xFB, 0xF7, 0xEF, 0xDF, 0xBF, 0x7F},  // rising
    {0x00, 0x7F, 0x7F, 0x7F, 0x7F, 0x7F, 0x7F, 0x7F},  // cross
    {0x7D, 0xBB, 0xD7, 0xEF, 0xD7, 0xBB, 0x7D, 0xFE},  // diagonal cross
};

// Pixels from the library's order of bytes to the platform's.
void CopyPixels(const uint8_t* from, uint8_t* to, std::size_t count, std::size_t bytesPerPixel) {
  std::memcpy(to, from, count * bytesPerPixel);
  for (std::size_t i = 0; bytesPerPixel == 3 && i < count; ++i) std::swap(to[3 * i], to[3 * i + 2]);
}

// 8 x 8 pixels of noise as the library's pattern bitmap and as the platform's packed bitmap.
BrushPair BytePattern(const Witness& witness, uint8_t bytesPerPixel, uint64_t seed) {
  std::vector<uint8_t> cells(std::size_t{64} * bytesPerPixel);
  RandomBytes random(seed);
  for (uint8_t& byte : cells) byte = random.Byte();
  const uint8_t depth = static_cast<uint8_t>(8 * bytesPerPixel);
  const SourceBitmap bitmap{0, 8, 8, depth, 1, depth, cells.data()};

  const DibHeader dib(depth, 8, 8);
  const std::size_t headerSize = sizeof dib.header + (bytesPerPixel == 1 ? sizeof dib.colors : 0);
  std::vector<uint8_t> packed(headerSize + cells.size());
  std::memcpy(packed.data(), &dib, headerSize);
  CopyPixels(cells.data(), packed.data() + headerSize, 64, bytesPerPixel);
  return {bytesPerPixel == 1 ? "gray pattern" : "color pattern", PatternBrush(witness.handle(), bitmap),
          GdiObject<HBRUSH>(CreateDIBPatternBrushPt(packed.data(), DIB_RGB_COLORS))};
}

GdiObject<HBRUSH> BitBrush(const BitRows& rows) {
  uint8_t bits[16] = {};  // rows of monochrome bitmaps are padded to 16 bits
  for (std::size_t i = 0; i < rows.size(); ++i) bits[2 * i] = rows[i];
  const GdiObject<HBITMAP> tile(CreateBitmap(8, 8, 1, 1, bits));
  return GdiObject<HBRUSH>(CreatePatternBrush(tile.get()));
}

// What was painted, with all numbers of an area in their order.
template <class Pair>
testing::Message Described(const Pair& pair) {
  testing::Message painted;
  painted << "; code " << std::hex << pair.rop << std::dec << ", " << (pair.brush ? pair.brush->name : "no brush")
          << ", clip " << Describe(pair.clip) << ", area";
  for (int32_t value : std::bit_cast<std::array<int32_t, sizeof pair.area / 4>>(pair.area)) painted << ' ' << value;
  return painted;
}

HGDIOBJ PlatformBrush(const BrushPair* pair) { return pair ? pair->platform.get() : GetStockObject(NULL_BRUSH); }

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
  return MakeDrawMode(
      {.rop2 = rop2, .background = ExactColor(witness, 0x00E0C0A1), .text = ExactColor(witness, 0x00123456)});
}

SourcePair DeepSourcePair(const Witness& witness, int32_t width, int32_t height, uint64_t seed) {
  const SourceForm& form = witness.shape().depth == 24 ? kColorSource : kGraySource;
  auto library = std::make_unique<SourceImage>(form, width, height, seed, 3);
  auto platform = std::make_unique<GdiBitmap>(form.bitsPixel, width, height);
  for (int32_t row = 0; row < height; ++row) {
    CopyPixels(library->Row(row), platform->Row(row), static_cast<std::size_t>(width),
               static_cast<std::size_t>(form.bytesPerPixel));
  }
  return {std::move(library), std::move(platform)};
}

SourcePair BitSourcePair(int32_t width, int32_t height, uint64_t seed) {
  auto library = std::make_unique<SourceImage>(kOneBitSource, width, height, seed, 1);
  const std::size_t used = static_cast<std::size_t>(width + 7) / 8;
  const std::size_t stride = (used + 1) & ~std::size_t{1};
  std::vector<uint8_t> bits(stride * static_cast<std::size_t>(height));
  for (int32_t row = 0; row < height; ++row) {
    std::memcpy(bits.data() + static_cast<std::size_t>(row) * stride, library->Row(row), used);
  }
  return {std::move(library), std::make_unique<GdiBitmap>(CreateBitmap(width, height, 1, 1, bits.data()))};
}

BrushPair SolidPair(const Witness& witness, COLORREF color) {
  return {"solid brush", SolidBrush(witness.handle(), color), GdiObject<HBRUSH>(CreateSolidBrush(color))};
}

BrushPair DeepPatternPair(const Witness& witness, uint64_t seed) {
  return BytePattern(witness, witness.shape().depth == 24 ? 3 : 1, seed);
}

BrushPair GrayPatternPair(const Witness& witness, uint64_t seed) { return BytePattern(witness, 1, seed); }

BrushPair HatchPair(const Witness& witness, int16_t hatch, COLORREF color) {
  return {"hatch " + std::to_string(hatch), HatchBrush(witness.handle(), hatch, color), BitBrush(kHatches[hatch])};
}

std::vector<BrushPair> EveryBrush(const Witness& witness, const DRAWMODE& mode) {
  const SourceBitmap bitmap{0, 8, 8, 1, 1, 1, kBitPattern.data()};
  std::vector<BrushPair> brushes;
  brushes.push_back(SolidPair(witness, ExactColor(witness, 0x00407090)));
  brushes.push_back(DeepPatternPair(witness, 3));
  brushes.push_back({"one-bit pattern", PatternBrush(witness.handle(), bitmap), BitBrush(kBitPattern)});
  for (int16_t hatch = HS_HORIZONTAL; hatch <= HS_DIAGCROSS; ++hatch) {
    brushes.push_back(HatchPair(witness, hatch, mode.TextColor));
  }
  return brushes;
}

void PaintTransfer(const Witness& witness, const TransferPair& pair) {
  const TransferArea& area = pair.area;
  EXPECT_EQ(1u, Transfer(witness.handle(), {.at = {area.destX, area.destY},
                                            .source = pair.source ? pair.source->library->record() : nullptr,
                                            .from = {area.srcX, area.srcY},
                                            .size = {area.width, area.height},
                                            .rop = pair.rop,
                                            .brush = pair.brush ? &pair.brush->library : nullptr,
                                            .drawMode = &pair.mode,
                                            .clip = &pair.clip}));

  const Selected selected(witness.dc(), {PlatformBrush(pair.brush)}, pair.clip);
  const bool usesSource = IndexUsesSource(static_cast<uint8_t>(pair.rop >> 16));
  EXPECT_NE(0, BitBlt(witness.dc(), area.destX, area.destY, area.width, area.height,
                      usesSource ? pair.source->platform->dc() : nullptr, area.srcX, area.srcY, pair.rop));
}

testing::AssertionResult TransferAgrees(const Witness& witness, const TransferPair& pair) {
  PaintTransfer(witness, pair);
  return witness.Same() << Described(pair);
}

uint32_t CodeOf(uint8_t index) {
  for (uint32_t named : {SRCCOPY, SRCPAINT, SRCAND, SRCINVERT, SRCERASE, NOTSRCCOPY, NOTSRCERASE, MERGECOPY, MERGEPAINT,
                         PATCOPY, PATPAINT, PATINVERT, DSTINVERT, BLACKNESS, WHITENESS}) {
    if (named >> 16 == index) return named;
  }
  return uint32_t{index} << 16;
}

ImagePlace WholeImage(const DibSample& dib, int32_t dstX, int32_t dstY, int32_t factor) {
  return {dstX, dstY, dib.width() * factor, dib.height() * factor, 0, 0, dib.width(), dib.height()};
}

ImagePlace Mirrored(ImagePlace area, unsigned mirror) {
  const auto turn = [](int32_t* start, int32_t* extent) {
    *start += *extent;
    *extent = -*extent;
  };
  if ((mirror & kTurnDstX) != 0) turn(&area.dstX, &area.dstWidth);
  if ((mirror & kTurnDstY) != 0) turn(&area.dstY, &area.dstHeight);
  if ((mirror & kTurnSrcX) != 0) turn(&area.srcX, &area.srcWidth);
  if ((mirror & kTurnSrcY) != 0) turn(&area.srcY, &area.srcHeight);
  return area;
}

uint32_t PaintLibraryImage(const Witness& witness, const ImagePair& pair) {
  const ImagePlace& area = pair.area;
  const DRAWMODE mode = MakeDrawMode();
  return QNVStretchDIBits(witness.handle(), 0, area.dstX, area.dstY, area.dstWidth, area.dstHeight, area.srcX,
                          area.srcY, area.srcWidth, area.srcHeight, pair.dib->bits(), pair.dib->info(), nullptr,
                          pair.rop, pair.brush ? &pair.brush->library : nullptr, &mode, &pair.clip) &
         0xFFFF;
}

int PaintPlatformImage(const Witness& witness, const ImagePair& pair) {
  const ImagePlace& area = pair.area;
  const Selected selected(witness.dc(), {PlatformBrush(pair.brush)}, pair.clip);
  return StretchDIBits(witness.dc(), area.dstX, area.dstY, area.dstWidth, area.dstHeight, area.srcX, area.srcY,
                       area.srcWidth, area.srcHeight, pair.dib->bits(), pair.dib->info(), DIB_RGB_COLORS, pair.rop);
}

void PaintImage(const Witness& witness, const ImagePair& pair) {
  EXPECT_EQ(1u, PaintLibraryImage(witness, pair));
  // The platform's turned extent starts with the pixel named, the library's ends before it. Source rows count upwards.
  ImagePair platform = pair;
  ImagePlace& area = platform.area;
  if (area.dstWidth < 0) --area.dstX;
  if (area.dstHeight < 0) --area.dstY;
  if (area.srcWidth < 0) --area.srcX;
  if (area.srcHeight < 0) ++area.srcY;
  EXPECT_NE(0, PaintPlatformImage(witness, platform));
}

testing::AssertionResult ImageAgrees(const Witness& witness, const ImagePair& pair, int tolerance) {
  PaintImage(witness, pair);
  return witness.Same(tolerance) << Described(pair);
}

uint32_t SetLibraryScans(const Witness& witness, const DibSample& dib, uint32_t first, uint32_t count,
                         const BandRect& clip) {
  const DRAWMODE mode = MakeDrawMode();
  return QNVDevSetDIBitsToDevice(witness.handle(), 3, 2, first, count, &clip, &mode, dib.bits(), dib.info(), nullptr) &
         0xFFFF;
}

int SetPlatformScans(const Witness& witness, const DibSample& dib, uint32_t first, uint32_t count) {
  return SetDIBitsToDevice(witness.dc(), 3, 2, static_cast<DWORD>(dib.width()), count, 0, static_cast<int>(first), 0,
                           static_cast<UINT>(dib.height()), dib.bits(), dib.info(), DIB_RGB_COLORS);
}

}  // namespace qnv::test
