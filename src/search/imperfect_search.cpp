// The direct search for imperfect repeats.

#include <algorithm>

#include "search/CSearchController.h"
#include "search/candidate_scan.h"
#include "search/lag_filter.h"
#include "sequence/global-types-and-parameters.h"

void CSearchController::complete_imperfect_search() {
  CAnchorSeq anchors(seq.begin(), seq.sequence.length);
  std::int64_t first = global_min_unit_length;
  if (first == 1) {
    unit_len_1_complete_imperfect_search(anchors, imperfect_sats.sats);
    // Runs of one base never hide positions from longer units; repeats of longer units do.
    anchors.reset();
    first = 2;
  }
  for (std::int64_t length = first; length <= longest_unit(); ++length) {
    prepare_candidates(length);
    one_unit_len_complete_imperfect_search(length, anchors, imperfect_sats.sats);
  }
  imperfect_sats.sats.sort(lessThan_sat);
}

void CSearchController::unit_len_1_complete_imperfect_search(CAnchorSeq& anchors, std::list<Csat*>& found) {
  Csat* spare = nullptr;
  for_each_candidate(1, rules.maximum_depth, [&](const char* p) {
    if (*p == 'N' || !anchors.is_free(p)) return;
    if (spare == nullptr) spare = sat_alloc.take(p, p + 1);
    spare->seed(p, p + 1);
    if (!grow_imperfect(*spare)) return;
    keep_imperfect(spare, anchors, found);
    spare = nullptr;
  });
  if (spare != nullptr) sat_alloc.give_back(spare);
}

void CSearchController::one_unit_len_complete_imperfect_search(std::int64_t unit_length, CAnchorSeq& anchors,
                                                               std::list<Csat*>& found) {
  const char* const end = seq.end();
  const char* next_N = seq.begin();
  Csat* spare = nullptr;
  for_each_candidate(unit_length, rules.maximum_depth, [&](const char* p) {
    if (!anchors.admits(p, unit_length)) return;
    next_N = first_N(p, next_N, end);
    if (!valid_starting_pattern(p, p + unit_length, next_N)) return;
    if (spare == nullptr) spare = sat_alloc.take(p, p + unit_length);
    spare->seed(p, p + unit_length);
    if (!grow_imperfect(*spare)) return;
    keep_imperfect(spare, anchors, found);
    spare = nullptr;
  });
  if (spare != nullptr) sat_alloc.give_back(spare);
}

/// The lag filter decides a range of unit lengths at a time; a unit length outside the present range begins the next
/// one.
void CSearchController::prepare_candidates(std::int64_t unit_length) {
  if (unit_length <= lag_range_last) return;
  lag_range_first = unit_length;
  lag_range_last = unit_length - 1;
  const auto useful = [this](std::int64_t L) {
    return !SeedFilter::is_useful(L, (*minScores)[L], rules) && LagFilter::is_useful(L, (*minScores)[L], rules);
  };
  const LagFilter filter(seq.begin(), seq.end(), rules);
  const std::int64_t last = filter.end_of_range(unit_length, longest_unit());
  while (lag_range_last < last && useful(lag_range_last + 1)) ++lag_range_last;
  if (lag_range_last < lag_range_first) return;
  // Nearly all of the work on these unit lengths is done here.
  const auto units = static_cast<double>(lag_range_last - lag_range_first + 1);
  const auto done = static_cast<double>(lag_range_first - global_min_unit_length);
  filter.mark_candidates(lag_range_first, lag_range_last, *minScores, lag_candidates,
                         [&](double share) { draw_progress(done + share * units); });
}

void CSearchController::keep_imperfect(Csat* sat, CAnchorSeq& anchors, std::list<Csat*>& found) const {
  anchors.cover(*sat);
  for (const GuidedStretch<true>& stretch : forward_untold) anchors.free_events(stretch);
  for (const GuidedStretch<false>& stretch : backward_untold) anchors.free_events(stretch);
  drop_many_events(*sat);
  sat->sort_missense();
  found.push_back(sat);
}
