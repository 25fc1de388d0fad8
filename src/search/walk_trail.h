#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <optional>
#include <vector>

#include "search/front.h"
#include "search/step_choice.h"

/// The beginning of the way of the walk before this one, to be taken again.
///
/// Seeds that lie side by side have the same lag and, but for one base at either end, the same unit. Their walks meet,
/// and from there on the later one takes the same steps, and has the same runs behind them, as long as its score lies
/// where the choices hold. Where the units differ at all, not being one the rotation of the other, this ends where one
/// of them begins anew.
///
/// It belongs to one sequence, one direction, one limit and one set of rules.
template <bool forward>
class WalkTrail {
 public:
  /// To be called before a walk. What the walk before it noted is the trail from now on.
  void begin_walk(const UnitCircle& circle) {
    trail_.swap(noted_);
    noted_.clear();
    next_ = 0;
    old_circle_ = circle_;
    circle_ = circle;
    is_rotation_ = !trail_.empty() && is_rotation(old_circle_, circle_);
  }

  /// Forgets all walks.
  void forget() {
    trail_.clear();
    noted_.clear();
  }

  /// Notes a step of the present walk, to be called for all of them from its first on, in order.
  void note(const Front<forward>& front, const StepChoice& step) { noted_.push_back({front, step}); }

  /// Where a walk has got to after a step and the run behind it.
  struct Way {
    StepChoice step;
    Front<forward> then;
  };

  /// The way from `front`, where the walk has stopped at this height above the bound, to its next stop; nothing if the
  /// trail does not tell. Fronts must come in the order of the walk.
  std::optional<Way> way_on(const Front<forward>& front, std::int64_t height) {
    while (next_ < trail_.size() && comes_before(trail_[next_].front.position, front.position)) ++next_;
    const char* const unit = is_rotation_ ? inside(old_circle_, front.unit) : front.unit;
    for (std::size_t i = next_; i + 1 < trail_.size() && trail_[i].front.position == front.position; ++i) {
      if (trail_[i].front.unit != unit) continue;
      next_ = i;
      if (!trail_[i].step.holds(height) || !(is_rotation_ || stays_in_unit(i))) return {};
      const Front<forward>& from = trail_[i].front;
      Way way{trail_[i].step, trail_[i + 1].front};
      if (is_rotation_) way.then.unit = inside(circle_, way.then.unit);
      way.then.score += front.score - from.score;
      way.then.num_Ns += front.num_Ns - from.num_Ns;
      return way;
    }
    return {};
  }

 private:
  /// A place where a walk has stopped, and the step that it took.
  struct Stop {
    Front<forward> front;
    StepChoice step;
  };

  static bool comes_before(const char* a, const char* b) { return forward ? a < b : a > b; }

  /// Whether one unit is the other, read from a base on that lies less than a unit behind or before its beginning.
  static bool is_rotation(const UnitCircle& a, const UnitCircle& b) {
    const std::int64_t length = a.length();
    if (b.length() != length || std::abs(a.begin - b.begin) >= length) return false;
    const char* const first = std::min(a.begin, b.begin);
    return std::equal(first, std::max(a.begin, b.begin), first + length);
  }

  /// The base of a unit that stands for a base of one of its rotations.
  static const char* inside(const UnitCircle& circle, const char* base) {
    return base < circle.begin ? base + circle.length() : base >= circle.end ? base - circle.length() : base;
  }

  /// Whether neither the lookahead at stop `i` nor the way to the next one come to where the unit begins anew, the
  /// present one or that of the trail.
  bool stays_in_unit(std::size_t i) const {
    const Stop& stop = trail_[i];
    const Front<forward>& next = trail_[i + 1].front;
    const std::int64_t rest = forward ? std::min(circle_.end, old_circle_.end) - stop.front.unit
                                      : stop.front.unit + 1 - std::max(circle_.begin, old_circle_.begin);
    const std::int64_t bases = forward ? next.position - stop.front.position : stop.front.position - next.position;
    const std::int64_t unit_bases = bases + (stop.step.kind == 'D' ? 1 : stop.step.kind == 'I' ? -1 : 0);
    const std::int64_t moved = forward ? next.unit - stop.front.unit : stop.front.unit - next.unit;
    return stop.step.unit_bases_seen <= rest && moved == unit_bases && moved < rest;
  }

  std::vector<Stop> trail_;
  std::vector<Stop> noted_;                   ///< by the present walk
  std::size_t next_ = 0;                      ///< stops of the trail before this one lie behind the present walk
  UnitCircle old_circle_{nullptr, nullptr};   ///< of the trail
  UnitCircle circle_{nullptr, nullptr};       ///< of the present walk
  bool is_rotation_ = false;                  ///< one of the two is a rotation of the other
};
