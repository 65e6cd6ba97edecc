// What the host has told the library about a device: enough to know how large its band is and how it reads sources.
#pragma once

#include <algorithm>
#include <cstdint>

#include "qnvdrv10.h"

namespace qnv::calls {

struct DeviceShape {
  DeviceDescription description{};
  BandRect rect{};
  DrawingOrigin origin{};
  bool dualPlane = false;

  bool IsScaled() const { return description.kind == QNV_KIND_SCALED; }
  bool IsGray8() const { return !IsScaled() && !dualPlane && description.bitsPerPixel == 8; }
  // Bytes of a band pixel in memory, as the stride counts them.
  uint32_t PixelBytes() const { return IsScaled() || description.bitsPerPixel == 24 ? 3 : 1; }
  // Bytes of a pixel of a source bitmap of more than one bit.
  uint32_t SourcePixelBytes() const {
    if (dualPlane) return 3;
    return description.bitsPerPixel == 24 ? 3 : 1;
  }
  uint32_t Stride() const { return (description.width * PixelBytes() + 3) & ~3u; }
  uint32_t TagStride() const { return (description.width + 3) & ~3u; }
  // The memory that the description promises.
  uint64_t BandBytes() const { return uint64_t{Stride()} * description.height; }
  uint64_t TagBytes() const { return dualPlane ? uint64_t{TagStride()} * description.height : 0; }
  // The memory that the library may touch when the band lies at `place`: more than is described when the rectangle is
  // larger, or when a dual-plane device described with another depth clears three bytes a pixel. 0 for an empty band.
  uint64_t BytesAt(const BandRect& place, uint32_t stride, uint32_t pixelBytes) const {
    const int64_t rows = int64_t{place.bottom} - place.top, columns = int64_t{place.right} - place.left;
    if (rows <= 0 || columns <= 0) return 0;
    return static_cast<uint64_t>(rows - 1) * stride + static_cast<uint64_t>(columns) * pixelBytes;
  }
  uint64_t MaxBandBytes(const BandRect& place) const {
    const uint64_t cleared = uint64_t{(description.width * 3 + 3) & ~3u} * description.height;
    return std::max({BandBytes(), BytesAt(place, Stride(), PixelBytes()), dualPlane ? cleared : uint64_t{0}});
  }
  uint64_t MaxTagBytes(const BandRect& place) const {
    return dualPlane ? std::max(TagBytes(), BytesAt(place, TagStride(), 1)) : 0;
  }
};

}  // namespace qnv::calls
