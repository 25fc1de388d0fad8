#pragma once

#include <algorithm>
#include <cstdint>

#include "search/first_step_scores.h"
#include "search/front.h"

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

/// The first steps of a lookahead: what each is worth so far, and what decides on the choice.
struct FirstSteps {
  std::int64_t bound;  ///< a step is permitted if the score stays above
  std::int64_t height;
  bool mismatch_permitted;
  bool indel_permitted;
  FirstStepScores scores;
  std::int64_t missing = StepChoice::any_height;  ///< with a score higher by this, more would be permitted

  /// From a state of this score on.
  FirstSteps(std::int64_t score, const ExtensionRules& rules, const UnitCircle& circle)
      : bound(-circle.length()),
        height(score - bound),
        mismatch_permitted(height + rules.mismatch_score > 0),
        indel_permitted(height + rules.indel_score > 0),
        scores(mismatch_permitted ? score + rules.mismatch_score : FirstStepScores::lost,
               indel_permitted ? score + rules.indel_score : FirstStepScores::lost,
               indel_permitted ? score + rules.indel_score : FirstStepScores::lost) {
    if (!mismatch_permitted) missing = std::min(missing, 1 - height - rules.mismatch_score);
    if (!indel_permitted) missing = std::min(missing, 1 - height - rules.indel_score);
  }

  /// The best step. A lower score would leave it the best as long as its way is permitted: the others lose ways then,
  /// too. A higher one would permit others no more, up to where something is missing.
  StepChoice choice(std::int64_t unit_bases_seen) const {
    const std::size_t best = scores.best();
    const std::int64_t spare = scores.low_of(best) - bound - 1;
    const std::int64_t highest = missing >= StepChoice::any_height ? StepChoice::any_height : height + missing - 1;
    return {"MID"[best], unit_bases_seen, height - spare, highest};
  }
};
