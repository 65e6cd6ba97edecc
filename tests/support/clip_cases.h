// The rule that most operations clip by, as one table: a figure paints what it has in common with the clip and the
// band, and the origin moves figure and clip but not the band. Operations join by painting a rectangle.
#pragma once

#include "support/device_classes.h"
#include "support/plane_image.h"
#include "support/tag_plane.h"
#include "support/transfer_model.h"

namespace qnv::test {

// 13 columns leave padding behind the rows of both depths.
inline constexpr DeviceOptions kClipBand{.width = 13, .height = 6};

struct ClipCase {
  const char* name;
  BandRect figure;   // page coordinates before the origin is added, as the clip's
  BandRect clip;     // a part of the page
  BandRect painted;  // columns and rows of the band
  BandPlace place{};
};

inline constexpr BandRect kNone{0, 0, 0, 0};

inline constexpr ClipCase kClipCases[] = {
    {"inside", {3, 1, 7, 4}, kEverywhere, {3, 1, 7, 4}},
    {"one pixel in the last corner", {12, 5, 13, 6}, {12, 5, 13, 6}, {12, 5, 13, 6}},
    {"larger than the band on every side", {-40, -40, 60, 60}, kEverywhere, {0, 0, 13, 6}},
    {"clip inside the figure", {1, 0, 12, 6}, {4, 2, 9, 5}, {4, 2, 9, 5}},
    {"clip cuts one column on the left", {1, 0, 12, 6}, {2, -9, 99, 99}, {2, 0, 12, 6}},
    {"clip cuts one row at the top", {1, 0, 12, 6}, {-9, 1, 99, 99}, {1, 1, 12, 6}},
    {"clip cuts one column on the right", {1, 0, 12, 6}, {-9, -9, 11, 99}, {1, 0, 11, 6}},
    {"clip cuts one row at the bottom", {1, 0, 12, 6}, {-9, -9, 99, 5}, {1, 0, 12, 5}},
    {"clip of one pixel", {0, 0, 13, 6}, {12, 5, 13, 6}, {12, 5, 13, 6}},
    {"clip without columns", {0, 0, 13, 6}, {4, 1, 4, 5}, kNone},
    {"clip without rows", {0, 0, 13, 6}, {4, 3, 9, 3}, kNone},
    {"clip turned", {0, 0, 13, 6}, {9, 4, 4, 2}, kNone},
    {"clip upside down", {0, 0, 13, 6}, {0, 6, 13, 0}, kNone},
    {"clip ends at the figure's left edge", {5, 1, 9, 4}, {0, 0, 5, 6}, kNone},
    {"clip ends at the figure's top edge", {5, 1, 9, 4}, {0, 0, 13, 1}, kNone},
    {"clip begins at the figure's right edge", {5, 1, 9, 4}, {9, 0, 13, 6}, kNone},
    {"clip begins at the figure's bottom edge", {5, 1, 9, 4}, {0, 4, 13, 6}, kNone},
    {"figure above the band", {0, -9, 13, 0}, kEverywhere, kNone},
    {"figure below the band", {0, 6, 13, 9}, kEverywhere, kNone},
    {"figure left of the band", {-9, 0, 0, 6}, kEverywhere, kNone},
    {"figure right of the band", {13, 0, 20, 6}, kEverywhere, kNone},
    {"band elsewhere on the page", {98, 47, 104, 52}, kEverywhere, {0, 0, 4, 2}, {100, 50}},
    {"band, figure and clip all cut", {98, 47, 109, 59}, {102, 40, 108, 54}, {2, 0, 8, 4}, {100, 50}},
    {"figure ends at the band's corner", {98, 47, 100, 50}, kEverywhere, kNone, {100, 50}},
    {"band at negative coordinates", {-9, -4, -3, -1}, kEverywhere, {1, 2, 7, 5}, {-10, -6}},
    {"clip at zero, band at negative coordinates", {-9, -2, 3, 3}, {0, 0, 99, 99}, {10, 3, 13, 6}, {-10, -3}},
    {"origin", {0, 0, 13, 6}, {2, 1, 6, 3}, {1, 3, 5, 5}, {10, 20, 9, 22}},
    {"negative origin", {20, 10, 24, 12}, kEverywhere, {5, 1, 9, 3}, {0, 0, -15, -9}},
    {"origin that moves the clip off the figure's left", {-4, 0, 4, 4}, {0, 0, 3, 3}, {5, 2, 8, 5}, {0, 0, 5, 2}},
    {"four zeros are a clip without an area", {0, 0, 13, 6}, {0, 0, 0, 0}, kNone},
    {"moved by an origin as well", {0, 0, 13, 6}, {0, 0, 0, 0}, kNone, {0, 0, 2, 1}},
    {"zeros after the origin", {0, 0, 13, 6}, {-2, -1, -2, -1}, kNone, {0, 0, 2, 1}},
};

// What every operation paints here. On a band of 0xCC an inclusive-or leaves it as it is, grayed or not.
inline constexpr uint32_t kClipInk = 0x00CDDFDC;

struct ClippedOperation {
  const char* name;
  // Paints the figure in kClipInk by as many calls as that takes, each returning `result`.
  void (*paint)(const TestDevice& device, const BandRect& figure, const BandRect* clip, uint32_t result);
  // Cases for which the operation has a rule of its own, and its test cases of its own.
  bool (*hasOwnRule)(const TestDevice& device, const ClipCase& c) = [](const TestDevice&, const ClipCase&) {
    return false;
  };
  uint32_t result = 1;
  uint32_t resultWithoutClip = 0;
};

// Every case on every device class: band, tags, padding and fences.
inline void CheckClipping(const ClippedOperation& operation) {
  for (const DeviceOptions& options : DeviceClasses(kClipBand)) {
    for (const ClipCase& c : kClipCases) {
      SCOPED_TRACE(Text(c.name, ", ", operation.name, ", ", Describe(options)));
      PlacedDevice device(options, c.place);
      if (operation.hasOwnRule(device, c)) continue;
      if (options.tagPlane) MixTags(&device);
      device.SetOrigin(c.place.originX, c.place.originY);
      PlaneImage expected = UntouchedBand(device);
      expected.Fill(c.painted, BandBytesOf(Physical(device, kClipInk)));
      operation.paint(device, c.figure, &c.clip, operation.result);
      EXPECT_TRUE(BandShows(device, expected));
      if (!options.tagPlane) continue;
      PlaneImage tags = MixedTags(device);
      tags.Fill(c.painted, {QNV_TAG_GRAPHICS});
      EXPECT_TRUE(TagsShow(device, tags));
    }
  }
}

// A band rectangle smaller than the buffer bounds the figure: rows still lie a whole stride apart.
inline void CheckSmallerBand(const ClippedOperation& operation) {
  for (const DeviceOptions& options : DeviceClasses(kClipBand)) {
    SCOPED_TRACE(Text(operation.name, ", ", Describe(options)));
    TestDevice device(options);
    const BandRect band{100, 50, 104, 53};
    EXPECT_EQ(1u, QNVControl(device.handle(), QNV_SET_BAND_RECT, &band, nullptr) & 0xFFFF);
    PlaneImage expected = BandImage(device);
    expected.Fill({0, 0, 4, 3}, BandBytesOf(Physical(device, kClipInk)));
    operation.paint(device, {60, 40, 120, 60}, &kEverywhere, operation.result);
    EXPECT_TRUE(BandShows(device, expected));
  }
}

// Without a clip rectangle nothing is painted.
inline void CheckNullClip(const ClippedOperation& operation) {
  for (const DeviceOptions& options : DeviceClasses(kClipBand)) {
    SCOPED_TRACE(Text(operation.name, ", ", Describe(options)));
    TestDevice device(options);
    if (options.tagPlane) MixTags(&device);
    operation.paint(device, {2, 1, 5, 3}, nullptr, operation.resultWithoutClip);
    EXPECT_TRUE(BandUntouched(device));
    if (options.tagPlane) {
      EXPECT_TRUE(TagsMarked(device, ""));
    }
  }
}

}  // namespace qnv::test
