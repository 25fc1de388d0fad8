#pragma once

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <optional>

#include "search/array_edge.h"
#include "search/base_planes.h"
#include "search/front.h"
#include "search/growth_limit.h"
#include "search/step_choice.h"
#include "search/unit_runs.h"
#include "search/walk_aids.h"
#include "search/walk_bundle.h"
#include "search/walk_course.h"
#include "search/walk_steps.h"

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

/// Walks with one unit of which only places and scores are asked for, no events.
template <bool forward>
class BareWalk {
 public:
  /// As for WalkSteps.
  BareWalk(const UnitCircle& unit, const char* sequence_limit, const ExtensionRules& rules, const BasePlanes& planes,
           const char* first_base, WalkAids<forward>& aids)
      : steps_(unit, sequence_limit, rules, planes, first_base, aids), aids_(aids) {}

  /// The outcome of a walk from `front` on, if that can be told because it is over before it has used its unit up.
  std::optional<Foresight> foresee(Front<forward> front) {
    aids_.end_at(steps_.limit());
    aids_.course.begin_walk();
    const char* const begin = front.position;
    bool way_is_free = steps_.take_matches(front);
    std::int64_t rest = steps_.circle().length() - std::abs(front.position - begin);
    Foresight foresight{front.score, StepChoice::any_height};
    std::int64_t most_height = aids_.growth_limit.most_height_ahead();
    int questions = 2;
    while (rest > 0 && !aids_.course.is_full()) {
      foresight.score = std::max(foresight.score, front.score);
      const std::int64_t height = front.score - steps_.bound();
      if (!way_is_free || front.position == steps_.limit()) return end_course(front, WalkOutlook(), 0, foresight);
      const auto* const stop = aids_.course.find(front);
      if (stop != nullptr && aids_.course.holds(*stop, steps_.circle(), height)) {
        const std::optional<Foresight> outcome = foresight.take(front.score, height, stop->outlook);
        aids_.course.join(front);
        return outcome;
      }
      if (steps_.permits_none(front)) return end_course(front, {1, -steps_.rules().mildest_step(), 0, 0}, 0, foresight);
      // Forward the walks of later seeds come here higher and higher, backward lower and lower.
      if (questions > 0 && height <= (forward ? most_height / 2 : most_height)) {
        const std::int64_t bases =
            std::min(forward ? rest : rest - seeds_to_share_limit, GrowthLimit::most_bases_ahead);
        const std::int64_t gain = aids_.growth_limit.highest_gain_ahead(front, most_height, bases);
        if (front.score + gain <= foresight.score) {
          return end_course(front, {1, most_height, 0, gain}, bases, foresight);
        }
        most_height /= 2;
        --questions;
      }
      const Front<forward> before = front;
      if (stop != nullptr && aids_.course.go_on(steps_.circle(), height, front)) {
        foresight.spare_height = std::min(foresight.spare_height, height - stop->step.lowest);
        rest -= std::abs(front.unit - before.unit);
        continue;
      }
      UnitRuns::View view;
      const StepChoice step = steps_.choose(front, view);
      foresight.spare_height = std::min(foresight.spare_height, height - step.lowest);
      front = steps_.after(step.kind, front);
      way_is_free = steps_.take_matches_behind(step.kind, view, front);
      const std::int64_t bases = std::abs(front.position - before.position);
      const std::int64_t moved = bases + (step.kind == 'D' ? 1 : step.kind == 'I' ? -1 : 0);
      aids_.course.note(before, step, moved, rest);
      rest -= moved;
    }
    return std::nullopt;
  }

  /// What is known before a walk of the event that would be noted where it begins, if the score is at least that of
  /// `begin_of_walk`.
  BeginEvent event_at_begin(const Front<forward>& begin_of_walk) {
    BundledWalk<forward> walk(steps_.circle(), begin_of_walk);
    const Front<forward>& front = walk.front;
    if (front.position == steps_.limit() || front.next_base() == *front.unit) return BeginEvent::none;
    if (front.next_base() == 'N' || !steps_.permits_all(front)) return BeginEvent::unknown;
    UnitRuns::View view;
    if (steps_.choose(front, view).kind != 'D') return BeginEvent::none;
    // Most walks gain something soon. With an array that is longer than the unit by some bases they have to make up
    // for as many deletions.
    const char* const begin = front.position;
    for (std::int64_t bases = bases_of_view; bases <= most_bases_of_view && !walk.is_over; bases *= 4) {
      const WalkLeg<forward> leg = go_to_line(forward ? begin + bases : begin - bases, walk);
      if (leg.depends_on_score) return BeginEvent::unknown;
      // It would be adopted with any higher score, too.
      if (walk.best_score > begin_of_walk.score) return BeginEvent::deletion;
    }
    return BeginEvent::unknown;
  }

  /// Whether a walk that has paused certainly ends at an edge or before, from its highest score so far: this one or a
  /// higher one, up to `most_score`.
  bool ends_by(const char* edge, const char* position, std::int64_t score, std::int64_t most_score) {
    return ArrayEdge<forward>(edge, steps_.limit(), steps_.rules(), aids_.unit_words)
        .stops({position, steps_.circle().begin, score, 0}, most_score, steps_.circle(),
               [this](const char* line, BundledWalk<forward>& walk) { go_to_line(line, walk); });
  }

  /// Goes on to a line, or over it, unless the walk is over before. Returns its leg.
  WalkLeg<forward> go_to_line(const char* line, BundledWalk<forward>& walk) {
    const auto is_there = [line](const Front<forward>& front) {
      return forward ? front.position >= line : front.position <= line;
    };
    const char* const end = forward ? std::min(line, steps_.limit()) : std::max(line, steps_.limit());
    Front<forward>& front = walk.front;
    WalkLeg<forward> leg(front.score);
    while (true) {
      const std::int64_t matches = steps_.runs().count(front, end);
      steps_.runs().advance(front, matches);
      front.score += matches;
      leg.take_run(matches);
      bool way_is_free = true;
      if (front.position != end && front.next_base() == 'N') {
        leg.take_Ns();
        way_is_free = steps_.take_matches(front);
      }
      walk.take_if_best(front);
      leg.take_if_best(front);
      walk.is_over = !way_is_free || front.position == steps_.limit();
      if (walk.is_over || is_there(front)) break;
      leg.stop(front.score, steps_.permits_all(front));
      walk.is_over = steps_.permits_none(front);
      if (walk.is_over) break;
      UnitRuns::View view;
      const StepChoice step = steps_.choose(front, view);
      leg.take_step(step);
      front = steps_.after(step.kind, front);
      if (is_there(front)) break;
    }
    leg.finish(front.score);
    return leg;
  }

 private:
  /// At a stop from which on so many unit bases matter.
  std::optional<Foresight> end_course(const Front<forward>& front, const WalkOutlook& outlook, std::int64_t unit_bases,
                                      const Foresight& foresight) {
    aids_.course.end(front, outlook, unit_bases);
    return foresight.take(front.score, front.score - steps_.bound(), outlook);
  }

  /// Each next one has a unit base less to go backward.
  static constexpr std::int64_t seeds_to_share_limit = 32;
  /// Enough for nearly every walk that goes on to gain something, and for all but a few.
  static constexpr std::int64_t bases_of_view = 64;
  static constexpr std::int64_t most_bases_of_view = 64 << 6;

  WalkSteps<forward> steps_;
  WalkAids<forward>& aids_;
};
