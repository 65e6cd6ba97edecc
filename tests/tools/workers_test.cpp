// Threads that share the work of a job.
#include "qnvtool/base/workers.h"

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

#include "qnvtool/base/ordered_tasks.h"

namespace qnv::test {
namespace {

using tool::OrderedTasks;
using tool::Workers;

constexpr int kThreadCounts[] = {1, 2, 3, 8};

// Makes tasks end in another order than that of their starts.
void Dawdle(int i) { std::this_thread::sleep_for(std::chrono::microseconds(i * 7919 % 900)); }

TEST(WorkersTest, ResultsComeInOrder) {
  for (const int threads : kThreadCounts) {
    Workers workers(threads);
    std::vector<int> results;
    std::atomic<int> running = 0;
    std::atomic<int> most = 0;
    OrderedTasks<int> tasks(workers, 5, [&](int result) { results.push_back(result); });
    for (int i = 0; i < 200; ++i) {
      tasks.Start([&, i] {
        const int now = ++running;
        int seen = most;
        while (now > seen && !most.compare_exchange_weak(seen, now)) {
        }
        Dawdle(i);
        --running;
        return i;
      });
    }
    tasks.Finish();
    ASSERT_EQ(results.size(), 200U) << threads;
    for (int i = 0; i < 200; ++i) ASSERT_EQ(results[static_cast<std::size_t>(i)], i) << threads;
    EXPECT_LE(most, std::min(threads, 5)) << threads;
  }
}

TEST(WorkersTest, OneThreadRunsTasksInTurnOnTheCaller) {
  Workers workers(1);
  std::vector<std::thread::id> threads;
  OrderedTasks<int> tasks(workers, 3, [](int) {});
  for (int i = 0; i < 4; ++i) {
    tasks.Start([&] {
      threads.push_back(std::this_thread::get_id());
      return 0;
    });
  }
  tasks.Finish();
  EXPECT_EQ(threads, std::vector<std::thread::id>(4, std::this_thread::get_id()));
}

TEST(WorkersTest, ATaskWaitsForTheOneThatItFollows) {
  for (const int threads : kThreadCounts) {
    Workers workers(threads);
    std::vector<int> order;  // no lock: the tasks never run at the same time
    Workers::TaskPtr last;
    for (int i = 0; i < 100; ++i) {
      last = workers.Start(
          [&, i] {
            Dawdle(100 - i);
            order.push_back(i);
          },
          last);
    }
    workers.Wait(last);
    ASSERT_EQ(order.size(), 100U) << threads;
    for (int i = 0; i < 100; ++i) EXPECT_EQ(order[static_cast<std::size_t>(i)], i) << threads;
  }
}

TEST(WorkersTest, FailuresReachTheCallerInOrder) {
  for (const int threads : kThreadCounts) {
    Workers workers(threads);
    std::vector<int> results;
    std::string failure;
    std::atomic<int> ran = 0;
    {
      OrderedTasks<int> tasks(workers, 4, [&](int result) { results.push_back(result); });
      try {
        for (int i = 0; i < 1000; ++i) {
          tasks.Start([&, i]() -> int {
            ++ran;
            Dawdle(i);
            if (i >= 10) throw std::runtime_error(std::to_string(i));
            return i;
          });
        }
        tasks.Finish();
      } catch (const std::runtime_error& error) {
        failure = error.what();
      }
    }
    EXPECT_EQ(failure, "10") << threads;
    EXPECT_EQ(results, (std::vector<int>{0, 1, 2, 3, 4, 5, 6, 7, 8, 9})) << threads;
    EXPECT_LE(ran, 14) << threads;  // what was started before is dropped or has ended
  }
}

TEST(WorkersTest, ADroppedTaskNeverRunsAndReleasesItsFollower) {
  Workers workers(1);
  std::vector<std::string> ran;
  const Workers::TaskPtr first = workers.Start([&] { ran.emplace_back("first"); });
  const Workers::TaskPtr second = workers.Start([&] { ran.emplace_back("second"); }, first);
  const Workers::TaskPtr third = workers.Start([&] { ran.emplace_back("third"); }, second);
  workers.Drop(second);
  workers.Wait(third);
  workers.Wait(first);
  EXPECT_EQ(ran.size(), 2U);
  EXPECT_NE(ran[0], "second");
  EXPECT_NE(ran[1], "second");
  workers.Drop(first);  // a task that has ended
}

TEST(WorkersTest, DroppingWaitsForARunningTask) {
  Workers workers(2);
  std::atomic<int> stage = 0;
  const Workers::TaskPtr task = workers.Start([&] {
    stage = 1;
    std::this_thread::sleep_for(std::chrono::milliseconds(20));
    stage = 2;
    throw std::runtime_error("forgotten");
  });
  while (stage == 0) std::this_thread::yield();
  workers.Drop(task);
  EXPECT_EQ(stage, 2);
}

}  // namespace
}  // namespace qnv::test
