// Searches of satellite arrays, in which long repeats wait for the rest of their growth, against searches in which none
// does: where every repeat is to be reported each one grows as it is found.

#include <algorithm>
#include <iterator>
#include <list>
#include <set>
#include <string>
#include <tuple>
#include <utility>
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
  struct Outcome {
    std::vector<Found> found;
    std::vector<Found> left;  ///< by the overlap removal, in the order of the list
  };

  static std::vector<Found> all_of(const test::Sequence& sequence, const std::list<Csat*>& sats) {
    std::vector<Found> all;
    for (const Csat* sat : sats) {
      all.emplace_back(sat->unit_length(), sequence.index(sat->pos_left), sequence.index(sat->pos_right_end),
                       sat->score, sequence.index(sat->unit_begin));
    }
    return all;
  }

  /// If all repeats are to be found none waits.
  static Outcome search(const std::string& bases, bool all, unsigned threads = 1,
                        std::size_t least_hidden = std::size_t{1} << 16) {
    test::Sequence sequence(bases);
    CSearchController controller(1, sequence.mol, threads);
    controller.least_hidden = least_hidden;
    global_remove_mostly_hidden = !all;
    controller.complete_imperfect_search();
    Outcome outcome;
    outcome.found = all_of(sequence, controller.imperfect_sats.sats);
    std::sort(outcome.found.begin(), outcome.found.end());
    global_remove_mostly_hidden = true;
    CSearchController::remove_hidden(controller.imperfect_sats);
    outcome.left = all_of(sequence, controller.imperfect_sats.sats);
    return outcome;
  }

  static bool is_long(const Found& found) { return std::get<2>(found) - std::get<1>(found) >= shortest_long_repeat; }

  static std::vector<Found> short_ones(const std::vector<Found>& all) {
    std::vector<Found> short_ones;
    std::remove_copy_if(all.begin(), all.end(), std::back_inserter(short_ones), is_long);
    return short_ones;
  }

  static std::set<std::pair<std::ptrdiff_t, std::ptrdiff_t>> ends_of(const std::vector<Found>& all) {
    std::set<std::pair<std::ptrdiff_t, std::ptrdiff_t>> ends;
    for (const Found& found : all) ends.emplace(std::get<1>(found), std::get<2>(found));
    return ends;
  }

  static void draw_rules(Random& random) {
    global_mismatch_score = random.percent(60) ? -6 : -2 - static_cast<int>(random.below(8));
    global_indel_score = random.percent(60) ? -6 : -2 - static_cast<int>(random.below(8));
    global_maximum_recursion_depth = random.percent(70) ? 5 : random.below(7);
    global_Ns_allowed_in_a_row = random.pick({0U, 4U, 4U, 100U});
    global_treat_Ns_as_missense = random.percent(20);
  }

  /// The two searches find the same short repeats, and of the long ones the one finds some of those of the other one:
  /// as many as the overlap removal needs to leave the same.
  static void expect_same(const Outcome& outcome, const Outcome& of_all, const std::string& what) {
    EXPECT_EQ(outcome.left, of_all.left) << what;
    EXPECT_EQ(short_ones(outcome.found), short_ones(of_all.found)) << what;
    EXPECT_TRUE(std::includes(of_all.found.begin(), of_all.found.end(), outcome.found.begin(), outcome.found.end()))
        << what;
  }

  static constexpr std::ptrdiff_t shortest_long_repeat = 512;
};

TEST_F(PostponedRepeatsTest, LeaveWhatThoseLeaveThatGrowAsTheyAreFound) {
  std::size_t dropped = 0;
  for (unsigned seed = 1; seed <= 60; ++seed) {
    Random random(seed);
    draw_rules(random);
    const auto unit_length = random.pick<std::uint32_t>({2, 3, 5, 7, 9, 11, 24, 31, 60, 63, 64, 65, 90, 130, 171});
    const std::string bases = arrays(random, unit_length);
    const std::uint32_t multiple = unit_length <= 11 ? 1 + random.below(3) : 1;
    const std::uint32_t longest = std::max<std::uint32_t>(2, multiple * unit_length + random.below(4));
    unit_lengths(unit_length > 40 ? longest - 3 : 1, longest);

    const Outcome of_all = search(bases, true);
    const Outcome outcome = search(bases, false);
    expect_same(outcome, of_all, "seed " + std::to_string(seed));
    if (seed % 3 == 0) expect_same(search(bases, false, 3), of_all, "seed " + std::to_string(seed) + ", 3 threads");
    if (seed % 3 == 1) expect_same(search(bases, false, 1, 4), of_all, "seed " + std::to_string(seed) + ", few hidden");
    dropped += of_all.found.size() - outcome.found.size();
  }
  EXPECT_GT(dropped, 1000U);
}

/// At the edges of an array, and in it, stand small repeats: some of them would be removed by repeats that are left
/// out.
TEST_F(PostponedRepeatsTest, AreLeftOutWhereOthersDoNotDependOnThem) {
  std::size_t dropped = 0;
  for (unsigned seed = 1; seed <= 40; ++seed) {
    Random random(seed);
    if (random.percent(30)) draw_rules(random);
    const std::size_t unit_length = random.pick<std::size_t>({7, 9, 12, 15, 20, 24, 31, 40});
    const auto small_repeat = [&random] {
      const std::string unit = random.bases(random.pick({2U, 3U, 4U, 6U, 9U}));
      return random.copy(test::repeated(unit, random.pick({8U, 14U, 20U, 40U, 90U}) / unit.size() + 1),
                         random.pick({0U, 0U, 20U}));
    };
    const auto edge = [&] {
      return random.percent(50) ? random.bases(random.pick({0U, 3U, 20U, 60U}))
                                : random.bases(random.pick({0U, 2U, 5U, 15U})) + small_repeat() +
                                      random.bases(random.pick({0U, 2U, 5U, 15U}));
    };
    const std::string unit = random.bases(unit_length);
    const unsigned departures = random.pick({15U, 25U, 60U, 100U});
    std::string copies;
    const std::size_t length = random.pick<std::size_t>({1300, 2200});
    while (copies.size() < length) {
      copies += random.copy(unit, departures);
      if (random.percent(1)) copies += small_repeat();
    }
    const std::string bases = random.bases(random.pick({0U, 100U})) + edge() + copies + edge() +
                              random.bases(random.pick({0U, 100U})) +
                              (random.percent(20) ? test::repeated(unit, 700 / unit_length) : "");
    unit_lengths(1, static_cast<std::uint32_t>(unit_length + random.pick({1U, 4U, 20U})));
    const Outcome of_all = search(bases, true);
    const Outcome outcome = search(bases, false);
    expect_same(outcome, of_all, "seed " + std::to_string(seed));
    if (seed % 2 == 1) expect_same(search(bases, false, 1, 4), of_all, "seed " + std::to_string(seed) + ", few hidden");
    dropped += of_all.found.size() - outcome.found.size();
  }
  EXPECT_GT(dropped, 1000U);
}

/// Where the words of an array are counted. With unit lengths of some copies there are many hidden ones.
TEST_F(PostponedRepeatsTest, AreFewInLongArrays) {
  std::size_t found = 0;
  std::size_t dropped = 0;
  for (unsigned seed = 1; seed <= 6; ++seed) {
    Random random(seed);
    const std::string unit = random.bases(random.pick({4U, 5U, 7U, 9U}));
    const std::string bases = random.bases(100) +
                              random.copy(test::repeated(unit, 5500 / unit.size()), random.pick({30U, 100U})) +
                              random.bases(100);
    unit_lengths(1, static_cast<std::uint32_t>(7 * unit.size() + 2));
    const Outcome of_all = search(bases, true);
    const Outcome outcome = search(bases, false);
    expect_same(outcome, of_all, "seed " + std::to_string(seed));
    expect_same(search(bases, false, 1, 100), of_all, "seed " + std::to_string(seed) + ", few hidden");
    found += outcome.found.size();
    dropped += of_all.found.size() - outcome.found.size();
  }
  EXPECT_GT(dropped, found);
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
  const Outcome of_all = search(bases, true);
  const Outcome outcome = search(bases, false);
  expect_same(outcome, of_all, "");
  EXPECT_GT(ends_of(outcome.found).size(), 1U);
  EXPECT_EQ(ends_of(outcome.found), ends_of(of_all.found)) << "none is hidden";
}

}  // namespace
