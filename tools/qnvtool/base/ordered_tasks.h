// Runs tasks on several threads and hands their results over in the order in which the tasks were started.
#pragma once

#include <deque>
#include <functional>
#include <memory>
#include <optional>
#include <utility>

#include "qnvtool/base/workers.h"

namespace qnv::tool {

template <class Result>
class OrderedTasks {
 public:
  // `use` is called by the thread that calls MakeRoom, Start and Finish. No more than `maxRunning` tasks run, or wait
  // with their results, at a time.
  OrderedTasks(Workers& workers, int maxRunning, std::function<void(Result)> use)
      : workers_(workers), use_(std::move(use)), maxRunning_(static_cast<std::size_t>(maxRunning)) {}
  // Results that were not handed over are lost.
  ~OrderedTasks() {
    while (!running_.empty()) {
      workers_.Drop(running_.back().task);
      running_.pop_back();
    }
  }
  OrderedTasks(const OrderedTasks&) = delete;
  OrderedTasks& operator=(const OrderedTasks&) = delete;

  // Hands results over until there is room for a task. Throws what the tasks and `use` throw, as all of these.
  void MakeRoom() {
    while (running_.size() >= maxRunning_) UseOldest();
  }

  // Starts a task as soon as there is room and, if there is an `after`, that one has ended.
  template <class Work>
  Workers::TaskPtr Start(Work work, const Workers::TaskPtr& after = nullptr) {
    MakeRoom();
    const auto result = std::make_shared<std::optional<Result>>();
    Workers::TaskPtr task = workers_.Start([result, work = std::move(work)]() mutable { *result = work(); }, after);
    running_.push_back({task, result});
    return task;
  }

  // Hands over the oldest result. Requires: a task was started whose result was not handed over.
  void UseOldest() {
    const Running oldest = running_.front();
    workers_.Wait(oldest.task);
    running_.pop_front();
    use_(std::move(**oldest.result));
  }

  void Finish() {
    while (!running_.empty()) UseOldest();
  }

 private:
  struct Running {
    Workers::TaskPtr task;
    std::shared_ptr<std::optional<Result>> result;
  };

  Workers& workers_;
  const std::function<void(Result)> use_;
  const std::size_t maxRunning_;
  std::deque<Running> running_;
};

}  // namespace qnv::tool
