#pragma once

#include <algorithm>
#include <cstdint>

#include "search/walk_bundle.h"

namespace test {

// How a walk goes is left to the callers of what walks are used in. So it is a simple rule here, with what those have
// to reckon with: steps that depend on bases far ahead, or on a low score.

constexpr int step_cost = 6;
const ExtensionRules walker_rules{-step_cost, -step_cost, 5, 4, false};

/// Takes the step behind which most bases match in a row. Every third position looks at 60 bases more, and takes an
/// insertion if they say so. Where the score does not permit everything, odd heights take a mismatch.
template <bool forward>
class Walker {
 public:
  Walker(const char* begin, const char* end) : limit_(forward ? end : begin) {}

  WalkLeg<forward> operator()(const char* line, BundledWalk<forward>& walk) const {
    Front<forward>& front = walk.front;
    const char* const end = forward ? std::min(line, limit_) : std::max(line, limit_);
    WalkLeg<forward> leg(front.score);
    while (true) {
      while (front.position != end && front.next_base() == *front.unit) {
        take(front, walk.circle, 'M');
        ++front.score;
        leg.take_run(1);
      }
      walk.take_if_best(front);
      leg.take_if_best(front);
      const std::int64_t height = front.score + walk.circle.length();
      walk.is_over = front.position == limit_;
      if (!walk.is_over && front.position != line) {
        leg.stop(front.score, height >= least_height);
        walk.is_over = height <= step_cost;
      }
      if (walk.is_over || front.position == line) break;
      const StepChoice step = choice(front, walk.circle, height);
      leg.take_step(step);
      take(front, walk.circle, step.kind);
      front.score -= step_cost;
      if (front.position == line) break;
    }
    leg.finish(front.score);
    return leg;
  }

 private:
  static constexpr std::int64_t run_seen = 14;
  /// That permits everything.
  static constexpr std::int64_t least_height = 1 + 5 * step_cost;

  static void take(Front<forward>& front, const UnitCircle& circle, char kind) {
    if (kind != 'D') front.take_base();
    if (kind != 'I') front.step_unit(circle);
  }

  StepChoice choice(const Front<forward>& front, const UnitCircle& circle, std::int64_t height) const {
    const auto made = [](char kind, std::int64_t seen) { return StepChoice(kind, seen, 1, StepChoice::any_height); };
    if (height < least_height && height % 2 != 0) return made('M', 1);
    std::int64_t seen = run_seen + 1;
    if ((limit_ - front.position) % 3 == 0) {
      seen = run_seen + 61;
      Front<forward> ahead = front;
      unsigned mixed = 0;
      for (std::int64_t i = 0; i < seen; ++i, ahead.step_unit(circle)) {
        mixed = 31 * mixed + static_cast<unsigned char>(*ahead.unit);
      }
      if (mixed / 7 % 4 == 0) return made('I', seen);
    }
    char best = 'M';
    std::int64_t longest = -1;
    for (const char kind : {'M', 'I', 'D'}) {
      const std::int64_t run = run_behind(kind, front, circle);
      if (run > longest) best = kind;
      longest = std::max(longest, run);
    }
    return made(best, seen);
  }

  std::int64_t run_behind(char kind, Front<forward> front, const UnitCircle& circle) const {
    take(front, circle, kind);
    std::int64_t run = 0;
    for (; run < run_seen - 1 && front.position != limit_ && front.next_base() == *front.unit; ++run) {
      take(front, circle, 'M');
    }
    return run;
  }

  const char* limit_;
};

}  // namespace test
