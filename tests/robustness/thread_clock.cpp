#include "robustness/thread_clock.h"

#include <cstdint>

#if defined(_WIN32)
// In this file alone: the platform's header and the library's both declare bitmap headers.
#include <windows.h>

double qnv::test::ThreadSeconds() {
  FILETIME created, ended, kernel, user;
  GetThreadTimes(GetCurrentThread(), &created, &ended, &kernel, &user);
  const auto seconds = [](const FILETIME& t) {
    return static_cast<double>(static_cast<uint64_t>(t.dwHighDateTime) << 32 | t.dwLowDateTime) * 1e-7;
  };
  return seconds(kernel) + seconds(user);
}
#else
#include <ctime>

double qnv::test::ThreadSeconds() {
  timespec now{};
  clock_gettime(CLOCK_THREAD_CPUTIME_ID, &now);
  return static_cast<double>(now.tv_sec) + static_cast<double>(now.tv_nsec) * 1e-9;
}
#endif
