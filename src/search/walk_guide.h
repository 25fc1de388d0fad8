#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <vector>

#include "search/front.h"

/// The steps of one long walk, so that later walks over the same stretch with the same unit need not find them again.
///
/// Which step is best where a walk has stopped depends only on the position, on the unit and the phase there, and on
/// what the score permits. In a satellite array many seeds have the same unit, in some rotation, and walk the whole
/// array: once two such walks stop at the same place in the same phase, they go on alike as long as the score permits
/// either all that the lookahead tries. Without the guide such arrays would take a lookahead at every step of every
/// walk.
template <bool forward>
class WalkGuide {
 public:
  /// To be called before the steps of a walk. `limit` is where the walk has to end.
  void begin_walk(const UnitCircle& circle, const char* limit) {
    circle_ = circle;
    limit_ = limit;
    trace_.clear();
    found_ = 0;
    tries_ = 0;
    is_aligned_ = false;
    is_placed_ = false;
    is_usable_ = !stops_.empty() && guide_circle_.length() == circle.length() && guide_limit_ == limit;
  }

  /// The step of a walk that has stopped at `front` and is permitted all that the lookahead tries; '?' if unknown.
  char step_at(const Front<forward>& front) {
    if (!is_usable_) return '?';
    place(front.position);
    for (std::size_t i = next_; i < stops_.size() && stops_[i].position == front.position; ++i) {
      if (!is_aligned_ && !align(stops_[i].unit, front.unit)) continue;
      if (rotated(front.unit) != stops_[i].unit) continue;
      ++found_;
      return stops_[i].kind;
    }
    return '?';
  }

  /// Notes a step that was taken where everything was permitted.
  void note(const Front<forward>& front, char kind) { trace_.push_back({front.position, front.unit, kind}); }

  /// To be called behind the last step. A walk that had to find a long way of its own becomes the guide, with what it
  /// was told of the rest.
  void end_walk() {
    if (trace_.size() < shortest_guide + found_) return;
    stops_.swap(trace_);
    guide_circle_ = circle_;
    guide_limit_ = limit_;
  }

 private:
  struct Stop {
    const char* position;
    const char* unit;  ///< the base expected there, in the guide's own unit
    char kind;
  };

  static constexpr std::size_t shortest_guide = 256;
  static constexpr int most_tries = 4;

  static bool comes_before(const char* a, const char* b) { return forward ? a < b : a > b; }

  /// Moves `next_` to the first stop that does not come before `position`.
  void place(const char* position) {
    if (!is_placed_) {
      const auto earlier = [](const Stop& stop, const char* at) { return comes_before(stop.position, at); };
      next_ =
          static_cast<std::size_t>(std::lower_bound(stops_.begin(), stops_.end(), position, earlier) - stops_.begin());
      is_placed_ = true;
    }
    while (next_ < stops_.size() && comes_before(stops_[next_].position, position)) ++next_;
  }

  /// Tries whether the two units are the same, read from these bases on.
  bool align(const char* guide_base, const char* base) {
    if (tries_ == most_tries) return false;
    ++tries_;
    const std::int64_t length = circle_.length();
    const std::int64_t shift = ((guide_base - guide_circle_.begin) - (base - circle_.begin) + length) % length;
    for (std::int64_t i = 0; i < length; ++i) {
      const std::int64_t other = i + shift < length ? i + shift : i + shift - length;
      if (circle_.begin[i] != guide_circle_.begin[other]) return false;
    }
    shift_ = shift;
    is_aligned_ = true;
    return true;
  }

  /// The guide's unit base that stands for `base` of the present unit.
  const char* rotated(const char* base) const {
    const std::int64_t at = base - circle_.begin + shift_;
    return guide_circle_.begin + (at < circle_.length() ? at : at - circle_.length());
  }

  std::vector<Stop> stops_;  ///< of the guide, in the order of its walk
  UnitCircle guide_circle_{nullptr, nullptr};
  const char* guide_limit_ = nullptr;

  std::vector<Stop> trace_;  ///< of the present walk
  UnitCircle circle_{nullptr, nullptr};
  const char* limit_ = nullptr;
  std::size_t found_ = 0;
  std::size_t next_ = 0;
  std::int64_t shift_ = 0;
  int tries_ = 0;
  bool is_usable_ = false;
  bool is_placed_ = false;
  bool is_aligned_ = false;
};
