// One image, painted by the library and by the platform.
#pragma once

#include <windows.h>

#include <cstdint>

#include "windows/dib_sample.h"
#include "windows/paired_objects.h"

namespace qnv::test {

struct ImageArea {
  int32_t dstX = 0;  // page coordinates
  int32_t dstY = 0;
  int32_t dstWidth = 0;
  int32_t dstHeight = 0;
  int32_t srcX = 0;
  int32_t srcY = 0;
  int32_t srcWidth = 0;
  int32_t srcHeight = 0;
};

// The whole of an image, each pixel `factor` times as wide and as high.
ImageArea WholeImage(const DibSample& dib, int32_t dstX, int32_t dstY, int32_t factor = 1);

enum Mirror : unsigned { kNoMirror = 0, kTurnDstX = 1, kTurnDstY = 2, kTurnSrcX = 4, kTurnSrcY = 8 };

// The same rectangles with the named extents counted from the other end.
ImageArea Mirrored(ImageArea area, unsigned mirror);

struct ImagePair {
  const DibSample* dib = nullptr;
  ImageArea area;
  uint32_t rop = SRCCOPY;
  const BrushPair* brush = nullptr;
  BandRect clip = kEverywhere;
};

// Painted by one side. The library's 16-bit result; the platform's number of lines.
uint32_t PaintLibraryImage(const Witness& witness, const ImagePair& pair);
int PaintPlatformImage(const Witness& witness, const ImagePair& pair);

// Both, each side with its own reading of turned extents (see kMirrorCorner). Expects both to accept the image.
void PaintBoth(const Witness& witness, const ImagePair& pair);

// What the platform has to be asked for, so that it covers the rectangles that the library covers.
ImageArea PlatformArea(ImageArea area);

}  // namespace qnv::test
