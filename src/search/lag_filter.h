#pragma once

#include <cstdint>
#include <functional>
#include <vector>

#include "search/front.h"
#include "search/thresholds.h"
#include "search/workers.h"

/// Tells in bulk which seeds of a range of unit lengths can possibly reach their minimum scores, where units are too
/// long for SeedFilter. A seed is rejected when every walk from it, forward and backward, provably ends within its unit
/// and the gains that are possible on the way are too small. doc/search.md gives the proof.
class LagFilter {
 public:
  /// `sequence` is the half-open range [begin, end), which must outlive the filter.
  LagFilter(const char* begin, const char* end, const ExtensionRules& rules)
      : begin_(begin), end_(end), rules_(rules) {}

  /// The last unit length of a range that begins at `first` and is decided together: not above `last`, few enough for
  /// the bit sets of the range to stay within the memory that they may take.
  std::int64_t end_of_range(std::int64_t first, std::int64_t last) const;

  /// Whether the filter can decide units of this length.
  static bool is_useful(std::int64_t unit_length, std::int64_t minimum_score, const ExtensionRules& rules);

  /// Marks the seeds that must be tried, for the unit lengths first to last, inclusive, all useful. candidates[L -
  /// first] has bit p % 64 of word p / 64 for the seed of unit length L that starts at base p.
  /// Now and then `report_share` is told, by the calling thread, how much of the work is done, 0 to 1.
  void mark_candidates(
      std::int64_t first, std::int64_t last, const ThresholdTable& minimum_scores,
      std::vector<std::vector<std::uint64_t>>& candidates, const Workers& workers = Workers(1),
      const std::function<void(double)>& report_share = [](double) {}) const;

 private:
  const char* begin_;
  const char* end_;
  ExtensionRules rules_;
};
