#pragma once

#include <algorithm>
#include <cstdint>
#include <vector>

#include "search/front_set.h"
#include "search/growth_limit.h"
#include "search/lookahead_space.h"
#include "search/step_memo.h"
#include "search/unit_words.h"
#include "search/view_memo.h"
#include "search/walk_course.h"
#include "search/walk_guides.h"
#include "search/walk_trail.h"

/// What the walks of one sequence, one direction and one thread remember of one another. Without it every walk would
/// go the same way more slowly.
template <bool forward>
struct WalkAids {
  GrowthLimit& growth_limit;  ///< not owned
  UnitWords& unit_words;      ///< not owned
  WalkGuides<forward> guides;
  StepMemo<forward> memo;
  ViewMemo<forward> view_memo;
  WalkTrail<forward> trail;
  WalkCourse<forward> course;
  LookaheadSpace space;
  FrontSet<forward> level;  ///< working space of the lookahead outside the window
  FrontSet<forward> next_level;
  FrontSet<forward> stops;
  /// Of the record grown last: stretches whose events are not in its list.
  std::vector<GuidedStretch> untold;
  /// With a first score lower by up to so much, the walk done last would have had the same outcome, lower by as much.
  std::int64_t spare_height = 0;

  /// To be called before a walk that has to end at `limit`: what was remembered holds for one limit only.
  void begin_walk(const UnitCircle& circle, const char* limit) {
    end_at(limit);
    guides.begin_walk(circle);
    trail.begin_walk(circle);
  }

  /// The same before one of which only the outcome is asked for.
  void end_at(const char* limit) {
    if (limit == limit_) return;
    guides.forget();
    memo.forget();
    view_memo.forget();
    trail.forget();
    course.forget();
    limit_ = limit;
  }

  /// The sequence, half-open range.
  WalkAids(const char* begin, const char* end, const ExtensionRules& rules, GrowthLimit& limit_of_growth,
           UnitWords& words_of_units)
      : growth_limit(limit_of_growth),
        unit_words(words_of_units),
        guides(begin, end, rules),
        memo(begin),
        trail(begin, end),
        course(begin) {}

 private:
  const char* limit_ = nullptr;
};

/// Whether it pays to ask for the outcome of a walk before it: not where it could not be told for the last ones.
class ForesightPace {
 public:
  /// To be asked once for each walk.
  bool is_due() {
    if (waits_ == 0) return true;
    --waits_;
    return false;
  }
  /// To be told of each question.
  void count(bool was_told) {
    pause_ = was_told ? 0 : std::min(2 * pause_ + 1, longest_pause);
    waits_ = pause_;
  }

 private:
  static constexpr int longest_pause = 7;
  int pause_ = 0;
  int waits_ = 0;
};

/// Both directions of one thread, and what can be told before a walk.
struct GrowthAids {
  GrowthLimit growth_limit;
  UnitWords unit_words;
  WalkAids<true> forward;
  WalkAids<false> backward;
  ForesightPace foresight;

  /// Of the record grown last, in both directions.
  std::vector<GuidedStretch> untold() const {
    std::vector<GuidedStretch> both = forward.untold;
    both.insert(both.end(), backward.untold.begin(), backward.untold.end());
    return both;
  }

  /// The sequence, half-open range, its planes and the rules; they must outlive the object.
  GrowthAids(const char* begin, const char* end, const BasePlanes& planes, const ExtensionRules& rules)
      : growth_limit(begin, end, planes, rules),
        unit_words(begin, end, planes, rules),
        forward(begin, end, rules, growth_limit, unit_words),
        backward(begin, end, rules, growth_limit, unit_words) {}
};
