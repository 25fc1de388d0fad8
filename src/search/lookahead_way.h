#pragma once

#include <algorithm>
#include <cstdint>

/// The steps of a walk. Of equally good ones the one that comes first here is preferred.
enum class StepKind : std::uint8_t { mismatch, insertion, deletion };

inline char letter_of(StepKind kind) {
  return "MID"[static_cast<unsigned>(kind)];
}

/// A way of the lookahead: what it has come to, and how it began. Of all ways into one state only the best is followed:
/// whatever it does from there on, the others can do nothing better. So the lookahead goes over each state once, not
/// once for every first step.
struct LookaheadWay {
  std::int64_t score;
  std::int64_t low;  ///< the lowest score right after a step
  StepKind first_step;

  static constexpr std::int64_t no_score = INT64_MIN / 2;
  static constexpr LookaheadWay none() { return {no_score, no_score, StepKind::deletion}; }

  /// Whether it does at least as well as another one, both being at the same place, this one after no more steps.
  bool beats(const LookaheadWay& other) const {
    return score != other.score ? score > other.score : first_step <= other.first_step;
  }

  /// Becomes the other way if that is better. Of two equally good ones with the same first step the one that keeps
  /// higher is better.
  void raise_to(const LookaheadWay& other) {
    if (!beats(other)) {
      *this = other;
    } else if (score == other.score && first_step == other.first_step) {
      low = std::max(low, other.low);
    }
  }

  /// Goes on with a step if it is permitted: the score has to stay above `bound`. Otherwise lowers `missing` to how
  /// much higher it would have to be.
  bool take_step(std::int64_t step_score, std::int64_t bound, std::int64_t& missing) {
    score += step_score;
    low = std::min(low, score);
    if (score <= bound) missing = std::min(missing, bound + 1 - score);
    return score > bound;
  }
};
