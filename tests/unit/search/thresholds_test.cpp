#include "search/thresholds.h"

#include <limits>

#include "search/search_support.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

constexpr int smallest = std::numeric_limits<int>::min();
constexpr int largest = std::numeric_limits<int>::max();

std::vector<std::int64_t> first_six(const ThresholdTable& table) {
  return {table[1], table[2], table[3], table[4], table[5], table[6]};
}

TEST(ThresholdTableTest, IsTheMinimumUntilTheLinearTermOvertakesIt) {
  EXPECT_THAT(first_six(ThresholdTable(4, 0, 1.0F)), ElementsAre(4, 4, 4, 4, 5, 6));
}

TEST(ThresholdTableTest, RoundsTheLinearTermUp) {
  EXPECT_EQ(ThresholdTable(6, 0, 1.5F)[5], 8);
}

TEST(ThresholdTableTest, OfAWholeLinearTermIsThatTerm) {
  EXPECT_EQ(ThresholdTable(6, 0, 1.5F)[6], 9);
}

TEST(ThresholdTableTest, ANegativeOffsetDelaysTheLinearTerm) {
  EXPECT_THAT(first_six(ThresholdTable(6, -10, 4.0F)), ElementsAre(6, 6, 6, 6, 10, 14));
}

TEST(ThresholdTableTest, ANegativeLinearTermNeverLowersTheMinimum) {
  EXPECT_THAT(first_six(ThresholdTable(6, -10, -4.0F)), ElementsAre(6, 6, 6, 6, 6, 6));
}

// 0.1f is a little above a tenth, and the product is not rounded to a float before it is rounded up.
TEST(ThresholdTableTest, IsComputedInExtendedPrecision) {
  EXPECT_EQ(ThresholdTable(0, 0, 0.1F)[10], 2);
  EXPECT_EQ(ThresholdTable(0, 0, 0.125F)[8], 1);
}

TEST(ThresholdTableTest, KeepsLargeOffsetsExact) {
  EXPECT_EQ(ThresholdTable(0, 16777217, 1.0F)[1], 16777218);
}

TEST(ThresholdTableTest, ALinearTermAboveTheRangeIsTheLargestInteger) {
  EXPECT_EQ(ThresholdTable(6, 0, 1e38F)[1], largest);
  EXPECT_EQ(ThresholdTable(6, largest, 1.0F)[4294967295], largest);
  EXPECT_EQ(ThresholdTable(6, 0, std::numeric_limits<float>::infinity())[1], largest);
}

TEST(ThresholdTableTest, ALinearTermBelowTheRangeIsTheMinimum) {
  EXPECT_EQ(ThresholdTable(6, 0, -1e38F)[1], 6);
  EXPECT_EQ(ThresholdTable(smallest, smallest, -1e38F)[1], smallest);
}

TEST(ThresholdTableTest, NotANumberIsTheMinimum) {
  EXPECT_EQ(ThresholdTable(6, 0, std::numeric_limits<float>::quiet_NaN())[3], 6);
}

TEST(ThresholdTableTest, HasAnEntryForEveryUnitLength) {
  EXPECT_EQ(ThresholdTable(6, 0, 1.0F)[20000], 20000);
  EXPECT_EQ(ThresholdTable(6, 0, 0.5F)[4294967295], largest);
}

class ActiveThresholdsTest : public test::SearchTest {
 protected:
  test::Sequence sequence{"ACGT"};
};

TEST_F(ActiveThresholdsTest, ByDefaultAreScoreSixAndLengthOne) {
  const CSearchController controller(1, sequence.mol);
  EXPECT_THAT(first_six(*controller.minScores), ElementsAre(6, 6, 6, 6, 6, 6));
  EXPECT_THAT(first_six(*controller.minLengths), ElementsAre(1, 1, 1, 1, 1, 1));
}

TEST_F(ActiveThresholdsTest, TakeTheUsersSlope) {
  global_min_score_bx = 1.5F;
  global_min_length = 0;
  global_min_length_a = 2;
  global_min_length_bx = 0.5F;
  const CSearchController controller(1, sequence.mol);
  EXPECT_EQ((*controller.minScores)[5], 8);
  EXPECT_THAT(first_six(*controller.minLengths), ElementsAre(3, 3, 4, 4, 5, 5));
}

TEST_F(ActiveThresholdsTest, AreTheSameForASecondController) {
  global_min_score_bx = 1.5F;
  std::vector<std::int64_t> first;
  {
    const CSearchController controller(1, sequence.mol);
    first = first_six(*controller.minScores);
  }
  const CSearchController controller(2, sequence.mol);
  EXPECT_EQ(first_six(*controller.minScores), first);
}

TEST_F(ActiveThresholdsTest, AreTheUsersAgainAfterTheExtendExactMode) {
  CSearchController controller(1, sequence.mol);
  testing::internal::CaptureStderr();
  controller.search_exact_and_extend_to_imperfect_repeats();
  testing::internal::GetCapturedStderr();
  EXPECT_THAT(first_six(*controller.minScores), ElementsAre(6, 6, 6, 6, 6, 6));
}

using SeedThresholdTest = test::SearchTest;

TEST_F(SeedThresholdTest, AMononucleotideRunNeedsScoreSixInExactMode) {
  EXPECT_THAT(exact("CAAAAAAC"), IsEmpty());
  EXPECT_THAT(exact("CAAAAAAAC"), ElementsAre("[1,8) A score 6"));
}

// Two runs of five score 4 each, cross the C for -2 and score 7 together.
TEST_F(SeedThresholdTest, AMononucleotideRunNeedsScoreFourAsASeedOfExtendExact) {
  global_mismatch_score = -2;
  unit_lengths(1, 1);
  EXPECT_THAT(extended("AAAAACAAAAA"), ElementsAre("[0,11) A score 7 1 mis", "[0,11) A score 7 1 mis"));
}

// Runs of four score 3, which is no seed, although three of them together would score 7.
TEST_F(SeedThresholdTest, AMononucleotideRunOfScoreThreeIsNoSeedOfExtendExact) {
  global_mismatch_score = -2;
  unit_lengths(1, 1);
  EXPECT_THAT(extended("AAAACAAAACAAAA"), IsEmpty());
}

using PoolReturnTest = test::SearchTest;

TEST_F(PoolReturnTest, ADestroyedControllerGivesItsRecordsBack) {
  test::Sequence sequence("ACACACACACTTGTTGTTGTTGAAAAAAAAAA");
  std::size_t found = 0;
  {
    CSearchController controller(1, sequence.mol);
    controller.exact_search_2();
    found = controller.exact_sats.sats.size();
  }
  EXPECT_EQ(found, 3U);
  EXPECT_GE(sat_alloc.size(), found);
}

}  // namespace
