// Device-independent bitmaps of every depth, and both run-length forms.
#include <cstring>

#include "extremes/stage.h"

namespace qnv::test {
namespace {

enum ImageField : std::size_t {
  kGet = kOwnFields,
  kDst,
  kSrc = kDst + 4,
  kRop = kSrc + 4,
  kHeader,  // the fields of the header, in its order
  kMasks = kHeader + 11,
  kImageMode = kMasks + 3,
  kImageBrush = kImageMode + kDrawModeFields
};

enum HeaderField : std::size_t {
  kSize,
  kBiWidth,
  kBiHeight,
  kPlanes,
  kBitCount,
  kCompression,
  kSizeImage,
  kXPels,
  kYPels,
  kClrUsed,
  kClrImportant
};

enum RowsField : std::size_t { kX = kOwnFields, kY, kStartScan, kNumScans, kRowsHeader, kRowsMode = kRowsHeader + 14 };

struct Bitmap {
  const uint8_t* info;
  const uint8_t* bits;
  uint64_t work;  // its rows, and the bytes that have to be walked
};

// What the header promises; nothing at all behind a header that is refused.
bool Place(Stage& stage, const Values& v, std::size_t first, Bitmap* bitmap) {
  BITMAPINFOHEADER header;
  std::memset(&header, 0, sizeof header);
  header.biSize = v.U32(first + kSize);
  header.biWidth = v.I32(first + kBiWidth);
  header.biHeight = v.I32(first + kBiHeight);
  header.biPlanes = v.U16(first + kPlanes);
  header.biBitCount = v.U16(first + kBitCount);
  header.biCompression = v.U32(first + kCompression);
  header.biSizeImage = v.U32(first + kSizeImage);
  header.biXPelsPerMeter = v.I32(first + kXPels);
  header.biYPelsPerMeter = v.I32(first + kYPels);
  header.biClrUsed = v.U32(first + kClrUsed);
  header.biClrImportant = v.U32(first + kClrImportant);

  const uint32_t depth = header.biBitCount;
  const int64_t rows = std::abs(int64_t{header.biHeight});
  const bool table = depth == 1 || depth == 4 || depth == 8;
  const bool rle = header.biCompression == BI_RLE8 || header.biCompression == BI_RLE4;
  const bool taken = header.biPlanes == 1 && (table || depth == 16 || depth == 24 || depth == 32) &&
                     header.biWidth >= 1 && header.biWidth <= 32767 && rows >= 1 && rows <= 32767 &&
                     (!table || (header.biSize >= 40 && header.biSize <= 4096)) &&
                     (!rle || depth == (header.biCompression == BI_RLE8 ? 8u : 4u)) &&
                     (header.biCompression <= BI_BITFIELDS || header.biCompression == 6);
  uint64_t infoBytes = 40, bitsBytes = 0;
  if (taken && table) {
    const uint32_t full = 1u << depth;
    infoBytes = header.biSize + uint64_t{4} * (header.biClrUsed != 0 ? std::min(header.biClrUsed, full) : full);
  } else if (taken && depth == 16 && header.biCompression == BI_BITFIELDS) {
    infoBytes = 52;
  }
  // Runs, a literal, a delta and a last row without an end.
  constexpr uint8_t kRuns[] = {5, 0x12, 0, 3, 1, 2, 3, 0, 2, 7, 0, 0, 0, 2, 3, 1, 9, 0x31, 0, 0, 40, 2};
  if (taken) {
    const uint64_t rowBytes = ((static_cast<uint64_t>(header.biWidth) * depth + 7) / 8 + 3) & ~uint64_t{3};
    bitsBytes = rle ? sizeof kRuns + 260 + 2 * static_cast<uint64_t>(rows) : rowBytes * static_cast<uint64_t>(rows);
  }
  uint8_t* info = stage.host().info.Last(infoBytes);
  uint8_t* bits = stage.host().pixels.Last(bitsBytes);
  if (info == nullptr || bits == nullptr) return false;
  std::memset(info, 0x6B, static_cast<std::size_t>(infoBytes));
  std::memcpy(info, &header, sizeof header);
  if (infoBytes == 52) {
    for (std::size_t i = 0; i < 3; ++i) {
      const uint32_t mask = v.U32(first + kMasks - kHeader + i);
      std::memcpy(info + 40 + 4 * i, &mask, 4);
    }
  }
  if (rle && taken) {
    std::memset(bits, 0, static_cast<std::size_t>(bitsBytes));
    std::memcpy(bits, kRuns, sizeof kRuns);
  } else if (bitsBytes != 0 && bitsBytes < 4096) {
    for (uint64_t i = 0; i < bitsBytes; ++i) bits[i] = static_cast<uint8_t>(37 * i);
  }
  *bitmap = {info, bits, static_cast<uint64_t>(rows) % 65536 + (rle ? bitsBytes : 0) + 65536};
  return true;
}

void StretchDIBits(Stage& stage, const Values& v, int) {
  stage.Place(v);
  Bitmap bitmap;
  if (!Place(stage, v, kHeader, &bitmap)) return stage.Skip();
  const BandRect clip = v.Rect(kClip);
  const DRAWMODE mode = DrawModeOf(v, kImageMode);
  const PhysicalBrush brush = BrushOf(v, kImageBrush);
  stage.Run(bitmap.work, Limits{.clip = clip}, [&] {
    QNVStretchDIBits(stage.handle(), v.U32(kGet), v.I32(kDst), v.I32(kDst + 1), v.I32(kDst + 2), v.I32(kDst + 3),
                     v.I32(kSrc), v.I32(kSrc + 1), v.I32(kSrc + 2), v.I32(kSrc + 3), bitmap.bits, bitmap.info, nullptr,
                     v.U32(kRop), &brush, &mode, &clip);
  });
}

void SetDIBitsToDevice(Stage& stage, const Values& v, int) {
  stage.Place(v);
  Bitmap bitmap;
  if (!Place(stage, v, kRowsHeader, &bitmap)) return stage.Skip();
  const BandRect clip = v.Rect(kClip);
  const DRAWMODE mode = DrawModeOf(v, kRowsMode);
  stage.Run(bitmap.work, Limits{.clip = clip}, [&] {
    QNVDevSetDIBitsToDevice(stage.handle(), v.I32(kX), v.I32(kY), v.U32(kStartScan), v.U32(kNumScans), &clip, &mode,
                            bitmap.bits, bitmap.info, nullptr);
  });
}

std::vector<Field> HeaderFields(uint16_t depth, uint32_t compression, int64_t height) {
  return {{"biSize", 32, 40},         {"biWidth", 32, 12},        {"biHeight", 32, height},
          {"biPlanes", 16, 1},        {"biBitCount", 16, depth},  {"biCompression", 32, compression},
          {"biSizeImage", 32, 0},     {"biXPelsPerMeter", 32, 0}, {"biYPelsPerMeter", 32, 0},
          {"biClrUsed", 32, 0},       {"biClrImportant", 32, 0},  {"red mask", 32, 0xF800},
          {"green mask", 32, 0x07E0}, {"blue mask", 32, 0x001F}};
}

}  // namespace

void AddImageScenes(std::vector<Scene>& scenes, const DeviceClass& device) {
  struct Image {
    const char* name;
    uint16_t depth;
    uint32_t compression, rop;
    int height, width;  // rows of the bitmap, columns of the destination
  };
  constexpr Image kImages[] = {
      {"StretchDIBits, 24 bits", 24, BI_RGB, SRCCOPY, 8, 12},
      {"StretchDIBits, 8 bits enlarged", 8, BI_RGB, SRCCOPY, -8, 24},
      {"StretchDIBits, 1 bit reduced", 1, BI_RGB, SRCCOPY, 8, 5},
      {"StretchDIBits, 4 bits inverted", 4, BI_RGB, SRCINVERT, 8, 9},
      {"StretchDIBits, 16 bits with masks", 16, BI_BITFIELDS, SRCCOPY, 8, 12},
      {"StretchDIBits, 32 bits with a brush", 32, BI_RGB, MERGECOPY, 8, 12},
      {"StretchDIBits, 24 bits minimum", 24, BI_RGB, ROP_MINIMUM, 8, 7},
      {"StretchDIBits, run lengths of 8", 8, BI_RLE8, SRCCOPY, 8, 12},
      {"StretchDIBits, run lengths of 4", 4, BI_RLE4, SRCAND, 8, 12},
  };
  for (const Image& image : kImages) {
    scenes.push_back({image.name,
                      FieldsWith(device, {{"get", 32, 0},
                                          {"dstX", 32, CallerX(device, 1)},
                                          {"dstY", 32, CallerY(device, 1)},
                                          {"dstWidth", 32, CallerExtent(device, image.width)},
                                          {"dstHeight", 32, CallerExtent(device, 7)},
                                          {"srcX", 32, 1},
                                          {"srcY", 32, 1},
                                          {"srcWidth", 32, 10},
                                          {"srcHeight", 32, 6},
                                          {"rop", 32, image.rop}}) +
                          HeaderFields(image.depth, image.compression, image.height) + DrawModeFields() +
                          BrushFields(BS_PATTERN),
                      StretchDIBits});
  }
  for (uint16_t depth : {uint16_t{24}, uint16_t{4}}) {
    scenes.push_back({depth == 24 ? "SetDIBitsToDevice, 24 bits" : "SetDIBitsToDevice, run lengths",
                      FieldsWith(device, {{"x", 32, CallerX(device, 1)},
                                          {"y", 32, CallerY(device, 1)},
                                          {"startScan", 32, 1},
                                          {"numScans", 32, 5}}) +
                          HeaderFields(depth, depth == 24 ? BI_RGB : BI_RLE4, 8) + DrawModeFields(),
                      SetDIBitsToDevice});
  }
}

}  // namespace qnv::test
