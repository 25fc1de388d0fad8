// Searches of satellite arrays, in which long repeats wait for the rest of their growth, against searches in which none
// does: where every repeat is to be reported each one grows as it is found.

#include <algorithm>
#include <list>
#include <map>
#include <string>
#include <tuple>
#include <vector>

#include "search/search_support.h"

namespace {

using test::Random;

/// Copies of a few variants of a unit, with departures of their own and runs of N.
std::string array(Random& random, const std::string& unit) {
  std::vector<std::string> variants;
  const unsigned count = random.pick({1U, 1U, 3U});
  for (unsigned i = 0; i < count; ++i) variants.push_back(random.copy(unit, random.pick({0U, 60U, 12U})));
  std::string bases;
  const std::size_t length = 700 + random.below(1800);
  while (bases.size() < length) bases += variants[random.below(count)] + (random.percent(1) ? unit : "");
  bases = random.copy(bases, random.pick({0U, 400U, 120U, 40U, 15U}));
  if (random.percent(40)) {
    bases.insert(random.below(static_cast<unsigned>(bases.size())), std::string(random.pick({1U, 3U, 4U, 70U}), 'N'));
  }
  return bases;
}

/// Where the unit is the same, walks of a high score go on from one array to the next one.
std::string arrays(Random& random, std::size_t unit_length) {
  const std::string letters = random.percent(30) ? "AT" : "ACGT";
  std::string unit = random.bases(unit_length, letters);
  std::string bases;
  const unsigned count = random.pick({1U, 2U, 3U});
  for (unsigned i = 0; i < count; ++i) {
    bases += random.bases(random.pick({0U, 1U, 40U, 150U, 400U, 800U})) + array(random, unit);
    if (random.percent(30)) bases += std::string(random.pick({1U, 3U, 4U, 70U}), 'N');
    if (random.percent(30)) unit = random.bases(unit_length, letters);
  }
  return bases + random.bases(random.pick({0U, 1U, 40U, 300U}));
}

/// Unit length, first and one past the last base, score, first base of the unit; 0-based.
using Found = std::tuple<std::ptrdiff_t, std::ptrdiff_t, std::ptrdiff_t, std::int64_t, std::ptrdiff_t>;

class PostponedRepeatsTest : public test::SearchTest {
 protected:
  static std::vector<Found> search(const std::string& bases, unsigned threads) {
    test::Sequence sequence(bases);
    CSearchController controller(1, sequence.mol, threads);
    controller.complete_imperfect_search();
    std::vector<Found> found;
    for (const Csat* sat : controller.imperfect_sats.sats) {
      found.emplace_back(sat->unit_length(), sequence.index(sat->pos_left), sequence.index(sat->pos_right_end),
                         sat->score, sequence.index(sat->unit_begin));
    }
    std::sort(found.begin(), found.end());
    return found;
  }

  /// Of those of one unit length with the same ends the one of the highest score, the first of several.
  static std::vector<Found> best_of_long_ones(const std::vector<Found>& all) {
    std::vector<Found> kept;
    std::map<std::tuple<std::ptrdiff_t, std::ptrdiff_t, std::ptrdiff_t>, Found> best;
    for (const Found& found : all) {
      const auto& [unit_length, left, right_end, score, unit] = found;
      if (right_end - left < shortest_long_repeat) {
        kept.push_back(found);
        continue;
      }
      Found& other = best.try_emplace({unit_length, left, right_end}, found).first->second;
      if (score > std::get<3>(other)) other = found;
    }
    for (const auto& [ends, found] : best) kept.push_back(found);
    std::sort(kept.begin(), kept.end());
    return kept;
  }

  static void draw_rules(Random& random) {
    global_mismatch_score = random.percent(60) ? -6 : -2 - static_cast<int>(random.below(8));
    global_indel_score = random.percent(60) ? -6 : -2 - static_cast<int>(random.below(8));
    global_maximum_recursion_depth = random.percent(70) ? 5 : random.below(7);
    global_Ns_allowed_in_a_row = random.pick({0U, 4U, 4U, 100U});
    global_treat_Ns_as_missense = random.percent(20);
  }

  static constexpr std::ptrdiff_t shortest_long_repeat = 512;
};

TEST_F(PostponedRepeatsTest, AreStoredLikeThoseThatGrowAsTheyAreFound) {
  std::size_t dropped = 0;
  for (unsigned seed = 1; seed <= 60; ++seed) {
    Random random(seed);
    draw_rules(random);
    const auto unit_length = random.pick<std::uint32_t>({2, 3, 5, 7, 9, 11, 24, 31, 60, 63, 64, 65, 90, 130, 171});
    const std::string bases = arrays(random, unit_length);
    const std::uint32_t multiple = unit_length <= 11 ? 1 + random.below(3) : 1;
    const std::uint32_t longest = std::max<std::uint32_t>(2, multiple * unit_length + random.below(4));
    unit_lengths(unit_length > 40 ? longest - 3 : 1, longest);

    global_remove_mostly_hidden = false;
    const std::vector<Found> all = search(bases, 1);
    const std::vector<Found> expected = best_of_long_ones(all);
    dropped += all.size() - expected.size();

    global_remove_mostly_hidden = true;
    EXPECT_EQ(search(bases, 1), expected) << "seed " << seed;
    if (seed % 3 == 0) {
      EXPECT_EQ(search(bases, 3), expected) << "seed " << seed << ", 3 threads";
    }
  }
  EXPECT_GT(dropped, 1000U);
}

/// The base behind the repeat is an anchor, for N at its end are taken off; with it so is a window in which the unit
/// has departed.
TEST_F(PostponedRepeatsTest, DoNotPauseBehindN) {
  const std::string unit = "ACGTTGCATCCGATAGGCTTAACGGATTCAGCTAGCTTGA";
  std::string bases = unit.substr(37);
  for (int i = 0; i < 16; ++i) bases += unit;
  bases[3 + 100] = 'T';
  bases[bases.size() - unit.size()] = 'T';
  bases += "NNCCCACCATTCC";
  unit_lengths(40, 40);
  global_Ns_allowed_in_a_row = 4;
  global_remove_mostly_hidden = false;
  const std::vector<Found> expected = best_of_long_ones(search(bases, 1));
  EXPECT_GT(expected.size(), 1U);
  global_remove_mostly_hidden = true;
  EXPECT_EQ(search(bases, 1), expected);
}

}  // namespace
