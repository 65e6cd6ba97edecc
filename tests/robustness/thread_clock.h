// The processor time of the calling thread. Bounds on it are only there to catch calls that would hardly end.
#pragma once

#include <cstdint>
#include <ctime>

#if defined(_WIN32)
#include <windows.h>
#endif

namespace qnv::test {

inline double ThreadSeconds() {
#if defined(_WIN32)
  FILETIME created, ended, kernel, user;
  GetThreadTimes(GetCurrentThread(), &created, &ended, &kernel, &user);
  const auto seconds = [](const FILETIME& t) {
    return static_cast<double>(static_cast<uint64_t>(t.dwHighDateTime) << 32 | t.dwLowDateTime) * 1e-7;
  };
  return seconds(kernel) + seconds(user);
#else
  timespec now{};
  clock_gettime(CLOCK_THREAD_CPUTIME_ID, &now);
  return static_cast<double>(now.tv_sec) + static_cast<double>(now.tv_nsec) * 1e-9;
#endif
}

// What a call that ends takes at most, with a wide margin for slow builds; the others take minutes or for ever.
inline constexpr double kEndsInSeconds = 2;

}  // namespace qnv::test
