// The mode that grows exact seeds into imperfect repeats.

#include <algorithm>
#include <cstdio>
#include <tuple>
#include <vector>

#include "search/CSearchController.h"
#include "search/seed_filter.h"

void CSearchController::drop_seeds_that_cannot_grow(std::int64_t unit_length) {
  const std::int64_t minimum_score = minScores_user[unit_length];
  if (!SeedFilter::is_useful(unit_length, minimum_score, rules)) return;
  std::vector<std::uint64_t> growing;
  SeedFilter(planes, seq.begin(), seq.end()).mark_candidates(unit_length, minimum_score, rules, growing);
  for (std::size_t word = 0; word < candidates.size(); ++word) candidates[word] &= growing[word];
}

namespace {

/// A repeat that grew out of an exact one, which was [left, right_end).
struct GrownRepeat {
  Csat* sat;
  const char* left;
  const char* right_end;
};

/// The order of the repeats; where they are the same stretch, that of the exact ones.
bool comes_first(const GrownRepeat& a, const GrownRepeat& b) {
  const auto place = [](const GrownRepeat& r) {
    return std::make_tuple(r.sat->pos_left, r.sat->pos_right_end, r.left, r.right_end);
  };
  return place(a) < place(b);
}

}  // namespace

/// Each exact repeat grows as soon as it is found: most of them fail, and they are too many to be stored.
void CSearchController::search_exact_and_extend_to_imperfect_repeats() {
  std::fputs("  Searching for exact repeats.\n", stderr);
  std::fflush(stderr);
  std::vector<GrownRepeat> found;
  exact_first = true;
  minScores = &minScores_intern;
  minLengths = &minLengths_intern;
  find_exact_repeats([&](Csat* sat) {
    const GrownRepeat grown{sat, sat->pos_left, sat->pos_right_end};
    grow_imperfect(*sat);
    if (!passes(*sat, minScores_user, minLengths_user)) return false;
    drop_many_events(*sat);
    sat->sort_missense();
    found.push_back(grown);
    return true;
  });
  minScores = &minScores_user;
  minLengths = &minLengths_user;

  std::fputs("  Extend exact to imperfect repeats.\n", stderr);
  std::fflush(stderr);
  std::stable_sort(found.begin(), found.end(), comes_first);
  for (const GrownRepeat& grown : found) imperfect_sats.sats.push_back(grown.sat);
}
