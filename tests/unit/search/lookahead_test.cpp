// Which first step the lookahead chooses.

#include "search/extension_support.h"

namespace {

class LookaheadTest : public test::ImperfectExtensionTest {
 protected:
  static void settings(int depth, int mismatch, int indel) {
    global_maximum_recursion_depth = depth;
    global_mismatch_score = mismatch;
    global_indel_score = indel;
  }
};

TEST_F(LookaheadTest, OnEqualValuesAMismatchWinsOverAnInsertion) {
  settings(1, -6, -6);
  seed("AAAAAAACAAAAAAAA", 0, 1);  // for a unit of one base both lead to the same place
  forward();
  EXPECT_EQ(events(), "7M ");
}

// Behind the score of 9, one base after the C: insertion and deletion match one base more each, the mismatch none.
TEST_F(LookaheadTest, OnEqualValuesAnInsertionWinsOverADeletion) {
  settings(1, -2, -2);
  seed("ACGACGACGACGCATGACGACGA", 0, 3);  // 9, I -2 +1, M at the T -2 +8
  forward();
  EXPECT_EQ(grown(), "[0,23) ACG score 14 1 mis 1 ins");
  EXPECT_EQ(events(), "12I 14M ");
}

TEST_F(LookaheadTest, AStrictlyHigherInsertionWinsOverAMismatch) {
  settings(1, -6, -6);
  seed("ACACACACACGACACACACAC", 0, 2);
  forward();
  EXPECT_EQ(events(), "10I ");
}

TEST_F(LookaheadTest, AStrictlyHigherDeletionWinsOverAnInsertion) {
  settings(1, -6, -6);
  seed("ACACACACACCACACACACACA", 0, 2);  // deletion 12, insertion 11 matches
  forward();
  EXPECT_EQ(events(), "10D ");
}

/// Two mismatches in a row in the unit ACCCG, where one insertion matches three bases before it fails.
const char* const two_mismatches = "ACCCGACCCGACCCGACCCGTACCGACCCGACCCG";

TEST_F(LookaheadTest, OfDepthOneSeesOneStepOnly) {
  settings(1, -4, -6);
  seed(two_mismatches, 0, 5);  // 15, I -6 +3, D -6 +11
  forward();
  EXPECT_EQ(events(), "20I 24D ");
  EXPECT_EQ(grown(), "[0,35) ACCCG score 17 1 ins 1 del");
}

TEST_F(LookaheadTest, OfDepthTwoSeesTwoStepsTheChosenOneIncluded) {
  settings(2, -4, -6);
  seed(two_mismatches, 0, 5);  // 15, M -4, M -4 +13
  forward();
  EXPECT_EQ(events(), "20M 21M ");
  EXPECT_EQ(grown(), "[0,35) ACCCG score 20 2 mis");
}

TEST_F(LookaheadTest, BackwardChoosesAsForwardDoes) {
  settings(1, -6, -6);
  seed("AAAAAAAACAAAAAAA", 15, 1);
  backward();
  EXPECT_EQ(events(), "8M ");
}

TEST_F(LookaheadTest, BackwardOfDepthOneAndTwoDiffer) {
  const std::string forward_bases = two_mismatches;
  const std::string mirrored(forward_bases.rbegin(), forward_bases.rend());
  settings(1, -4, -6);
  seed(mirrored, 30, 5);
  backward();
  EXPECT_EQ(events(), "14I 11D ");  // the deletion lies at the base right of the gap, already in the repeat
  settings(2, -4, -6);
  seed(mirrored, 30, 5);
  backward();
  EXPECT_EQ(events(), "14M 13M ");
}

// The depth is an ordinary number: at 256 it does not become 0, which would mean perfect repeats only.
TEST_F(LookaheadTest, OfDepth256AndMoreStillTakesSteps) {
  for (const int depth : {255, 256, 257, 512, 1000000, 2147483647}) {
    settings(depth, -6, -6);
    seed("ACACACACACGCACACACACAC", 0, 2);
    forward();
    EXPECT_EQ(grown(), "[0,22) AC score 13 1 mis") << depth;
  }
}

// Tried exhaustively, twelve steps would be half a million paths at every step of the walk.
TEST_F(LookaheadTest, OfDepthTwelveEndsQuickly) {
  settings(12, -2, -2);
  std::string bases;
  for (int i = 0; i < 199; ++i) bases += i % 3 == 0 ? "ACGTTGCAAGT" : "ACGTTGCATGT";
  seed(bases, 0, 11);
  forward();
  EXPECT_EQ(sat.length(), 2189);
  EXPECT_EQ(sat.mismatches, 132U);
}

// Two inserted bases before an alternating stretch: a mismatch matches nine bases of it, one insertion none, but two
// all that follow.
TEST_F(LookaheadTest, ALongRunBehindTwoInsertionsWinsOverAShorterOneBesideIt) {
  const std::string before = "GGATTCGTACCTTGAGACGT";
  const std::string behind = "CACACACACAGTTAGGCATTCGACTTAAGGTGCATCGTTA";
  const std::string unit = before + behind;
  seed(unit + before + "TA" + behind + unit, 0, 60);
  forward();
  EXPECT_EQ(events(), "80I 81I ");
}

}  // namespace
