#pragma once

#include <cstdint>

#include "search/lag_matches.h"
#include "search/lookahead_way.h"

/// What the lookahead on sets has found.
struct SetsChoice {
  StepKind step = StepKind::mismatch;  ///< the best first one
  std::int64_t bases_seen = 0;         ///< of the sequence, from the stop on
  std::int64_t steps_needed = 0;       ///< so many in a row must be permitted for it to be the best
};

/// The whole lookahead at once, for a walk that has stopped with a score that permits every step.
///
/// The places to which so many steps of each kind lead are a set, one bit for each base: what follows a step, a run of
/// matches included, are a few operations on words for all places together. The score at a place is told by the place
/// and the set.
class LookaheadSets {
 public:
  /// Of the lookahead, the first step included.
  static constexpr int depth = 5;

  /// Base i of `sequence` is the one that lies i bases ahead; there are no N among the nearest `room` ones, at least
  /// one, behind which the sequence ends, unless that are 64 or more. Base i of `unit` is the one that lies i - `depth`
  /// unit bases ahead. Each step costs `penalty`, at least 2. False if more must be seen than there is.
  static bool choose(const TwoPlanes<std::uint64_t>& sequence, const TwoPlanes<Bits128>& unit, std::int64_t room,
                     std::int64_t penalty, SetsChoice& choice);
};
