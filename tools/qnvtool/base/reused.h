// Working memory that threads take and give back, because fresh memory for every piece of work costs time. Objects with
// destructors are not made thread_local: where a thread ends, MinGW's runtime frees their memory before it destroys
// them.
#pragma once

#include <memory>
#include <mutex>
#include <vector>

namespace qnv::tool {

template <class T>
class Reused {
 public:
  struct GiveBack {
    Reused* owner;
    void operator()(T* object) const {
      const std::lock_guard lock(owner->mutex_);
      owner->free_.emplace_back(object);
    }
  };
  // For one thread; goes back when it ends.
  using Loan = std::unique_ptr<T, GiveBack>;

  // The one that was given back last, or a new one.
  Loan Take() {
    const std::lock_guard lock(mutex_);
    if (free_.empty()) return Loan(new T, GiveBack{this});
    Loan loan(free_.back().release(), GiveBack{this});
    free_.pop_back();
    return loan;
  }

 private:
  std::mutex mutex_;
  std::vector<std::unique_ptr<T>> free_;
};

}  // namespace qnv::tool
