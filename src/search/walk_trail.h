#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "search/front.h"
#include "search/step_choice.h"

/// The way of the walk before this one through its first unit, to be taken again.
///
/// Seeds that lie side by side have the same lag and, but for one base at either end, the same unit. Their walks meet,
/// and from there on the later one takes the same steps, and has the same runs behind them, as long as its score lies
/// where the choices hold and no unit begins anew.
///
/// It belongs to one sequence, one direction, one limit and one set of rules.
template <bool forward>
class WalkTrail {
 public:
  /// A place where a walk has stopped, and the step that it took.
  struct Stop {
    Front<forward> front;
    StepChoice step;
  };

  /// To be called before a walk. What the walk before it noted is the trail from now on.
  void begin_walk() {
    trail_.swap(noted_);
    noted_.clear();
    next_ = 0;
  }

  /// Forgets all walks.
  void forget() {
    trail_.clear();
    noted_.clear();
  }

  /// Notes a step of the present walk, to be called for all of them from its first on, in order.
  void note(const Front<forward>& front, const StepChoice& step) { noted_.push_back({front, step}); }

  /// The stop of the trail at which the front stands, if a walk at this height takes the same way to the next one, which
  /// follows it in memory; else null. `circle` is the unit of the present walk. Fronts must come in the order of the
  /// walk.
  const Stop* way_on(const Front<forward>& front, const UnitCircle& circle, std::int64_t height) {
    while (next_ < trail_.size() && comes_before(trail_[next_].front.position, front.position)) ++next_;
    for (std::size_t i = next_; i + 1 < trail_.size() && trail_[i].front.position == front.position; ++i) {
      if (trail_[i].front.unit != front.unit) continue;
      next_ = i;
      return trail_[i].step.holds(height) && stays_in_unit(i, circle) ? &trail_[i] : nullptr;
    }
    return nullptr;
  }

 private:
  static bool comes_before(const char* a, const char* b) { return forward ? a < b : a > b; }

  /// Whether neither the lookahead at stop `i` nor the way to the next one come to where the unit begins anew, the
  /// present one or that of the trail.
  bool stays_in_unit(std::size_t i, const UnitCircle& circle) const {
    const Stop& stop = trail_[i];
    const Front<forward>& next = trail_[i + 1].front;
    const std::int64_t rest = forward ? circle.end - stop.front.unit : stop.front.unit + 1 - circle.begin;
    const std::int64_t bases = forward ? next.position - stop.front.position : stop.front.position - next.position;
    const std::int64_t unit_bases = bases + (stop.step.kind == 'D' ? 1 : stop.step.kind == 'I' ? -1 : 0);
    const std::int64_t moved = forward ? next.unit - stop.front.unit : stop.front.unit - next.unit;
    return stop.step.unit_bases_seen <= rest && moved == unit_bases && moved < rest;
  }

  std::vector<Stop> trail_;
  std::vector<Stop> noted_;  ///< by the present walk
  std::size_t next_ = 0;     ///< stops of the trail before this one lie behind the present walk
};
