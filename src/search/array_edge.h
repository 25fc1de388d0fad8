#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <vector>

#include "search/front.h"
#include "search/unit_words.h"
#include "search/walk_bundle.h"

/// Tells of walks through a satellite array that they end at its edge, or before, without walking through the array.
///
/// A walk that ends beyond the edge gains something from each place before it to there. So 64 bases before the edge it
/// stands in one of a few phases: those from which any way does that at all. From there on it is walked.
///
/// Positions and limits are those of fronts. `unit_words` must outlive the object.
template <bool forward>
class ArrayEdge {
 public:
  /// `limit` is where the sequence ends.
  ArrayEdge(const char* edge, const char* limit, const ExtensionRules& rules, UnitWords& unit_words)
      : edge_(edge), limit_(limit), rules_(rules), unit_words_(unit_words) {}

  /// The score of a walk from which on that can be told where little is gained beyond the edge.
  static std::int64_t score_to_tell(std::int64_t unit_length, const ExtensionRules& rules) {
    return bases_before + most_gain / 2 - rules.deepest_lookahead() - unit_length + 1;
  }

  /// Whether the best state of a walk certainly does not lie beyond the edge. At `front` the score of the walk is the
  /// highest so far: this, or a higher one, up to `most_score`. `go_to_line` as in WalkBundle. False also if that
  /// cannot be told.
  template <typename GoToLine>
  bool stops(const Front<forward>& front, std::int64_t most_score, const UnitCircle& circle,
             GoToLine go_to_line) const {
    if (edge_ == limit_) return true;
    if (distance(front.position, edge_) < bases_before) return false;
    const char* const line = moved(edge_, -bases_before);
    const char* const beyond = distance(edge_, limit_) < bases_beyond ? limit_ : moved(edge_, bases_beyond);
    const std::int64_t score_beyond = most_score + distance(front.position, beyond);
    const std::int64_t far_gain = beyond == limit_ ? 0 : most_gain_from(beyond, circle, score_beyond);
    if (far_gain > most_gain) return false;
    const UnitWords::Gains near = unit_words_.gains<forward>(edge_, beyond, circle, most_gain, bases_beyond);
    const std::int64_t gain = beyond == limit_ ? near.highest : std::max(near.highest, near.last + far_gain);
    if (gain > most_gain) return false;
    // From the line on the score is never lower than this: it could not get above that of the front any more.
    const std::int64_t least_score = front.score - std::max(bases_before + gain, distance(edge_, beyond) + far_gain);
    if (least_score + rules_.deepest_lookahead() <= -circle.length()) return false;

    std::vector<Crossing> crossings;
    for (const char* unit : units_that_may_pass(circle, gain)) {
      BundledWalk<forward> walk(circle, {line, unit, high_score, 0});
      go_to_line(edge_, walk);
      if (is_beyond(walk.best_position)) return false;
      if (walk.is_over || !is_new(crossings, walk)) continue;
      go_to_line(beyond, walk);
      if (is_beyond(walk.best_position)) return false;
      if (!walk.is_over && walk.front.score + far_gain > walk.best_score) return false;
    }
    return true;
  }

 private:
  /// A walk at the edge.
  struct Crossing {
    const char* position;
    const char* unit;
    std::int64_t fall;  ///< below its best score
  };

  static constexpr std::int64_t bases_before = 64;
  static constexpr std::int64_t bases_beyond = std::int64_t{4} * UnitWords::bases;
  /// Beyond the edge. If more may be gained there it is no edge.
  static constexpr std::int64_t most_gain = 64;
  /// That permits every step.
  static constexpr std::int64_t high_score = std::int64_t{1} << 40;
  static constexpr std::int32_t no_gain = INT32_MIN / 2;

  static const char* moved(const char* position, std::int64_t bases) {
    return forward ? position + bases : position - bases;
  }
  static std::int64_t distance(const char* from, const char* to) { return forward ? to - from : from - to; }
  bool is_beyond(const char* position) const { return distance(edge_, position) > 0; }

  std::int64_t most_gain_from(const char* position, const UnitCircle& circle, std::int64_t score) const {
    return unit_words_.gains<forward>(position, limit_, circle, most_gain, score + circle.length()).highest;
  }

  /// The unit bases that a walk may expect at the line, if some way gains so much beyond the edge, and any way at most.
  /// N count as matches.
  std::vector<const char*> units_that_may_pass(const UnitCircle& circle, std::int64_t gain_beyond) const {
    const auto length = static_cast<std::size_t>(circle.length());
    // In the order in which a walk comes to them.
    const auto unit_base = [&circle](std::size_t i) {
      return forward ? circle.begin + i : circle.end - 1 - static_cast<std::ptrdiff_t>(i);
    };
    const auto mismatch = static_cast<std::int32_t>(std::max<std::int64_t>(rules_.mismatch_score, no_gain / 4));
    const auto indel = static_cast<std::int32_t>(std::max<std::int64_t>(rules_.indel_score, no_gain / 4));
    // The most that is gained from each unit base to beyond the edge; one more closes the circle.
    std::vector<std::int32_t> gains(length + 1, static_cast<std::int32_t>(gain_beyond));
    std::vector<std::int32_t> before(length + 1);
    for (std::int64_t i = 0; i < bases_before; ++i) {
      const char base = forward ? edge_[-1 - i] : edge_[i];
      for (std::size_t k = 0; k < length; ++k) {
        const std::int32_t step = base == *unit_base(k) || base == 'N' ? 1 : mismatch;
        before[k] = std::max(gains[k + 1] + step, gains[k] + indel);
      }
      // Deletions lead to a later unit base at the same place, at last round the circle.
      before[length] = no_gain;
      for (std::size_t k = length; k-- > 0;) before[k] = std::max(before[k], before[k + 1] + indel);
      before[length] = before[0];
      for (std::size_t k = length; k-- > 0 && before[k] < before[k + 1] + indel;) before[k] = before[k + 1] + indel;
      before[length] = before[0];
      bool may_pass = false;
      for (std::int32_t& gain : before) {
        if (gain <= 0) gain = no_gain;
        may_pass = may_pass || gain > 0;
      }
      gains.swap(before);
      if (!may_pass) return {};
    }
    std::vector<const char*> units;
    for (std::size_t k = 0; k < length; ++k) {
      if (gains[k] > 0) units.push_back(unit_base(k));
    }
    return units;
  }

  /// Whether no walk that stands there as well has been at least as near its best score.
  static bool is_new(std::vector<Crossing>& crossings, const BundledWalk<forward>& walk) {
    const Crossing crossing{walk.front.position, walk.front.unit, walk.best_score - walk.front.score};
    for (const Crossing& other : crossings) {
      if (other.position == crossing.position && other.unit == crossing.unit && other.fall <= crossing.fall) {
        return false;
      }
    }
    crossings.push_back(crossing);
    return true;
  }

  const char* const edge_;
  const char* const limit_;
  const ExtensionRules& rules_;
  UnitWords& unit_words_;
};
