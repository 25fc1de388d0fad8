#include "search/workers.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <new>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

namespace {

using testing::Each;

void pause_for(int milliseconds) {
  std::this_thread::sleep_for(std::chrono::milliseconds(milliseconds));
}

/// How often each task was worked on.
std::vector<int> calls_of(const Workers& workers, std::size_t tasks, bool apart) {
  std::vector<std::atomic<int>> calls(tasks);
  const Workers::Task work = [&](std::size_t task, unsigned) { ++calls.at(task); };
  if (apart) {
    workers.run_apart(tasks, work);
  } else {
    workers.run(tasks, work);
  }
  return {calls.begin(), calls.end()};
}

TEST(WorkersTest, NoThreadAtAllMeansTheCallersOwn) {
  EXPECT_EQ(Workers(0).count(), 1U);
  EXPECT_EQ(Workers(1).count(), 1U);
  EXPECT_EQ(Workers(7).count(), 7U);
}

TEST(WorkersTest, EveryTaskIsDoneOnce) {
  for (const unsigned threads : {0U, 1U, 2U, 3U, 8U}) {
    for (const std::size_t tasks : {0U, 1U, 2U, 3U, 7U, 8U, 9U, 1000U}) {
      EXPECT_THAT(calls_of(Workers(threads), tasks, false), Each(1)) << threads << " threads, " << tasks << " tasks";
      EXPECT_THAT(calls_of(Workers(threads), tasks, true), Each(1)) << threads << " threads, " << tasks << " tasks";
    }
  }
}

TEST(WorkersTest, OneThreadTakesTheTasksInTheirOrder) {
  std::vector<std::size_t> order;
  Workers(1).run_apart(5, [&order](std::size_t task, unsigned) { order.push_back(task); });
  EXPECT_THAT(order, testing::ElementsAre(0, 1, 2, 3, 4));
}

TEST(WorkersTest, EveryThreadHasANumberOfItsOwnAndTheCallerIsZero) {
  const auto caller = std::this_thread::get_id();
  std::vector<std::thread::id> threads(3);
  std::atomic<int> wrong{0};
  Workers(3).run(200, [&](std::size_t, unsigned worker) {
    const auto self = std::this_thread::get_id();
    if (threads.at(worker) == std::thread::id()) threads[worker] = self;
    if (threads[worker] != self || (worker == 0) != (self == caller)) ++wrong;
    pause_for(1);
  });
  EXPECT_EQ(wrong, 0);
}

TEST(WorkersTest, ThreadsWorkAtTheSameTime) {
  std::atomic<int> begun{0};
  std::atomic<bool> met{true};
  Workers(3).run(3, [&](std::size_t, unsigned) {
    ++begun;
    for (int i = 0; begun < 3 && i < 10000; ++i) pause_for(1);
    if (begun < 3) met = false;
  });
  EXPECT_TRUE(met);
}

TEST(WorkersTest, NeighboursAreKeptApart) {
  constexpr std::size_t tasks = 41;
  std::vector<std::atomic<bool>> at_work(tasks + 2);
  std::atomic<int> met{0};
  Workers(4).run_apart(tasks, [&](std::size_t task, unsigned) {
    at_work[task + 1] = true;
    if (at_work[task] || at_work[task + 2]) ++met;
    pause_for(2);
    if (at_work[task] || at_work[task + 2]) ++met;
    at_work[task + 1] = false;
  });
  EXPECT_EQ(met, 0);
}

TEST(WorkersTest, AnExceptionLeavesAndNoFurtherTaskIsBegun) {
  for (const unsigned threads : {1U, 4U}) {
    std::atomic<int> begun{0};
    const auto work = [&begun](std::size_t task, unsigned) {
      ++begun;
      if (task == 3) throw std::runtime_error("task 3");
      pause_for(2);
    };
    EXPECT_THROW(Workers(threads).run(5000, work), std::runtime_error);
    EXPECT_LT(begun, threads == 1 ? 5 : 2000) << threads << " threads";
  }
}

TEST(WorkersTest, AnExceptionAmongTheFirstTasksKeepsTheirNeighboursFromBeingBegun) {
  std::atomic<bool> odd{false};
  const auto work = [&odd](std::size_t task, unsigned) {
    if (task % 2 == 1) odd = true;
    if (task == 2) throw std::bad_alloc();
  };
  EXPECT_THROW(Workers(3).run_apart(9, work), std::bad_alloc);
  EXPECT_FALSE(odd);
}

/// Tells when the stack of a task is unwound.
struct Unwinding {
  std::atomic<bool>& begun;
  ~Unwinding() { begun = true; }
};

TEST(WorkersTest, OfSeveralExceptionsTheFirstLeaves) {
  std::atomic<bool> both_begun{false};
  std::atomic<bool> thrown{false};
  std::string caught;
  try {
    Workers(2).run(2, [&](std::size_t task, unsigned) {
      if (task == 0) {
        const Unwinding unwinding{thrown};
        while (!both_begun) pause_for(1);
        throw std::runtime_error("first");
      }
      both_begun = true;
      while (!thrown) pause_for(1);
      pause_for(100);
      throw std::runtime_error("second");
    });
    ADD_FAILURE() << "nothing left";
  } catch (const std::runtime_error& error) {
    caught = error.what();
  }
  EXPECT_EQ(caught, "first");
}

TEST(WorkersTest, AllThreadsHaveEndedWhenAnExceptionLeaves) {
  std::atomic<int> at_work{0};
  try {
    Workers(4).run(100, [&at_work](std::size_t task, unsigned) {
      ++at_work;
      pause_for(task == 2 ? 1 : 20);
      --at_work;
      if (task == 2) throw std::runtime_error("task 2");
    });
    ADD_FAILURE() << "nothing left";
  } catch (const std::runtime_error&) {
    EXPECT_EQ(at_work, 0);
  }
}

}  // namespace
