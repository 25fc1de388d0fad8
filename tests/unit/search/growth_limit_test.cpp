#include "search/growth_limit.h"

#include <algorithm>
#include <cstdlib>
#include <random>

#include "search/search_support.h"

namespace {

/// The same limit, found state by state. `height` is that of the score above the bound of permitted steps.
template <bool forward>
class PlainWays {
 public:
  PlainWays(const test::Sequence& sequence, const Front<forward>& front, const UnitCircle& circle, std::int64_t height,
            const ExtensionRules& rules)
      : sequence_(sequence), front_(front), circle_(circle), rules_(rules) {
    heights_.assign(static_cast<std::size_t>(most_bases), std::vector<std::int64_t>(2 * widest + 1, 0));
    raise(0, 0, height);
    for (std::int64_t taken = 0; taken + 1 < most_bases; ++taken) {
      // Bases of the unit taken; insertions lead to the next diagonal, so the diagonals must be gone through upwards.
      for (std::int64_t diagonal = -widest; diagonal <= widest; ++diagonal) step(taken, diagonal);
    }
  }

  std::int64_t highest() const { return highest_; }
  /// Whether every way stays well inside the diagonals and the bases that are looked at.
  bool stays_near() const { return stays_near_; }

 private:
  static constexpr std::int64_t most_bases = 480;
  static constexpr std::int64_t widest = 20;

  void raise(std::int64_t taken, std::int64_t diagonal, std::int64_t height) {
    if (height <= 0) return;
    stays_near_ = stays_near_ && taken < 4 * circle_.length() + 230 && is_near(taken + diagonal);
    if (std::abs(diagonal) > widest) return;
    highest_ = std::max(highest_, height);
    // What stands in the outermost lanes could have left them.
    if (std::abs(diagonal) >= 14 && height > -rules_.indel_score) stays_near_ = false;
    std::int64_t& entry = heights_[static_cast<std::size_t>(taken)][static_cast<std::size_t>(diagonal + widest)];
    entry = std::max(entry, height);
  }

  void step(std::int64_t taken, std::int64_t diagonal) {
    const std::int64_t height = heights_[static_cast<std::size_t>(taken)][static_cast<std::size_t>(diagonal + widest)];
    if (height == 0) return;
    raise(taken + 1, diagonal, matches(taken, taken + diagonal) ? height + 1 : height + rules_.mismatch_score);
    raise(taken, diagonal + 1, height + rules_.indel_score);
    raise(taken + 1, diagonal - 1, height + rules_.indel_score);
  }

  const char* base_at(std::int64_t bases) const {
    return forward ? front_.position + bases : front_.position - 1 - bases;
  }

  bool is_near(std::int64_t bases) const {
    return base_at(bases) > sequence_.mol.begin() - 100 && base_at(bases) < sequence_.mol.end() + 100;
  }

  bool matches(std::int64_t unit_bases, std::int64_t bases) const {
    const char* const base = base_at(bases);
    const char* unit = front_.unit;
    for (std::int64_t i = 0; i < unit_bases % circle_.length(); ++i) {
      unit = forward ? circle_.next(unit) : circle_.previous(unit);
    }
    return base >= sequence_.mol.begin() && base < sequence_.mol.end() && (*base == *unit || *base == 'N');
  }

  const test::Sequence& sequence_;
  const Front<forward> front_;
  const UnitCircle circle_;
  const ExtensionRules& rules_;
  std::vector<std::vector<std::int64_t>> heights_;
  std::int64_t highest_ = 0;
  bool stays_near_ = true;
};

class GrowthLimitTest : public test::SearchTest {
 protected:
  struct Case {
    test::Sequence sequence;
    ExtensionRules rules;
    std::ptrdiff_t begin;
    std::ptrdiff_t unit;

    Csat seed() const {
      Csat sat;
      sat.seed(sequence.at(begin), sequence.at(begin + unit));
      return sat;
    }
  };

  /// Random bases that are periodic more or less, of two or four letters, and a seed in it.
  static Case make_case(unsigned number, bool with_N) {
    std::mt19937 random(number);
    const auto between = [&random](int low, int high) {
      return low + static_cast<int>(random() % static_cast<unsigned>(high - low + 1));
    };
    const int unit = between(1, between(0, 3) == 0 ? 60 : 12);
    const char* const letters = between(0, 1) == 0 ? "AC" : "ACGT";
    const unsigned noise = between(0, 1) == 0 ? 2 : 5;
    const auto period = static_cast<std::size_t>(std::max(1, unit + between(-1, 1)));
    std::string bases;
    while (bases.size() < 500) {
      const bool is_new = bases.size() < period || random() % noise == 0;
      bases += is_new ? letters[random() % std::char_traits<char>::length(letters)] : bases[bases.size() - period];
      if (with_N && random() % 20 == 0) bases += 'N';
    }
    const ExtensionRules rules{-between(2, 8), -between(2, 8), between(1, 6), between(0, 2), between(0, 1) == 0};
    return {test::Sequence(bases), rules, between(0, static_cast<int>(bases.size()) - unit - 1), unit};
  }

  template <bool forward>
  static Front<forward> stopped(Front<forward> front, const UnitCircle& circle, const char* limit) {
    while (front.position != limit && front.next_base() == *front.unit) {
      ++front.score;
      front.take_base();
      front.step_unit(circle);
    }
    return front;
  }
};

TEST_F(GrowthLimitTest, IsTheHighestScoreOfAllWays) {
  std::size_t told = 0;
  for (unsigned number = 0; number < 3000; ++number) {
    const Case c = make_case(number, false);
    const BasePlanes planes(c.sequence.mol.begin(), c.sequence.mol.end());
    GrowthLimit limit(c.sequence.mol.begin(), c.sequence.mol.end(), planes, c.rules);
    const Csat seed = c.seed();
    const UnitCircle circle{seed.unit_begin, seed.unit_end};
    const auto right = stopped(Front<true>::of(seed), circle, c.sequence.mol.end());
    const PlainWays<true> forward(c.sequence, right, circle, right.score + circle.length(), c.rules);
    auto left = stopped(Front<false>::of(seed), circle, c.sequence.mol.begin());
    left.score += forward.highest() - circle.length();
    const PlainWays<false> backward(c.sequence, left, circle, left.score + circle.length(), c.rules);
    const std::int64_t score = backward.highest() - circle.length();

    EXPECT_FALSE(limit.keeps_below(seed, score)) << "case " << number;
    const bool leads_nowhere = limit.keeps_from(right.score + 1, right, circle);
    EXPECT_FALSE(leads_nowhere && forward.highest() > right.score + circle.length()) << "case " << number;
    if (!forward.stays_near() || !backward.stays_near()) continue;
    if (circle.length() + score + 1 > std::min<std::int64_t>(250, -20 * c.rules.indel_score)) continue;
    ++told;
    EXPECT_TRUE(limit.keeps_below(seed, score + 1)) << "case " << number;
    EXPECT_EQ(leads_nowhere, forward.highest() == right.score + circle.length()) << "case " << number;
    const std::int64_t best = forward.highest() - circle.length();
    EXPECT_TRUE(limit.keeps_from(best + 1, right, circle)) << "case " << number;
    EXPECT_TRUE(best == right.score || !limit.keeps_from(best, right, circle)) << "case " << number;
  }
  EXPECT_GT(told, 1500U);
}

// Near N and the sequence's ends too, whatever the lookahead chooses.
TEST_F(GrowthLimitTest, NoSeedGrowsAboveIt) {
  std::size_t told = 0;
  for (unsigned number = 10000; number < 13000; ++number) {
    const Case c = make_case(number, true);
    global_mismatch_score = static_cast<int>(c.rules.mismatch_score);
    global_indel_score = static_cast<int>(c.rules.indel_score);
    global_maximum_recursion_depth = static_cast<int>(c.rules.maximum_depth);
    global_Ns_allowed_in_a_row = static_cast<int>(c.rules.Ns_allowed);
    global_treat_Ns_as_missense = c.rules.Ns_as_missense;
    Csat grown = c.seed();
    if (std::find(grown.unit_begin, grown.unit_end, 'N') != grown.unit_end) continue;
    test::Sequence copy(std::string(c.sequence.mol.begin(), c.sequence.mol.end()));
    CSearchController controller(1, copy.mol);
    grown.seed(copy.at(c.begin), copy.at(c.begin + c.unit));
    controller.extend_imperfect_forward(grown, copy.mol.end());
    controller.extend_imperfect_backward(grown, copy.mol.begin() - 1);

    const BasePlanes planes(c.sequence.mol.begin(), c.sequence.mol.end());
    GrowthLimit limit(c.sequence.mol.begin(), c.sequence.mol.end(), planes, c.rules);
    for (std::int64_t minimum = 0; minimum <= grown.score; ++minimum) {
      ASSERT_FALSE(limit.keeps_below(c.seed(), minimum)) << "case " << number;
    }
    told += limit.keeps_below(c.seed(), grown.score + 12) ? 1 : 0;
  }
  EXPECT_GT(told, 500U);
}

TEST_F(GrowthLimitTest, TellsNothingOfLongUnitsAndWithoutLookahead) {
  const test::Sequence sequence(test::repeated("ACGGTCA", 40) + test::repeated("T", 40));
  const BasePlanes planes(sequence.mol.begin(), sequence.mol.end());
  Csat sat;
  sat.seed(sequence.at(0), sequence.at(251));
  const ExtensionRules dear{-100, -100, 5, 4, false};
  EXPECT_FALSE(GrowthLimit(sequence.mol.begin(), sequence.mol.end(), planes, dear).keeps_below(sat, 1000));
  sat.seed(sequence.at(270), sequence.at(275));
  EXPECT_TRUE(GrowthLimit(sequence.mol.begin(), sequence.mol.end(), planes, dear).keeps_below(sat, 10));
  const ExtensionRules exact{-100, -100, 0, 4, false};
  EXPECT_FALSE(GrowthLimit(sequence.mol.begin(), sequence.mol.end(), planes, exact).keeps_below(sat, 10));
}

// A walk may have fallen from a height that the lanes cannot hold, and come back to it.
TEST_F(GrowthLimitTest, ScoresThatDoNotFitAreNotOutOfReach) {
  const test::Sequence sequence(test::repeated("ACGGTCA", 60) + test::repeated("T", 200));
  const BasePlanes planes(sequence.mol.begin(), sequence.mol.end());
  const ExtensionRules usual{-6, -6, 5, 4, false};
  GrowthLimit limit(sequence.mol.begin(), sequence.mol.end(), planes, usual);
  Csat sat;
  sat.seed(sequence.at(0), sequence.at(7));
  const UnitCircle circle{sat.unit_begin, sat.unit_end};
  EXPECT_FALSE(limit.keeps_from(300, Front<true>::of(sat), circle));
  sat.seed(sequence.at(410), sequence.at(417));
  EXPECT_TRUE(limit.keeps_from(300, Front<true>::of(sat), {sat.unit_begin, sat.unit_end}));
}

}  // namespace
