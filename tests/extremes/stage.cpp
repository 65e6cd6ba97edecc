#include "extremes/stage.h"

#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "allocation/counting_heap.h"

namespace qnv::test {
namespace {

#if defined(__SANITIZE_ADDRESS__)
constexpr double kSlowness = 20;  // of instrumented code
#else
constexpr double kSlowness = 1;
#endif

// The most that a device may hold: itself, its tables, the work memory of images and a record of spans.
uint64_t MaxHeap(const DeviceClass& device) {
  const uint64_t tables = device.kind == QNV_KIND_SCALED ? 4u * (device.resolutionA + device.resolutionB + 2u) : 0;
  return (3u << 20) + 32u * kBandColumns + tables + 8 * 16384u + 16384;
}

#if defined(__LP64__)
constexpr std::size_t kPixelMemory = std::size_t{4500} << 20;
constexpr std::size_t kFontMemory = std::size_t{300} << 20;
#else
constexpr std::size_t kPixelMemory = std::size_t{900} << 20;
constexpr std::size_t kFontMemory = std::size_t{300} << 20;
#endif

int64_t FloorDivide(int64_t v, int64_t divisor) { return v >= 0 ? v / divisor : -((-v + divisor - 1) / divisor); }

}  // namespace

int32_t Sum(int32_t a, int32_t b) { return static_cast<int32_t>(static_cast<uint32_t>(a) + static_cast<uint32_t>(b)); }

HostMemory::HostMemory()
    : pixels(kPixelMemory),
      info(8192),
      text(65536),
      widths(65536),
      list(std::size_t{4} << 20),
      font(kFontMemory),
      pattern(std::size_t{1} << 20) {
  // Sources of ordinary size are no plain white.
  constexpr std::size_t kPicture = 65536;
  uint8_t* const bytes = pixels.Last(kPicture);
  for (std::size_t i = 0; i < kPicture; ++i) bytes[i] = static_cast<uint8_t>(i * 37 + i / 256);
}

static int64_t ToCaller(const DeviceClass& device, int64_t pixel) {
  if (device.kind != QNV_KIND_SCALED || device.resolutionB == 0) return pixel;
  return FloorDivide(2 * pixel * device.resolutionA + device.resolutionB, int64_t{2} * device.resolutionB);
}
int64_t CallerX(const DeviceClass& device, int column) { return ToCaller(device, int64_t{device.left} + column); }
int64_t CallerY(const DeviceClass& device, int row) { return ToCaller(device, int64_t{device.top} + row); }
int64_t CallerExtent(const DeviceClass& device, int pixels) {
  return std::clamp<int64_t>(ToCaller(device, pixels), pixels, 60000);
}

std::vector<Field> CommonFields(const DeviceClass& device) {
  return {{"origin x", 32, 0},
          {"origin y", 32, 0},
          {"band left", 32, device.left},
          {"band top", 32, device.top},
          {"band right", device.memory ? 0 : 32, int64_t{device.left} + kBandColumns},
          {"band bottom", device.memory ? 0 : 32, int64_t{device.top} + kBandRows},
          {"clip left", 32, CallerX(device, -20) - 2},
          {"clip top", 32, CallerY(device, -20) - 2},
          {"clip right", 32, CallerX(device, kBandColumns + 20) + 2},
          {"clip bottom", 32, CallerY(device, kBandRows + 20) + 2}};
}

std::vector<Field> DrawModeFields() {
  return {{"Rop2", 16, R2_XORPEN},       {"bkMode", 16, OPAQUE}, {"bkColor", 32, 0x00204060},
          {"TextColor", 32, 0x00A08060}, {"TBreakExtra", 16, 0}, {"BreakExtra", 16, 0},
          {"BreakErr", 16, 0},           {"BreakRem", 16, 0},    {"BreakCount", 16, 1},
          {"CharacterExtra", 16, 1},     {"LbkColor", 32, 0},    {"LTextColor", 32, 0}};
}

DRAWMODE DrawModeOf(const Values& v, std::size_t first) {
  DRAWMODE mode;
  std::memset(&mode, 0, sizeof mode);
  mode.Rop2 = v.I16(first);
  mode.bkMode = v.I16(first + 1);
  mode.bkColor = v.U32(first + 2);
  mode.TextColor = v.U32(first + 3);
  mode.TBreakExtra = v.I16(first + 4);
  mode.BreakExtra = v.I16(first + 5);
  mode.BreakErr = v.I16(first + 6);
  mode.BreakRem = v.I16(first + 7);
  mode.BreakCount = v.I16(first + 8);
  mode.CharacterExtra = v.I16(first + 9);
  mode.LbkColor = v.U32(first + 10);
  mode.LTextColor = v.U32(first + 11);
  return mode;
}

std::vector<Field> BrushFields(int64_t style) {
  return {{"brush style", 16, style},    {"brush hatch", 16, 3},       {"brush patternDepth", 16, 24},
          {"brush hatchScale 0", 8, 1},  {"brush hatchScale 1", 8, 2}, {"brush colour", 32, 0x00306090},
          {"brush cell", 32, 0xFF112233}};
}

PhysicalBrush BrushOf(const Values& v, std::size_t first) {
  PhysicalBrush brush;
  std::memset(&brush, 0, sizeof brush);
  brush.style = v.U16(first);
  brush.hatch = v.U16(first + 1);
  brush.patternDepth = v.U16(first + 2);
  brush.hatchScale[0] = v.U8(first + 3);
  brush.hatchScale[1] = v.U8(first + 4);
  brush.colour = v.U32(first + 5);
  for (std::size_t i = 0; i < 64; ++i) brush.cells[i] = i % 3 == 0 ? v.U32(first + 6) : static_cast<uint32_t>(i) << 24;
  return brush;
}

Stage::Stage(const DeviceClass& device, HostMemory& host) : device_(device), host_(host) {
  const bool scaled = device.kind == QNV_KIND_SCALED;
  stride_ = (kBandColumns * (scaled || device.bitsPerPixel == 24 ? 3u : 1u) + 3) & ~3u;
  // A dual-plane device described with another depth than 24 has rows of that depth and draws three bytes a pixel.
  pixelBytes_ = scaled || device.tags || device.bitsPerPixel == 24 ? 3 : 1;
  // The clear of a dual-plane device writes three bytes a pixel whatever the depth.
  const std::size_t cleared = device.tags ? (kBandColumns + 1) * 3 / 4 * 4 : stride_;
  bits_ = std::make_unique<FencedBuffer>(std::max<std::size_t>(stride_, cleared) * kBandRows, uint8_t{0xCC});
  tags_ = std::make_unique<FencedBuffer>(((kBandColumns + 3) & ~3u) * std::size_t{kBandRows}, uint8_t{0xCC});
}

Stage::~Stage() { QNVDisable(handle_); }

void Stage::Restart() {
  QNVDisable(handle_);
  heapBefore_ = Heap().liveBytes;
  const DeviceDescription description{device_.kind, device_.bitsPerPixel, device_.resolutionA, kBandColumns,
                                      kBandRows,    device_.resolutionB};
  band_ = {device_.left, device_.top, device_.left + kBandColumns, device_.top + kBandRows};
  bits_->Fill(0xCC);
  tags_->Fill(0xCC);
  handle_ =
      QNVEnable(&description, &band_, device_.memory ? bits_->data() : nullptr, device_.tags ? tags_->data() : nullptr);
  if (handle_ == nullptr) std::abort();
  if (device_.tags) {
    // From the first image on tags are written.
    const BITMAPINFOHEADER header{40, 1, 1, 1, 24, BI_RGB, 0, 0, 0, 0, 0};
    const uint8_t pixel[4] = {1, 2, 3, 0};
    DRAWMODE mode;
    std::memset(&mode, 0, sizeof mode);
    QNVStretchDIBits(handle_, 0, band_.left, band_.top, 1, 1, 0, 0, 1, 1, pixel, &header, nullptr, SRCCOPY, nullptr,
                     &mode, &band_);
  }
  bitsAtStart_.assign(bits_->data(), bits_->data() + bits_->size());
  tagsAtStart_.assign(tags_->data(), tags_->data() + tags_->size());
  Rewind();
}

void Stage::Rewind() {
  bitsBefore_ = bitsAtStart_;
  tagsBefore_ = tagsAtStart_;
  std::memcpy(bits_->data(), bitsAtStart_.data(), bitsAtStart_.size());
  std::memcpy(tags_->data(), tagsAtStart_.data(), tagsAtStart_.size());
}

std::vector<uint8_t> Stage::Painted() const {
  std::vector<uint8_t> bytes = bitsBefore_;
  bytes.insert(bytes.end(), tagsBefore_.begin(), tagsBefore_.end());
  return bytes;
}

BandRect Stage::BandOf(const Values& values) const {
  const int32_t left = values.I32(kBandLeft), top = values.I32(kBandTop);
  if (!device_.memory) return {left, top, values.I32(kBandRight), values.I32(kBandBottom)};
  return {left, top, Sum(left, kBandColumns), Sum(top, kBandRows)};
}

void Stage::Place(const Values& values) {
  band_ = BandOf(values);
  const DrawingOrigin origin{values.I32(kOriginX), values.I32(kOriginY)};
  originX_ = origin.x;
  originY_ = origin.y;
  QNVControl(handle_, QNV_SET_BAND_RECT, &band_, nullptr);
  QNVControl(handle_, QNV_SET_ORIGIN, &origin, nullptr);
}

double Stage::SecondsFor(uint64_t work) { return kSlowness * (0.02 + 2e-7 * static_cast<double>(work)); }

// In pixels of the band, from its corner.
BandRect Stage::AllowedPixels(const Limits& limits, bool tags) const {
  const BandRect all{0, 0, kBandColumns, kBandRows};
  BandRect clip{Sum(limits.clip.left, originX_), Sum(limits.clip.top, originY_), Sum(limits.clip.right, originX_),
                Sum(limits.clip.bottom, originY_)};
  const bool allZero = clip.left == 0 && clip.top == 0 && clip.right == 0 && clip.bottom == 0;
  if (limits.none || allZero) return all;
  if (limits.widens || tags) {
    // Tags are also written within the clip as given: where the widened edge wraps around, that one is the farther.
    const auto widen = [&](int32_t& edge, int32_t by) {
      if (by < 0) edge = tags ? std::min(edge, Sum(edge, by)) : Sum(edge, by);
    };
    widen(clip.left, Sum(limits.left, originX_));
    widen(clip.top, Sum(limits.top, originY_));
  }
  int64_t edges[4] = {clip.left, clip.top, clip.right, clip.bottom};
  if (tags) {
    // An edge of 0 does not limit tags, neither with the origin nor without it.
    const int32_t given[4] = {limits.clip.left, limits.clip.top, limits.clip.right, limits.clip.bottom};
    for (int i = 0; i < 4; ++i) {
      if (given[i] == 0) edges[i] = i < 2 ? INT32_MIN : INT32_MAX;
    }
  }
  int64_t slack = 0;
  if (device_.kind == QNV_KIND_SCALED) {
    const int64_t a = device_.resolutionA, b = device_.resolutionB;
    // What is out of range maps to -1.
    for (int64_t edge : edges) {
      if (std::abs(edge) * b / a >= INT32_MAX) return all;
    }
    slack = 3 + 2 * b / a;
  }
  if (edges[0] >= edges[2] || edges[1] >= edges[3]) return BandRect{0, 0, 0, 0};
  if (device_.kind == QNV_KIND_SCALED) {
    const int64_t a = device_.resolutionA, b = device_.resolutionB;
    for (int i = 0; i < 4; ++i) edges[i] = FloorDivide(edges[i] * b, a);
  }
  const auto column = [&](int64_t x) {
    return static_cast<int32_t>(std::clamp<int64_t>(x - band_.left, 0, kBandColumns));
  };
  const auto row = [&](int64_t y) { return static_cast<int32_t>(std::clamp<int64_t>(y - band_.top, 0, kBandRows)); };
  return {column(edges[0] - slack), row(edges[1] - slack), column(edges[2] + slack), row(edges[3] + slack)};
}

void Stage::CheckPlane(const char* name, FencedBuffer& plane, std::vector<uint8_t>& before, uint32_t stride,
                       uint32_t pixelBytes, const BandRect& allowed) {
  if (!plane.FencesIntact()) fault_ += std::string("a byte before the ") + name + " was written; ";
  if (std::memcmp(plane.data(), before.data(), before.size()) == 0) return;
  const bool some = allowed.left < allowed.right && allowed.top < allowed.bottom;
  for (std::size_t i = 0; i < before.size(); ++i) {
    if (plane.data()[i] == before[i]) continue;
    const int32_t row = static_cast<int32_t>(i / stride), column = static_cast<int32_t>(i % stride / pixelBytes);
    const bool inside =
        some && row >= allowed.top && row < allowed.bottom && column >= allowed.left && column < allowed.right;
    if (!inside && fault_.empty()) {
      fault_ += std::string(name) + " written outside the clip, column " + std::to_string(column) + ", row " +
                std::to_string(row) + "; ";
    }
    before[i] = plane.data()[i];
  }
}

void Stage::Check(uint64_t work, const Limits& limits, double seconds) {
  slowest_ = std::max(slowest_, seconds);
  if (seconds > SecondsFor(work)) {
    fault_ += "it took " + std::to_string(seconds) + " s for " + std::to_string(work) + " units of work; ";
  }
  const uint64_t heap = Heap().liveBytes - heapBefore_;
  highestHeap_ = std::max(highestHeap_, heap);
  if (heap > MaxHeap(device_)) fault_ += "the device holds " + std::to_string(heap) + " bytes; ";
  BandRect pixels = AllowedPixels(limits, false), tags = AllowedPixels(limits, true);
  // A dual-plane device described with another depth than 24 paints some figures with that depth, in the same rows.
  const bool mixed = device_.tags && device_.bitsPerPixel != 24 && pixels.left < pixels.right;
  if (mixed) pixels = {0, pixels.top, INT32_MAX, pixels.bottom};
  if (limits.padded) pixels = tags = {0, 0, INT32_MAX, INT32_MAX};
  CheckPlane("band", *bits_, bitsBefore_, stride_, pixelBytes_, pixels);
  CheckPlane("tag plane", *tags_, tagsBefore_, (kBandColumns + 3) & ~3u, 1, tags);
}

}  // namespace qnv::test
