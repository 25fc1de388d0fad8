#pragma once

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>

/// What one state of the lookahead is worth for each kind of first step: the score of the best way to it that begins
/// with that step, and the lowest score right after a step on that way. So the lookahead goes over each state once, not
/// once for every first step.
class FirstStepScores {
 public:
  static constexpr std::int64_t lost = INT64_MIN / 2;  ///< no way leads here, or a little more than that

  /// Not initialised: the nodes of a lookahead are many.
  FirstStepScores() = default;

  /// The state right after a first step of each kind that is permitted.
  FirstStepScores(std::int64_t mismatch, std::int64_t insertion, std::int64_t deletion)
      : scores_{mismatch, insertion, deletion}, lows_{mismatch, insertion, deletion} {}

  static FirstStepScores none() { return {lost, lost, lost}; }
  FirstStepScores only_mismatch() const { return {scores_[0], lost, lost}; }
  FirstStepScores only_insertion() const { return {lost, scores_[1], lost}; }
  FirstStepScores only_deletion() const { return {lost, lost, scores_[2]}; }
  std::int64_t score_of(std::size_t kind) const { return scores_[kind]; }
  std::int64_t highest() const { return *std::max_element(scores_.begin(), scores_.end()); }
  bool is_lost() const { return highest() < lost / 2; }

  void add_matches(std::int64_t matches) {
    for (std::int64_t& score : scores_) score += matches;
  }
  void add_matches(std::int64_t mismatch, std::int64_t insertion, std::int64_t deletion) {
    scores_[0] += mismatch;
    scores_[1] += insertion;
    scores_[2] += deletion;
  }

  /// Of two equally good ways the one that keeps higher is the better one.
  void raise_to(const FirstStepScores& other) {
    for (std::size_t kind = 0; kind < scores_.size(); ++kind) {
      const bool equal = scores_[kind] == other.scores_[kind];
      const bool higher = scores_[kind] < other.scores_[kind];
      const std::int64_t low = equal ? std::max(lows_[kind], other.lows_[kind]) : lows_[kind];
      lows_[kind] = higher ? other.lows_[kind] : low;
      scores_[kind] = higher ? other.scores_[kind] : scores_[kind];
    }
  }

  /// Forgets the ways that can do nothing better from here on than one of `others`, which has come here with no more
  /// steps: one that begins with the same step, or with another one that is preferred.
  void drop_what_is_beaten_by(const FirstStepScores& others) {
    for (std::size_t kind = 0; kind < scores_.size(); ++kind) {
      bool is_beaten = false;
      for (std::size_t other = 0; other < scores_.size(); ++other) {
        const std::int64_t needed = other <= kind ? others.scores_[other] : others.scores_[other] - 1;
        is_beaten = is_beaten || scores_[kind] <= needed;
      }
      if (is_beaten) scores_[kind] = lows_[kind] = lost;
    }
  }

  /// Whether there is no way that begins with another step than this one.
  bool is_only(std::size_t kind) const {
    for (std::size_t other = 0; other < scores_.size(); ++other) {
      if (other != kind && scores_[other] > lost / 2) return false;
    }
    return true;
  }

  /// After a further step, where it is permitted: the score has to stay above `bound`. Lowers `missing` to how much
  /// higher the lowest of the scores would have to be for which it is not.
  FirstStepScores after(std::int64_t step_score, std::int64_t bound, std::int64_t& missing) const {
    FirstStepScores later = none();
    for (std::size_t kind = 0; kind < scores_.size(); ++kind) {
      const std::int64_t score = scores_[kind] + step_score;
      if (score > bound) {
        later.scores_[kind] = score;
        later.lows_[kind] = std::min(lows_[kind], score);
      } else {
        missing = std::min(missing, bound + 1 - score);
      }
    }
    return later;
  }

  /// The number of the first step of the highest score, mismatch, insertion, deletion; on equal scores the first of
  /// these.
  std::size_t best() const {
    return static_cast<std::size_t>(std::max_element(scores_.begin(), scores_.end()) - scores_.begin());
  }
  /// The lowest score right after a step on the way to it.
  std::int64_t low_of(std::size_t kind) const { return lows_[kind]; }

 private:
  std::array<std::int64_t, 3> scores_;
  std::array<std::int64_t, 3> lows_;
};
