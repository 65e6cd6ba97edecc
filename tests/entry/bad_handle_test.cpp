// What a host gets that calls with no handle, or with memory that is none: nothing is called, nothing is written, and
// the result has the form that belongs to the function.
#include <gtest/gtest.h>

#include <array>
#include <cstring>
#include <functional>
#include <vector>

#include "support/test_device.h"
#include "support/text.h"

namespace qnv::test {
namespace {

// Arguments that every function would accept, and memory that it would write.
struct Arguments {
  BandRect rect = kEverywhere;
  DRAWMODE mode = MakeDrawMode();
  PhysicalBrush brush{};
  LogicalBrush logicalBrush{BS_SOLID, 0x123456, 0, 0};
  SourceBitmap source{};
  BITMAPINFOHEADER header{sizeof(BITMAPINFOHEADER), 1, 1, 1, 24, BI_RGB, 0, 0, 0, 0, 0};
  std::array<uint8_t, 4> pixels{};
  std::array<int16_t, 4> points{0, 0, 0, 1};
  std::array<uint8_t, 600> font{};
  std::array<uint8_t, sizeof(PhysicalBrush)> output{};
};

enum class Result { kWhole, kLowHalf };

struct Case {
  const char* name;
  Result result;
  std::function<uint32_t(DeviceHandle*, Arguments*)> call;
};

const std::vector<Case>& Dispatchers() {
  static const std::vector<Case> cases = {
      {"QNVDevBitBlt", Result::kLowHalf,
       [](DeviceHandle* h, Arguments* a) {
         return QNVDevBitBlt(h, 0, 0, &a->source, 0, 0, 1, 1, BLACKNESS, &a->brush, &a->mode, &a->rect);
       }},
      {"QNVColorInfo", Result::kWhole,
       [](DeviceHandle* h, Arguments* a) {
         uint32_t physical;
         std::memcpy(&physical, a->output.data(), sizeof physical);
         const uint32_t result = QNVColorInfo(h, 0x123456, &physical);
         std::memcpy(a->output.data(), &physical, sizeof physical);
         return result;
       }},
      {"QNVControl", Result::kLowHalf,
       [](DeviceHandle* h, Arguments* a) { return QNVControl(h, QNV_SET_BAND_RECT, &a->rect, nullptr); }},
      {"QNVOutput", Result::kLowHalf,
       [](DeviceHandle* h, Arguments* a) {
         return QNVOutput(h, OS_SCANLINES, 2, a->points.data(), nullptr, &a->brush, &a->mode, &a->rect);
       }},
      {"QNVPixel", Result::kWhole,
       [](DeviceHandle* h, Arguments* a) { return QNVPixel(h, 0, 0, 0x123456, nullptr, &a->rect); }},
      {"QNVRealizeObject", Result::kWhole,
       [](DeviceHandle* h, Arguments* a) {
         return QNVRealizeObject(h, OBJ_BRUSH, &a->logicalBrush, a->output.data(), nullptr);
       }},
      {"QNVRealizeObject asking for a size", Result::kWhole,
       [](DeviceHandle* h, Arguments* a) {
         return QNVRealizeObject(h, OBJ_BRUSH, &a->logicalBrush, nullptr, nullptr);
       }},
      {"QNVDevExtTextOut", Result::kWhole,
       [](DeviceHandle* h, Arguments* a) {
         return static_cast<uint32_t>(
             QNVDevExtTextOut(h, 0, 0, &a->rect, "a", -1, a->font.data(), 0, &a->mode, nullptr, nullptr, nullptr, 0));
       }},
      {"QNVDevSetDIBitsToDevice", Result::kLowHalf,
       [](DeviceHandle* h, Arguments* a) {
         return QNVDevSetDIBitsToDevice(h, 0, 0, 0, 1, &a->rect, &a->mode, a->pixels.data(), &a->header, nullptr);
       }},
      {"QNVStretchDIBits", Result::kLowHalf,
       [](DeviceHandle* h, Arguments* a) {
         return QNVStretchDIBits(h, 0, 0, 0, 1, 1, 0, 0, 1, 1, a->pixels.data(), &a->header, nullptr, SRCCOPY,
                                 &a->brush, &a->mode, &a->rect);
       }},
      {"QNVPolyPixel", Result::kWhole,
       [](DeviceHandle* h, Arguments* a) { return QNVPolyPixel(h, 0, 0, 1, 1, 0, &a->mode, &a->rect); }},
  };
  return cases;
}

// Words that are not the magic one: zeros, its bytes exchanged, one byte off by one, one byte alone.
constexpr uint16_t kBadWords[] = {0x0000, 0x514E, 0x4E50, 0x4F51, 0x0051, 0x4E00};

TEST(BadHandle, NullGivesZeroEverywhere) {
  for (const Case& c : Dispatchers()) {
    SCOPED_TRACE(c.name);
    Arguments arguments;
    EXPECT_EQ(0u, c.call(nullptr, &arguments));
  }
  QNVDisable(nullptr);
}

TEST(BadHandle, WrongMagicGivesTheFunctionsOwnForm) {
  for (const Case& c : Dispatchers()) {
    for (uint16_t bad : kBadWords) {
      // An odd address as well: a handle that is none need not be aligned.
      for (std::size_t shift : {std::size_t{0}, std::size_t{1}}) {
        SCOPED_TRACE(Text(c.name, ", word ", bad));
        alignas(16) std::array<uint8_t, 32> memory;
        memory.fill(0x77);
        memory[shift] = static_cast<uint8_t>(bad);
        memory[shift + 1] = static_cast<uint8_t>(bad >> 8);
        const auto before = memory;
        Arguments arguments;
        arguments.output.fill(0x3C);
        const auto outputBefore = arguments.output;
        auto* handle = reinterpret_cast<DeviceHandle*>(memory.data() + shift);
        const uint32_t lowHalfCleared = static_cast<uint32_t>(reinterpret_cast<uintptr_t>(handle)) & 0xFFFF0000u;
        EXPECT_EQ(c.result == Result::kWhole ? 0u : lowHalfCleared, c.call(handle, &arguments));
        QNVDisable(handle);
        EXPECT_EQ(before, memory) << "the memory behind the handle was written";
        EXPECT_EQ(outputBefore, arguments.output) << "an output record was written";
      }
    }
  }
}

}  // namespace
}  // namespace qnv::test
