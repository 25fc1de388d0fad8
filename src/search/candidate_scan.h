#pragma once

// The scan over the seeds of one unit length, shared by the exact and the imperfect search.

#include <cstring>

#include "search/CSearchController.h"
#include "search/seed_filter.h"

/// The first N at or after `p`, or `end`, when `known` is the first N at or after some position before `p`.
inline const char* first_N(const char* p, const char* known, const char* end) {
  if (known >= p && (known == end || *known == 'N')) return known;
  const void* const found = std::memchr(p, 'N', static_cast<std::size_t>(end - p));
  return found == nullptr ? end : static_cast<const char*>(found);
}

template <typename TrySeed>
void CSearchController::for_each_set_bit(const std::vector<std::uint64_t>& bits, std::int64_t unit_length,
                                         TrySeed try_seed) {
  std::size_t next_report = 0;
  for (std::size_t word = 0; word < bits.size(); ++word) {
    if (bits[word] == 0) continue;  // stretches without candidates take no time worth a report
    if (word >= next_report) {
      report_progress(seq.begin() + 64 * (word / 4 * 4), unit_length);
      next_report = word / 4 * 4 + 4;
    }
    const char* const first = seq.begin() + 64 * word;
    for (std::uint64_t rest = bits[word]; rest != 0; rest &= rest - 1) try_seed(first + __builtin_ctzll(rest));
  }
}

template <typename TrySeed>
void CSearchController::for_each_candidate(std::int64_t unit_length, std::int64_t depth, TrySeed try_seed) {
  const std::int64_t minimum_score = (*minScores)[unit_length];
  const std::int64_t seeds = seq.end() - seq.begin() - unit_length;
  if (seeds <= 0 || seeds < minimum_score)
    return;  // no more bases than these lie outside the unit, each worth +1 at most

  ExtensionRules scan_rules = rules;
  scan_rules.maximum_depth = depth;
  if (unit_length >= lag_range_first && unit_length <= lag_range_last) {
    for_each_set_bit(lag_candidates[static_cast<std::size_t>(unit_length - lag_range_first)], unit_length, try_seed);
  } else if (SeedFilter::is_useful(unit_length, minimum_score, scan_rules)) {
    SeedFilter(planes, seq.begin(), seq.end()).mark_candidates(unit_length, minimum_score, scan_rules, candidates);
    if (minScores == &minScores_intern) drop_seeds_that_cannot_grow(unit_length);
    for_each_set_bit(candidates, unit_length, try_seed);
  } else {
    for (const char* p = seq.begin(); p != seq.begin() + seeds; ++p) {
      report_progress(p, unit_length);
      try_seed(p);
    }
  }
}
