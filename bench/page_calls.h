// The page of the page rows: a call file that lies beside the program, as the library does. Its calls are put in place
// before anything is timed, so that a run makes the calls and does nothing else.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "bench_table.h"
#include "library.h"
// After the platform's header, which library.h includes.
#include "calls/call_file.h"
#include "calls/call_placer.h"
#include "calls/invoke.h"

namespace qnv::bench {

inline constexpr int kPageWidth = 1200;
inline constexpr int kPageHeight = 1600;

class PageCalls {
 public:
  // The calls that draw the page on a device of this kind. Null, with a sentence in `error`, when the file is missing
  // or is not the page.
  static std::unique_ptr<PageCalls> Read(Band band, std::string& error);

  std::size_t count() const { return placed_.size(); }

  // The device for which the calls are made from now on.
  void SetHandle(DeviceHandle* handle);
  void Make(const calls::Functions& functions) const {
    for (const Ready& call : calls_) calls::Invoke(functions, call.function, call.slots);
  }

 private:
  // No more than a call needs, side by side: what belongs to the file stays out of the cache.
  struct Ready {
    calls::Function function;
    calls::Slots slots;
  };
  PageCalls() = default;
  bool Place(Band band, std::string& error);

  calls::CallFile file_;
  std::unique_ptr<calls::CallPlacer> placer_;
  std::vector<std::unique_ptr<calls::PlacedCall>> placed_;  // slots lead to their records
  std::vector<Ready> calls_;
};

calls::Functions FunctionsOf(const Library& library);

}  // namespace qnv::bench
