// The mode that grows exact seeds into imperfect repeats.

#include "search/CSearchController.h"
#include "search/run_status.h"
#include "search/seed_filter.h"

void CSearchController::drop_seeds_that_cannot_grow(std::int64_t unit_length) {
  const std::int64_t minimum_score = minScores_user[unit_length];
  if (!SeedFilter::is_useful(unit_length, minimum_score, rules)) return;
  std::vector<std::uint64_t> growing;
  SeedFilter(planes, seq.begin(), seq.end()).mark_candidates(unit_length, minimum_score, rules, growing);
  for (std::size_t word = 0; word < candidates.size(); ++word) candidates[word] &= growing[word];
}

void CSearchController::search_exact_and_extend_to_imperfect_repeats() {
  write_status("  Searching for exact repeats.\n");
  minScores = &minScores_intern;
  minLengths = &minLengths_intern;
  exact_search_2();
  exact_first = true;
  minScores = &minScores_user;
  minLengths = &minLengths_user;

  write_status("  Extend exact to imperfect repeats.\n");
  std::list<Csat*>& seeds = exact_sats.sats;
  std::list<Csat*>& found = imperfect_sats.sats;
  while (!seeds.empty()) {
    Csat* const sat = seeds.front();
    // The seeds stand in the order of their positions.
    draw_progress(static_cast<double>(unit_lengths()) + share_before(sat->pos_left));
    if (grow_imperfect(*sat)) {
      drop_many_events(*sat);
      sat->sort_missense();
      found.splice(found.end(), seeds, seeds.begin());
    } else {
      sat_alloc.give_back(sat);
      seeds.pop_front();
    }
  }
  found.sort(lessThan_sat);
}
