#pragma once

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <optional>
#include <utility>

#include "search/base_planes.h"
#include "search/front.h"
#include "search/lag_matches.h"
#include "search/lookahead_sets.h"
#include "search/lookahead_space.h"
#include "search/lookahead_way.h"
#include "search/step_choice.h"
#include "search/unit_runs.h"

/// Decides the steps of an imperfect walk on one bit for each comparison, for 64 sequence positions and all lags within
/// reach, instead of base by base.
///
/// A further step can only pay off where, after it, more bases match in a row than the mildest penalty costs: a long
/// run. Where none is within reach of the lookahead, the value of a first step is its own score, and the best of the
/// three is found by comparing three runs of matches. Otherwise the lookahead is done, cut off wherever no long run is
/// in reach.
///
/// Most often in a satellite just one first step leads to a long run. Then only ways that begin with another step are
/// followed, and no further than to that run, until nothing but it is in their reach.
///
/// The window stays valid for the walk that it was made for: one unit, one direction. It says nothing near N and the
/// sequence's ends, where matches run out of it, and for depths or penalties beyond its width.
template <bool forward>
class LookaheadWindow {
 public:
  /// `first_base` is the sequence that `planes` was made of. `circle` is the unit of the walk, `runs` its matches.
  LookaheadWindow(const BasePlanes& planes, const UnitRuns& runs, const char* first_base, UnitCircle circle,
                  const ExtensionRules& rules, LookaheadSpace& space)
      : planes_(planes),
        runs_(runs),
        first_base_(first_base),
        circle_(circle),
        rules_(rules),
        long_run_(std::min(-rules.mismatch_score, -rules.indel_score) + 1),
        drift_limit_(std::min(most_drift, rules.maximum_depth + 3)),
        usable_(rules.maximum_depth >= 1 && rules.maximum_depth <= most_depth && long_run_ <= 16 &&
                reach(rules.maximum_depth) <= width),
        space_(space) {}

  /// A choice depends on so many unit bases at least.
  std::int64_t fewest_unit_bases_seen() const { return reach(rules_.maximum_depth) + rules_.maximum_depth; }

  /// The best first step of a walk that has stopped at `front`, of those permitted; '?' if the window cannot tell.
  /// `limit` is where the sequence ends for this direction. At least one kind of step must be permitted.
  StepChoice choose(const Front<forward>& front, const char* limit) {
    const StepChoice found = choose_on_sets(front, limit);
    if (found.kind != '?') return found;
    const StepChoice last = choose_last_step(front, limit);
    if (last.kind != '?') return last;
    if (!usable_ || !locate(front, limit)) return {};
    Place here{position_, drift_};
    const bool plain = no_long_run_in_reach(here.position, rules_.maximum_depth);
    seen_ = position_ + reach(rules_.maximum_depth);
    FirstSteps first(front.score, rules_, circle_);
    if (plain) {
      first.decide_by_runs(run(after_mismatch(here)), run(after_insertion(here)), run(after_deletion(here)));
    } else if (!follow_long_run(here, first)) {
      first = FirstSteps(front.score, rules_, circle_);
      if (position_ > 0) {  // the lookahead needs all the room there is
        made_ = make(front, limit);
        if (!made_ || !place(front)) return {};
        here = {position_, drift_};
      }
      seen_ = position_ + reach(rules_.maximum_depth);
      if (!look_ahead(here, first)) return {};
    }
    return first.choice(seen_ - position_ + rules_.maximum_depth);
  }

 private:
  static constexpr std::int64_t width = LookaheadSpace::width;
  static constexpr std::int64_t most_drift = LookaheadSpace::most_drift;
  static constexpr std::int64_t most_depth = 8;
  using Place = LookaheadSpace::Place;
  using Node = LookaheadSpace::Node;
  using Level = LookaheadSpace::Level;

  /// The choice where the score permits no second step behind any first one: their runs decide. '?' if it does.
  StepChoice choose_last_step(const Front<forward>& front, const char* limit) const {
    FirstSteps first(front.score, rules_, circle_);
    if (first.height + 2 * rules_.mildest_step() > 0) return {};
    UnitRuns::RunsBehindSteps runs;
    if (!runs_.count_behind_steps(front, limit, runs)) return {};
    first.decide_by_runs(runs.mismatch, runs.insertion, runs.deletion);
    const std::int64_t mildest = rules_.mildest_step();
    for (LookaheadWay way : {first.mismatch, first.insertion, first.deletion}) {
      if (first.permits(way.first_step) && way.take_step(mildest, first.bound, first.missing)) return {};
    }
    // A deletion leaves a unit base out, and behind a run a base is seen that does not match.
    return first.choice(runs.longest() + 2);
  }

  /// The choice where the score permits every step, with the usual depth and as much for a mismatch as for an indel.
  /// '?' otherwise, near N, and where 64 bases are too few to tell.
  StepChoice choose_on_sets(const Front<forward>& front, const char* limit) const {
    constexpr std::int64_t depth = LookaheadSets::depth;
    const std::int64_t step_score = rules_.mismatch_score;
    if (rules_.maximum_depth != depth || rules_.indel_score != step_score) return {};
    if (front.score + circle_.length() + depth * step_score <= 0) return {};
    const std::int64_t room = UnitRuns::room(front, limit);
    const std::int64_t first = front.position - first_base_ - (forward ? 0 : width);
    const std::int64_t begin = std::max<std::int64_t>(first, 0);
    const std::int64_t outside = begin - first;  // bases; backward, where the sequence begins
    const std::uint64_t inside = forward ? lowest_bits(room) : ~lowest_bits(outside);
    if ((planes_.unknown_bits(begin) << outside & inside) != 0) return {};
    TwoPlanes<std::uint64_t> sequence{planes_.low_bits(begin) << outside, planes_.high_bits(begin) << outside};
    TwoPlanes<Bits128> unit = runs_.bases_from(front.unit - circle_.begin - (forward ? depth : 2 * width - 1 - depth));
    if (!forward) {
      sequence = {reversed_bits(sequence.low), reversed_bits(sequence.high)};
      unit = {reversed_bits(unit.low), reversed_bits(unit.high)};
    }
    SetsChoice choice;
    if (!LookaheadSets::choose(sequence, unit, room, -step_score, choice)) return {};
    return {letter_of(choice.step), choice.bases_seen + depth, 1 - choice.steps_needed * step_score,
            StepChoice::any_height};
  }

  static Place after_mismatch(const Place& p) { return {p.position + 1, p.drift}; }
  Place after_insertion(const Place& p) const { return {p.position + 1, least_drift(p.drift + 1)}; }
  Place after_deletion(const Place& p) const { return {p.position, least_drift(p.drift - 1)}; }

  /// The unit is a circle: of the drifts that are the same the one that is least far off. `drift` is less than a unit
  /// away from that.
  std::int64_t least_drift(std::int64_t drift) const {
    if (2 * drift > circle_.length()) return drift - circle_.length();
    return 2 * drift <= -circle_.length() ? drift + circle_.length() : drift;
  }

  /// A run of matches at one drift, positions [begin, end).
  struct Run {
    std::int64_t drift;
    std::int64_t begin;
    std::int64_t end;
  };

  /// If just one of the first steps leads to a long run, and it is the best one, leaves only its score. Otherwise
  /// false.
  ///
  /// Another way that comes to that run has taken more steps and has a lower score there than the one that began with
  /// it, or an equal one behind a mismatch. So it can do nothing better from there on.
  bool follow_long_run(const Place& here, FirstSteps& first) {
    if (rules_.mismatch_score <= 2 * rules_.indel_score) return false;
    const Node nodes[] = {{after_mismatch(here), first.mismatch},
                          {after_insertion(here), first.insertion},
                          {after_deletion(here), first.deletion}};
    const Node* best = nullptr;
    for (const Node& node : nodes) {
      if (!first.permits(node.way.first_step) || run(node.place) < long_run_) continue;
      if (best != nullptr) return false;
      best = &node;
    }
    if (best == nullptr) return false;
    const Run way{best->place.drift, best->place.position, best->place.position + run(best->place)};
    const std::int64_t score = best->way.score;
    const std::int64_t goal = score + way.end - way.begin;
    std::int64_t highest = score + long_run_;  // of other ways, or what makes the run a long one
    const std::uint64_t others = long_runs_but(way);
    Level* level = &space_.levels[0];
    Level* next = &space_.levels[1];
    space_.begin(*level);
    for (const Node& node : nodes) {
      if (&node != best && first.permits(node.way.first_step)) space_.push(node.place, node.way, *level);
    }
    for (std::int64_t left = rules_.maximum_depth - 1; level->size > 0; --left) {
      space_.begin(*next);
      for (std::size_t i = 0; i < level->size; ++i) {
        Node& node = level->nodes[i];
        if (node.place.drift == way.drift && node.place.position <= way.end) {
          seen_ = std::max(seen_, node.place.position);
          continue;
        }
        const std::int64_t matches = run(node.place);
        node.place.position += matches;
        node.way.score += matches;
        const std::int64_t seen = node.place.position + (left == 0 ? 1 : reach(left));
        if (node.way.score >= goal || seen > width) return false;
        highest = std::max(highest, node.way.score);
        seen_ = std::max(seen_, seen);
        if (left == 0 || !is_in_reach(others, node.place.position, left)) continue;
        if (!push_steps(node, first, *next)) return false;
      }
      std::swap(level, next);
    }
    // Only so much of the run matters.
    seen_ = std::max(seen_, std::min(way.begin + highest - score + 1, width));
    first.best = best->way;
    return true;
  }

  /// Raises each value, the score right after a first step, to the highest score within the lookahead behind it, as far
  /// as the choice needs that; false if the ways leave the window. Those that all begin with the best step may: they
  /// could only make it better. So may those that can do nothing better than one of these, having left it at the same
  /// place: behind the same run.
  bool look_ahead(const Place& here, FirstSteps& first) {
    Level* level = &space_.levels[0];
    Level* next = &space_.levels[1];
    space_.begin(*level);
    if (first.mismatch_permitted) space_.push(after_mismatch(here), first.mismatch, *level);
    if (first.indel_permitted) {
      space_.push(after_insertion(here), first.insertion, *level);
      space_.push(after_deletion(here), first.deletion, *level);
    }
    space_.begin_stops();
    std::optional<StepKind> kind_outside;
    const auto go_outside = [&](const Node& node) {
      const Place place{std::min(node.place.position, width), node.place.drift};
      seen_ = width;
      if (!space_.note_stop(place, node.way)) return true;
      first.leave_unfinished(node.way);
      const bool may_go = !kind_outside || *kind_outside == node.way.first_step;
      kind_outside = node.way.first_step;
      return may_go;
    };
    for (std::int64_t left = rules_.maximum_depth - 1; level->size > 0; --left) {
      space_.begin(*next);
      for (std::size_t i = 0; i < level->size; ++i) {
        Node& node = level->nodes[i];
        const std::int64_t matches = run(node.place);
        node.place.position += matches;
        node.way.score += matches;
        first.best.raise_to(node.way);
        const std::int64_t seen = node.place.position + (left == 0 ? 1 : reach(left));
        if (seen > width) {
          if (!go_outside(node)) return false;
          continue;
        }
        seen_ = std::max(seen_, seen);
        if (left == 0 || no_long_run_in_reach(node.place.position, left)) continue;
        if (!space_.note_stop(node.place, node.way)) continue;
        if (!push_promising_steps(node, left - 1, first, *next)) return false;
      }
      if (first.is_settled(*next)) break;
      std::swap(level, next);
    }
    return !kind_outside || *kind_outside == first.best.first_step;
  }

  bool push_steps(const Node& node, FirstSteps& first, Level& next) {
    LookaheadWay mismatched = node.way;
    if (mismatched.take_step(rules_.mismatch_score, first.bound, first.missing) &&
        !space_.push(after_mismatch(node.place), mismatched, next)) {
      return false;
    }
    LookaheadWay shifted = node.way;
    if (!shifted.take_step(rules_.indel_score, first.bound, first.missing)) return true;
    return space_.push(after_insertion(node.place), shifted, next) &&
           space_.push(after_deletion(node.place), shifted, next);
  }

  /// The same for the steps behind which a long run begins or can be reached with `left` further ones. No other way
  /// comes to a higher score than it has here.
  bool push_promising_steps(const Node& node, std::int64_t left, FirstSteps& first, Level& next) {
    find_prospects_once();
    const Place mismatch = after_mismatch(node.place);
    const Place insertion = after_insertion(node.place);
    const Place deletion = after_deletion(node.place);
    if (is_promising(mismatch, left)) {
      LookaheadWay way = node.way;
      if (way.take_step(rules_.mismatch_score, first.bound, first.missing) && !space_.push(mismatch, way, next)) {
        return false;
      }
    }
    const bool insertion_is_promising = is_promising(insertion, left);
    const bool deletion_is_promising = is_promising(deletion, left);
    if (!insertion_is_promising && !deletion_is_promising) return true;
    LookaheadWay way = node.way;
    if (!way.take_step(rules_.indel_score, first.bound, first.missing)) return true;
    return (!insertion_is_promising || space_.push(insertion, way, next)) &&
           (!deletion_is_promising || space_.push(deletion, way, next));
  }

  void find_prospects_once() {
    if (has_prospects_) return;
    find_prospects(lags_, static_cast<std::size_t>(2 * drift_limit_ + 1),
                   static_cast<unsigned>(rules_.maximum_depth - 2), static_cast<unsigned>(long_run_), forward,
                   prospects_);
    has_prospects_ = true;
  }

  bool is_promising(const Place& place, std::int64_t left) const {
    const std::uint64_t* const reached = left == 0 ? lags_.long_runs : prospects_.reached[left];
    const std::uint64_t places = reached[lag_number(place.drift) + 1];
    return place.position < width && (forward ? places >> place.position : places << place.position >> (width - 1)) & 1;
  }

  /// Positions of the window that matter for a state with `steps` steps left: those at which a run may begin, each run
  /// on the way being shorter than a long one, and the long run that may begin at the last.
  std::int64_t reach(std::int64_t steps) const { return starts(steps) + long_run_; }
  std::int64_t starts(std::int64_t steps) const { return (steps - 1) * long_run_ + 2; }

  /// Whether no run that pays for its step begins where `steps` steps can lead from a state that has stopped.
  bool no_long_run_in_reach(std::int64_t position, std::int64_t steps) const {
    return !is_in_reach(long_runs_, position, steps);
  }

  bool is_in_reach(std::uint64_t long_runs, std::int64_t position, std::int64_t steps) const {
    const std::int64_t count = starts(steps);
    return (forward ? (long_runs >> position & lowest_bits(count)) : long_runs << position >> (width - count)) != 0;
  }

  /// Where long runs begin, but for the places inside this one.
  std::uint64_t long_runs_but(const Run& way) const {
    const std::uint64_t inside = forward ? lowest_bits(way.end) & ~lowest_bits(way.begin)
                                         : ~lowest_bits(width - way.end) & lowest_bits(width - way.begin);
    std::int64_t same = lag_number(way.drift);
    while (same >= circle_.length()) same -= circle_.length();
    std::uint64_t others = 0;
    for (std::int64_t lag = 0; lag <= 2 * drift_limit_; ++lag) {
      others |= lags_.long_runs[lag + 1] & (lag == same ? ~inside : ~std::uint64_t{0});
      if (lag == same) same += circle_.length();
    }
    return others;
  }

  /// The matches in a row from a state on.
  std::int64_t run(const Place& place) const {
    const std::uint64_t matches = lags_.matches[lag_number(place.drift)];
    if (place.position >= width) return 0;
    const std::uint64_t misses = forward ? ~matches >> place.position : ~matches << place.position;
    if (misses == 0) return width - place.position;
    return forward ? __builtin_ctzll(misses) : __builtin_clzll(misses);
  }

  /// Finds the place of `front` in the window, making a new one if need be. False where no window can be made.
  bool locate(const Front<forward>& front, const char* limit) {
    if (made_ && place(front)) return true;
    made_ = make(front, limit);
    return made_ && place(front);
  }

  bool place(const Front<forward>& front) {
    position_ = forward ? front.position - anchor_position_ : anchor_position_ - front.position;
    if (position_ < 0 || position_ + reach(rules_.maximum_depth) > width) return false;
    const std::int64_t unit_steps = forward ? front.unit - anchor_unit_ : anchor_unit_ - front.unit;
    const auto length = static_cast<std::int32_t>(circle_.length());
    drift_ = least_drift(static_cast<std::int32_t>(position_ - unit_steps) % length);
    return std::abs(drift_) + rules_.maximum_depth <= drift_limit_;
  }

  bool make(const Front<forward>& front, const char* limit) {
    const std::int64_t room = forward ? limit - front.position : front.position - limit;
    if (room < width || circle_.length() > INT32_MAX / 2) return false;
    anchor_position_ = front.position;
    anchor_unit_ = front.unit;
    const std::int64_t first = front.position - first_base_ - (forward ? 0 : width);
    if (planes_.unknown_bits(first) != 0) return false;
    // Bit j of the repeated unit is the unit base j steps after this one.
    const std::int64_t start = front.unit - circle_.begin - drift_limit_ - (forward ? 0 : width - 1);
    long_runs_ = compare_at_lags({planes_.low_bits(first), planes_.high_bits(first)}, runs_.bases_from(start),
                                 static_cast<std::size_t>(2 * drift_limit_ + 1), static_cast<unsigned>(long_run_),
                                 forward, lags_);
    has_prospects_ = false;
    return true;
  }

  /// Where the comparisons at a drift stand.
  std::int64_t lag_number(std::int64_t drift) const { return drift_limit_ + (forward ? -drift : drift); }

  const BasePlanes& planes_;
  const UnitRuns& runs_;
  const char* const first_base_;
  const UnitCircle circle_;
  const ExtensionRules& rules_;
  const std::int64_t long_run_;     ///< matches in a row that pay for a step
  const std::int64_t drift_limit_;  ///< lags on either side that are compared: those in reach, and some for the way
  const bool usable_;
  LookaheadSpace& space_;

  bool made_ = false;
  const char* anchor_position_ = nullptr;
  const char* anchor_unit_ = nullptr;
  std::int64_t position_ = 0;  ///< of the front, in bases taken since the anchor
  std::int64_t seen_ = 0;      ///< positions that the last choice depends on
  std::int64_t drift_ = 0;     ///< of the front: sequence bases less unit bases taken since the anchor
  std::uint64_t long_runs_ = 0;
  LagMatches lags_;
  StepProspects prospects_;
  bool has_prospects_ = false;
};
