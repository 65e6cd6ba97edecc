// A queue of tasks behind one lock. Tasks are long (milliseconds), so that the lock does not matter.
#include "qnvtool/base/workers.h"

#include <algorithm>
#include <system_error>
#include <utility>

#include "qnvtool/base/phase_times.h"

namespace qnv::tool {

class Workers::Task {
 public:
  enum class State { kHeld, kQueued, kRunning, kEnded };
  std::function<void()> work;
  State state = State::kQueued;
  std::exception_ptr failure;
  std::vector<TaskPtr> followers;  // that this task holds back
};

int CoreCount() { return static_cast<int>(std::max(1u, std::thread::hardware_concurrency())); }

Workers::Workers(int threads) : count_(std::max(1, threads)) {
  try {
    for (int i = 1; i < count_; ++i) threads_.emplace_back([this] { ServeTasks(); });
  } catch (const std::system_error&) {  // no further thread to be had
  }
}

Workers::~Workers() {
  {
    const std::lock_guard<std::mutex> lock(mutex_);
    ending_ = true;
  }
  changed_.notify_all();
  for (std::thread& thread : threads_) thread.join();
}

Workers::TaskPtr Workers::Start(std::function<void()> work, const TaskPtr& after) {
  auto task = std::make_shared<Task>();
  task->work = std::move(work);
  {
    const std::lock_guard<std::mutex> lock(mutex_);
    if (after != nullptr && after->state != Task::State::kEnded) {
      task->state = Task::State::kHeld;
      after->followers.push_back(task);
    } else {
      queue_.push_back(task);
    }
  }
  changed_.notify_all();
  return task;
}

// Followers come first: they are older than what is in the queue.
void Workers::End(Task& task) {
  task.state = Task::State::kEnded;
  for (const TaskPtr& follower : task.followers) {
    if (follower->state != Task::State::kHeld) continue;  // dropped
    follower->state = Task::State::kQueued;
    queue_.push_front(follower);
  }
  task.followers.clear();
  changed_.notify_all();
}

void Workers::RunNext(std::unique_lock<std::mutex>& lock) {
  const TaskPtr task = queue_.front();
  queue_.pop_front();
  task->state = Task::State::kRunning;
  lock.unlock();
  std::exception_ptr failure;
  try {
    task->work();
  } catch (...) {
    failure = std::current_exception();
  }
  task->work = nullptr;  // what it holds is released outside of the lock
  lock.lock();
  task->failure = failure;
  End(*task);
}

void Workers::ServeTasks() {
  std::unique_lock<std::mutex> lock(mutex_);
  while (!ending_) {
    if (queue_.empty()) {
      changed_.wait(lock);
    } else {
      RunNext(lock);
    }
  }
}

void Workers::Wait(const TaskPtr& task) {
  std::unique_lock<std::mutex> lock(mutex_);
  while (task->state != Task::State::kEnded) {
    if (queue_.empty()) {
      const PhaseTimer timer(Phase::kWaiting);
      changed_.wait(lock);
    } else {
      RunNext(lock);
    }
  }
  if (task->failure != nullptr) std::rethrow_exception(std::exchange(task->failure, nullptr));
}

void Workers::Drop(const TaskPtr& task) noexcept {
  std::unique_lock<std::mutex> lock(mutex_);
  if (task->state == Task::State::kQueued) queue_.erase(std::find(queue_.begin(), queue_.end(), task));
  if (task->state == Task::State::kQueued || task->state == Task::State::kHeld) {
    End(*task);
  } else {
    changed_.wait(lock, [&] { return task->state == Task::State::kEnded; });
  }
}

}  // namespace qnv::tool
