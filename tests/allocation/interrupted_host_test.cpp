// A call that faults in memory of the host's own, and a host that catches the fault and goes on: other devices are
// unharmed, and the interrupted one can be ended.
#include <gtest/gtest.h>

#if defined(__linux__)

#include <sys/mman.h>

#include <csetjmp>
#include <csignal>

#include "allocation/calls.h"
#include "allocation/counting_heap.h"
#include "image/dib_builder.h"
#include "text/font_builder.h"

namespace qnv::test {
namespace {

sigjmp_buf interrupted;

extern "C" void LeaveCall(int) { siglongjmp(interrupted, 1); }

// Catches access violations while it lives.
class Catcher {
 public:
  Catcher() {
    struct sigaction action = {};
    action.sa_handler = LeaveCall;
    for (std::size_t i = 0; i < std::size(kSignals); ++i) sigaction(kSignals[i], &action, &before_[i]);
  }
  ~Catcher() {
    for (std::size_t i = 0; i < std::size(kSignals); ++i) sigaction(kSignals[i], &before_[i], nullptr);
  }
  Catcher(const Catcher&) = delete;
  Catcher& operator=(const Catcher&) = delete;

 private:
  static constexpr int kSignals[] = {SIGSEGV, SIGBUS};
  struct sigaction before_[2] = {};
};

// True when the call did not come back.
bool IsInterrupted(void (*call)(const TestDevice&, uint8_t*), const TestDevice& device, uint8_t* end) {
  if (sigsetjmp(interrupted, 1) != 0) return true;
  call(device, end);
  return false;
}

// Memory with a page behind it that may not be read. What a call is given lies across its end.
class ShortMemory {
 public:
  ShortMemory() {
    void* memory = mmap(nullptr, 2 * kBytes, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    if (memory == MAP_FAILED) std::abort();
    start_ = static_cast<uint8_t*>(memory);
    for (std::size_t i = 0; i < kBytes; ++i) start_[i] = static_cast<uint8_t>(i * 5);
    if (mprotect(end(), kBytes, PROT_NONE) != 0) std::abort();
  }
  ~ShortMemory() { munmap(start_, 2 * kBytes); }
  ShortMemory(const ShortMemory&) = delete;
  ShortMemory& operator=(const ShortMemory&) = delete;
  uint8_t* end() const { return start_ + kBytes; }

 private:
  static constexpr std::size_t kBytes = 65536;
  uint8_t* start_;
};

struct Interruption {
  const char* name;
  void (*call)(const TestDevice& device, uint8_t* end);
};

// Nothing that owns memory may stand on the stack of a call that is left by a jump.
const uint8_t* InfoOf(uint16_t bitCount, uint32_t compression) {
  static uint8_t info[40 + 1024];
  const std::vector<uint8_t> made =
      DibInfo(40, 30, {.bitCount = bitCount, .compression = compression}, FullTable(bitCount));
  std::memcpy(info, made.data(), made.size());
  return info;
}

// An image whose last rows, or first ones, are not there.
void Image(const TestDevice& device, uint8_t* end, uint16_t bitCount, uint32_t compression, uint32_t rop,
           int32_t width) {
  const DRAWMODE mode = MakeDrawMode();
  QNVStretchDIBits(device.handle(), 0, width < 0 ? -width : 0, 0, width, 30, 0, 0, 40, 30, end - 200,
                   InfoOf(bitCount, compression), nullptr, rop, nullptr, &mode, &kEverywhere);
}

const Interruption kInterruptions[] = {
    {"image rows", [](const TestDevice& device, uint8_t* end) { Image(device, end, 24, BI_RGB, SRCCOPY, 40); }},
    {"image rows of a transfer",
     [](const TestDevice& device, uint8_t* end) { Image(device, end, 24, BI_RGB, SRCINVERT, 60); }},
    {"image rows mirrored",
     [](const TestDevice& device, uint8_t* end) { Image(device, end, 8, BI_RGB, SRCPAINT, -33); }},
    {"run lengths", [](const TestDevice& device, uint8_t* end) { Image(device, end, 8, BI_RLE8, SRCCOPY, 40); }},
    {"color table",
     [](const TestDevice& device, uint8_t* end) {
       std::memcpy(end - 40, InfoOf(8, BI_RGB), 40);
       const DRAWMODE mode = MakeDrawMode();
       const uint8_t bits[40 * 30] = {};
       QNVStretchDIBits(device.handle(), 0, 0, 0, 4, 4, 0, 0, 4, 4, bits, end - 40, nullptr, SRCCOPY, nullptr, &mode,
                        &kEverywhere);
     }},
    {"rows of a source",
     [](const TestDevice& device, uint8_t* end) {
       const DRAWMODE mode = MakeDrawMode();
       const SourceBitmap source{0, 40, 30, 120, 1, 24, end - 500};
       QNVDevBitBlt(device.handle(), 0, 0, &source, 0, 0, 40, 30, SRCINVERT, nullptr, &mode, &kEverywhere);
     }},
    {"spans of a long record",
     [](const TestDevice& device, uint8_t* end) {
       const PhysicalPen pen{PS_SOLID, 1, 1, 0x00102030};
       const DRAWMODE mode = MakeDrawMode();
       const int16_t head[] = {600, 1, 9, 2, 5};
       std::memcpy(end - 100, head, sizeof head);
       QNVOutput(device.handle(), OS_BANDED_SPANS, 1, static_cast<const int16_t*>(static_cast<void*>(end - 100)), &pen,
                 nullptr, &mode, &kEverywhere);
     }},
    {"rows of spans",
     [](const TestDevice& device, uint8_t* end) {
       const PhysicalPen pen{PS_SOLID, 1, 1, 0x00102030};
       const DRAWMODE mode = MakeDrawMode();
       std::memset(end - 40, 0, 40);
       QNVOutput(device.handle(), OS_ROW_SPANS, 30, static_cast<const int16_t*>(static_cast<void*>(end - 40)), &pen,
                 nullptr, &mode, &kEverywhere);
     }},
    {"a string",
     [](const TestDevice& device, uint8_t* end) {
       static const Font font = SmallFont().Build();
       DRAWMODE mode = TextMode();
       std::memset(end - 3, 'a', 3);
       QNVDevExtTextOut(device.handle(), 1, 1, &kEverywhere, end - 3, 9, font.base(), 0, &mode, nullptr, nullptr,
                        nullptr, 0);
     }},
    {"a font",
     [](const TestDevice& device, uint8_t* end) {
       DRAWMODE mode = TextMode();
       std::memset(end - 40, 0, 40);
       end[-40 + 22] = 5;
       QNVDevExtTextOut(device.handle(), 1, 1, &kEverywhere, "abc", 3, end - 40, 0, &mode, nullptr, nullptr, nullptr,
                        0);
     }},
    {"a bitmap of a brush",
     [](const TestDevice& device, uint8_t* end) {
       const SourceBitmap bitmap{0, 8, 8, 24, 1, 24, end - 50};
       const LogicalBrush logical{BS_PATTERN, reinterpret_cast<uintptr_t>(&bitmap), 0, 0};
       PhysicalBrush brush;
       QNVRealizeObject(device.handle(), OBJ_BRUSH, &logical, &brush, nullptr);
     }},
    {"a clip",
     [](const TestDevice& device, uint8_t* end) {
       const DRAWMODE mode = MakeDrawMode();
       QNVPixel(device.handle(), 1, 1, 0, &mode, static_cast<const BandRect*>(static_cast<void*>(end - 8)));
     }},
};

std::vector<uint8_t> Painted(const TestDevice& device) {
  std::vector<uint8_t> bytes = device.BandBytes();
  const std::vector<uint8_t> tags = device.TagBytes();
  bytes.insert(bytes.end(), tags.begin(), tags.end());
  return bytes;
}

TEST(InterruptedHost, OtherDevicesGoOn) {
  const Catcher catcher;
  const ShortMemory memory;
  for (const OrdinaryCall& call : OrdinaryCalls()) call.make(TestDevice({}));  // what the test itself keeps
  for (const OrdinaryDevice& other : kOrdinaryDevices) {
    // What the calls paint undisturbed.
    std::vector<std::vector<uint8_t>> expected;
    {
      const TestDevice device(other.options);
      for (const OrdinaryCall& call : OrdinaryCalls()) {
        call.make(device);
        expected.push_back(Painted(device));
      }
    }
    for (const OrdinaryDevice& faulting : kOrdinaryDevices) {
      for (const Interruption& interruption : kInterruptions) {
        SCOPED_TRACE(std::string(faulting.name) + ", " + interruption.name);
        const TestDevice undisturbed(other.options);
        for (std::size_t i = 0; i < OrdinaryCalls().size(); ++i) {
          if (i % 5 == 0) {
            const uint64_t blocks = Heap().liveBlocks;
            {
              const TestDevice device(faulting.options);
              ASSERT_TRUE(IsInterrupted(interruption.call, device, memory.end()));
              EXPECT_TRUE(device.FencesIntact());
            }  // QNVDisable gives everything back
            EXPECT_EQ(blocks, Heap().liveBlocks);
          }
          OrdinaryCalls()[i].make(undisturbed);
          ASSERT_EQ(expected[i], Painted(undisturbed)) << other.name << ", " << OrdinaryCalls()[i].name;
        }
      }
    }
  }
}

}  // namespace
}  // namespace qnv::test

#endif
