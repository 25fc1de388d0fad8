// The extension of a repeat into an imperfect one: a greedy walk with a bounded lookahead.

#include <algorithm>
#include <cstdlib>
#include <functional>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "search/CSearchController.h"
#include "search/array_edge.h"
#include "search/front_set.h"
#include "search/lookahead_way.h"
#include "search/lookahead_window.h"
#include "search/spare_height.h"
#include "search/step_choice.h"
#include "search/unit_runs.h"
#include "search/walk_bundle.h"

namespace {

/// What of a walk is to be done: all, or what is left behind a pause.
enum class WalkPart : std::uint8_t { whole, rest };

/// An event at the position where a walk begins.
enum class BeginEvent : std::uint8_t { none, deletion, unknown };

/// What a walk comes to.
struct Foresight {
  std::int64_t score;         ///< the highest so far
  std::int64_t spare_height;  ///< with a lower height, by up to so much, the outcome would be lower by as much

  /// With what becomes of the walk from a stop on.
  std::optional<Foresight> take(std::int64_t score_at_stop, std::int64_t height, const WalkOutlook& outlook) const {
    const std::int64_t highest = std::max(score, score_at_stop + outlook.gain);
    if (score_at_stop + outlook.limit > highest) return std::nullopt;
    return Foresight{highest, std::min(spare_height, height - outlook.lowest)};
  }
};

/// One direction of the extension of one record.
template <bool forward>
class ImperfectWalk {
 public:
  /// `untold` null: all events are noted. Otherwise long stretches that a guide leads along are only named there.
  ImperfectWalk(Csat& record, UnitCircle unit, const char* sequence_limit, const ExtensionRules& extension_rules,
                const BasePlanes& planes, const char* first_base_of_sequence, WalkAids<forward>& walk_aids,
                std::vector<GuidedStretch>* untold)
      : sat(record),
        circle(unit),
        limit(sequence_limit),
        rules(extension_rules),
        bound(-unit.length()),
        runs(planes, first_base_of_sequence, unit),
        window(planes, runs, first_base_of_sequence, unit, extension_rules, walk_aids.space),
        first_base(first_base_of_sequence),
        aids(walk_aids),
        guides(walk_aids.guides),
        memo(walk_aids.memo),
        view_memo(walk_aids.view_memo),
        trail(walk_aids.trail),
        level(walk_aids.level),
        next_level(walk_aids.next_level),
        stops(walk_aids.stops),
        stretches(untold) {}

  /// Commits step after step until none is permitted, the limit is reached or a run of N blocks the way, or no way
  /// leads to a higher score; then the record takes the earliest state of the highest score on that way. A later state
  /// of equal score is not worth its events.
  ///
  /// It may pause before that, at a stop where the score permits everything and is the highest so far, and the last
  /// base is no N: it will not be taken off. Returns whether it does. A walk from there on goes the rest of the way.
  bool run(WalkPart part, const PausePoint& pause) {
    if (stretches != nullptr) stretches->clear();
    aids.begin_walk(circle, limit);
    State state{Front<forward>::of(sat), {sat.mismatches, sat.insertions, sat.deletions}, sat.missense.size, 0, 0, 0};
    bool way_is_free = runs.extend_exact(state.front, limit, rules);
    way_is_free = way_is_free && may_get_above(state.front.score, state.front);
    State best = state;
    const char* const begin = state.front.position;
    const char* checked = begin;  // where it was last asked whether the walk may go on
    bool is_on_trail = part == WalkPart::whole && circle.length() >= shortest_unit_with_trails;
    bool is_at_checkpoint = false;
    bool pauses = false;
    while (way_is_free && !pauses && rules.maximum_depth > 0 && state.front.position != limit) {
      is_on_trail = is_on_trail && std::abs(state.front.position - begin) < std::max(circle.length(), trail_bases);
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
      if (is_on_trail) trail.note(state.front, step);
      note_lowest_height(state.front.score - bound, step.lowest);
      commit(step.kind, state);
      const char* const run_begin = state.front.position;
      way_is_free = take_run(view, step.kind, state.front);
      is_at_checkpoint = guides.is_checkpoint(state.front, std::abs(state.front.position - run_begin));
      if (!take_if_best(state, best)) continue;
      way_is_free = way_is_free && may_get_above(state.front.score, state.front);
      pauses = way_is_free && std::abs(state.front.position - begin) > pause.bases &&
               state.front.score >= pause.score && all_permitted(state.front) &&
               *(forward ? state.front.position - 1 : state.front.position) != 'N';
    }
    guides.leave();
    adopt(best);
    aids.spare_height = spare.of_walk();
    return pauses;
  }

  /// The outcome of the walk, if that can be told because it is over before it has used its unit up. The record is left
  /// as it is.
  std::optional<Foresight> foresee() {
    aids.end_at(limit);
    aids.course.begin_walk();
    FrontState front = FrontState::of(sat);
    const char* const begin = front.position;
    bool way_is_free = runs.extend_exact(front, limit, rules);
    std::int64_t rest = circle.length() - std::abs(front.position - begin);
    Foresight foresight{front.score, StepChoice::any_height};
    std::int64_t most_height = aids.growth_limit.most_height_ahead();
    int questions = 2;
    while (rest > 0 && !aids.course.is_full()) {
      foresight.score = std::max(foresight.score, front.score);
      const std::int64_t height = front.score - bound;
      if (!way_is_free || front.position == limit) return end_course(front, WalkOutlook(), 0, foresight);
      const auto* const stop = aids.course.find(front);
      if (stop != nullptr && aids.course.holds(*stop, circle, height)) {
        const std::optional<Foresight> outcome = foresight.take(front.score, height, stop->outlook);
        aids.course.join(front);
        return outcome;
      }
      const std::int64_t mildest = std::max(rules.mismatch_score, rules.indel_score);
      if (height + mildest <= 0) return end_course(front, {1, -mildest, 0, 0}, 0, foresight);
      // Forward the walks of later seeds come here higher and higher, backward lower and lower.
      if (questions > 0 && height <= (forward ? most_height / 2 : most_height)) {
        const std::int64_t bases =
            std::min(forward ? rest : rest - seeds_to_share_limit, GrowthLimit::most_bases_ahead);
        const std::int64_t gain = aids.growth_limit.highest_gain_ahead(front, most_height, bases);
        if (front.score + gain <= foresight.score) {
          return end_course(front, {1, most_height, 0, gain}, bases, foresight);
        }
        most_height /= 2;
        --questions;
      }
      const FrontState before = front;
      if (stop != nullptr && aids.course.go_on(circle, height, front)) {
        foresight.spare_height = std::min(foresight.spare_height, height - stop->step.lowest);
        rest -= std::abs(front.unit - before.unit);
        continue;
      }
      UnitRuns::View view;
      const StepChoice step = step_by_view(front, view);
      foresight.spare_height = std::min(foresight.spare_height, height - step.lowest);
      front = after_step(step.kind, front);
      way_is_free = take_run(view, step.kind, front);
      const std::int64_t bases = std::abs(front.position - before.position);
      const std::int64_t moved = bases + (step.kind == 'D' ? 1 : step.kind == 'I' ? -1 : 0);
      aids.course.note(before, step, moved, rest);
      rest -= moved;
    }
    return std::nullopt;
  }

  /// What is known before the walk of the event that would be noted where it begins, if the score is at least that of
  /// the record.
  BeginEvent event_at_begin() {
    BundledWalk<forward> walk(circle, FrontState::of(sat));
    const FrontState& front = walk.front;
    if (front.position == limit || front.next_base() == *front.unit) return BeginEvent::none;
    if (front.next_base() == 'N' || !all_permitted(front)) return BeginEvent::unknown;
    UnitRuns::View view;
    if (step_by_view(front, view).kind != 'D') return BeginEvent::none;
    // Most walks gain something soon. With an array that is longer than the unit by some bases they have to make up
    // for as many deletions.
    const char* const begin = front.position;
    for (std::int64_t bases = bases_of_view; bases <= most_bases_of_view && !walk.is_over; bases *= 4) {
      const WalkLeg<forward> leg = go_to_line(forward ? begin + bases : begin - bases, walk);
      if (leg.depends_on_score) return BeginEvent::unknown;
      // It would be adopted with any higher score, too.
      if (walk.best_score > sat.score) return BeginEvent::deletion;
    }
    return BeginEvent::unknown;
  }

  /// Whether a walk that has paused certainly ends at an edge or before, from its highest score so far: this one or a
  /// higher one, up to `most_score`.
  bool ends_by(const char* edge, const char* position, std::int64_t score, std::int64_t most_score) {
    return ArrayEdge<forward>(edge, limit, rules, aids.unit_words)
        .stops({position, circle.begin, score, 0}, most_score, circle,
               [this](const char* line, BundledWalk<forward>& walk) { go_to_line(line, walk); });
  }

  /// Goes on to a line, or over it, unless the walk is over before. Returns its leg.
  WalkLeg<forward> go_to_line(const char* line, BundledWalk<forward>& walk) {
    const auto is_there = [line](const FrontState& front) {
      return forward ? front.position >= line : front.position <= line;
    };
    const char* const end = forward ? std::min(line, limit) : std::max(line, limit);
    FrontState& front = walk.front;
    WalkLeg<forward> leg(front.score);
    while (true) {
      const std::int64_t matches = runs.count(front, end);
      runs.advance(front, matches);
      front.score += matches;
      leg.take_run(matches);
      bool way_is_free = true;
      if (front.position != end && front.next_base() == 'N') {
        leg.take_Ns();
        way_is_free = runs.extend_exact(front, limit, rules);
      }
      walk.take_if_best(front.score, front.position);
      leg.take_if_best(front);
      walk.is_over = !way_is_free || front.position == limit;
      if (walk.is_over || is_there(front)) break;
      leg.stop(front.score, all_permitted(front));
      walk.is_over = front.score + std::max(rules.mismatch_score, rules.indel_score) <= bound;
      if (walk.is_over) break;
      UnitRuns::View view;
      const StepChoice step = step_by_view(front, view);
      leg.take_step(step);
      front = after_step(step.kind, front);
      if (is_there(front)) break;
    }
    leg.finish(front.score);
    return leg;
  }

 private:
  using FrontState = Front<forward>;

  using Counts = UnitGuide::Counts;

  struct State {
    FrontState front;
    Counts counts;
    std::size_t events;         ///< in the record's list
    std::size_t stretches;      ///< that were only named
    std::size_t stretch_steps;  ///< of the last of them: this state may lie inside it
    std::uint32_t stretch_end;
  };

  FrontState after_mismatch(FrontState front) const {
    front.take_base();
    front.step_unit(circle);
    front.score += rules.mismatch_score;
    return front;
  }

  FrontState after_insertion(FrontState front) const {
    front.take_base();
    front.score += rules.indel_score;
    return front;
  }

  FrontState after_deletion(FrontState front) const {
    front.step_unit(circle);
    front.score += rules.indel_score;
    return front;
  }

  /// Whether the score permits every step of the lookahead, however deep.
  bool all_permitted(const FrontState& front) const {
    return front.score + rules.maximum_depth * std::min(rules.mismatch_score, rules.indel_score) > bound;
  }

  /// `view` may be looked at for it.
  StepChoice next_step(const FrontState& front, UnitRuns::View& view) {
    if (front.score + std::max(rules.mismatch_score, rules.indel_score) <= bound) return StepChoice::none();
    const StepChoice step = step_by_memo(front, view);
    if (all_permitted(front)) {
      guides.note(front, step.kind);
    } else {
      guides.leave();
    }
    return step;
  }

  /// At a stop from which on so many unit bases matter.
  std::optional<Foresight> end_course(const FrontState& front, const WalkOutlook& outlook, std::int64_t unit_bases,
                                      const Foresight& foresight) {
    aids.course.end(front, outlook, unit_bases);
    return foresight.take(front.score, front.score - bound, outlook);
  }

  StepChoice step_by_memo(const FrontState& front, UnitRuns::View& view) {
    const std::int64_t rest = unit_bases_ahead(front);
    if (rest < window.fewest_unit_bases_seen()) return step_by_view(front, view);
    StepChoice step = memo.step_at(front, rest, front.score - bound);
    if (step.kind != '?') return step;
    step = step_by_view(front, view);
    memo.note(front, step, rest);
    return step;
  }

  StepChoice step_by_view(const FrontState& front, UnitRuns::View& view) {
    runs.look(front, limit, view);
    if (!view.is_whole) return found_step(front);
    const NearView<forward> seen(view);
    if (!view_memo.pays() && !view_memo.is_sample(seen)) return found_step(front);
    StepChoice step = view_memo.step_at(seen, front.score - bound);
    view_memo.count(step.kind != '?');
    if (step.kind == '?') {
      step = found_step(front);
      view_memo.note(seen, step);
    }
    return step;
  }

  StepChoice found_step(const FrontState& front) {
    const StepChoice step = window.choose(front, limit);
    return step.kind == '?' ? deep_step(front) : step;
  }

  /// Of matches, behind a step. False if a run of N blocks the way.
  bool take_run(const UnitRuns::View& view, char kind, FrontState& front) const {
    if (view.is_whole) {
      const std::int64_t matches = UnitRuns::matches_behind<forward>(kind, view);
      if (matches < UnitRuns::most_seen) {
        runs.advance(front, matches);
        front.score += matches;
        return true;
      }
    }
    return runs.extend_exact(front, limit, rules);
  }

  /// To be called for each step before it is taken.
  void note_lowest_height(std::int64_t height, std::int64_t lowest) {
    spare.note_step(height - lowest, lowest > 1 - std::max(rules.mismatch_score, rules.indel_score));
  }

  bool take_if_best(const State& state, State& best) {
    if (state.front.score <= best.front.score) return false;
    best = state;
    spare.note_best();
    return true;
  }

  /// Whether the walk may come to a higher score than this one behind a stop.
  bool may_get_above(std::int64_t score, const FrontState& front) const {
    return front.position != limit && !aids.growth_limit.keeps_from(score + 1, front, circle);
  }

  /// Whether the walk is far below its best score and will certainly not come back to it.
  bool has_fallen_for_good(const FrontState& front, std::int64_t best_score) {
    const std::int64_t fall = best_score - front.score;
    if (fall < fall_to_ask || front.score < UnitWords::least_score(circle.length())) return false;
    fall_to_ask = 2 * fall;
    return aids.unit_words.keeps_from(best_score + 1, front, circle);
  }

  /// Goes on like the walk before this one, as far as that is known to be right. False if the walk has not moved.
  bool follow_trail(State& state, State& best) {
    std::int64_t best_height = best.front.score - bound;
    std::size_t highest = 0;
    const auto stretch = trail.look(
        state.front, bound, [&](std::size_t stop, std::int64_t before, std::int64_t behind, std::int64_t lowest) {
          note_lowest_height(before, lowest);
          if (behind <= best_height) return;
          best_height = behind;
          highest = stop;
          spare.note_best();
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
    sat.missense.reserve_more(stretch.last - stretch.first);
    trail.go(state.front, stretch, [&](const char* position, char kind) {
      counts.add(kind);
      sat.missense.push_back(event_at(position, kind));
    });
    state.counts = counts;
    state.events = sat.missense.size;
  }

  /// Until the unit begins anew.
  std::int64_t unit_bases_ahead(const FrontState& front) const {
    return forward ? circle.end - front.unit : front.unit + 1 - circle.begin;
  }

  /// Follows a guide from a checkpoint on, as far as it leads and everything is permitted. False if the walk has not
  /// moved.
  bool follow_guide(State& state, State& best) {
    if (!all_permitted(state.front)) return false;
    const std::int64_t too_low = bound - rules.maximum_depth * std::min(rules.mismatch_score, rules.indel_score);
    const auto led = guides.lead(state.front, too_low - state.front.score);
    if (!led) return false;
    const UnitGuide::Way& way = led->way;
    spare.note_step(0, true);  // more is not known
    const bool is_best = state.front.score + way.highest.gain > best.front.score;
    const State before = state;
    note_events(*led, state);
    if (is_best) {
      spare.note_best();
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
    const std::int64_t bases = std::abs(first_base + stop.position - state.front.position);
    const std::int64_t mismatches = stop.steps.mismatches;
    const std::int64_t insertions = stop.steps.insertions;
    const std::int64_t deletions = stop.steps.deletions;
    const std::int64_t matches =
        stop.gain - mismatches * rules.mismatch_score - (insertions + deletions) * rules.indel_score;
    runs.advance(state.front, bases - insertions + deletions);
    state.front.position = first_base + stop.position;
    state.front.score += stop.gain;
    state.front.num_Ns += static_cast<std::uint32_t>(bases - matches - mismatches - insertions);
    state.counts.add(stop.steps);
    return state;
  }

  /// Notes the events of a guide's way, or only the stretch if it is long.
  void note_events(const typename WalkGuides<forward>::Led& led, State& state) {
    const std::size_t steps = led.way.last.steps.all();
    const GuidedStretch stretch{led.guide, led.way.first_leg, steps,
                                static_cast<std::uint32_t>(state.front.position - first_base), led.way.last.position};
    if (stretches != nullptr && steps > longest_told_stretch) {
      stretches->resize(state.stretches);
      stretches->push_back(stretch);
      ++state.stretches;
      state.stretch_steps = steps;
      state.stretch_end = stretch.end;
      return;
    }
    sat.missense.reserve_more(steps);
    stretch.for_each_event([this](std::uint32_t position, char kind) {
      sat.missense.push_back({first_base + position, kind});
    });
    state.events = sat.missense.size;
  }

  /// The first step of the best combination of steps within the lookahead, without the window. On equal values a
  /// mismatch wins over an insertion and that over a deletion. Of two ways into one state, same position and unit base
  /// after equally many steps, only the higher-scoring one is followed: the bound forbids it nothing that it permits
  /// the other, and every later score is higher by the same difference. So the work grows polynomially with the depth.
  StepChoice deep_step(const FrontState& front) {
    FirstSteps first(front.score, rules, circle);
    level.clear();
    stops.clear();
    if (first.mismatch_permitted) level.add(after_mismatch(front), first.mismatch);
    if (first.indel_permitted) {
      level.add(after_insertion(front), first.insertion);
      level.add(after_deletion(front), first.deletion);
    }
    for (std::int64_t depth = 1; !level.nodes().empty(); ++depth) {
      next_level.clear();
      for (auto& [state, way] : level.nodes()) {
        const std::int64_t score = state.score;
        const bool way_is_free = runs.extend_exact(state, limit, rules);
        way.score += state.score - score;
        first.best.raise_to(way);
        if (!way_is_free || depth == rules.maximum_depth || state.position == limit) continue;
        if (stops.note_stop(state, way)) add_steps(state, way, first);
      }
      if (first.is_settled(next_level.nodes())) break;
      std::swap(level, next_level);
    }
    return first.choice(StepChoice::whole_unit);
  }

  void add_steps(const FrontState& state, const LookaheadWay& way, FirstSteps& first) {
    LookaheadWay mismatched = way;
    if (mismatched.take_step(rules.mismatch_score, bound, first.missing)) {
      next_level.add(after_mismatch(state), mismatched);
    }
    LookaheadWay shifted = way;
    if (!shifted.take_step(rules.indel_score, bound, first.missing)) return;
    next_level.add(after_insertion(state), shifted);
    next_level.add(after_deletion(state), shifted);
  }

  void commit(char kind, State& state) {
    note_step(state.front, kind, state);
    state.front = after_step(kind, state.front);
  }

  FrontState after_step(char kind, const FrontState& front) const {
    return kind == 'M' ? after_mismatch(front) : kind == 'I' ? after_insertion(front) : after_deletion(front);
  }

  /// The base of a mismatch or an insertion is the one taken in; a deletion lies at the base right of the gap.
  static Csat::Event event_at(const char* position, char kind) {
    return {forward || kind == 'D' ? position : position - 1, kind};
  }

  /// Counts a step from `front` and notes its event.
  void note_step(const FrontState& front, char kind, State& state) {
    state.counts.add(kind);
    sat.missense.push_back(event_at(front.position, kind));
    state.events = sat.missense.size;
  }

  void adopt(const State& state) {
    state.front.store(sat);
    sat.mismatches = state.counts.mismatches;
    sat.insertions = state.counts.insertions;
    sat.deletions = state.counts.deletions;
    sat.missense.size = state.events;
    if (stretches == nullptr) return;
    stretches->resize(state.stretches);
    if (stretches->empty()) return;
    stretches->back().steps = state.stretch_steps;
    stretches->back().end = state.stretch_end;
  }

  /// Each next one has a unit base less to go backward.
  static constexpr std::int64_t seeds_to_share_limit = 32;
  /// Enough for nearly every walk that goes on to gain something, and for all but a few.
  static constexpr std::int64_t bases_of_view = 64;
  static constexpr std::int64_t most_bases_of_view = 64 << 6;
  /// The question costs as much as a step or two.
  static constexpr std::int64_t bases_between_checks = 32;
  static constexpr std::size_t longest_told_stretch = 64;
  /// Trails lead so far, or through a unit. Behind them are guides.
  static constexpr std::int64_t trail_bases = 256;
  /// The walks of shorter ones are done in a step or two.
  static constexpr std::int64_t shortest_unit_with_trails = 8;

  Csat& sat;
  const UnitCircle circle;
  const char* const limit;
  const ExtensionRules& rules;
  const std::int64_t bound;
  const UnitRuns runs;
  LookaheadWindow<forward> window;
  const char* const first_base;
  WalkAids<forward>& aids;
  WalkGuides<forward>& guides;
  StepMemo<forward>& memo;
  ViewMemo<forward>& view_memo;
  WalkTrail<forward>& trail;
  FrontSet<forward>& level;
  FrontSet<forward>& next_level;
  FrontSet<forward>& stops;
  std::vector<GuidedStretch>* const stretches;
  SpareHeight spare;
  std::int64_t fall_to_ask = UnitWords::least_fall;
};

}  // namespace

void CSearchController::extend_imperfect_forward(Csat& sat, const char* seq_end) const {
  ImperfectWalk<true>(sat, {sat.unit_begin, sat.unit_end}, seq_end, rules, planes, seq.begin(), aids_of(0).forward,
                      nullptr)
      .run(WalkPart::whole, PausePoint::never());
}

void CSearchController::extend_imperfect_backward(Csat& sat, const char* left_limit) const {
  ImperfectWalk<false>(sat, {sat.unit_begin, sat.unit_end}, left_limit + 1, rules, planes, seq.begin(),
                       aids_of(0).backward, nullptr)
      .run(WalkPart::whole, PausePoint::never());
}

Growth CSearchController::grow_imperfect(Csat& seed, GrowthAids& aids, const PausePoint& pause) const {
  const UnitCircle unit{seed.unit_begin, seed.unit_end};
  ImperfectWalk<true> forward(seed, unit, seq.end(), rules, planes, seq.begin(), aids.forward, &aids.forward.untold);
  if (forward.run(WalkPart::whole, pause)) return Growth::paused_forward;
  ImperfectWalk<false> backward(seed, unit, seq.begin(), rules, planes, seq.begin(), aids.backward,
                                &aids.backward.untold);
  const bool pauses = backward.run(WalkPart::whole, pause);
  seed.remove_Ns_at_ends();
  return pauses ? Growth::paused_backward : Growth::finished;
}

std::optional<std::int64_t> CSearchController::foresee_score(Csat& seed, GrowthAids& aids) const {
  if (rules.maximum_depth == 0) return std::nullopt;  // no step is taken
  const UnitCircle unit{seed.unit_begin, seed.unit_end};
  const auto forward =
      ImperfectWalk<true>(seed, unit, seq.end(), rules, planes, seq.begin(), aids.forward, nullptr).foresee();
  if (!forward) return std::nullopt;
  seed.score = forward->score;
  const auto backward =
      ImperfectWalk<false>(seed, unit, seq.begin(), rules, planes, seq.begin(), aids.backward, nullptr).foresee();
  seed.score = 0;
  if (!backward) return std::nullopt;
  aids.forward.spare_height = forward->spare_height;
  return backward->score;
}

bool CSearchController::grow_on(Csat& sat, GrowthAids& aids, const PausePoint& pause) const {
  ImperfectWalk<true> forward(sat, {sat.unit_begin, sat.unit_end}, seq.end(), rules, planes, seq.begin(), aids.forward,
                              &aids.forward.untold);
  const bool pauses = forward.run(WalkPart::rest, pause);
  sat.remove_Ns_at_ends();
  return pauses;
}

bool CSearchController::note_event_at_left_end(Csat& seed, GrowthAids& aids) const {
  const BeginEvent event = ImperfectWalk<false>(seed, {seed.unit_begin, seed.unit_end}, seq.begin(), rules, planes,
                                                seq.begin(), aids.backward, nullptr)
                               .event_at_begin();
  if (event == BeginEvent::deletion) seed.missense.push_back({seed.pos_left, 'D'});
  return event != BeginEvent::unknown;
}

namespace {

/// Of one unit length.
template <bool forward>
void grow_side_by_side(const std::vector<GrowingRepeat*>& repeats, std::int64_t unit_length, const char* limit,
                       const ExtensionRules& rules, const BasePlanes& planes, const char* first_base,
                       WalkAids<forward>& aids) {
  Csat record;
  WalkBundle<forward> bundle(planes, first_base, unit_length, rules, aids.unit_words);
  bundle.finish(repeats, [&](const char* line, auto& walk) {
    return ImperfectWalk<forward>(record, walk.circle, limit, rules, planes, first_base, aids, nullptr)
        .go_to_line(line, walk);
  });
}

}  // namespace

bool CSearchController::stays_within(const GrowingRepeat& grown, Growth growth, std::int64_t unit_length,
                                     const Stretch& stretch) const {
  GrowthAids& aids = aids_of(0);
  const char* const first_base = seq.begin();
  const UnitCircle unit{first_base + grown.unit, first_base + grown.unit + unit_length};
  Csat record;
  std::int64_t most_score = grown.score;
  if (growth == Growth::paused_forward) {
    ImperfectWalk<true> walk(record, unit, seq.end(), rules, planes, first_base, aids.forward, nullptr);
    if (!walk.ends_by(first_base + stretch.end, first_base + grown.right_end, grown.score, most_score)) return false;
    most_score += stretch.end - grown.right_end;
  }
  ImperfectWalk<false> walk(record, unit, first_base, rules, planes, first_base, aids.backward, nullptr);
  return walk.ends_by(first_base + stretch.begin, first_base + grown.left, grown.score, most_score);
}

void CSearchController::finish_growth(const std::vector<GrowingRepeat*>& forward,
                                      const std::vector<GrowingRepeat*>& backward, std::int64_t unit_length) const {
  share_out(forward, unit_length, [&](const std::vector<GrowingRepeat*>& share, GrowthAids& aids) {
    grow_side_by_side(share, unit_length, seq.end(), rules, planes, seq.begin(), aids.forward);
  });
  share_out(backward, unit_length, [&](const std::vector<GrowingRepeat*>& share, GrowthAids& aids) {
    grow_side_by_side(share, unit_length, seq.begin(), rules, planes, seq.begin(), aids.backward);
  });
  const char* const first_base = seq.begin();
  for (GrowingRepeat* grown : backward) {
    while (first_base[grown->right_end - 1] == 'N') --grown->right_end;
    while (first_base[grown->left] == 'N') ++grown->left;
  }
}

void CSearchController::share_out(const std::vector<GrowingRepeat*>& repeats, std::int64_t unit_length,
                                  const GrowShare& grow) const {
  std::vector<std::vector<GrowingRepeat*>> shares(workers.count());
  for (GrowingRepeat* repeat : repeats) {
    const char* const unit = seq.begin() + repeat->unit;
    const bool is_alone = shares.size() == 1;
    const std::size_t mixed = is_alone ? 0 : std::hash<std::string>()(UnitClass({unit, unit + unit_length}).text());
    shares[mixed % shares.size()].push_back(repeat);
  }
  workers.run(shares.size(), [&](std::size_t number, unsigned worker) { grow(shares[number], aids_of(worker)); });
}
