// One band painted twice: by the library, and by the platform's GDI as an independent witness.
#pragma once

#include <gtest/gtest.h>
#include <windows.h>

#include <cstdint>

#include "support/plane_image.h"
#include "support/test_device.h"
#include "windows/gdi_surface.h"

namespace qnv::test {

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
  HDC dc() const { return surface_.dc(); }  // logical coordinates are the page's

  // The same noise in both pictures.
  void Reset(uint64_t seed);

  // Colors and modes of `mode` for the platform's calls.
  void Apply(const DRAWMODE& mode) const;

  // Both pictures hold the same pixels, and the library wrote neither padding nor memory around its band.
  testing::AssertionResult Same() const;

  // The same, but every byte may differ by as much as `tolerance`.
  testing::AssertionResult SameWithin(int tolerance) const;

  // The library's picture is what Reset left.
  testing::AssertionResult Untouched() const;

 private:
  PlaneImage Start() const;
  PlaneImage Expected() const;

  WitnessShape shape_;
  TestDevice device_;
  GdiSurface surface_;
  std::vector<uint8_t> start_;
};

// Clips the platform's drawing to a rectangle in page coordinates for as long as it lives.
class ClippedTo {
 public:
  ClippedTo(HDC dc, const BandRect& clip);
  ~ClippedTo() { SelectClipRgn(dc_, nullptr); }
  ClippedTo(const ClippedTo&) = delete;
  ClippedTo& operator=(const ClippedTo&) = delete;

 private:
  HDC dc_;
};

// A logical color that a witness of this depth shows exactly: any color, or the gray level of its lowest byte.
COLORREF ExactColor(const Witness& witness, uint32_t color);

}  // namespace qnv::test
