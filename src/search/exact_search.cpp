// The exact search: every perfect tandem repeat, runs of N within limits.

#include <algorithm>
#include <cstddef>

#include "search/CSearchController.h"
#include "search/candidate_scan.h"
#include "search/unit_runs.h"
#include "sequence/global-types-and-parameters.h"

namespace {

template <bool forward>
bool extend(Csat& sat, const char* limit, const ExtensionRules& rules, const UnitRuns& runs) {
  auto front = Front<forward>::of(sat);
  const bool result = runs.extend_exact(front, limit, rules);
  front.store(sat);
  return result;
}

/// Exact repeats are covered as a whole when they are found.
void nothing_waits(const char*, std::ptrdiff_t) {}

}  // namespace

bool CSearchController::extend_exact_forward(Csat& sat, const char* stop) const {
  return extend<true>(sat, stop, rules, UnitRuns(planes, seq.begin(), {sat.unit_begin, sat.unit_end}));
}

bool CSearchController::extend_exact_backward(Csat& sat, const char* stop) const {
  return extend<false>(sat, stop + 1, rules, UnitRuns(planes, seq.begin(), {sat.unit_begin, sat.unit_end}));
}

void CSearchController::extend_exact_both_ways(Csat& sat) const {
  extend_exact_forward(sat, seq.end());
  extend_exact_backward(sat, seq.begin() - 1);
  sat.remove_Ns_at_ends();
}

void CSearchController::exact_search_2() {
  find_exact_repeats([this](Csat* sat) {
    exact_sats.sats.push_back(sat);
    return true;
  });
  sort_sats(exact_sats.sats);
}

void CSearchController::find_exact_repeats(const KeepRepeat& keep) {
  CAnchorSeq cover(seq.begin(), seq.sequence.length);
  std::int64_t first = global_min_unit_length;
  if (first == 1) {
    search_exact_mononucleotides(cover, keep);
    first = 2;
  }
  for (std::int64_t k = first; k <= longest_unit(); ++k) search_exact_units(k, cover, keep);
}

/// Runs of one base are not written into the cover: the scan jumps over each, and they must not hide longer units.
void CSearchController::search_exact_mononucleotides(CAnchorSeq& cover, const KeepRepeat& keep) {
  const Minimum minimum = minimum_of(1);
  Csat* spare = nullptr;
  for_each_candidate(1, 0, cover, nothing_waits, [&](const char* p) {
    if (*p == 'N') return p + 1;
    if (spare == nullptr) spare = sat_alloc.take(p, p + 1);
    spare->seed(p, p + 1);
    extend_exact_both_ways(*spare);
    if (!minimum.is_reached_by(*spare)) return p + 1;
    const char* const end = spare->pos_right_end;
    if (keep(spare)) spare = nullptr;
    return end;
  });
  if (spare != nullptr) sat_alloc.give_back(spare);
}

/// A kept repeat that also passes the user's thresholds is covered, so that it is not found again in another phase of
/// its unit or at a multiple of it. The cover is carried on to the longer units. What is not covered is found again in
/// every phase, once for each; where the overlap removal would leave one of them only, the first one will do.
void CSearchController::search_exact_units(std::int64_t unit_length, CAnchorSeq& cover, const KeepRepeat& keep) {
  const Minimum minimum = minimum_of(unit_length);
  const Minimum minimum_of_user(minScores_user, minLengths_user, unit_length);
  const char* next_N = seq.begin() + planes.first_unknown(0);
  Csat* spare = nullptr;
  for_each_candidate(unit_length, 0, cover, nothing_waits, [&](const char* p) {
    if (next_N < p) next_N = seq.begin() + planes.first_unknown(p - seq.begin());
    if (!valid_starting_pattern(p, p + unit_length, next_N)) {
      const char* const run_end = std::find_if(p, seq.end(), [p](char base) { return base != *p; });
      return std::max(p + 1, run_end - unit_length + 1);  // in a run of one base no window is a unit
    }
    if (spare == nullptr) spare = sat_alloc.take(p, p + unit_length);
    spare->seed(p, p + unit_length);
    extend_exact_both_ways(*spare);
    const bool is_enough = global_remove_mostly_hidden && spare->num_Ns == 0;
    const char* const next_seed = is_enough ? spare->pos_right_end - unit_length + 1 : p + 1;
    if (minimum.is_reached_by(*spare)) {
      if (minimum_of_user.is_reached_by(*spare)) cover.cover(*spare);
      if (keep(spare)) spare = nullptr;
    }
    return next_seed;
  });
  if (spare != nullptr) sat_alloc.give_back(spare);
}
