// One case: a device with its model, the calls made on both, and the comparison after every call.
#pragma once

#include <cstdint>
#include <cstring>
#include <memory>
#include <string>
#include <type_traits>
#include <vector>

#include "qnvdrv10.h"
#include "random/call_memory.h"
#include "random/random.h"
#include "reference/model.h"

namespace qnv::test {

enum class DeviceClass { kPlain24, kPlain8, kScaled, kDualPlane, kDualPlaneOtherDepth };

struct CaseTotals {
  uint64_t calls = 0;
  uint64_t paintingCalls = 0;  // calls that changed a plane
};

class RandomCase {
 public:
  // `verbose` prints the device and every call before it is made.
  RandomCase(Numbers& random, CallMemory& memory, bool verbose, CaseTotals& totals);
  ~RandomCase();
  RandomCase(const RandomCase&) = delete;
  RandomCase& operator=(const RandomCase&) = delete;

  Numbers& random() { return random_; }
  DeviceClass deviceClass() const { return class_; }
  DeviceHandle* handle() const { return handle_; }
  reference::Model* model() { return model_.get(); }
  bool failed() const { return !failure_.empty(); }
  const std::string& failure() const { return failure_; }
  bool verbose() const { return verbose_; }
  // Most calls are tame: nothing null, nothing far away. They paint; the others find the edges.
  bool tame() const { return tame_; }

  // The band in the caller's coordinates, origin taken off: what random positions are chosen around.
  BandRect CallerBand() const;
  // A share of the bands has up to 6,000 columns in few rows.
  bool wide() const { return wide_; }
  // The largest width for what a call paints or reads: `usual`, or about that of a wide band.
  int MaxWidth(int usual) const;
  int MaxHeight(int usual) const { return wide_ ? 3 : usual; }
  const BandRect& bandRect() const { return bandRect_; }
  const DrawingOrigin& origin() const { return origin_; }
  const DeviceDescription& description() const { return description_; }

  // A call: BeginCall, Give the records, Ready, run the model, run the library, Check.
  void BeginCall(const char* name);
  template <class T>
  T* Give(const T& record) {
    static_assert(std::is_trivially_copyable_v<T>);
    return static_cast<T*>(std::memcpy(memory_.inputs.Take(sizeof(T)), &record, sizeof(T)));
  }
  uint8_t* GiveBytes(const std::vector<uint8_t>& bytes);
  // Says what the bytes are; null in calls that are not tame, but for this share of them.
  uint8_t* GiveMostly(int percent, const char* name, const std::vector<uint8_t>& bytes);
  void Ready() { memory_.inputs.Snapshot(); }
  // Ready, and the model's result; 0 where there is no model.
  uint32_t OnModel(const auto& call) {
    Ready();
    return model_ ? call(*model_) : 0;
  }
  // The record must hold these bytes after the call.
  template <class T>
  void Expect(const T* record, const T& after) {
    std::memcpy(memory_.inputs.ExpectedOf(record), &after, sizeof(T));
  }
  // `expected` counts only where there is a model.
  void Check(uint32_t expected, uint32_t got, uint32_t mask = 0xFFFFFFFFu);

  // Escapes that move the case's own idea of the device along.
  void Control(uint32_t code, const DrawingOrigin* origin, const BandRect* rect);

  void Say(const char* format, ...)
#if defined(__GNUC__) && !defined(_WIN32)
      __attribute__((format(printf, 2, 3)))
#endif
      ;
  void SayRect(const char* name, const BandRect* rect);
  void SayBytes(const char* name, const std::vector<uint8_t>& bytes);

 private:
  void MakeDescription();
  BandRect RandomBand();
  void ComparePlane(const char* name, const uint8_t* got, const reference::Plane& expected);
  void Fail(const char* format, ...)
#if defined(__GNUC__) && !defined(_WIN32)
      __attribute__((format(printf, 2, 3)))
#endif
      ;
  friend void StateCall(RandomCase& run);

  Numbers& random_;
  CallMemory& memory_;
  bool verbose_;
  CaseTotals& totals_;
  DeviceClass class_;
  DeviceDescription description_{};
  BandRect bandRect_{};
  DrawingOrigin origin_{0, 0};
  uint8_t* band_ = nullptr;
  uint8_t* tags_ = nullptr;
  std::size_t bandSize_ = 0;
  std::size_t tagSize_ = 0;
  std::vector<uint8_t> before_;
  DeviceHandle* handle_ = nullptr;
  std::unique_ptr<reference::Model> model_;
  bool wide_ = false;
  bool tame_ = false;
  std::string callName_;
  std::string failure_;
};

}  // namespace qnv::test
