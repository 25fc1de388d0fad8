#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <vector>

#include "search/candidate_words.h"
#include "search/front.h"
#include "search/thresholds.h"
#include "search/workers.h"

/// Tells in bulk which seeds of a range of unit lengths can possibly reach their minimum scores, where units are too
/// long for SeedFilter. A seed is rejected when every walk from it, forward and backward, provably ends within its unit
/// and the gains that are possible on the way are too small. doc/search.md gives the proof.
class LagFilter {
 public:
  /// The sequence is the half-open range [begin, end), which must outlive the filter.
  LagFilter(const char* begin, const char* end, const ExtensionRules& rules)
      : LagFilter(begin, end, rules, default_bytes(begin, end)) {}
  /// With the memory that the candidates of a range may take, about.
  LagFilter(const char* begin, const char* end, const ExtensionRules& rules, std::size_t candidate_bytes)
      : begin_(begin), end_(end), rules_(rules), candidate_bytes_(candidate_bytes) {}

  /// The last unit length, not above `last`, of a range that begins at `first` and is best decided together.
  std::int64_t end_of_range(std::int64_t first, std::int64_t last) const;

  /// Whether the filter can decide units of this length.
  static bool is_useful(std::int64_t unit_length, std::int64_t minimum_score, const ExtensionRules& rules);

  /// Finds the seeds that must be tried, for the unit lengths from `first` to a last one that is returned: `last`, or
  /// less if the candidates would take too much memory. All unit lengths must be useful. candidates[L - first] holds
  /// the starts of the seeds of unit length L.
  /// Now and then `report_share` is told, by the calling thread, how much of the work is done, 0 to 1.
  std::int64_t mark_candidates(
      std::int64_t first, std::int64_t last, const ThresholdTable& minimum_scores,
      std::vector<CandidateWords>& candidates, const Workers& workers = Workers(1),
      const std::function<void(double)>& report_share = [](double) {}) const;

 private:
  static std::size_t default_bytes(const char* begin, const char* end) {
    return (std::size_t{12} << 20) + static_cast<std::size_t>(end - begin) / 2;
  }

  const char* begin_;
  const char* end_;
  ExtensionRules rules_;
  std::size_t candidate_bytes_;
};
