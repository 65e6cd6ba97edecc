// Every exported function once or more on one device, called through the host's own way of calling.
#include "windows/host_work.h"

#include <algorithm>
#include <array>
#include <cstdlib>
#include <utility>

#include "support/source_image.h"
#include "support/test_device.h"
#include "text/font_builder.h"
#include "windows/dib_sample.h"

namespace qnv::test {
namespace {

constexpr int32_t kWorkWidth = 203;
constexpr int32_t kWorkHeight = 24;

class Work {
 public:
  Work(const HostCaller& call, WorkResult* result, uint16_t kind, uint16_t depth, bool tagged)
      : call_(call),
        result_(result),
        description_{kind,       depth,       static_cast<uint16_t>(kind == QNV_KIND_SCALED ? 300 : 360),
                     kWorkWidth, kWorkHeight, 360},
        plane_(static_cast<std::size_t>((kWorkWidth * (depth == 8 ? 1 : 3) + 3) & ~3) * kWorkHeight, 0x77),
        tags_(static_cast<std::size_t>((kWorkWidth + 3) & ~3) * kWorkHeight, 0x77) {
    handle_ = Call("QNVEnable", &description_, &band_, plane_.data(), tagged ? tags_.data() : nullptr);
  }

  void Run() {
    SetUp();
    Images();
    Transfers();
    Spans();
    Text();
    Images();
    Call("QNVDisable", handle_);
    for (const FencedBuffer* plane : {&plane_, &tags_}) {
      if (!plane->FencesIntact()) std::abort();
      result_->pictures.insert(result_->pictures.end(), plane->data(), plane->data() + plane->size());
    }
  }

 private:
  template <class... Slots>
  uint32_t Call(const char* name, Slots... slots) {
    result_->names.insert(name);
    return call_(name, {Slot(slots)...});
  }

  template <class... Slots>
  void Record(const char* name, Slots... slots) {
    result_->results.push_back(Call(name, handle_, slots...));
  }

  PhysicalBrush Realise(const LogicalBrush& logical) {
    PhysicalBrush brush{};
    Record("QNVRealizeObject", OBJ_BRUSH, &logical, &brush, 0);
    return brush;
  }

  void SetUp() {
    DeviceSize size{};
    result_->results.push_back(Call("QNVGetDeviceInfo", &description_, &size));
    result_->results.push_back(size.width);
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
    brushes_[0] = Realise({BS_SOLID, 0x00405060, 0, 0});
    brushes_[1] = Realise({BS_HATCHED, 0x00604020, HS_DIAGCROSS, 0x00FFFFFF});
    brushes_[2] = Realise({BS_PATTERN, reinterpret_cast<uintptr_t>(&bitmap), 0, 0});
  }

  void Transfers() {
    const SourceImage deep(description_.bitsPerPixel == 8 ? kGraySource : kColorSource, kWorkWidth, kWorkHeight, 5);
    const SourceImage bits(kOneBitSource, kWorkWidth, kWorkHeight, 6);
    for (const SourceImage* source : {&deep, &bits}) {
      for (const PhysicalBrush& brush : brushes_) {
        for (uint32_t rop : {SRCCOPY, SRCINVERT, PATCOPY, PATINVERT, MERGECOPY, DSTINVERT, DWORD{0x00B8074A}, WHITENESS,
                             DWORD{0x00E20746}}) {
          Record("QNVDevBitBlt", 2, 1, source->record(), 3, 1, 190, 17, rop, &brush, &mode_, &clip_);
        }
      }
    }
  }

  void Spans() {
    static constexpr int16_t kBoxRecord[] = {2, 3, 20, 2, 199, 2};
    for (const PhysicalBrush& brush : brushes_) {
      for (int16_t background : {int16_t{TRANSPARENT}, int16_t{OPAQUE}}) {
        for (int16_t rop2 = R2_BLACK; rop2 <= R2_WHITE; ++rop2) {
          mode_.bkMode = background;
          mode_.Rop2 = rop2;
          Record("QNVOutput", OS_BANDED_SPANS, 1, kBoxRecord, 0, &brush, &mode_, &clip_);
          Record("QNVPixel", 7, 5, 0x00334455, &mode_, &clip_);
        }
      }
    }
    mode_.Rop2 = R2_XORPEN;
    Record("QNVPolyPixel", 4, 4, 90, 9, 0x00112233, &mode_, &clip_);
    Record("QNVPixel", 7, 5, 0, 0, &clip_);
  }

  void Text() {
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

  void Image(const DibSample& dib, int32_t width, int32_t height, uint32_t rop) {
    Record("QNVStretchDIBits", 0, 4, 2, width, height, 0, 0, dib.width(), dib.height(), dib.bits(), dib.info(), 0, rop,
           &brushes_[2], &mode_, &clip_);
  }

  void Images() {
    for (const DibForm& form : kDibForms) {
      const DibSample dib(form, {.width = 97, .height = 11});
      for (uint32_t rop : {DWORD{SRCCOPY}, DWORD{SRCINVERT}, DWORD{0x00B8074A}, DWORD{ROP_MINIMUM}}) {
        Image(dib, 97, 11, rop);
        Image(dib, -190, 20, rop);
        Image(dib, 60, 7, rop);
      }
      Record("QNVDevSetDIBitsToDevice", 9, 4, 2, 7, &clip_, &mode_, dib.bits(), dib.info(), 0);
    }
    const std::vector<uint8_t> runs = {90, 1, 7, 4, 0, 0, 97, 2, 0, 0, 0, 5, 1, 2, 3, 4, 5, 0, 0, 1};
    Image(DibSample(kRle8Form, {.width = 97, .height = 3, .seed = 4, .runs = runs}), 97, 3, SRCCOPY);
  }

  const HostCaller& call_;
  WorkResult* result_;
  DeviceDescription description_;
  BandRect band_{0, 0, kWorkWidth, kWorkHeight};
  BandRect clip_{-3, -3, kWorkWidth - 1, kWorkHeight - 1};
  DRAWMODE mode_ = MakeDrawMode({.background = 0x00E0C0A1, .text = 0x00123456});
  FencedBuffer plane_;
  FencedBuffer tags_;
  uint32_t handle_;
  PhysicalBrush brushes_[3] = {};  // solid, hatch, pattern
};

// The caller takes its arguments from the stack again: a function does not mind more of them than it has.
using AllSlots = std::array<uint32_t, 17>;

template <std::size_t... kIndex>
uint32_t CallWithAll(FARPROC function, const AllSlots& slots, std::index_sequence<kIndex...>) {
  using Function = uint32_t (*)(decltype(static_cast<void>(kIndex), uint32_t{})...);
  return reinterpret_cast<Function>(reinterpret_cast<void*>(function))(slots[kIndex]...);
}

}  // namespace

HostCaller PlainCaller(HMODULE module) {
  return [module](const char* name, const std::vector<uint32_t>& arguments) {
    const FARPROC function = GetProcAddress(module, name);
    AllSlots slots{};
    if (function == nullptr || arguments.size() > slots.size()) std::abort();
    std::copy(arguments.begin(), arguments.end(), slots.begin());
    return CallWithAll(function, slots, std::make_index_sequence<std::tuple_size_v<AllSlots>>());
  };
}

WorkResult DoHostWork(const HostCaller& call) {
  WorkResult result;
  Work(call, &result, QNV_KIND_RASTER, 24, false).Run();
  Work(call, &result, QNV_KIND_RASTER, 8, false).Run();
  Work(call, &result, QNV_KIND_SCALED, 24, false).Run();
  Work(call, &result, QNV_KIND_SCALED, 0, false).Run();
  Work(call, &result, QNV_KIND_RASTER, 24, true).Run();
  return result;
}

}  // namespace qnv::test
