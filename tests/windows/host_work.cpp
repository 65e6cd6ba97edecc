// Every exported function once or more on one device, called through the host's own way of calling.
#include "windows/host_work.h"

#include <windows.h>

#include <cstdlib>
#include <memory>
#include <utility>

#include "support/source_image.h"
#include "support/test_device.h"
#include "text/font_builder.h"
#include "windows/dib_sample.h"

namespace qnv::test {
namespace {

constexpr int32_t kWidth = 203;
constexpr int32_t kHeight = 24;

uint32_t Slot(const void* address) { return static_cast<uint32_t>(reinterpret_cast<uintptr_t>(address)); }
uint32_t Slot(int32_t value) { return static_cast<uint32_t>(value); }
uint32_t Slot(uint32_t value) { return value; }

class Work {
 public:
  Work(const HostCaller& call, uint16_t kind, uint16_t depth, bool tags);
  void Run();
  void Finish(WorkResult* result);

 private:
  template <class... Slots>
  uint32_t Call(const char* name, Slots... slots) {
    names_.push_back(name);
    const uint32_t value = call_(name, {Slot(slots)...});
    return value;
  }
  template <class... Slots>
  void Record(const char* name, Slots... slots) {
    results_.push_back(Call(name, handle_, slots...));
  }

  PhysicalBrush Realise(const LogicalBrush& logical);
  void SetUp();
  void Transfers();
  void Spans();
  void Text();
  void Images();
  void Image(const DibSample& dib, int32_t width, int32_t height, uint32_t rop);

  const HostCaller& call_;
  DeviceDescription description_;
  BandRect band_{0, 0, kWidth, kHeight};
  BandRect clip_{-3, -3, kWidth - 1, kHeight - 1};
  DRAWMODE mode_ = MakeDrawMode();
  FencedBuffer plane_;
  FencedBuffer tags_;
  bool tagged_;
  uint32_t handle_ = 0;
  PhysicalBrush solid_{};
  PhysicalBrush hatch_{};
  PhysicalBrush pattern_{};
  std::vector<uint32_t> results_;
  std::vector<std::string> names_;
};

Work::Work(const HostCaller& call, uint16_t kind, uint16_t depth, bool tags)
    : call_(call),
      description_{kind, depth, 360, kWidth, kHeight, 360},
      plane_(static_cast<std::size_t>((kWidth * (depth == 8 ? 1 : 3) + 3) & ~3) * kHeight, 0x77),
      tags_(static_cast<std::size_t>((kWidth + 3) & ~3) * kHeight, 0x77),
      tagged_(tags) {
  if (kind == QNV_KIND_SCALED) description_.resolutionA = 300;
  mode_.TextColor = 0x00123456;
  mode_.bkColor = 0x00E0C0A1;
}

PhysicalBrush Work::Realise(const LogicalBrush& logical) {
  PhysicalBrush brush{};
  Record("QNVRealizeObject", OBJ_BRUSH, &logical, &brush, 0);
  return brush;
}

void Work::SetUp() {
  DeviceSize size{};
  results_.push_back(Call("QNVGetDeviceInfo", &description_, &size));
  results_.push_back(size.width);
  handle_ = Call("QNVEnable", &description_, &band_, plane_.data(), tagged_ ? tags_.data() : nullptr);
  const DrawingOrigin origin{1, 2};
  Record("QNVControl", QNV_CLEAR_BAND, 0, 0);
  Record("QNVControl", QNV_SET_BAND_RECT, &band_, 0);
  Record("QNVControl", QNV_SET_ORIGIN, &origin, 0);
  uint32_t color = 0;
  Record("QNVColorInfo", 0x00405060, &color);
  const LogicalPen logical{PS_DOT, 1, 1, 0x00102030};
  PhysicalPen pen{};
  Record("QNVRealizeObject", OBJ_PEN, &logical, &pen, 0);
  static constexpr uint8_t kRows[8] = {0x12, 0x34, 0x56, 0x78, 0x9A, 0xBC, 0xDE, 0xF1};
  const SourceBitmap bitmap{0, 8, 8, 1, 1, 1, kRows};
  solid_ = Realise({BS_SOLID, 0x00405060, 0, 0});
  hatch_ = Realise({BS_HATCHED, 0x00604020, HS_DIAGCROSS, 0x00FFFFFF});
  pattern_ = Realise({BS_PATTERN, reinterpret_cast<uintptr_t>(&bitmap), 0, 0});
}

void Work::Transfers() {
  const SourceImage deep(description_.bitsPerPixel == 8 ? kGraySource : kColorSource, kWidth, kHeight, 5);
  const SourceImage bits(kOneBitSource, kWidth, kHeight, 6);
  for (const SourceImage* source : {&deep, &bits}) {
    for (const PhysicalBrush* brush : {&solid_, &hatch_, &pattern_}) {
      for (uint32_t rop : {SRCCOPY, SRCINVERT, PATCOPY, PATINVERT, MERGECOPY, DSTINVERT, DWORD{0x00B8074A}, WHITENESS,
                           DWORD{0x00E20746}}) {
        Record("QNVDevBitBlt", 2, 1, source->record(), 3, 1, 190, 17, rop, brush, &mode_, &clip_);
      }
    }
  }
}

void Work::Spans() {
  static constexpr int16_t kBox[] = {2, 3, 20, 2, 199, 2};
  for (const PhysicalBrush* brush : {&solid_, &hatch_, &pattern_}) {
    for (int16_t background : {int16_t{TRANSPARENT}, int16_t{OPAQUE}}) {
      for (int16_t rop2 = R2_BLACK; rop2 <= R2_WHITE; ++rop2) {
        mode_.bkMode = background;
        mode_.Rop2 = rop2;
        Record("QNVOutput", OS_BANDED_SPANS, 1, kBox, 0, brush, &mode_, &clip_);
        Record("QNVPixel", 7, 5, 0x00334455, &mode_, &clip_);
      }
    }
  }
  mode_.Rop2 = R2_XORPEN;
  Record("QNVPolyPixel", 4, 4, 90, 9, 0x00112233, &mode_, &clip_);
  Record("QNVPixel", 7, 5, 0, 0, &clip_);
}

void Work::Text() {
  const Font font = SmallFont().Build();
  const BandRect opaque{1, 1, 150, 12};
  for (int16_t background : {int16_t{TRANSPARENT}, int16_t{OPAQUE}}) {
    for (int32_t count : {9, -9}) {
      mode_.bkMode = background;
      Record("QNVDevExtTextOut", 5, 3, &clip_, "abcdcbaca", count, font.base(), uint32_t{font.offset()}, &mode_, 0, 0,
             &opaque, count > 0 ? ETO_OPAQUE : 0);
    }
  }
}

void Work::Image(const DibSample& dib, int32_t width, int32_t height, uint32_t rop) {
  Record("QNVStretchDIBits", 0, 4, 2, width, height, 0, 0, dib.width(), dib.height(), dib.bits(), dib.info(), 0, rop,
         &pattern_, &mode_, &clip_);
}

void Work::Images() {
  for (const DibForm& form : kDibForms) {
    const DibSample dib(form, 97, 11, RowOrder::kBottomUp, 7);
    for (uint32_t rop : {DWORD{SRCCOPY}, DWORD{SRCINVERT}, DWORD{0x00B8074A}, DWORD{ROP_MINIMUM}}) {
      Image(dib, 97, 11, rop);
      Image(dib, -190, 20, rop);
      Image(dib, 60, 7, rop);
    }
    Record("QNVDevSetDIBitsToDevice", 9, 4, 2, 7, &clip_, &mode_, dib.bits(), dib.info(), 0);
  }
  const DibForm runs{"RLE8", 8, BI_RLE8};
  Image(DibSample(runs, 97, 3, {90, 1, 7, 4, 0, 0, 97, 2, 0, 0, 0, 5, 1, 2, 3, 4, 5, 0, 0, 1}, 4), 97, 3, SRCCOPY);
}

void Work::Run() {
  SetUp();
  Images();
  Transfers();
  Spans();
  Text();
  Images();
}

void Work::Finish(WorkResult* result) {
  Call("QNVDisable", handle_);
  for (const FencedBuffer* plane : {&plane_, &tags_}) {
    if (!plane->FencesIntact()) std::abort();
    result->pictures.insert(result->pictures.end(), plane->data(), plane->data() + plane->size());
  }
  result->results.insert(result->results.end(), results_.begin(), results_.end());
  result->names.insert(result->names.end(), names_.begin(), names_.end());
}

template <std::size_t... kIndex>
uint32_t CallPlainly(const void* function, const std::vector<uint32_t>& arguments, std::index_sequence<kIndex...>) {
  using Function = uint32_t (*)(decltype(static_cast<void>(kIndex), uint32_t{})...);
  return reinterpret_cast<Function>(const_cast<void*>(function))(arguments[kIndex]...);
}

template <std::size_t kCount>
uint32_t CallOfCount(const void* function, const std::vector<uint32_t>& arguments) {
  if (arguments.size() == kCount) return CallPlainly(function, arguments, std::make_index_sequence<kCount>());
  if constexpr (kCount > 1) return CallOfCount<kCount - 1>(function, arguments);
  std::abort();
}

}  // namespace

HostCaller PlainCaller(void* module) {
  return [module](const char* name, const std::vector<uint32_t>& arguments) {
    const FARPROC function = GetProcAddress(static_cast<HMODULE>(module), name);
    if (function == nullptr) std::abort();
    constexpr std::size_t kMostArguments = 17;
    return CallOfCount<kMostArguments>(reinterpret_cast<const void*>(function), arguments);
  };
}

WorkResult DoHostWork(const HostCaller& call) {
  struct Kind {
    uint16_t kind;
    uint16_t depth;
    bool tags;
  };
  WorkResult result;
  for (const Kind& kind :
       {Kind{QNV_KIND_RASTER, 24, false}, Kind{QNV_KIND_RASTER, 8, false}, Kind{QNV_KIND_SCALED, 24, false},
        Kind{QNV_KIND_SCALED, 0, false}, Kind{QNV_KIND_RASTER, 24, true}}) {
    Work work(call, kind.kind, kind.depth, kind.tags);
    work.Run();
    work.Finish(&result);
  }
  return result;
}

}  // namespace qnv::test
