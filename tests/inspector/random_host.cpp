// Makes random calls with small coordinates around the band, so that most of them paint something.
#include "inspector/random_host.h"

#include <cstring>
#include <iterator>
#include <random>

namespace qnv::test {
namespace {

class RandomHost {
 public:
  RandomHost(RecordedHost& host, const SampleDevice& sample, uint32_t seed) : host_(host), random_(seed) {
    rect_ = {0, 0, 61, 24};
    band_.assign(std::size_t{64} * 3 * 32, 0x77);
    tags_.assign(std::size_t{64} * 32, 0x01);
    device_ = QNV_RECORDED_CALL(host_, enable, kEnable, &sample.description, &rect_, band_.data(),
                                sample.tagPlane ? tags_.data() : nullptr);
    uint8_t bits[8 * 26];
    for (std::size_t i = 0; i < sizeof bits; ++i) bits[i] = static_cast<uint8_t>(i * 37);
    const SourceBitmap bitmap{0, 8, 8, 26, 1, 24, bits};
    const LogicalBrush logical[] = {{BS_SOLID, 0x0000C0FF, 0, 0},
                                    {BS_HATCHED, 0x00FF0000, HS_DIAGCROSS, 0x00C0C0C0},
                                    {BS_PATTERN, reinterpret_cast<uintptr_t>(&bitmap), 0, 0},
                                    {BS_HOLLOW, 0, 0, 0}};
    for (std::size_t i = 0; i < std::size(logical); ++i) {
      QNV_RECORDED_CALL(host_, realizeObject, kRealizeObject, device_, OBJ_BRUSH, &logical[i], &brushes_[i], nullptr);
    }
    for (std::size_t i = 0; i < sizeof source_; ++i) source_[i] = static_cast<uint8_t>(i * 11 + i / 200);
    MakeFont();
  }

  void Go(int count) {
    for (int i = 0; i < count; ++i) MakeCall();
    QNV_RECORDED_CALL(host_, disable, kDisable, device_);
  }

 private:
  int Number(int low, int high) { return std::uniform_int_distribution<int>(low, high)(random_); }
  bool Chance(int percent) { return Number(1, 100) <= percent; }
  int X() { return Number(-15, 70); }
  int Y() { return rect_.top + Number(-10, 34); }

  void MakeFont() {
    font_.assign(82 + 6 * 3 + 3 * 16, 0);
    FONTINFO info{};
    info.dfPixHeight = 8;
    info.dfPitchAndFamily = 1;
    info.dfFirstChar = 'A';
    info.dfLastChar = 'C';
    std::memcpy(font_.data(), &info, sizeof info);
    for (std::size_t i = 0; i < 3; ++i) {
      const auto width = static_cast<uint16_t>(5 + 4 * i);
      const auto offset = static_cast<uint32_t>(82 + 18 + 16 * i);
      std::memcpy(&font_[82 + 6 * i], &width, 2);
      std::memcpy(&font_[84 + 6 * i], &offset, 4);
    }
    for (std::size_t i = 100; i < font_.size(); ++i) font_[i] = static_cast<uint8_t>(0x9D * i);
  }
  const PhysicalBrush* Brush() { return Chance(15) ? nullptr : &brushes_[Number(0, 3)]; }
  const BandRect* Clip() {
    if (Chance(4)) return nullptr;
    if (Chance(8)) {
      clip_ = {0, 0, 0, 0};
    } else if (Chance(60)) {
      clip_ = {-1000, -1000, 1000, 1000};
    } else {
      const int x = X(), y = Y();
      clip_ = {x, y, x + Number(0, 50), y + Number(0, 20)};
    }
    return &clip_;
  }
  DRAWMODE* Mode() {
    mode_ = DRAWMODE{};
    mode_.Rop2 = static_cast<int16_t>(Number(1, 16));
    mode_.bkMode = static_cast<int16_t>(Number(1, 2));
    mode_.bkColor = static_cast<uint32_t>(Number(0, 0xFFFFFF));
    mode_.TextColor = static_cast<uint32_t>(Number(0, 0xFFFFFF));
    if (Chance(20)) {
      mode_.TBreakExtra = static_cast<int16_t>(Number(-6, 6));
      mode_.BreakCount = static_cast<int16_t>(Number(0, 3));
      mode_.CharacterExtra = static_cast<int16_t>(Number(-4, 4));
    }
    return &mode_;
  }
  const DRAWMODE* ModeOrNull() { return Chance(35) ? nullptr : Mode(); }
  uint32_t Rop() {
    static constexpr uint32_t kRops[] = {SRCCOPY, PATCOPY, PATINVERT, MERGECOPY, SRCINVERT, BLACKNESS, DSTINVERT};
    return Chance(60) ? kRops[Number(0, 6)] : static_cast<uint32_t>(Number(0, 255)) << 16;
  }

  void MakeCall();
  void Spans();
  void Text();

  RecordedHost& host_;
  std::mt19937 random_;
  BandRect rect_, clip_;
  DRAWMODE mode_;
  DeviceHandle* device_;
  std::vector<uint8_t> band_, tags_, font_;
  PhysicalBrush brushes_[4]{};
  uint8_t source_[16 * 200];
};

void RandomHost::MakeCall() {
  const int kind = Number(0, 99);
  if (kind < 3) {
    const DrawingOrigin origin{Number(-5, 5), Number(-5, 5)};
    QNV_RECORDED_CALL(host_, control, kControl, device_, QNV_SET_ORIGIN, &origin, nullptr);
  } else if (kind < 6) {
    rect_.top = rect_.top > 60 ? 0 : rect_.top + Number(5, 24);
    rect_.bottom = rect_.top + Number(18, 24);
    QNV_RECORDED_CALL(host_, control, kControl, device_, QNV_SET_BAND_RECT, &rect_, nullptr);
    if (Chance(80)) QNV_RECORDED_CALL(host_, control, kControl, device_, QNV_CLEAR_BAND, nullptr, nullptr);
  } else if (kind < 12) {
    QNV_RECORDED_CALL(host_, pixel, kPixel, device_, X(), Y(), static_cast<uint32_t>(Number(0, 0xFFFFFF)), ModeOrNull(),
                      Clip());
  } else if (kind < 18) {
    QNV_RECORDED_CALL(host_, polyPixel, kPolyPixel, device_, X(), Y(), X(), Y(), 0x00804020, ModeOrNull(), Clip());
  } else if (kind < 40) {
    const SourceBitmap wide{0, 60, 16, 200, 1, 24, source_}, mono{0, 60, 16, 8, 1, 1, source_};
    const SourceBitmap* const source = Chance(40) ? &mono : &wide;
    QNV_RECORDED_CALL(host_, bitBlt, kDevBitBlt, device_, X(), Y(), source, Number(0, 20), Number(0, 8), Number(0, 40),
                      Number(0, 20), Rop(), Brush(), ModeOrNull(), Clip());
  } else if (kind < 62) {
    Spans();
  } else if (kind < 82) {
    Text();
  } else if (kind < 96) {
    const BITMAPINFOHEADER rgb{40, 19, Chance(50) ? -7 : 7, 1, 24, BI_RGB, 0, 0, 0, 0, 0};
    const int width = Number(-40, 40), height = Number(-20, 20);
    const uint32_t rop = Chance(40) ? uint32_t{SRCCOPY} : Chance(20) ? ROP_MINIMUM : Rop();
    QNV_RECORDED_CALL(host_, stretchDIBits, kStretchDIBits, device_, 0, X(), Y(), width, height, Number(0, 4),
                      Number(0, 3), Number(1, 15), Number(1, 4), source_, static_cast<const void*>(&rgb), nullptr, rop,
                      Brush(), ModeOrNull(), Clip());
  } else {
    const BITMAPINFOHEADER rgb{40, 19, 7, 1, 24, BI_RGB, 0, 0, 0, 0, 0};
    QNV_RECORDED_CALL(host_, setDIBitsToDevice, kDevSetDIBitsToDevice, device_, X(), Y(),
                      static_cast<uint32_t>(Number(0, 3)), static_cast<uint32_t>(Number(0, 4)), Clip(), ModeOrNull(),
                      source_, static_cast<const void*>(&rgb), nullptr);
  }
}

void RandomHost::Spans() {
  int16_t list[24];
  const auto x = [&] { return static_cast<int16_t>(X()); };
  const auto y = static_cast<int16_t>(Y());
  static constexpr uint32_t kStyles[] = {OS_SCANLINES,   OS_BANDED_SPANS,  OS_ROW_RECORDS, OS_ROW_SPANS,
                                         OS_BYTE_DELTAS, OS_NIBBLE_DELTAS, OS_BEGINNSCAN,  999};
  const uint32_t style = kStyles[Chance(95) ? Number(0, 5) : Number(6, 7)];
  for (int16_t& word : list) word = x();
  const auto count = static_cast<uint32_t>(Number(1, 5));
  if (style == OS_SCANLINES) list[1] = y;
  if (style == OS_ROW_SPANS || style == OS_BYTE_DELTAS || style == OS_NIBBLE_DELTAS) list[0] = y;
  if (style == OS_BANDED_SPANS) {
    const int16_t record[] = {2, y, static_cast<int16_t>(y + Number(1, 9)), x(), x(), 2};
    for (std::size_t i = 0; i < 24; i += 6) std::memcpy(&list[i], record, sizeof record);
  }
  if (style == OS_ROW_RECORDS) {
    list[0] = y;
    for (std::size_t i = 1; i + 2 < 24; i += 3) list[i] = 2;
  }
  QNV_RECORDED_CALL(host_, output, kOutput, device_, style, style == OS_BANDED_SPANS ? count % 4 + 1 : count, list,
                    nullptr, Brush(), ModeOrNull(), Clip());
}

void RandomHost::Text() {
  std::string text;
  for (int i = Number(1, 6); i > 0; --i) text += static_cast<char>('A' + Number(0, 2));
  int16_t widths[8];
  for (int16_t& width : widths) width = static_cast<int16_t>(Number(-3, 14));
  const int x = X(), y = Y();
  const BandRect opaque{x - 2, y - 2, x + Number(0, 40), y + Number(0, 12)};
  QNV_RECORDED_CALL(host_, extTextOut, kDevExtTextOut, device_, x, y, Clip(), text.data(),
                    static_cast<int32_t>(text.size()), font_.data(), 0, Mode(), nullptr, Chance(40) ? widths : nullptr,
                    Chance(50) ? &opaque : nullptr, static_cast<uint32_t>(Number(0, 7) & 6));
}

}  // namespace

calls::Bytes RecordRandomCalls(const std::string& name, const SampleDevice& device, uint32_t seed, int count) {
  calls::CaptureOptions options;
  options.compress = false;
  RecordedHost host(name, options);
  RandomHost random(host, device, seed);
  random.Go(count);
  return host.Finish();
}

}  // namespace qnv::test
