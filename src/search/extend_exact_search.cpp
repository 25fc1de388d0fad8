// The mode that grows exact seeds into imperfect repeats.

#include <algorithm>
#include <iterator>
#include <vector>

#include "search/CSearchController.h"
#include "search/seed_filter.h"

void CSearchController::drop_seeds_that_cannot_grow(std::int64_t unit_length) {
  const std::int64_t minimum_score = minScores_user[unit_length];
  if (!SeedFilter::is_useful(unit_length, minimum_score, rules)) return;
  std::vector<std::uint64_t> growing;
  SeedFilter(planes, seq.begin(), seq.end()).mark_candidates(unit_length, minimum_score, rules, growing, workers);
  for (std::size_t word = 0; word < candidates.size(); ++word) candidates[word] &= growing[word];
}

void CSearchController::search_exact_and_extend_to_imperfect_repeats() {
  say("  Searching for exact repeats.\n");
  minScores = &minScores_intern;
  minLengths = &minLengths_intern;
  exact_search_2();
  exact_first = true;
  minScores = &minScores_user;
  minLengths = &minLengths_user;

  say("  Extend exact to imperfect repeats.\n");
  std::list<Csat*>& seeds = exact_sats.sats;
  while (!seeds.empty()) {
    // The seeds stand in the order of their positions.
    draw_progress(static_cast<double>(unit_lengths()) + share_before(seeds.front()->pos_left));
    grow_some_seeds(seeds);
  }
  imperfect_sats.sats.sort(lessThan_sat);
}

void CSearchController::grow_some_seeds(std::list<Csat*>& seeds) {
  constexpr std::size_t seeds_of_a_task = 64;
  const std::size_t most = workers.count() == 1 ? seeds_of_a_task : 32 * seeds_of_a_task * workers.count();
  const std::vector<Csat*> some(seeds.begin(),
                                std::next(seeds.begin(), static_cast<std::ptrdiff_t>(std::min(most, seeds.size()))));
  std::vector<char> accepted(some.size());
  workers.run((some.size() + seeds_of_a_task - 1) / seeds_of_a_task, [&](std::size_t task, unsigned worker) {
    const std::size_t end = std::min((task + 1) * seeds_of_a_task, some.size());
    for (std::size_t i = task * seeds_of_a_task; i < end; ++i) {
      if (!grow_imperfect(*some[i], aids_of(worker))) continue;
      drop_many_events(*some[i]);
      some[i]->sort_missense();
      accepted[i] = 1;
    }
  });
  for (std::size_t i = 0; i < some.size(); ++i) {
    if (accepted[i] != 0) {
      imperfect_sats.sats.splice(imperfect_sats.sats.end(), seeds, seeds.begin());
    } else {
      sat_alloc.give_back(some[i]);
      seeds.pop_front();
    }
  }
}
