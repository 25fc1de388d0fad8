#pragma once

#include <algorithm>
#include <cstdint>

#include "search/front.h"
#include "search/lookahead_way.h"

/// The first step of a lookahead, and on what the choice depends besides position and unit base.
struct StepChoice {
  char kind = '?';  ///< 'M', 'I', 'D'; '-' if no step is permitted, '?' if it is not known
  /// Unit bases from the expected one on that were looked at, at most.
  std::int64_t unit_bases_seen = 0;
  /// The score's height above the bound of permitted steps: with all heights in this inclusive range the choice is the
  /// same.
  std::int64_t lowest = 1;
  std::int64_t highest = any_height;

  StepChoice() = default;
  StepChoice(char step, std::int64_t seen, std::int64_t lowest_height, std::int64_t highest_height)
      : kind(step), unit_bases_seen(seen), lowest(lowest_height), highest(highest_height) {}

  /// No step is permitted.
  static StepChoice none() { return {'-', 0, 1, any_height}; }

  static constexpr std::int64_t any_height = INT64_MAX / 4;
  static constexpr std::int64_t whole_unit = INT64_MAX;  ///< unit bases looked at: perhaps all, some more than once

  bool holds(std::int64_t height) const { return lowest <= height && height <= highest; }
};

/// The first steps of a lookahead, and what decides on the choice.
struct FirstSteps {
  std::int64_t bound;  ///< a step is permitted if the score stays above
  std::int64_t height;
  bool mismatch_permitted;
  bool indel_permitted;
  LookaheadWay mismatch;  ///< right behind the step, and so below
  LookaheadWay insertion;
  LookaheadWay deletion;
  LookaheadWay best = LookaheadWay::none();  ///< of all ways
  /// The lowest score right after a step on ways that were not followed to their end: others, which would do nothing
  /// better behind a place where they meet, may have been dropped for them.
  std::int64_t low_of_unfinished = INT64_MAX;
  std::int64_t missing = StepChoice::any_height;  ///< with a score higher by this, more would be permitted

  /// From a state of this score on.
  FirstSteps(std::int64_t score, const ExtensionRules& rules, const UnitCircle& circle)
      : bound(-circle.length()),
        height(score - bound),
        mismatch_permitted(height + rules.mismatch_score > 0),
        indel_permitted(height + rules.indel_score > 0),
        mismatch{score + rules.mismatch_score, score + rules.mismatch_score, StepKind::mismatch},
        insertion{score + rules.indel_score, score + rules.indel_score, StepKind::insertion},
        deletion{score + rules.indel_score, score + rules.indel_score, StepKind::deletion} {
    if (!mismatch_permitted) missing = std::min(missing, 1 - height - rules.mismatch_score);
    if (!indel_permitted) missing = std::min(missing, 1 - height - rules.indel_score);
  }

  bool permits(StepKind kind) const { return kind == StepKind::mismatch ? mismatch_permitted : indel_permitted; }

  /// To be called for ways that begin with the step that is chosen in the end.
  void leave_unfinished(const LookaheadWay& way) { low_of_unfinished = std::min(low_of_unfinished, way.low); }

  /// Whether only ways go on that begin with the step that is best so far; they are left unfinished then.
  template <typename Nodes>
  bool is_settled(const Nodes& nodes) {
    const auto begins_with_best = [this](const auto& node) { return node.way.first_step == best.first_step; };
    if (!std::all_of(nodes.begin(), nodes.end(), begins_with_best)) return false;
    for (const auto& node : nodes) leave_unfinished(node.way);
    return true;
  }

  /// The choice by the runs behind the steps alone.
  void decide_by_runs(std::int64_t behind_mismatch, std::int64_t behind_insertion, std::int64_t behind_deletion) {
    mismatch.score += behind_mismatch;
    insertion.score += behind_insertion;
    deletion.score += behind_deletion;
    if (mismatch_permitted) best = mismatch;
    if (indel_permitted && insertion.score > best.score) best = insertion;
    if (indel_permitted && deletion.score > best.score) best = deletion;
  }

  /// The best step. A lower score would leave it the best as long as its way is permitted: the others lose ways then,
  /// too. A higher one would permit others no more, up to where something is missing.
  StepChoice choice(std::int64_t unit_bases_seen) const {
    const std::int64_t spare = std::min(best.low, low_of_unfinished) - bound - 1;
    const std::int64_t highest = missing >= StepChoice::any_height ? StepChoice::any_height : height + missing - 1;
    return {letter_of(best.first_step), unit_bases_seen, height - spare, highest};
  }
};
