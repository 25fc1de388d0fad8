#pragma once

#include <cstdint>
#include <utility>

#include "search/base_planes.h"
#include "search/front.h"
#include "search/front_set.h"
#include "search/lookahead_way.h"
#include "search/lookahead_window.h"
#include "search/step_choice.h"
#include "search/unit_runs.h"
#include "search/walk_aids.h"

/// How a walk with one unit goes: along matches up to a stop, there by the best first step of a bounded lookahead, and
/// so on. The walks themselves, and what is noted of them, belong to the callers.
///
/// What is handed in must outlive the object; `sequence_limit` is where nothing is left to take, as fronts count it.
template <bool forward>
class WalkSteps {
 public:
  WalkSteps(const UnitCircle& unit, const char* sequence_limit, const ExtensionRules& extension_rules,
            const BasePlanes& planes, const char* first_base, WalkAids<forward>& aids)
      : circle_(unit),
        limit_(sequence_limit),
        rules_(extension_rules),
        bound_(-unit.length()),
        runs_(planes, first_base, unit),
        window_(planes, runs_, first_base, unit, extension_rules, aids.space),
        view_memo_(aids.view_memo),
        level_(aids.level),
        next_level_(aids.next_level),
        stops_(aids.stops) {}

  WalkSteps(const WalkSteps&) = delete;
  WalkSteps& operator=(const WalkSteps&) = delete;
  ~WalkSteps() = default;

  const UnitCircle& circle() const { return circle_; }
  const char* limit() const { return limit_; }
  const ExtensionRules& rules() const { return rules_; }
  /// A step must leave a score above it.
  std::int64_t bound() const { return bound_; }
  const UnitRuns& runs() const { return runs_; }

  /// Whether the score permits every step of the lookahead, however deep.
  bool permits_all(const Front<forward>& front) const { return front.score + rules_.deepest_lookahead() > bound_; }

  bool permits_none(const Front<forward>& front) const { return front.score + rules_.mildest_step() <= bound_; }

  /// A choice depends on so many unit bases at least.
  std::int64_t fewest_unit_bases_seen() const { return window_.fewest_unit_bases_seen(); }

  /// Goes along matches. False if a run of N blocks the way.
  bool take_matches(Front<forward>& front) const { return runs_.extend_exact(front, limit_, rules_); }

  /// The step to be taken at a stop that permits some. `view` is what is seen from there. Always inline as `look` is.
  [[gnu::always_inline]] StepChoice choose(const Front<forward>& front, UnitRuns::View& view) {
    runs_.look(front, limit_, view);
    if (!view.is_whole) return find(front);
    const NearView<forward> seen(view);
    if (!view_memo_.pays() && !view_memo_.is_sample(seen)) return find(front);
    StepChoice step = view_memo_.step_at(seen, front.score - bound_);
    view_memo_.count(step.kind != '?');
    if (step.kind == '?') {
      step = find(front);
      view_memo_.note(seen, step);
    }
    return step;
  }

  Front<forward> after(char kind, const Front<forward>& front) const {
    return kind == 'M' ? after_mismatch(front) : kind == 'I' ? after_insertion(front) : after_deletion(front);
  }

  /// Goes along the matches behind a step from where `view` was seen. False if a run of N blocks the way.
  bool take_matches_behind(char kind, const UnitRuns::View& view, Front<forward>& front) const {
    if (view.is_whole) {
      const std::int64_t matches = UnitRuns::matches_behind<forward>(kind, view);
      if (matches < UnitRuns::most_seen) {
        runs_.advance(front, matches);
        front.score += matches;
        return true;
      }
    }
    return take_matches(front);
  }

 private:
  Front<forward> after_mismatch(Front<forward> front) const {
    front.take_base();
    front.step_unit(circle_);
    front.score += rules_.mismatch_score;
    return front;
  }

  Front<forward> after_insertion(Front<forward> front) const {
    front.take_base();
    front.score += rules_.indel_score;
    return front;
  }

  Front<forward> after_deletion(Front<forward> front) const {
    front.step_unit(circle_);
    front.score += rules_.indel_score;
    return front;
  }

  StepChoice find(const Front<forward>& front) {
    const StepChoice step = window_.choose(front, limit_);
    return step.kind == '?' ? find_without_window(front) : step;
  }

  /// The first step of the best combination of steps within the lookahead. On equal values a mismatch wins over an
  /// insertion and that over a deletion. Of two ways into one state, same position and unit base after equally many
  /// steps, only the higher-scoring one is followed: the bound forbids it nothing that it permits the other, and every
  /// later score is higher by the same difference. So the work grows polynomially with the depth.
  StepChoice find_without_window(const Front<forward>& front) {
    FirstSteps first(front.score, rules_, circle_);
    level_.clear();
    stops_.clear();
    if (first.mismatch_permitted) level_.add(after_mismatch(front), first.mismatch);
    if (first.indel_permitted) {
      level_.add(after_insertion(front), first.insertion);
      level_.add(after_deletion(front), first.deletion);
    }
    for (std::int64_t depth = 1; !level_.nodes().empty(); ++depth) {
      next_level_.clear();
      for (auto& [state, way] : level_.nodes()) {
        const std::int64_t score = state.score;
        const bool way_is_free = take_matches(state);
        way.score += state.score - score;
        first.best.raise_to(way);
        if (!way_is_free || depth == rules_.maximum_depth || state.position == limit_) continue;
        if (stops_.note_stop(state, way)) add_steps(state, way, first);
      }
      if (first.is_settled(next_level_.nodes())) break;
      std::swap(level_, next_level_);
    }
    return first.choice(StepChoice::whole_unit);
  }

  void add_steps(const Front<forward>& state, const LookaheadWay& way, FirstSteps& first) {
    LookaheadWay mismatched = way;
    if (mismatched.take_step(rules_.mismatch_score, bound_, first.missing)) {
      next_level_.add(after_mismatch(state), mismatched);
    }
    LookaheadWay shifted = way;
    if (!shifted.take_step(rules_.indel_score, bound_, first.missing)) return;
    next_level_.add(after_insertion(state), shifted);
    next_level_.add(after_deletion(state), shifted);
  }

  const UnitCircle circle_;
  const char* const limit_;
  const ExtensionRules& rules_;
  const std::int64_t bound_;
  const UnitRuns runs_;
  LookaheadWindow<forward> window_;
  ViewMemo<forward>& view_memo_;
  FrontSet<forward>& level_;
  FrontSet<forward>& next_level_;
  FrontSet<forward>& stops_;
};
