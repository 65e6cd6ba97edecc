// What the extreme calls are made on: a device of some class over fenced memory, the host's memory for everything that
// a call reads, and the checks after each call.
#pragma once

#include <algorithm>
#include <cstdint>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "extremes/arena.h"
#include "extremes/values.h"
#include "robustness/thread_clock.h"
#include "support/fenced_buffer.h"

namespace qnv::test {

struct DeviceClass {
  const char* name;
  uint16_t kind, bitsPerPixel, resolutionA, resolutionB;
  bool tags;    // a second plane
  bool memory;  // else the band's buffer is null, and its rectangle may be any
  int32_t left, top;
};

// Large enough for padding behind the rows of every depth.
inline constexpr int32_t kBandColumns = 13;
inline constexpr int32_t kBandRows = 9;

// As the library adds: wrapping.
int32_t Sum(int32_t a, int32_t b);

// The fields that every drawing call begins with.
enum CommonField : std::size_t {
  kOriginX,
  kOriginY,
  kBandLeft,
  kBandTop,
  kBandRight,  // only where the band has no memory: it has to hold what the rectangle says
  kBandBottom,
  kClip,
  kOwnFields = kClip + 4
};
std::vector<Field> CommonFields(const DeviceClass& device);

// The caller's coordinate of a column or row of the band, and as many of the caller's pixels as cover so many of the
// band's: for calls that paint.
int64_t CallerX(const DeviceClass& device, int column);
int64_t CallerY(const DeviceClass& device, int row);
int64_t CallerExtent(const DeviceClass& device, int pixels);
// What of it a span list can say.
inline int64_t InWord(int64_t v) { return std::clamp<int64_t>(v, -32768, 32767); }

// Where a call may paint.
struct Limits {
  bool none = false;    // nothing but the band limits it
  bool padded = false;  // nor but its memory: the bytes behind its rows may change as well
  BandRect clip{};      // without the origin
  // A destination that begins left of or above 0 with the origin added moves those edges of the clip outwards.
  bool widens = false;
  int32_t left = 0, top = 0;
};

// Host memory, a block for each thing that a call reads.
struct HostMemory {
  HostMemory();
  Arena pixels;  // sources and bitmaps: gigabytes of address space
  Arena info, text, widths, list, font, pattern;
};

class Stage {
 public:
  Stage(const DeviceClass& device, HostMemory& host);
  ~Stage();
  Stage(const Stage&) = delete;
  Stage& operator=(const Stage&) = delete;

  const DeviceClass& device() const { return device_; }
  BandRect BandOf(const Values& values) const;
  DeviceHandle* handle() const { return handle_; }
  HostMemory& host() { return host_; }

  // A device of its own: nothing of a scene before is left in it.
  void Restart();
  // The planes as Restart left them.
  void Rewind();
  // The bytes of both planes.
  std::vector<uint8_t> Painted() const;
  // Sets origin and band.
  void Place(const Values& values);

  // Makes the call and checks it. work: pixels that it can paint and bytes, rows or records that it is given.
  template <class Call>
  void Run(uint64_t work, const Limits& limits, Call call) {
    double seconds = Timed(call);
    // A processor that was busy elsewhere is no fault: the quickest of three counts.
    for (int again = 0; again < 2 && seconds > SecondsFor(work); ++again) seconds = std::min(seconds, Timed(call));
    Check(work, limits, seconds);
  }
  // The call cannot be made: the host has not as much memory.
  void Skip() { ++skipped_; }

  uint64_t calls() const { return calls_; }
  uint64_t skipped() const { return skipped_; }
  uint64_t highestHeap() const { return highestHeap_; }
  double slowest() const { return slowest_; }
  // What was wrong with the last call; empty when nothing was.
  std::string TakeFault() { return std::exchange(fault_, {}); }

 private:
  template <class Call>
  double Timed(Call call) {
    const double before = ThreadSeconds();
    call();
    ++calls_;
    return ThreadSeconds() - before;
  }
  static double SecondsFor(uint64_t work);
  void Check(uint64_t work, const Limits& limits, double seconds);
  void CheckPlane(const char* name, FencedBuffer& plane, std::vector<uint8_t>& before, uint32_t stride,
                  uint32_t pixelBytes, const BandRect& allowed);
  BandRect AllowedPixels(const Limits& limits, bool tags) const;

  const DeviceClass device_;
  HostMemory& host_;
  uint32_t stride_ = 0, pixelBytes_ = 0;
  BandRect band_{};  // where the last Place put it
  int32_t originX_ = 0, originY_ = 0;
  uint64_t heapBefore_ = 0;
  std::unique_ptr<FencedBuffer> bits_, tags_;
  std::vector<uint8_t> bitsBefore_, tagsBefore_;  // the last call
  std::vector<uint8_t> bitsAtStart_, tagsAtStart_;
  DeviceHandle* handle_ = nullptr;
  uint64_t calls_ = 0, skipped_ = 0, highestHeap_ = 0;
  double slowest_ = 0;
  std::string fault_;
};

// One exported function with all its integers.
struct Scene {
  const char* name;
  std::vector<Field> fields;  // CommonFields first
  void (*call)(Stage& stage, const Values& values, int variant);
  int variant = 0;  // the scene's own
};

// The tables of the calls.
void AddObjectScenes(std::vector<Scene>& scenes, const DeviceClass& device);
void AddTransferScenes(std::vector<Scene>& scenes, const DeviceClass& device);
void AddOutputScenes(std::vector<Scene>& scenes, const DeviceClass& device);
void AddTextScenes(std::vector<Scene>& scenes, const DeviceClass& device);
void AddImageScenes(std::vector<Scene>& scenes, const DeviceClass& device);

inline std::vector<Field> FieldsWith(const DeviceClass& device, const std::vector<Field>& own) {
  std::vector<Field> fields = CommonFields(device);
  fields.insert(fields.end(), own.begin(), own.end());
  return fields;
}

// The fields of a draw mode and of a realised brush, wherever a scene has them.
std::vector<Field> DrawModeFields();
inline constexpr std::size_t kDrawModeFields = 12;
DRAWMODE DrawModeOf(const Values& values, std::size_t first);
std::vector<Field> BrushFields(int64_t style);
inline constexpr std::size_t kBrushFields = 7;
PhysicalBrush BrushOf(const Values& values, std::size_t first);

inline std::vector<Field> operator+(std::vector<Field> a, const std::vector<Field>& b) {
  a.insert(a.end(), b.begin(), b.end());
  return a;
}

}  // namespace qnv::test
