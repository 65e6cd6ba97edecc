// Calls that change or ask for state.
#include "random/calls.h"

namespace qnv::test {
namespace {

void EscapeCall(RandomCase& run, const BandRect& moved) {
  Numbers& random = run.random();
  // Only the low half of the code counts.
  const uint32_t high = random.Percent(10) ? random.Word() & 0xFFFF0000 : 0;
  const int pick = random.Range(0, 9);
  if (pick < 3) {
    const DrawingOrigin origin{random.Percent(30) ? 0 : random.Range(-40, 40),
                               random.Percent(30) ? 0 : random.Range(-40, 40)};
    run.Control(QNV_SET_ORIGIN | high, &origin, nullptr);
  } else if (pick < 6) {
    run.Control(QNV_SET_BAND_RECT | high, nullptr, &moved);
  } else if (pick < 8) {
    // A clear counts three bytes a pixel, more than this device's band has.
    if (run.deviceClass() != DeviceClass::kDualPlaneOtherDepth) run.Control(QNV_CLEAR_BAND | high, nullptr, nullptr);
  } else if (pick == 8) {
    run.Control(random.Percent(50) ? 0x2003 : random.Word() & 0x1FFF, nullptr, nullptr);
  } else {
    run.Control(random.Percent(50) ? QNV_SET_ORIGIN : QNV_SET_BAND_RECT, nullptr, nullptr);
  }
}

void ColorCall(RandomCase& run) {
  run.BeginCall("QNVColorInfo");
  const uint32_t color = RandomColor(run.random());
  run.Say("  color 0x%08X\n", color);
  uint32_t* result = run.random().Percent(70) ? run.Give(run.random().Word()) : nullptr;
  run.Ready();
  const uint32_t got = QNVColorInfo(run.handle(), color, result);
  const uint32_t expected = run.model() != nullptr ? run.model()->ColorInfo(color) : got;
  if (result != nullptr) run.Expect(result, expected);
  run.Check(expected, got);
}

void SizeCall(RandomCase& run) {
  Numbers& random = run.random();
  run.BeginCall("QNVGetDeviceInfo");
  constexpr uint16_t kDepths[] = {24, 8, 0, 16};
  const DeviceDescription description{
      static_cast<uint16_t>(random.Range(0, 4)),
      random.Pick(kDepths),
      static_cast<uint16_t>(random.Range(1, 2000)),
      random.Percent(80) ? static_cast<uint32_t>(random.Range(0, 20000)) : random.Word(),
      random.Percent(80) ? static_cast<uint32_t>(random.Range(0, 20000)) : random.Word(),
      static_cast<uint16_t>(random.Range(1, 2000))};
  run.Say("  kind %u, %u bits, %u x %u, resolutions %u to %u\n", description.kind, description.bitsPerPixel,
          description.width, description.height, description.resolutionA, description.resolutionB);
  const DeviceDescription* given = random.Percent(97) ? run.Give(description) : nullptr;
  DeviceSize* size = random.Percent(95) ? run.Give(DeviceSize{random.Word(), random.Word()}) : nullptr;
  run.Ready();
  DeviceSize expectedSize = size != nullptr ? *size : DeviceSize{};
  const uint32_t expected = reference::GetDeviceInfo(given, size != nullptr ? &expectedSize : nullptr);
  if (size != nullptr) run.Expect(size, expectedSize);
  run.Check(expected, QNVGetDeviceInfo(given, size));
}

// Realises into `output`, whose record before the call is `before`; null output asks for the size.
template <class Object>
void Realize(RandomCase& run, uint32_t kind, const void* input, Object* output, const Object& before) {
  run.Ready();
  Object expected = before;
  uint32_t result = 0;
  if (run.model() != nullptr) result = run.model()->RealizeObject(kind, input, output != nullptr ? &expected : nullptr);
  const uint32_t got = QNVRealizeObject(run.handle(), kind, input, output, nullptr);
  if (output != nullptr) run.Expect(output, run.model() != nullptr ? expected : *output);
  run.Check(result, got);
}

void PenCall(RandomCase& run) {
  Numbers& random = run.random();
  run.BeginCall("QNVRealizeObject");
  const LogicalPen pen{static_cast<uint16_t>(random.Range(0, 8)), static_cast<int16_t>(random.Word()),
                       static_cast<int16_t>(random.Word()), RandomColor(random)};
  run.Say("  pen style %u, color 0x%08X\n", pen.style, pen.colour);
  const LogicalPen* input = random.Percent(95) ? run.Give(pen) : nullptr;
  const PhysicalPen before{9, 9, 9, 0x99999999};
  PhysicalPen* output = random.Percent(90) ? run.Give(before) : nullptr;
  Realize(run, random.Percent(10) ? OBJ_PEN | 0x50000u : OBJ_PEN, input, output, before);
}

void BrushCall(RandomCase& run) {
  Numbers& random = run.random();
  run.BeginCall("QNVRealizeObject");
  LogicalBrush brush{};
  brush.style = static_cast<uint16_t>(random.Percent(95) ? random.Range(0, 3) : random.Range(4, 60000));
  brush.colour = RandomColor(random);
  brush.hatch = static_cast<int16_t>(random.Percent(92) ? random.Range(0, 5) : random.Range(-9, 30));
  brush.background = RandomColor(random);
  if (brush.style == BS_PATTERN) {
    constexpr uint8_t kDepths[] = {1, 1, 8, 24, 4, 32};
    const uint8_t depth = random.Pick(kDepths);
    const int rowBytes = depth == 24 ? 24 : depth == 8 ? 8 : 1;
    const int stride = rowBytes + random.Range(0, 5);
    std::vector<uint8_t> bits(static_cast<std::size_t>(7 * stride + rowBytes));
    random.Fill(bits.data(), bits.size());
    const SourceBitmap bitmap{
        0, 8, 8, static_cast<uint16_t>(stride), 1, depth, random.Percent(95) ? run.GiveBytes(bits) : nullptr};
    brush.colour = random.Percent(95) ? reinterpret_cast<uintptr_t>(run.Give(bitmap)) : 0;
    run.Say("  pattern of depth %u, %d bytes a row, %s\n", depth, stride,
            brush.colour == 0          ? "bitmap null"
            : bitmap.bmBits == nullptr ? "bits null"
                                       : "with bits");
    run.SayBytes("bits", bits);
  }
  run.Say("  brush style %u, color 0x%08X, hatch %d, background 0x%08X\n", brush.style,
          static_cast<uint32_t>(brush.colour), brush.hatch, brush.background);
  const LogicalBrush* input = random.Percent(96) ? run.Give(brush) : nullptr;
  PhysicalBrush before;
  random.Fill(reinterpret_cast<uint8_t*>(&before), sizeof before);
  PhysicalBrush* output = random.Percent(92) ? run.Give(before) : nullptr;
  const uint32_t kind = random.Percent(95) ? OBJ_BRUSH : static_cast<uint32_t>(random.Range(2, 70000));
  Realize(run, kind, input, output, before);
}

// Another device beside this one: is it made or refused?
void EnableCall(RandomCase& run) {
  Numbers& random = run.random();
  run.BeginCall("QNVEnable");
  constexpr uint16_t kDepths[] = {24, 8, 0, 16, 1, 32};
  DeviceDescription description{static_cast<uint16_t>(random.Percent(80) ? random.Range(0, 2) : random.Range(3, 65535)),
                                random.Pick(kDepths),
                                static_cast<uint16_t>(random.Range(1, 800)),
                                4,
                                2,
                                static_cast<uint16_t>(random.Range(1, 800))};
  if (description.kind == QNV_KIND_SCALED && random.Percent(20)) description.resolutionA = 0;
  const bool second = random.Percent(50);
  run.Say("  kind %u, %u bits, resolutions %u to %u, second buffer %d\n", description.kind, description.bitsPerPixel,
          description.resolutionA, description.resolutionB, second ? 1 : 0);
  const DeviceDescription* given = random.Percent(92) ? run.Give(description) : nullptr;
  const BandRect* rect = random.Percent(92) ? run.Give(BandRect{0, 0, 4, 2}) : nullptr;
  if (given == nullptr || rect == nullptr) run.Say("  description or band null\n");
  const std::vector<uint8_t> plane(24, 0x5A);
  uint8_t* band = random.Percent(90) ? run.GiveBytes(plane) : nullptr;
  uint8_t* tags = second ? run.GiveBytes({1, 2, 3, 4, 5, 6, 7, 8}) : nullptr;
  run.Ready();
  const std::vector<uint8_t> tagPlane(8, 1);
  const bool expected = reference::MakeModel(given, rect, &plane, second ? &tagPlane : nullptr) != nullptr;
  DeviceHandle* handle = QNVEnable(given, rect, band, tags);
  const bool got = handle != nullptr;
  QNVDisable(handle);
  run.Check(expected ? 1 : 0, got ? 1 : 0);
}

// A null handle, or memory that does not begin as a handle does.
void BadHandleCall(RandomCase& run) {
  Numbers& random = run.random();
  run.BeginCall("a call on a bad handle");
  DeviceHandle* bad = nullptr;
  if (random.Percent(70))
    bad = reinterpret_cast<DeviceHandle*>(run.GiveBytes({0x50, 0x4E, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0}));
  run.Ready();
  // The 16-bit results clear no more than 16 bits of the handle.
  const uint32_t half = static_cast<uint32_t>(reinterpret_cast<uintptr_t>(bad)) & 0xFFFF0000u;
  const int call = random.Range(0, 9);
  run.Say("  call %d, handle %s\n", call, bad == nullptr ? "null" : "not ours");
  switch (call) {
    case 0: return run.Check(half, QNVControl(bad, QNV_CLEAR_BAND, nullptr, nullptr));
    case 1: return run.Check(half, QNVDevBitBlt(bad, 0, 0, nullptr, 0, 0, 4, 4, BLACKNESS, nullptr, nullptr, nullptr));
    case 2: return run.Check(half, QNVOutput(bad, 4, 0, nullptr, nullptr, nullptr, nullptr, nullptr));
    case 3:
      return run.Check(half, QNVStretchDIBits(bad, 0, 0, 0, 1, 1, 0, 0, 1, 1, nullptr, nullptr, nullptr, SRCCOPY,
                                              nullptr, nullptr, nullptr));
    case 4:
      return run.Check(half, QNVDevSetDIBitsToDevice(bad, 0, 0, 0, 1, nullptr, nullptr, nullptr, nullptr, nullptr));
    case 5: return run.Check(0, QNVColorInfo(bad, 0x123456, nullptr));
    case 6: return run.Check(0, QNVRealizeObject(bad, OBJ_PEN, nullptr, nullptr, nullptr));
    case 7: return run.Check(0, QNVPixel(bad, 0, 0, 0, nullptr, nullptr));
    case 8: return run.Check(0, QNVPolyPixel(bad, 0, 0, 1, 1, 0, nullptr, nullptr));
    default:
      QNVDisable(bad);
      return run.Check(0, static_cast<uint32_t>(QNVDevExtTextOut(bad, 0, 0, nullptr, nullptr, 0, nullptr, 0, nullptr,
                                                                 nullptr, nullptr, nullptr, 0)));
  }
}

}  // namespace

void StateCall(RandomCase& run) {
  switch (run.random().Range(0, 11)) {
    case 0: return ColorCall(run);
    case 1: return SizeCall(run);
    case 2: return PenCall(run);
    case 3:
    case 4: return BrushCall(run);
    case 10: return EnableCall(run);
    case 11: return BadHandleCall(run);
    default: return EscapeCall(run, run.RandomBand());
  }
}

}  // namespace qnv::test
