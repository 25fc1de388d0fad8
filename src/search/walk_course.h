#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <vector>

#include "search/front.h"
#include "search/step_choice.h"

/// What becomes of a walk from some stop on, if its height there lies within a range.
struct WalkOutlook {
  std::int64_t lowest = 1;  ///< heights above the bound of permitted steps, an inclusive range
  std::int64_t highest = StepChoice::any_height;
  std::int64_t gain = 0;   ///< of score, the most at a stop from there on; at least 0
  std::int64_t limit = 0;  ///< behind the last stop that is known nothing above this gain is reached
};

/// The course of the last walk that was over before it had used its unit up: what becomes of a walk from each of its
/// stops on.
///
/// Until its unit begins anew a walk reads the unit's bases from the sequence, wherever the unit begins and ends. So
/// walks with units of one lag that come to the same stop go the same way from there on, if their heights permit it.
/// Most seeds in a satellite that are no repeat of their unit length fail so: each is led to the course of the one
/// before it by a step or two, and need not go along it.
///
/// It belongs to one sequence, one direction, one limit of the walks and one set of rules.
template <bool forward>
class WalkCourse {
 private:
  /// Where a step holds.
  struct StepRange {
    std::int64_t lowest;
    std::int64_t highest;
    std::int64_t unit_end;  ///< one past the last unit base seen for it and for the run behind it, as the walk goes

    bool holds(std::int64_t height) const { return lowest <= height && height <= highest; }
  };

 public:
  /// A stop of the course.
  struct Stop {
    const char* position;  ///< as Front counts them
    const char* unit;
    std::int64_t gain;  ///< of score, up to the next stop
    StepRange step;
    std::int64_t unit_end;  ///< one past the last unit base seen from here on, as the walk goes
    WalkOutlook outlook;
  };

  /// `first_base` is the first base of the sequence.
  explicit WalkCourse(const char* first_base) : first_base_(first_base) {}

  /// Forgets the course.
  void forget() { stops_.clear(); }

  /// To be called before a walk.
  void begin_walk() { own_.clear(); }

  /// The stop of the course at which a walk has stopped; null if there is none. It is valid until the next call of
  /// `find`, `join` or `end`. Fronts must come in the order of the walk.
  const Stop* find(const Front<forward>& front) {
    const auto lies_behind = [&front](const Stop& stop) {
      return forward ? stop.position < front.position : stop.position > front.position;
    };
    while (!stops_.empty() && lies_behind(stops_.back())) stops_.pop_back();
    for (auto stop = stops_.rbegin(); stop != stops_.rend() && stop->position == front.position; ++stop) {
      if (stop->unit != front.unit) continue;
      stops_.erase(stop.base(), stops_.end());
      return &stops_.back();
    }
    return nullptr;
  }

  /// Whether the outlook from the stop found last holds for a walk of this unit and height.
  bool holds(const Stop& stop, const UnitCircle& circle, std::int64_t height) const {
    return stop.outlook.lowest <= height && height <= stop.outlook.highest && stop.unit_end <= end_of(circle);
  }

  /// Takes such a walk from the stop found last to the next one, and notes the step. False if it would take another
  /// one.
  bool go_on(const UnitCircle& circle, std::int64_t height, Front<forward>& front) {
    const Stop& stop = stops_.back();
    if (stops_.size() == 1 || !stop.step.holds(height) || stop.step.unit_end > end_of(circle)) return false;
    own_.push_back({front.position, front.unit, front.score, stop.step});
    const Stop& next = stops_[stops_.size() - 2];
    front.position = next.position;
    front.unit = next.unit;
    front.score += stop.gain;
    return true;
  }

  /// Notes a step of the present walk from `front` on, which moves `moved` unit bases on with the run behind it. `rest`
  /// unit bases are left until the unit begins anew. To be called for all other steps, in order.
  void note(const Front<forward>& front, const StepChoice& step, std::int64_t moved, std::int64_t rest) {
    // The run ends at a base that was seen, too.
    const std::int64_t seen = std::max(step.unit_bases_seen, moved + 1);
    own_.push_back({front.position,
                    front.unit,
                    front.score,
                    {step.lowest, step.highest, seen <= rest ? number_of(front.unit) + seen : beyond_any_unit}});
  }

  /// Whether the present walk has noted so many steps that it should be left to itself.
  bool is_full() const { return own_.size() >= most_steps; }

  /// The present walk goes on along the course from a stop on that was found last.
  void join(const Front<forward>& front) { put_own_before(front.score); }

  /// The present walk has come to its last stop by itself: its way is the course from now on. The outlook depends on
  /// so many unit bases from there on.
  void end(const Front<forward>& front, const WalkOutlook& outlook, std::int64_t unit_bases) {
    stops_.clear();
    stops_.push_back({front.position, front.unit, 0, {}, number_of(front.unit) + unit_bases, outlook});
    put_own_before(front.score);
  }

 private:
  struct OwnStep {
    const char* position;
    const char* unit;
    std::int64_t score;
    StepRange step;
  };

  static constexpr std::int64_t beyond_any_unit = INT64_MAX;
  static constexpr std::size_t most_steps = std::size_t{1} << 15;

  /// Of a unit base, rising in the direction of the walk.
  std::int64_t number_of(const char* unit) const { return forward ? unit - first_base_ : first_base_ - unit; }
  std::int64_t end_of(const UnitCircle& circle) const {
    return forward ? number_of(circle.end) : number_of(circle.begin - 1);
  }

  /// `score` is the one at the stop behind the last own step.
  void put_own_before(std::int64_t score) {
    for (auto own = own_.rbegin(); own != own_.rend(); ++own) {
      const std::int64_t gain = score - own->score;
      const Stop& next = stops_.back();
      const WalkOutlook outlook{std::max(own->step.lowest, next.outlook.lowest - gain),
                                std::min(own->step.highest, next.outlook.highest - gain),
                                std::max<std::int64_t>(0, next.outlook.gain + gain), next.outlook.limit + gain};
      stops_.push_back(
          {own->position, own->unit, gain, own->step, std::max(own->step.unit_end, next.unit_end), outlook});
      score = own->score;
    }
    own_.clear();
  }

  const char* const first_base_;
  std::vector<Stop> stops_;   ///< the first one of the course comes last
  std::vector<OwnStep> own_;  ///< of the present walk
};
