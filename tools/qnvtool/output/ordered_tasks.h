// Runs tasks on all cores and hands their results over in the order in which the tasks were started.
#pragma once

#include <algorithm>
#include <deque>
#include <functional>
#include <future>
#include <system_error>
#include <thread>

namespace qnv::tool {

template <class Result>
class OrderedTasks {
 public:
  // `use` is called by the thread that calls Start and Finish.
  explicit OrderedTasks(std::function<void(Result)> use) : use_(std::move(use)) {}

  std::size_t maxRunning() const { return maxRunning_; }

  // Waits until fewer tasks than maxRunning() run, or wait with their results.
  void MakeRoom() {
    while (running_.size() >= maxRunning_) UseOldest();
  }

  // Starts a task as soon as there is room.
  template <class Task>
  void Start(Task task) {
    MakeRoom();
    if (maxRunning_ > 1) {
      try {
        running_.push_back(std::async(std::launch::async, task));
        return;
      } catch (const std::system_error&) {  // no further thread to be had
      }
    }
    running_.push_back(std::async(std::launch::deferred, std::move(task)));
  }

  void Finish() {
    while (!running_.empty()) UseOldest();
  }

 private:
  void UseOldest() {
    Result result = running_.front().get();
    running_.pop_front();
    use_(std::move(result));
  }

  const std::function<void(Result)> use_;
  const std::size_t maxRunning_ = std::max(1u, std::thread::hardware_concurrency());
  std::deque<std::future<Result>> running_;
};

}  // namespace qnv::tool
