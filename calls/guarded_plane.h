// The memory of a band or tag plane in a replay, with bytes on both sides of it that no call may write.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>

namespace qnv::calls {

// Under the address sanitizer the guards are inaccessible: what touches them, reading or writing, ends the program at
// that place. In other builds they are compared.
class GuardedPlane {
 public:
  static constexpr std::size_t kGuardBytes = 4096;  // a row of most bands, so that a row too many is seen
  static constexpr std::size_t kNearBytes = 64;     // what is compared after each call
  static const bool kIsInaccessible;

  GuardedPlane() = default;  // no plane
  explicit GuardedPlane(std::size_t bytes);
  GuardedPlane(GuardedPlane&& other) noexcept { *this = static_cast<GuardedPlane&&>(other); }
  GuardedPlane& operator=(GuardedPlane&& other) noexcept;
  ~GuardedPlane();

  uint8_t* data() { return plane_; }
  const uint8_t* data() const { return plane_; }
  std::size_t size() const { return bytes_; }
  bool empty() const { return bytes_ == 0; }
  uint8_t* begin() { return plane_; }
  uint8_t* end() { return plane_ + bytes_; }
  const uint8_t* begin() const { return plane_; }
  const uint8_t* end() const { return plane_ + bytes_; }
  const uint8_t& operator[](std::size_t i) const { return plane_[i]; }

  // How far from the plane the nearest changed byte within `bytes` of it lies: -1 is the byte before it, 1 the first
  // behind it, 0 means that none is changed.
  std::ptrdiff_t ChangedGuard(std::size_t bytes = kGuardBytes) const;
  // Forgets what was changed.
  void RenewGuards();

 private:
  void Free();

  std::unique_ptr<uint8_t[]> memory_;
  uint8_t* plane_ = nullptr;
  std::size_t bytes_ = 0;
};

}  // namespace qnv::calls
