#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <vector>

#include "satellite/Csat.h"
#include "search/CSearchController.h"
#include "search/base_planes.h"
#include "search/front.h"
#include "search/spare_height.h"
#include "search/step_choice.h"
#include "search/step_memo.h"
#include "search/unit_guide.h"
#include "search/unit_runs.h"
#include "search/unit_words.h"
#include "search/walk_aids.h"
#include "search/walk_guides.h"
#include "search/walk_steps.h"
#include "search/walk_trail.h"

/// What of a walk is to be done: all, or what is left behind a pause.
enum class WalkPart : std::uint8_t { whole, rest };

/// One direction of the extension of one record into an imperfect repeat, with its events: a greedy walk.
template <bool forward>
class ImperfectWalk {
 public:
  /// As for WalkSteps. `untold` null: all events are noted. Otherwise long stretches that a guide leads along are only
  /// named there.
  ImperfectWalk(Csat& record, const char* sequence_limit, const ExtensionRules& rules, const BasePlanes& planes,
                const char* first_base, WalkAids<forward>& aids, std::vector<GuidedStretch>* untold)
      : sat_(record),
        steps_({record.unit_begin, record.unit_end}, sequence_limit, rules, planes, first_base, aids),
        first_base_(first_base),
        aids_(aids),
        guides_(aids.guides),
        memo_(aids.memo),
        trail_(aids.trail),
        untold_(untold) {}

  /// Commits step after step until none is permitted, the limit is reached or a run of N blocks the way, or no way
  /// leads to a higher score; then the record takes the earliest state of the highest score on that way. A later state
  /// of equal score is not worth its events.
  ///
  /// It may pause before that, at a stop where the score permits everything and is the highest so far, and the last
  /// base is no N: it will not be taken off. Returns whether it does. A walk from there on goes the rest of the way.
  bool run(WalkPart part, const PausePoint& pause) {
    if (untold_ != nullptr) untold_->clear();
    aids_.begin_walk(steps_.circle(), steps_.limit());
    State state{
        Front<forward>::of(sat_), {sat_.mismatches, sat_.insertions, sat_.deletions}, sat_.missense.size, 0, 0, 0};
    bool way_is_free = steps_.take_matches(state.front);
    way_is_free = way_is_free && may_get_above(state.front.score, state.front);
    State best = state;
    const char* const begin = state.front.position;
    const char* checked = begin;  // where it was last asked whether the walk may go on
    bool is_on_trail = part == WalkPart::whole && steps_.circle().length() >= shortest_unit_with_trails;
    bool is_at_checkpoint = false;
    bool pauses = false;
    while (way_is_free && !pauses && steps_.rules().maximum_depth > 0 && state.front.position != steps_.limit()) {
      is_on_trail =
          is_on_trail && std::abs(state.front.position - begin) < std::max(steps_.circle().length(), trail_bases);
      const bool may_be_led = is_at_checkpoint && !is_on_trail;
      is_at_checkpoint = false;
      if (may_be_led && follow_guide(state, best)) continue;
      if (is_on_trail && follow_trail(state, best)) continue;
      if (std::abs(state.front.position - checked) >= bases_between_checks) {
        if (!may_get_above(best.front.score, state.front)) break;
        if (has_fallen_for_good(state.front, best.front.score)) break;
        checked = state.front.position;
      }
      UnitRuns::View view;
      const StepChoice step = next_step(state.front, view);
      if (step.kind == '-') break;
      if (is_on_trail) trail_.note(state.front, step);
      note_lowest_height(state.front.score - steps_.bound(), step.lowest);
      commit(step.kind, state);
      const char* const run_begin = state.front.position;
      way_is_free = steps_.take_matches_behind(step.kind, view, state.front);
      is_at_checkpoint = guides_.is_checkpoint(state.front, std::abs(state.front.position - run_begin));
      if (!take_if_best(state, best)) continue;
      way_is_free = way_is_free && may_get_above(state.front.score, state.front);
      pauses = way_is_free && std::abs(state.front.position - begin) > pause.bases &&
               state.front.score >= pause.score && steps_.permits_all(state.front) &&
               *(forward ? state.front.position - 1 : state.front.position) != 'N';
    }
    guides_.leave();
    adopt(best);
    aids_.spare_height = spare_.of_walk();
    return pauses;
  }

 private:
  using Counts = UnitGuide::Counts;

  struct State {
    Front<forward> front;
    Counts counts;
    std::size_t events;         ///< in the record's list
    std::size_t stretches;      ///< that were only named
    std::size_t stretch_steps;  ///< of the last of them: this state may lie inside it
    std::uint32_t stretch_end;
  };

  /// `view` may be looked at for it.
  StepChoice next_step(const Front<forward>& front, UnitRuns::View& view) {
    if (steps_.permits_none(front)) return StepChoice::none();
    const StepChoice step = step_by_memo(front, view);
    if (steps_.permits_all(front)) {
      guides_.note(front, step.kind);
    } else {
      guides_.leave();
    }
    return step;
  }

  StepChoice step_by_memo(const Front<forward>& front, UnitRuns::View& view) {
    const std::int64_t rest = unit_bases_ahead(front);
    if (rest < steps_.fewest_unit_bases_seen()) return steps_.choose(front, view);
    StepChoice step = memo_.step_at(front, rest, front.score - steps_.bound());
    if (step.kind != '?') return step;
    step = steps_.choose(front, view);
    memo_.note(front, step, rest);
    return step;
  }

  /// To be called for each step before it is taken.
  void note_lowest_height(std::int64_t height, std::int64_t lowest) {
    spare_.note_step(height - lowest, lowest > 1 - steps_.rules().mildest_step());
  }

  bool take_if_best(const State& state, State& best) {
    if (state.front.score <= best.front.score) return false;
    best = state;
    spare_.note_best();
    return true;
  }

  /// Whether the walk may come to a higher score than this one behind a stop.
  bool may_get_above(std::int64_t score, const Front<forward>& front) const {
    return front.position != steps_.limit() && !aids_.growth_limit.keeps_from(score + 1, front, steps_.circle());
  }

  /// Whether the walk is far below its best score and will certainly not come back to it.
  bool has_fallen_for_good(const Front<forward>& front, std::int64_t best_score) {
    const std::int64_t fall = best_score - front.score;
    if (fall < fall_to_ask_ || front.score < UnitWords::least_score(steps_.circle().length())) return false;
    fall_to_ask_ = 2 * fall;
    return aids_.unit_words.keeps_from(best_score + 1, front, steps_.circle());
  }

  /// Goes on like the walk before this one, as far as that is known to be right. False if the walk has not moved.
  bool follow_trail(State& state, State& best) {
    std::int64_t best_height = best.front.score - steps_.bound();
    std::size_t highest = 0;
    const auto stretch =
        trail_.look(state.front, steps_.bound(),
                    [&](std::size_t stop, std::int64_t before, std::int64_t behind, std::int64_t lowest) {
                      note_lowest_height(before, lowest);
                      if (behind <= best_height) return;
                      best_height = behind;
                      highest = stop;
                      spare_.note_best();
                    });
    if (stretch.empty()) return false;
    if (highest > 0) {
      go_along({stretch.first, highest}, state);
      best = state;
      go_along({highest, stretch.last}, state);
    } else {
      go_along(stretch, state);
    }
    return true;
  }

  void go_along(const typename WalkTrail<forward>::Stretch& stretch, State& state) {
    Counts counts = state.counts;
    sat_.missense.reserve_more(stretch.last - stretch.first);
    trail_.go(state.front, stretch, [&](const char* position, char kind) {
      counts.add(kind);
      sat_.missense.push_back(event_at(position, kind));
    });
    state.counts = counts;
    state.events = sat_.missense.size;
  }

  /// Until the unit begins anew.
  std::int64_t unit_bases_ahead(const Front<forward>& front) const {
    return forward ? steps_.circle().end - front.unit : front.unit + 1 - steps_.circle().begin;
  }

  /// Follows a guide from a checkpoint on, as far as it leads and everything is permitted. False if the walk has not
  /// moved.
  bool follow_guide(State& state, State& best) {
    if (!steps_.permits_all(state.front)) return false;
    const std::int64_t too_low = steps_.bound() - steps_.rules().deepest_lookahead();
    const auto led = guides_.lead(state.front, too_low - state.front.score);
    if (!led) return false;
    const UnitGuide::Way& way = led->way;
    spare_.note_step(0, true);  // more is not known
    const bool is_best = state.front.score + way.highest.gain > best.front.score;
    const State before = state;
    note_events(*led, state);
    if (is_best) {
      spare_.note_best();
      best = led_to(way.highest, before);
      if (state.stretches > before.stretches) {
        best.stretches = state.stretches;
        best.stretch_steps = way.highest.steps.all();
        best.stretch_end = way.highest.position;
      } else {
        best.events = before.events + way.highest.steps.all();
      }
    }
    const State moved = led_to(way.last, before);
    state.front = moved.front;
    state.counts = moved.counts;
    return true;
  }

  /// The state at a later stop of a guide's way.
  State led_to(const UnitGuide::Point& stop, State state) const {
    const std::int64_t bases = std::abs(first_base_ + stop.position - state.front.position);
    const std::int64_t mismatches = stop.steps.mismatches;
    const std::int64_t insertions = stop.steps.insertions;
    const std::int64_t deletions = stop.steps.deletions;
    const std::int64_t matches =
        stop.gain - mismatches * steps_.rules().mismatch_score - (insertions + deletions) * steps_.rules().indel_score;
    steps_.runs().advance(state.front, bases - insertions + deletions);
    state.front.position = first_base_ + stop.position;
    state.front.score += stop.gain;
    state.front.num_Ns += static_cast<std::uint32_t>(bases - matches - mismatches - insertions);
    state.counts.add(stop.steps);
    return state;
  }

  /// Notes the events of a guide's way, or only the stretch if it is long.
  void note_events(const typename WalkGuides<forward>::Led& led, State& state) {
    const std::size_t steps = led.way.last.steps.all();
    const GuidedStretch stretch{led.guide, led.way.first_leg, steps,
                                static_cast<std::uint32_t>(state.front.position - first_base_), led.way.last.position};
    if (untold_ != nullptr && steps > longest_told_stretch) {
      untold_->resize(state.stretches);
      untold_->push_back(stretch);
      ++state.stretches;
      state.stretch_steps = steps;
      state.stretch_end = stretch.end;
      return;
    }
    sat_.missense.reserve_more(steps);
    stretch.for_each_event([this](std::uint32_t position, char kind) {
      sat_.missense.push_back({first_base_ + position, kind});
    });
    state.events = sat_.missense.size;
  }

  void commit(char kind, State& state) {
    note_step(state.front, kind, state);
    state.front = steps_.after(kind, state.front);
  }

  /// The base of a mismatch or an insertion is the one taken in; a deletion lies at the base right of the gap.
  static Csat::Event event_at(const char* position, char kind) {
    return {forward || kind == 'D' ? position : position - 1, kind};
  }

  /// Counts a step from `front` and notes its event.
  void note_step(const Front<forward>& front, char kind, State& state) {
    state.counts.add(kind);
    sat_.missense.push_back(event_at(front.position, kind));
    state.events = sat_.missense.size;
  }

  void adopt(const State& state) {
    state.front.store(sat_);
    sat_.mismatches = state.counts.mismatches;
    sat_.insertions = state.counts.insertions;
    sat_.deletions = state.counts.deletions;
    sat_.missense.size = state.events;
    if (untold_ == nullptr) return;
    untold_->resize(state.stretches);
    if (untold_->empty()) return;
    untold_->back().steps = state.stretch_steps;
    untold_->back().end = state.stretch_end;
  }

  /// The question costs as much as a step or two.
  static constexpr std::int64_t bases_between_checks = 32;
  static constexpr std::size_t longest_told_stretch = 64;
  /// Trails lead so far, or through a unit. Behind them are guides.
  static constexpr std::int64_t trail_bases = 256;
  /// The walks of shorter ones are done in a step or two.
  static constexpr std::int64_t shortest_unit_with_trails = 8;

  Csat& sat_;
  WalkSteps<forward> steps_;
  const char* const first_base_;
  WalkAids<forward>& aids_;
  WalkGuides<forward>& guides_;
  StepMemo<forward>& memo_;
  WalkTrail<forward>& trail_;
  std::vector<GuidedStretch>* const untold_;
  SpareHeight spare_;
  std::int64_t fall_to_ask_ = UnitWords::least_fall;
};
