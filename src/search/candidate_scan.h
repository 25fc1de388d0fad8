#pragma once

// The scan over the seeds of one unit length, shared by the exact and the imperfect search.

#include <cstring>

#include "search/CSearchController.h"

/// The first N at or after `p`, or `end`, when `known` is the first N at or after some position before `p`.
inline const char* first_N(const char* p, const char* known, const char* end) {
  if (known >= p && (known == end || *known == 'N')) return known;
  const void* const found = std::memchr(p, 'N', static_cast<std::size_t>(end - p));
  return found == nullptr ? end : static_cast<const char*>(found);
}

template <typename Settle, typename TrySeed>
void CSearchController::for_each_candidate(std::int64_t unit_length, std::int64_t depth, const CAnchorSeq& anchors,
                                           Settle settle, TrySeed try_seed) {
  const CandidateSet set = find_candidates(unit_length, depth);
  std::size_t next_report = 0;
  const char* next_seed = seq.begin();
  set.for_each_word(0, set.words(), [&](std::size_t word, std::uint64_t bits) {
    // Stretches without candidates take no time worth a report.
    if (word >= next_report) {
      report_progress(seq.begin() + 64 * (word / 4 * 4), unit_length);
      next_report = word / 4 * 4 + 4;
    }
    const char* const first = seq.begin() + 64 * word;
    __builtin_prefetch(first + 1024);  // the seeds lie here and there
    while (next_seed < first + 64) {
      if (next_seed > first) bits &= ~std::uint64_t{0} << (next_seed - first);
      settle(first - 1, unit_length + 66);
      const std::uint64_t rest = bits & anchors.admitted(first, unit_length);
      if (rest == 0) return;
      next_seed = try_seed(first + __builtin_ctzll(rest));
    }
  });
}
