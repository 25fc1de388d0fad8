#pragma once

#include <cstddef>
#include <functional>

/// The threads that a search may use, the caller's own among them.
class Workers {
 public:
  using Task = std::function<void(std::size_t task, unsigned worker)>;

  /// At least one thread, the caller's.
  explicit Workers(unsigned threads) : count_(threads == 0 ? 1 : threads) {}

  unsigned count() const { return count_; }

  /// Calls `work` for the tasks 0 to tasks - 1, each once and in no certain order, and returns when all are done. The
  /// second argument is the number of the thread, below `count`; thread 0 is the caller's. If a task throws, no further
  /// ones are begun, and the first exception leaves here once all threads have ended. Fewer threads than `count` are
  /// used where the system gives no more.
  void run(std::size_t tasks, const Task& work) const;

  /// As `run`, but no task is worked on at the same time as the one before or behind it.
  void run_apart(std::size_t tasks, const Task& work) const;

 private:
  unsigned count_;
};
