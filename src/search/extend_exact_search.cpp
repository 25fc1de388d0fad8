// The mode that grows exact seeds into imperfect repeats.

#include <algorithm>
#include <tuple>
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

namespace {

/// The order of the repeats; where they are the same stretch, that of the exact ones.
bool comes_first(const GrownRepeat& a, const GrownRepeat& b) {
  const auto place = [](const GrownRepeat& r) {
    return std::make_tuple(r.sat->pos_left, r.sat->pos_right_end, r.left, r.right_end);
  };
  return place(a) < place(b);
}

}  // namespace

/// The exact repeats grow as soon as enough for all threads are found: most of them fail, and they are too many to be
/// stored.
void CSearchController::search_exact_and_extend_to_imperfect_repeats() {
  say("  Searching for exact repeats.\n");
  exact_first = true;
  minScores = &minScores_intern;
  minLengths = &minLengths_intern;
  std::vector<GrownRepeat> found;
  std::vector<GrownRepeat> waiting;
  const std::size_t enough = workers.count() == 1 ? 64 : 2048 * std::size_t{workers.count()};
  const auto grow_waiting = [&] {
    grow_exact_repeats(waiting);
    for (const GrownRepeat& grown : waiting) {
      if (grown.sat != nullptr) found.push_back(grown);
    }
    waiting.clear();
  };
  find_exact_repeats([&](Csat* sat) {
    waiting.push_back({sat, sat->pos_left, sat->pos_right_end});
    if (waiting.size() == enough) grow_waiting();
    return true;
  });
  grow_waiting();
  minScores = &minScores_user;
  minLengths = &minLengths_user;

  say("  Extend exact to imperfect repeats.\n");
  std::stable_sort(found.begin(), found.end(), comes_first);
  for (const GrownRepeat& grown : found) imperfect_sats.sats.push_back(grown.sat);
}

/// A seed that does not reach the user's thresholds goes back to the pool.
void CSearchController::grow_exact_repeats(std::vector<GrownRepeat>& repeats) const {
  constexpr std::size_t repeats_of_a_task = 64;
  workers.run((repeats.size() + repeats_of_a_task - 1) / repeats_of_a_task, [&](std::size_t task, unsigned worker) {
    GrowthAids& aids = aids_of(worker);
    std::int64_t unit_length = repeats[task * repeats_of_a_task].sat->unit_length();
    Minimum minimum(minScores_user, minLengths_user, unit_length);
    const std::size_t end = std::min((task + 1) * repeats_of_a_task, repeats.size());
    for (std::size_t i = task * repeats_of_a_task; i < end; ++i) {
      Csat*& sat = repeats[i].sat;
      if (sat->unit_length() != unit_length) {
        unit_length = sat->unit_length();
        minimum = Minimum(minScores_user, minLengths_user, unit_length);
      }
      const bool fails = aids.growth_limit.keeps_below(*sat, minimum.score);
      if (!fails) grow_imperfect(*sat, aids);
      if (!fails && minimum.is_reached_by(*sat)) {
        drop_many_events(*sat);
        sat->sort_missense();
      } else {
        sat_alloc.give_back(sat);
        sat = nullptr;
      }
    }
  });
}
