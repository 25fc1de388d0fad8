#pragma once

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>

/// What one state of the lookahead is worth for each kind of first step: the score of the best way to it that begins
/// with that step. So the lookahead goes over each state once, not once for every first step.
class FirstStepScores {
 public:
  static constexpr std::int64_t lost = INT64_MIN / 2;  ///< no way leads here, or a little more than that

  /// Not initialised: the nodes of a lookahead are many.
  FirstStepScores() = default;

  /// The state right after a first step of each kind that is permitted.
  FirstStepScores(std::int64_t mismatch, std::int64_t insertion, std::int64_t deletion)
      : scores_{mismatch, insertion, deletion} {}

  static FirstStepScores none() { return {lost, lost, lost}; }
  FirstStepScores only_mismatch() const { return {scores_[0], lost, lost}; }
  FirstStepScores only_insertion() const { return {lost, scores_[1], lost}; }
  FirstStepScores only_deletion() const { return {lost, lost, scores_[2]}; }
  bool is_lost() const { return *std::max_element(scores_.begin(), scores_.end()) < lost / 2; }

  void add_matches(std::int64_t matches) {
    for (std::int64_t& score : scores_) score += matches;
  }
  void add_matches(std::int64_t mismatch, std::int64_t insertion, std::int64_t deletion) {
    scores_[0] += mismatch;
    scores_[1] += insertion;
    scores_[2] += deletion;
  }

  void raise_to(const FirstStepScores& other) {
    for (std::size_t kind = 0; kind < scores_.size(); ++kind) {
      scores_[kind] = std::max(scores_[kind], other.scores_[kind]);
    }
  }

  /// After a further step, where it is permitted: the score has to stay above `bound`.
  FirstStepScores after(std::int64_t step_score, std::int64_t bound) const {
    FirstStepScores later = none();
    for (std::size_t kind = 0; kind < scores_.size(); ++kind) {
      if (scores_[kind] + step_score > bound) later.scores_[kind] = scores_[kind] + step_score;
    }
    return later;
  }

  /// The first step of the highest score: 'M', 'I' or 'D', on equal scores the first of these.
  char best() const { return "MID"[std::max_element(scores_.begin(), scores_.end()) - scores_.begin()]; }

 private:
  std::array<std::int64_t, 3> scores_;
};
