#include "search/workers.h"

#include <algorithm>
#include <atomic>
#include <exception>
#include <mutex>
#include <thread>
#include <vector>

namespace {

/// The tasks of one run, handed out one by one.
class Queue {
 public:
  Queue(std::size_t tasks, const Workers::Task& work) : tasks_(tasks), work_(work) {}

  void work_off(unsigned worker) {
    try {
      for (std::size_t task = next_++; task < tasks_; task = next_++) work_(task, worker);
    } catch (...) {
      next_ = tasks_;
      const std::lock_guard<std::mutex> lock(mutex_);
      if (!failure_) failure_ = std::current_exception();
    }
  }

  /// Behind the end of all threads.
  void throw_failure() const {
    if (failure_) std::rethrow_exception(failure_);
  }

 private:
  const std::size_t tasks_;
  const Workers::Task& work_;
  std::atomic<std::size_t> next_{0};
  std::mutex mutex_;
  std::exception_ptr failure_;
};

/// Further threads on the queue, joined by the destructor.
class Helpers {
 public:
  Helpers(Queue& queue, std::size_t number) {
    try {
      threads_.reserve(number);
      for (std::size_t i = 0; i < number; ++i) {
        threads_.emplace_back([&queue, i] { queue.work_off(static_cast<unsigned>(i + 1)); });
      }
    } catch (const std::exception&) {
      // The system gives no more threads, or there is no memory for one. Those that there are will do.
    }
  }
  Helpers(const Helpers&) = delete;
  Helpers& operator=(const Helpers&) = delete;
  ~Helpers() {
    for (std::thread& thread : threads_) thread.join();
  }

 private:
  std::vector<std::thread> threads_;
};

}  // namespace

void Workers::run(std::size_t tasks, const Task& work) const {
  Queue queue(tasks, work);
  {
    const Helpers helpers(queue, std::min<std::size_t>(count_, std::max<std::size_t>(tasks, 1)) - 1);
    queue.work_off(0);
  }
  queue.throw_failure();
}

void Workers::run_apart(std::size_t tasks, const Task& work) const {
  if (count_ == 1) {
    run(tasks, work);
    return;
  }
  run((tasks + 1) / 2, [&work](std::size_t task, unsigned worker) { work(2 * task, worker); });
  run(tasks / 2, [&work](std::size_t task, unsigned worker) { work(2 * task + 1, worker); });
}
