#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
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
  /// The sequence, half-open range.
  WalkTrail(const char* begin, const char* end) : first_base_(begin), is_usable_(end - begin <= longest_sequence) {}

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

  /// Notes a step of the present walk, to be called for all of them from its first on, in order, but for those that it
  /// takes from the trail.
  void note(const Front<forward>& front, const StepChoice& step) {
    if (!is_usable_) return;
    const auto fitting = [](std::int64_t n) { return static_cast<std::int32_t>(std::min<std::int64_t>(n, INT32_MAX)); };
    finish_last(front);
    noted_.emplace_back(offset(front.position), offset(front.unit), static_cast<std::int32_t>(step.lowest),
                        fitting(step.highest), fitting(step.unit_bases_seen), step.kind);
    last_score_ = front.score;
    last_Ns_ = front.num_Ns;
  }

  /// Stops of the trail, one after the other: a walk takes the steps at [first, last) and comes to the stop `last`.
  struct Stretch {
    std::size_t first = 0;
    std::size_t last = 0;
    bool empty() const { return first == last; }
  };

  /// How far the trail leads a walk that has stopped at `front`. `bound` is that of permitted steps. For each step
  /// `visit` is called with the number of the stop that it leads to, the heights above the bound before it and behind
  /// the run that follows it, and the lowest height at which it would be taken. Fronts must come in the order of the
  /// walk.
  template <typename Visit>
  Stretch look(const Front<forward>& front, std::int64_t bound, Visit visit) {
    const std::size_t first = find(front);
    std::size_t at = first;
    std::int64_t height = front.score - bound;
    while (at + 1 < trail_.size() && trail_[at].holds(height) &&
           (is_rotation_ || trail_[at].unit_bases <= rest_of_unit(trail_[at]))) {
      const Stop& stop = trail_[at];
      const std::int64_t before = height;
      height += stop.gain;
      visit(++at, before, height, std::int64_t{stop.lowest});
    }
    return {first, at};
  }

  /// Takes a walk that has stopped at the first stop of the stretch to its last one, and notes its steps. `event` is
  /// called with the position of the front at each step, and its kind.
  template <typename Event>
  void go(Front<forward>& front, const Stretch& stretch, Event event) {
    if (stretch.empty()) return;
    finish_last(front);
    const auto number = [](std::size_t i) { return static_cast<std::ptrdiff_t>(i); };
    const auto first = trail_.begin() + number(stretch.first);
    const auto last = trail_.begin() + number(stretch.last);
    const std::size_t noted = noted_.size();
    noted_.insert(noted_.end(), first, last);
    if (is_rotation_) {
      for (std::size_t i = noted; i < noted_.size(); ++i) {
        noted_[i].unit = offset(inside(circle_, first_base_ + noted_[i].unit));
      }
    }
    for (auto stop = first; stop != last; ++stop) {
      last_score_ = front.score;
      last_Ns_ = front.num_Ns;
      front.score += stop->gain;
      front.num_Ns += stop->gained_Ns;
      event(first_base_ + stop->position, stop->kind);
    }
    const char* const unit = first_base_ + last->unit;
    front.position = first_base_ + last->position;
    front.unit = is_rotation_ ? inside(circle_, unit) : unit;
    next_ = stretch.last;
  }

 private:
  /// A place where a walk has stopped, and the step that it took. Many are gone through, so they are kept small.
  struct Stop {
    std::uint32_t position;  ///< offsets in the sequence, as Front counts them
    std::uint32_t unit;
    std::int32_t lowest;  ///< heights for which the step is the same
    std::int32_t highest;
    /// That the lookahead has seen; once the next stop is noted, those that must be left of a unit for the way to it to
    /// be the same.
    std::int32_t unit_bases;
    std::int32_t gain = 0;  ///< of score, up to the next stop
    std::uint32_t gained_Ns = 0;
    char kind;

    bool holds(std::int64_t height) const { return lowest <= height && height <= highest; }

    Stop(std::uint32_t at, std::uint32_t unit_base, std::int32_t lowest_height, std::int32_t highest_height,
         std::int32_t seen, char step)
        : position(at), unit(unit_base), lowest(lowest_height), highest(highest_height), unit_bases(seen), kind(step) {}
  };

  /// Scores, and their heights above the bound, then have 31 bits.
  static constexpr std::int64_t longest_sequence = std::int64_t{1} << 30;

  std::uint32_t offset(const char* base) const { return static_cast<std::uint32_t>(base - first_base_); }

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

  /// The walk has come from the stop noted last to `front`. Neither the lookahead nor the way there may come to where
  /// the unit begins anew.
  void finish_last(const Front<forward>& front) {
    if (noted_.empty()) return;
    Stop& stop = noted_.back();
    const auto distance = [](std::uint32_t from, std::uint32_t to) {
      return forward ? std::int64_t{to} - from : std::int64_t{from} - to;
    };
    const std::int64_t bases = distance(stop.position, offset(front.position));
    const std::int64_t moved = distance(stop.unit, offset(front.unit));
    const std::int64_t unit_bases = bases + (stop.kind == 'D' ? 1 : stop.kind == 'I' ? -1 : 0);
    stop.unit_bases =
        moved != unit_bases ? INT32_MAX : std::max(stop.unit_bases, static_cast<std::int32_t>(unit_bases + 1));
    stop.gain = static_cast<std::int32_t>(front.score - last_score_);
    stop.gained_Ns = front.num_Ns - last_Ns_;
  }

  /// The number of the stop of the trail at which the front stands; behind the last one if there is none.
  std::size_t find(const Front<forward>& front) {
    const std::uint32_t position = offset(front.position);
    const auto comes_before = [position](const Stop& stop) {
      return forward ? stop.position < position : stop.position > position;
    };
    while (next_ < trail_.size() && comes_before(trail_[next_])) ++next_;
    const std::uint32_t unit = offset(is_rotation_ ? inside(old_circle_, front.unit) : front.unit);
    for (std::size_t i = next_; i < trail_.size() && trail_[i].position == position; ++i) {
      if (trail_[i].unit == unit) return i;
    }
    return trail_.size();
  }

  /// The unit bases left from a stop on, in the present walk's unit or in that of the trail.
  std::int64_t rest_of_unit(const Stop& stop) const {
    const char* const unit = first_base_ + stop.unit;
    return forward ? std::min(circle_.end, old_circle_.end) - unit
                   : unit + 1 - std::max(circle_.begin, old_circle_.begin);
  }

  const char* const first_base_;
  const bool is_usable_;
  std::vector<Stop> trail_;
  std::vector<Stop> noted_;      ///< by the present walk
  std::int64_t last_score_ = 0;  ///< at the stop noted last
  std::uint32_t last_Ns_ = 0;
  std::size_t next_ = 0;                     ///< stops of the trail before this one lie behind the present walk
  UnitCircle old_circle_{nullptr, nullptr};  ///< of the trail
  UnitCircle circle_{nullptr, nullptr};      ///< of the present walk
  bool is_rotation_ = false;                 ///< one of the two is a rotation of the other
};
