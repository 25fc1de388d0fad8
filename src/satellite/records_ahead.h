#pragma once

#include <list>

#include "satellite/Csat.h"

/// Calls a record into the nearest cache before it is needed.
inline void prefetch(const Csat& sat) {
  const char* const bytes = reinterpret_cast<const char*>(&sat);
  for (std::size_t line = 0; line < sizeof sat; line += 64) __builtin_prefetch(bytes + line);
}

/// The records of a list lie anywhere in memory: whoever goes through one has this object call them some time before
/// their turn. It points into the list, which it does not own.
class RecordsAhead {
 public:
  using Iterator = std::list<Csat*>::const_iterator;

  explicit RecordsAhead(const std::list<Csat*>& sats) : next_(sats.begin()), end_(sats.end()) {
    for (int i = 0; i < distance; ++i) step();
  }

  /// To be called for each record that is done.
  void step() {
    if (next_ != end_) prefetch(**next_++);
  }

  /// To be called before an element is taken out of the list.
  void leave_out(Iterator element) {
    if (next_ == element) ++next_;
  }

 private:
  static constexpr int distance = 8;

  Iterator next_;
  Iterator end_;
};
