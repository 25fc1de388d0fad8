#include "search/search_support.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

using ExtendExactTest = test::SearchTest;

TEST_F(ExtendExactTest, WritesTwoProgressLines) {
  test::Sequence sequence("ACGT");
  CSearchController controller(1, sequence.mol);
  testing::internal::CaptureStderr();
  controller.search_exact_and_extend_to_imperfect_repeats();
  EXPECT_EQ(testing::internal::GetCapturedStderr(),
            "  Searching for exact repeats.\n"
            "  Extend exact to imperfect repeats.\n");
}

TEST_F(ExtendExactTest, ASeedGrowsIntoAnImperfectRepeat) {
  EXPECT_THAT(extended("ACACACACACGTTTGTTG"), ElementsAre("[0,10) AC score 8"));
  // The left part scores 2, which is no seed; from the right, 9 - 6 + 4 is no gain.
  EXPECT_THAT(extended("ACACGCACACACACAC"), ElementsAre("[5,16) CA score 9"));
  // From the left 6 - 6 + 11, from the right 9 - 6 + 8.
  EXPECT_THAT(extended("ACACACACGCACACACACAC"), ElementsAre("[0,20) AC score 11 1 mis", "[0,20) CA score 11 1 mis"));
}

TEST_F(ExtendExactTest, EachSeedOfOneRepeatYieldsARecord) {
  EXPECT_THAT(extended("ACACACACACGACACACACAC"), ElementsAre("[0,21) AC score 12 1 ins", "[0,21) AC score 12 1 ins"));
}

TEST_F(ExtendExactTest, ARecordThatFailsTheUsersThresholdsIsDropped) {
  EXPECT_THAT(extended("GACACACAGG"), IsEmpty());  // score 5: a seed, but nothing to keep
}

TEST_F(ExtendExactTest, ARecordBelowTheUsersLengthIsDropped) {
  global_min_length = 22;
  EXPECT_THAT(extended("ACACACACACGACACACACAC"), IsEmpty());
}

// The normalised length counts: 21 bases with an insertion are 20.
TEST_F(ExtendExactTest, TheLengthTestLeavesInsertionsOut) {
  unit_lengths(2, 2);
  global_min_length = 21;
  EXPECT_THAT(extended("ACACACACACGACACACACAC"), IsEmpty());
  global_min_length = 20;
  const auto records = extended("ACACACACACGACACACACAC");
  EXPECT_THAT(records, testing::Not(IsEmpty()));
  EXPECT_THAT(records, testing::Each(testing::EndsWith("score 12 1 ins")));
}

// A seed that passes the seeds' thresholds but not the user's does not block the other phases of its unit.
TEST_F(ExtendExactTest, ASeedBelowTheUsersThresholdIsFoundInEveryPhaseIfAllRepeatsAreKept) {
  global_remove_mostly_hidden = false;
  global_mismatch_score = -2;
  global_min_score = 7;
  unit_lengths(2, 2);
  const auto records = extended("ACACACACGCACACACAC");                           // 6, -2, 9: seeds of score 6 and 7
  EXPECT_THAT(records, testing::Contains("[0,18) AC score 13 1 mis").Times(4));  // from 0, 2, 4 and 6
  EXPECT_THAT(records, testing::Contains("[0,18) CA score 13 1 mis").Times(4));  // from 1, 3, 5 and 9
  EXPECT_EQ(records.size(), 8U);
}

// The overlap removal would keep only the first of them.
TEST_F(ExtendExactTest, ASeedBelowTheUsersThresholdIsFoundInOnePhaseOtherwise) {
  global_mismatch_score = -2;
  global_min_score = 7;
  unit_lengths(2, 2);
  EXPECT_THAT(extended("ACACACACGCACACACAC"),
              ElementsAre("[0,18) AC score 13 1 mis", "[0,18) CA score 13 1 mis"));  // from 0 and 9
}

// The unit of a seed before the N and of one behind it may differ in what they say of the N's place.
TEST_F(ExtendExactTest, SeedsOfARepeatWithNAreAllTried) {
  global_mismatch_score = -2;
  global_min_score = 12;
  unit_lengths(2, 2);
  EXPECT_THAT(extended("ACACACNCACACGCACACAC"), testing::Contains(testing::EndsWith("1 mis 1 N")).Times(10));
}

TEST_F(ExtendExactTest, LeavesNoExactRepeatBehind) {
  test::Sequence sequence("ACACACACACGACACACACACTTGTTG");
  CSearchController controller(1, sequence.mol);
  testing::internal::CaptureStderr();
  controller.search_exact_and_extend_to_imperfect_repeats();
  testing::internal::GetCapturedStderr();
  EXPECT_THAT(controller.exact_sats.sats, IsEmpty());
}

TEST_F(ExtendExactTest, RejectedRecordsGoBackToThePool) {
  test::Sequence sequence("GACACACAGG");
  const std::size_t before = sat_alloc.size();
  std::size_t at_the_end = 0;
  {
    CSearchController controller(1, sequence.mol);
    testing::internal::CaptureStderr();
    controller.search_exact_and_extend_to_imperfect_repeats();
    testing::internal::GetCapturedStderr();
    EXPECT_THAT(controller.imperfect_sats.sats, IsEmpty());
    at_the_end = sat_alloc.size();
  }
  EXPECT_GE(at_the_end, before);
  EXPECT_EQ(sat_alloc.size(), at_the_end);
}

TEST_F(ExtendExactTest, EventsOfBothDirectionsAreSorted) {
  const std::string run = "AAAAAAAA";
  test::Sequence sequence("G" + run + "C" + run + "C" + run + "G");
  CSearchController controller(1, sequence.mol);
  testing::internal::CaptureStderr();
  controller.search_exact_and_extend_to_imperfect_repeats();
  testing::internal::GetCapturedStderr();
  ASSERT_EQ(controller.imperfect_sats.sats.size(), 3U);
  for (const Csat* sat : controller.imperfect_sats.sats) EXPECT_EQ(test::events_of(sequence, *sat), "9M 18M ");
}

TEST_F(ExtendExactTest, OfAnEmptySequenceFindsNothing) {
  EXPECT_THAT(extended(""), IsEmpty());
}

TEST_F(ExtendExactTest, WithDepthZeroFindsExactRepeatsOnly) {
  global_maximum_recursion_depth = 0;
  EXPECT_THAT(extended("ACACACACACGACACACACAC"), ElementsAre("[0,10) AC score 8", "[11,21) AC score 8"));
}

}  // namespace
