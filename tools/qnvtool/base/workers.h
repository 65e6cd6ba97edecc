// The threads that a job's work is spread over.
#pragma once

#include <condition_variable>
#include <deque>
#include <exception>
#include <functional>
#include <memory>
#include <mutex>
#include <thread>
#include <vector>

namespace qnv::tool {

// Cores of this machine.
int CoreCount();

// Runs tasks in the order in which they were started, on threads of its own and on those that wait for tasks.
class Workers {
 public:
  class Task;
  using TaskPtr = std::shared_ptr<Task>;

  // `threads`: that work at the same time, the waiting one included. With 1, or when the system gives no threads, tasks
  // run while they are waited for.
  explicit Workers(int threads);
  // Requires: every task was waited for or dropped.
  ~Workers();
  Workers(const Workers&) = delete;
  Workers& operator=(const Workers&) = delete;

  int count() const { return count_; }

  // Runs `work` on any thread, once `after` has ended in any way. `after` must be from these workers; null: at once.
  TaskPtr Start(std::function<void()> work, const TaskPtr& after = nullptr);

  // Returns when the task has ended; meanwhile this thread works on others. Throws what the task threw.
  void Wait(const TaskPtr& task);

  // Sees to it that the task does not run, or not any more. What it threw is forgotten.
  void Drop(const TaskPtr& task) noexcept;

 private:
  void ServeTasks();
  void RunNext(std::unique_lock<std::mutex>& lock);
  void End(Task& task);

  const int count_;
  std::mutex mutex_;
  std::condition_variable changed_;  // a task was queued or has ended, or the threads are to end
  std::deque<TaskPtr> queue_;
  bool ending_ = false;
  std::vector<std::thread> threads_;
};

}  // namespace qnv::tool
