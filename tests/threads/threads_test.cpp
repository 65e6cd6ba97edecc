// Eight threads, each with devices and memory of its own and with records that all of them read: they paint what one
// thread paints alone. Built with the preset tsan the program also shows that nothing is shared that is written.
#include <gtest/gtest.h>

#include <atomic>
#include <thread>

#include "image/dib_builder.h"
#include "output/output_call.h"
#include "random/random.h"
#include "text/font_builder.h"

namespace qnv::test {
namespace {

constexpr int kThreads = 8;
constexpr int kDevices = 24;  // of each thread
#if defined(__SANITIZE_THREAD__)
constexpr int kCalls = 40;
#else
constexpr int kCalls = 200;
#endif

// What the host may hand to several threads: nothing of it is written.
struct SharedRecords {
  Font font = SmallFont().Build();
  Dib picture = PictureDib(4, "abcdefghijklmnop", {.bitCount = 8});
  std::vector<uint8_t> pixels = [] {
    std::vector<uint8_t> bytes(3 * 50 * 40);
    Random(5).Fill(bytes.data(), bytes.size());
    return bytes;
  }();
  PhysicalBrush hatch = HatchBrush(TestDevice({}).handle(), HS_CROSS, 0x00306090, 0x00FFFFFF);
  std::vector<uint8_t> spans = SpanListBytes({4, 3, 20, 2, 30, 33, 60, 4, 2, 5, 9, 0, 64, 2});
};

const DeviceOptions kClasses[] = {
    {},
    {.bitsPerPixel = 8},
    {.tagPlane = true},
    {.kind = QNV_KIND_SCALED, .resolutionA = 600, .resolutionB = 400},
    {.kind = QNV_KIND_SCALED, .bitsPerPixel = 0},
};

// One call of any kind with numbers of the thread's own.
void AnyCall(const TestDevice& device, const SharedRecords& shared, Random& random) {
  DRAWMODE mode = MakeDrawMode();
  mode.Rop2 = static_cast<int16_t>(random.Range(1, 16));
  mode.TextColor = random.Word() & 0xFFFFFF;
  const int32_t x = random.Range(-10, 60), y = random.Range(-10, 30);
  const uint32_t rops[] = {SRCCOPY, SRCINVERT, PATCOPY, MERGECOPY, WHITENESS, SRCAND};
  const uint32_t rop = random.Pick(rops);
  switch (random.Range(0, 8)) {
    case 0: {
      const SourceBitmap source{0, 50, 40, 150, 1, 24, shared.pixels.data()};
      QNVDevBitBlt(device.handle(), x, y, &source, 1, 2, 45, 30, rop, &shared.hatch, &mode, &kEverywhere);
      break;
    }
    case 1:
      QNVStretchDIBits(device.handle(), 0, x, y, random.Range(-40, 60), random.Range(1, 40), 0, 0, 4, 4,
                       shared.picture.bits(), shared.picture.info(), nullptr, rop, &shared.hatch, &mode, &kEverywhere);
      break;
    case 2:
      QNVDevSetDIBitsToDevice(device.handle(), x, y, 0, 4, &kEverywhere, &mode, shared.picture.bits(),
                              shared.picture.info(), nullptr);
      break;
    case 3:
      QNVDevExtTextOut(device.handle(), x, y, &kEverywhere, "abcdabcd", 8, shared.font.base(), shared.font.offset(),
                       &mode, nullptr, nullptr, nullptr, 0);
      break;
    case 4:
      QNVOutput(device.handle(), OS_BANDED_SPANS, 2,
                static_cast<const int16_t*>(static_cast<const void*>(shared.spans.data())), nullptr, &shared.hatch,
                &mode, &kEverywhere);
      break;
    case 5: QNVPixel(device.handle(), x, y, random.Word(), &mode, &kEverywhere); break;
    case 6: QNVPolyPixel(device.handle(), x, y, x + 5, y + 4, random.Word(), &mode, &kEverywhere); break;
    case 7: {
      const PhysicalBrush solid = SolidBrush(device.handle(), QNVColorInfo(device.handle(), random.Word(), nullptr));
      QNVDevBitBlt(device.handle(), x, y, nullptr, 0, 0, 9, 9, PATINVERT, &solid, &mode, &kEverywhere);
      break;
    }
    default: {
      const DrawingOrigin origin{random.Range(-3, 3), random.Range(-3, 3)};
      QNVControl(device.handle(), random.Percent(80) ? QNV_SET_ORIGIN : QNV_CLEAR_BAND, &origin, nullptr);
    }
  }
}

// Everything that the thread paints, device after device: made, painted on and ended.
std::vector<uint8_t> Work(const SharedRecords& shared, int thread) {
  std::vector<uint8_t> painted;
  for (int i = 0; i < kDevices; ++i) {
    Random random(static_cast<uint64_t>(1000 * thread + i));
    const TestDevice device(kClasses[static_cast<std::size_t>(thread + i) % std::size(kClasses)]);
    for (int call = 0; call < kCalls; ++call) AnyCall(device, shared, random);
    for (const std::vector<uint8_t>& plane : {device.BandBytes(), device.TagBytes()}) {
      painted.insert(painted.end(), plane.begin(), plane.end());
    }
    if (!device.FencesIntact()) painted.clear();
  }
  return painted;
}

TEST(Threads, PaintAsOneAlone) {
  const SharedRecords shared;
  std::vector<std::vector<uint8_t>> painted(kThreads);
  std::atomic<int> waiting = kThreads;
  std::vector<std::thread> threads;
  for (int i = 0; i < kThreads; ++i) {
    threads.emplace_back([&, i] {
      // All begin together.
      --waiting;
      while (waiting != 0) std::this_thread::yield();
      painted[static_cast<std::size_t>(i)] = Work(shared, i);
    });
  }
  for (std::thread& thread : threads) thread.join();
  for (int i = 0; i < kThreads; ++i) {
    const std::vector<uint8_t> alone = Work(shared, i);
    EXPECT_FALSE(alone.empty());
    EXPECT_EQ(alone, painted[static_cast<std::size_t>(i)]) << "thread " << i;
  }
  EXPECT_TRUE(shared.font.Unchanged() && shared.picture.Unchanged());
}

// A device belongs to no thread: made by one, painted on by the next, ended by a third.
TEST(Threads, HandOverDevices) {
  const SharedRecords shared;
  std::unique_ptr<TestDevice> device;
  std::thread([&] { device = std::make_unique<TestDevice>(DeviceOptions{}); }).join();
  Random random(7), again(7);
  for (int i = 0; i < 20; ++i) std::thread([&] { AnyCall(*device, shared, random); }).join();
  const TestDevice alone({});
  for (int i = 0; i < 20; ++i) AnyCall(alone, shared, again);
  EXPECT_EQ(alone.BandBytes(), device->BandBytes());
  std::thread([&] { device.reset(); }).join();
}

}  // namespace
}  // namespace qnv::test
