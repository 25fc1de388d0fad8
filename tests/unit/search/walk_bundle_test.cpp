// Walks side by side against the same walks one by one.

#include "search/walk_bundle.h"

#include <algorithm>
#include <initializer_list>
#include <random>
#include <string>
#include <vector>

#include "search/search_support.h"
#include "search/walker_support.h"

namespace {

using test::Walker;
using test::walker_rules;

class WalkBundleTest : public test::SearchTest {
 protected:
  /// Copies of a unit, or of several, with departures; stretches of other bases, in which walks of low scores end.
  static std::string array(std::mt19937& random, std::size_t unit_length) {
    const auto one_of = [&random](std::initializer_list<unsigned> values) {
      return *(values.begin() + random() % values.size());
    };
    std::vector<std::string> units(one_of({1, 1, 3}), std::string());
    for (std::size_t i = 0; i < unit_length; ++i) {
      const char base = "ACGT"[random() % 4];
      for (std::string& unit : units) unit += random() % 30 == 0 ? "ACGT"[random() % 4] : base;
    }
    const unsigned rate = one_of({30, 60, 150, 1000});
    std::string bases;
    while (bases.size() < 4000) {
      for (const char base : units[random() % units.size()]) {
        const auto number = random() % rate;
        if (number <= 1) bases += "ACGT"[random() % 4];
        if (number != 0 && number != 2) bases += base;
      }
      if (random() % 1000 >= unit_length) continue;
      for (unsigned i = one_of({20, 60, 200, 500}); i > 0; --i) bases += "ACGT"[random() % 4];
    }
    return bases;
  }

  template <bool forward>
  static void alone(GrowingRepeat& repeat, const test::Sequence& sequence, std::int64_t unit_length) {
    const char* const first = sequence.mol.begin();
    const Walker<forward> walker(first, sequence.mol.end());
    const char* const unit = first + repeat.unit;
    BundledWalk<forward> walk({unit, unit + unit_length},
                              {first + (forward ? repeat.right_end : repeat.left),
                               first + (forward ? repeat.unit_right : repeat.unit_left), repeat.score, 0});
    walker(forward ? sequence.mol.end() + 1 : first - 1, walk);
    (forward ? repeat.right_end : repeat.left) = static_cast<std::uint32_t>(walk.best_position - first);
    repeat.score = static_cast<std::int32_t>(walk.best_score);
  }

  template <bool forward>
  static void compare(unsigned seed) {
    std::mt19937 random(seed);
    const std::size_t unit_length = std::vector<std::size_t>{3, 7, 20, 64, 90, 130, 171}[random() % 7];
    const test::Sequence sequence(array(random, unit_length));
    const BasePlanes planes(sequence.mol.begin(), sequence.mol.end());
    std::vector<GrowingRepeat> together;
    const std::size_t starts = 60 + random() % 100;
    const std::size_t seeds = sequence.mol.sequence.length - unit_length;
    for (std::size_t i = 0; i < starts; ++i) {
      const auto begin = static_cast<std::ptrdiff_t>(random() % seeds);
      Csat sat;
      sat.seed(sequence.at(begin), sequence.at(begin + static_cast<std::ptrdiff_t>(unit_length)));
      sat.score = static_cast<std::int64_t>(random() % (i % 2 == 0 ? 60 : 1000));
      together.emplace_back(sat, sequence.mol.begin());
    }
    std::vector<GrowingRepeat> one_by_one = together;
    for (GrowingRepeat& repeat : one_by_one) alone<forward>(repeat, sequence, static_cast<std::int64_t>(unit_length));

    std::vector<GrowingRepeat*> repeats;
    for (GrowingRepeat& repeat : together) repeats.push_back(&repeat);
    UnitWords words(sequence.mol.begin(), sequence.mol.end(), planes, walker_rules);
    const auto finish = [&](std::int64_t most_bases) {
      return WalkBundle<forward>(planes, sequence.mol.begin(), static_cast<std::int64_t>(unit_length), walker_rules,
                                 words)
          .finish(repeats, Walker<forward>(sequence.mol.begin(), sequence.mol.end()), most_bases);
    };
    if (seed % 2 == 0) {
      // In parts, each time from where the score was highest.
      for (std::int64_t bases = 100; !repeats.empty(); bases *= 2) repeats = finish(bases);
    }
    EXPECT_TRUE(finish(any_bases).empty());
    for (std::size_t i = 0; i < together.size(); ++i) {
      const auto ends = [](const GrowingRepeat& repeat) {
        return std::vector<std::int64_t>{repeat.left, repeat.right_end, repeat.score};
      };
      ASSERT_EQ(ends(together[i]), ends(one_by_one[i])) << "seed " << seed << ", walk " << i;
    }
  }
};

TEST_F(WalkBundleTest, WalksForwardEndLikeWalksOnTheirOwn) {
  for (unsigned seed = 1; seed <= 300; ++seed) compare<true>(seed);
}

TEST_F(WalkBundleTest, WalksBackwardEndLikeWalksOnTheirOwn) {
  for (unsigned seed = 1; seed <= 300; ++seed) compare<false>(seed);
}

// Of two walks that have met the lower one ends where the higher one falls and comes back.
TEST_F(WalkBundleTest, TheHighestOfAGroupGoesOn) {
  const std::string unit = "ACGGTCATTCAGGATCTTGC";
  const test::Sequence sequence(test::repeated(unit, 60) + test::departing_copies(unit, 200) +
                                test::repeated(unit, 400));
  const char* const first = sequence.mol.begin();
  const BasePlanes planes(first, sequence.mol.end());
  for (const bool first_is_higher : {false, true}) {
    std::vector<GrowingRepeat> walks;
    for (const bool is_higher : {first_is_higher, !first_is_higher}) {
      Csat sat;
      sat.seed(sequence.at(0), sequence.at(20));
      sat.score = is_higher ? 9000 : 20;
      walks.emplace_back(sat, first);
    }
    UnitWords words(first, sequence.mol.end(), planes, walker_rules);
    WalkBundle<true>(planes, first, 20, walker_rules, words)
        .finish({&walks[0], &walks[1]}, Walker<true>(first, sequence.mol.end()));
    EXPECT_EQ(walks[first_is_higher ? 0 : 1].right_end, 1200 + 4000 + 8000);
    EXPECT_LT(walks[first_is_higher ? 1 : 0].right_end, 1210);
  }
}

}  // namespace
