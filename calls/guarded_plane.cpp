// Guards around the planes of a replay.
#include "calls/guarded_plane.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <utility>

#if defined(__SANITIZE_ADDRESS__)
#define QNV_HAS_ADDRESS_SANITIZER 1
#elif defined(__has_feature)
#if __has_feature(address_sanitizer)
#define QNV_HAS_ADDRESS_SANITIZER 1
#endif
#endif
#ifdef QNV_HAS_ADDRESS_SANITIZER
#include <sanitizer/asan_interface.h>
#else
#define ASAN_POISON_MEMORY_REGION(address, bytes) (static_cast<void>(address), static_cast<void>(bytes))
#define ASAN_UNPOISON_MEMORY_REGION(address, bytes) (static_cast<void>(address), static_cast<void>(bytes))
#endif

namespace qnv::calls {
namespace {

// Neither paper nor ink, so that painting with either shows.
constexpr uint8_t kGuardByte = 0xA5;

}  // namespace

#ifdef QNV_HAS_ADDRESS_SANITIZER
const bool GuardedPlane::kIsInaccessible = true;
#else
const bool GuardedPlane::kIsInaccessible = false;
#endif

GuardedPlane::GuardedPlane(std::size_t bytes)
    : memory_(new uint8_t[bytes + 2 * kGuardBytes]()), plane_(memory_.get() + kGuardBytes), bytes_(bytes) {
  RenewGuards();
  ASAN_POISON_MEMORY_REGION(memory_.get(), kGuardBytes);
  ASAN_POISON_MEMORY_REGION(end(), kGuardBytes);
}

GuardedPlane& GuardedPlane::operator=(GuardedPlane&& other) noexcept {
  if (this == &other) return *this;
  Free();
  memory_ = std::move(other.memory_);
  plane_ = std::exchange(other.plane_, nullptr);
  bytes_ = std::exchange(other.bytes_, 0);
  return *this;
}

GuardedPlane::~GuardedPlane() { Free(); }

void GuardedPlane::Free() {
  if (memory_ == nullptr) return;
  ASAN_UNPOISON_MEMORY_REGION(memory_.get(), bytes_ + 2 * kGuardBytes);
  memory_.reset();
}

std::ptrdiff_t GuardedPlane::ChangedGuard(std::size_t bytes) const {
  if (kIsInaccessible || memory_ == nullptr) return 0;
  static const auto expected = [] {
    std::array<uint8_t, kGuardBytes> guard;
    guard.fill(kGuardByte);
    return guard;
  }();
  const std::size_t count = std::min(bytes, kGuardBytes);
  if (std::memcmp(plane_ - count, expected.data(), count) == 0 && std::memcmp(end(), expected.data(), count) == 0) {
    return 0;
  }
  for (std::ptrdiff_t distance = 1;; ++distance) {
    if (plane_[-distance] != kGuardByte) return -distance;
    if (end()[distance - 1] != kGuardByte) return distance;
  }
}

void GuardedPlane::RenewGuards() {
  if (memory_ == nullptr) return;
  std::memset(memory_.get(), kGuardByte, kGuardBytes);
  std::memset(end(), kGuardByte, kGuardBytes);
}

}  // namespace qnv::calls
