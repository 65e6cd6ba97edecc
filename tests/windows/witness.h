// One band painted twice: by the library, and by the platform's GDI as an independent witness. Sources, brushes,
// transfers and images have two forms: what the library takes, and what shows the same through the platform's calls.
//
// Include this before anything that includes qnvdrv10.h: the platform's header has to come first.
#pragma once

#include <gtest/gtest.h>
#include <windows.h>

#include <cstdint>
#include <initializer_list>
#include <memory>
#include <string>
#include <type_traits>
#include <vector>

#include "support/image_place.h"
#include "support/plane_image.h"
#include "support/source_image.h"
#include "support/test_device.h"
#include "windows/dib_sample.h"

namespace qnv::test {

// A brush, pen, region or bitmap of the platform, deleted when it goes.
struct GdiDeleter {
  void operator()(void* object) const { DeleteObject(object); }
};
template <class Handle>
using GdiObject = std::unique_ptr<std::remove_pointer_t<Handle>, GdiDeleter>;

// The header of a DIB whose top row comes first, followed by the gray ramp as its color table.
struct DibHeader {
  DibHeader(uint16_t depth, int32_t width, int32_t height);
  const BITMAPINFO* info() const { return reinterpret_cast<const BITMAPINFO*>(this); }

  BITMAPINFOHEADER header{};
  RGBQUAD colors[256];
};

// A bitmap of the platform in a device context of its own.
class GdiBitmap {
 public:
  explicit GdiBitmap(HBITMAP bitmap);
  // A DIB section of 24 or 8 (gray) bits a pixel. Its rows lie in memory as those of a band do.
  GdiBitmap(uint16_t depth, int32_t width, int32_t height);
  ~GdiBitmap() { DeleteDC(dc_); }
  GdiBitmap(const GdiBitmap&) = delete;
  GdiBitmap& operator=(const GdiBitmap&) = delete;

  HDC dc() const { return dc_; }
  uint8_t* Row(int32_t row) const;  // of a DIB section

 private:
  GdiObject<HBITMAP> bitmap_;
  HDC dc_;
  BITMAP record_{};
};

// What a context draws with, and the rectangle that clips it, for as long as this lives.
class Selected {
 public:
  Selected(HDC dc, std::initializer_list<HGDIOBJ> objects, const BandRect& clip = kEverywhere);
  ~Selected() { RestoreDC(dc_, saved_); }
  Selected(const Selected&) = delete;
  Selected& operator=(const Selected&) = delete;

 private:
  HDC dc_;
  int saved_;
};

struct WitnessShape {
  uint16_t depth = 24;  // or 8
  uint32_t width = 43;  // odd, so that rows have padding
  uint32_t height = 19;
  int32_t left = 0;  // page position of the band's first pixel
  int32_t top = 0;
  uint16_t resolution = 360;
};

class Witness {
 public:
  explicit Witness(const WitnessShape& shape = {});

  const WitnessShape& shape() const { return shape_; }
  const TestDevice& device() const { return device_; }
  DeviceHandle* handle() const { return device_.handle(); }
  HDC dc() const { return bitmap_.dc(); }  // logical coordinates are the page's

  // The same noise in both pictures.
  void Reset(uint64_t seed);

  // Colors and modes of `mode` for the platform's calls.
  void Apply(const DRAWMODE& mode) const;

  // Both pictures hold the same pixels, give or take `tolerance` in every byte, and the library wrote neither padding
  // nor memory around its band.
  testing::AssertionResult Same(int tolerance = 0) const;

  // The library's picture is what Reset left.
  testing::AssertionResult Untouched() const { return BandShows(device_, start_); }

 private:
  WitnessShape shape_;
  TestDevice device_;
  GdiBitmap bitmap_;
  PlaneImage start_;
};

// A logical color that a witness of this depth shows exactly: any color, or the gray level of its lowest byte.
COLORREF ExactColor(const Witness& witness, uint32_t color);

// A draw mode whose text and background colors a witness of this depth shows exactly.
DRAWMODE TwoColors(const Witness& witness, int16_t rop2 = R2_COPYPEN);

// Noise of the same pixels for both.
struct SourcePair {
  std::unique_ptr<SourceImage> library;
  std::unique_ptr<GdiBitmap> platform;
};

// Of the witness's own depth. Colors have red first for the library, blue first for the platform.
SourcePair DeepSourcePair(const Witness& witness, int32_t width, int32_t height, uint64_t seed);
// One bit a pixel: 1 shows the background color, 0 the text color, on both sides.
SourcePair BitSourcePair(int32_t width, int32_t height, uint64_t seed);

struct BrushPair {
  std::string name;
  PhysicalBrush library;
  GdiObject<HBRUSH> platform;
};

BrushPair SolidPair(const Witness& witness, COLORREF color);
// 8 x 8 cells of noise, of the witness's own depth or gray.
BrushPair DeepPatternPair(const Witness& witness, uint64_t seed);
BrushPair GrayPatternPair(const Witness& witness, uint64_t seed);
// The library's hatch beside a one-bit pattern of the platform that holds the hatch's published rows. The platform
// shows it in the text color on the background color: `color` has to be the text color, the mode opaque.
BrushPair HatchPair(const Witness& witness, int16_t hatch, COLORREF color);
// A solid color, a deep pattern, one of one bit (1 shows the background color, 0 the text color), and the six hatches
// in the mode's text color.
std::vector<BrushPair> EveryBrush(const Witness& witness, const DRAWMODE& mode);

struct TransferArea {
  int32_t destX = 0;  // page coordinates
  int32_t destY = 0;
  int32_t srcX = 0;
  int32_t srcY = 0;
  int32_t width = 0;
  int32_t height = 0;
};

struct TransferPair {
  TransferArea area;
  uint32_t rop = SRCCOPY;
  const SourcePair* source = nullptr;
  const BrushPair* brush = nullptr;
  BandRect clip = kEverywhere;
  DRAWMODE mode = MakeDrawMode();
};

// Both sides accept the transfer. The witness has been told the colors of `mode` already. The platform gets a source
// only where the operation reads one, as it asks for.
void PaintTransfer(const Witness& witness, const TransferPair& pair);
// The same, and both pictures show the same; a failure says what was painted.
testing::AssertionResult TransferAgrees(const Witness& witness, const TransferPair& pair);

// The code as the platform publishes it where it has a name for it; the library and today's GDI read the index alone.
uint32_t CodeOf(uint8_t index);

// The whole of an image, each pixel `factor` times as wide and as high.
ImagePlace WholeImage(const DibSample& dib, int32_t dstX, int32_t dstY, int32_t factor = 1);

enum Mirror : unsigned { kTurnDstX = 1, kTurnDstY = 2, kTurnSrcX = 4, kTurnSrcY = 8 };

// The same rectangles with the named extents counted from the other end.
ImagePlace Mirrored(ImagePlace area, unsigned mirror);

struct ImagePair {
  const DibSample* dib = nullptr;
  ImagePlace area;
  uint32_t rop = SRCCOPY;
  const BrushPair* brush = nullptr;
  BandRect clip = kEverywhere;
};

// Painted by one side. The library's 16-bit result; the platform's number of lines.
uint32_t PaintLibraryImage(const Witness& witness, const ImagePair& pair);
int PaintPlatformImage(const Witness& witness, const ImagePair& pair);

// Both accept the image. Each side is told about turned extents in its own way (see kMirrorCorner).
void PaintImage(const Witness& witness, const ImagePair& pair);
// The same, and both pictures show the same, give or take `tolerance`; a failure says what was painted.
testing::AssertionResult ImageAgrees(const Witness& witness, const ImagePair& pair, int tolerance = 0);

// `count` scans of an image from `first` on, at (3, 2). All scans are handed over.
uint32_t SetLibraryScans(const Witness& witness, const DibSample& dib, uint32_t first, uint32_t count,
                         const BandRect& clip = kEverywhere);
int SetPlatformScans(const Witness& witness, const DibSample& dib, uint32_t first, uint32_t count);

}  // namespace qnv::test
