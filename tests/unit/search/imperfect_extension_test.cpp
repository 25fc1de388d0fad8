// What the walk keeps: steps, events, score bound, limits. Which step it chooses is tested with the lookahead.

#include "search/extension_support.h"

namespace {

using test::ImperfectExtensionTest;
using test::repeated;

TEST_F(ImperfectExtensionTest, ForwardCrossesAMismatch) {
  seed("ACACACACACGCACACACACAC", 0, 2);  // 8, -6, 11
  forward();
  EXPECT_EQ(grown(), "[0,22) AC score 13 1 mis");
  EXPECT_EQ(events(), "10M ");
}

TEST_F(ImperfectExtensionTest, ForwardCrossesAnInsertion) {
  seed("ACACACACACGACACACACAC", 0, 2);  // 8, -6, 10
  forward();
  EXPECT_EQ(grown(), "[0,21) AC score 12 1 ins");
  EXPECT_EQ(events(), "10I ");
}

TEST_F(ImperfectExtensionTest, ForwardCrossesADeletion) {
  seed("ACACACACACCACACACACACA", 0, 2);  // 8, -6, 12
  forward();
  EXPECT_EQ(grown(), "[0,22) AC score 14 1 del");
  EXPECT_EQ(events(), "10D ");
}

TEST_F(ImperfectExtensionTest, BackwardCrossesAMismatch) {
  seed("CACACACACACGCACACACACA", 20, 2);  // CA: 8, -6 for the G in place of A, 11
  backward();
  EXPECT_EQ(grown(), "[0,22) CA score 13 1 mis");
  EXPECT_EQ(events(), "11M ");
}

TEST_F(ImperfectExtensionTest, BackwardCrossesAnInsertion) {
  seed("ACACACACACGACACACACAC", 19, 2);  // 8, -6, 10
  backward();
  EXPECT_EQ(grown(), "[0,21) AC score 12 1 ins");
  EXPECT_EQ(events(), "10I ");
}

TEST_F(ImperfectExtensionTest, BackwardCrossesADeletionAndNamesTheBaseRightOfTheGap) {
  seed("ACACACACACCACACACACACA", 10, 2);  // CA at the gap itself
  forward();
  EXPECT_EQ(grown(), "[10,22) CA score 10");
  backward();  // -6, 10
  EXPECT_EQ(grown(), "[0,22) CA score 14 1 del");
  EXPECT_EQ(events(), "10D ");
}

TEST_F(ImperfectExtensionTest, TheExpectedUnitBaseIsRightAfterAllKindsOfSteps) {
  seed("ACACACACACGACACACACACCACACACACACA", 0, 2);
  forward();  // 8, -6, 10, -6, 12
  EXPECT_EQ(grown(), "[0,33) AC score 18 1 ins 1 del");
  EXPECT_EQ(events(), "10I 21D ");
  EXPECT_EQ(sequence->index(sat.unit_right), 1);
}

TEST_F(ImperfectExtensionTest, WithDepthZeroOnlyTheExactExtensionHappens) {
  global_maximum_recursion_depth = 0;
  seed("ACACACACACGCACACACACAC", 0, 2);
  forward();
  backward();
  EXPECT_EQ(grown(), "[0,10) AC score 8");
  EXPECT_EQ(events(), "");
}

TEST_F(ImperfectExtensionTest, ASeedAtTheSequenceEndIsNotTriedForward) {
  seed("GGGGACACACACAC", 4, 2);
  forward();
  EXPECT_EQ(grown(), "[4,14) AC score 8");
  EXPECT_EQ(events(), "");
}

TEST_F(ImperfectExtensionTest, ASeedAtTheSequenceStartIsNotTriedBackward) {
  seed("ACACACACACGG", 0, 2);
  sat.score = 50;
  backward();
  EXPECT_EQ(grown(), "[0,2) AC score 50");
}

TEST_F(ImperfectExtensionTest, ASeedRightAfterTheLeftLimitIsNotTriedBackward) {
  seed("ACACACACACACACACACAC", 10, 2);
  sat.score = 50;
  CSearchController(1, sequence->mol).extend_imperfect_backward(sat, sequence->at(9));
  EXPECT_EQ(grown(), "[10,12) AC score 50");
}

TEST_F(ImperfectExtensionTest, BackwardStepsStopAtTheLeftLimit) {
  seed("ACACACACACGCACACACACAC", 20, 2);
  sat.score = 50;
  CSearchController(1, sequence->mol).extend_imperfect_backward(sat, sequence->at(2));
  EXPECT_EQ(grown(), "[3,22) AC score 60 1 mis");  // 9, -6, 7
}

TEST_F(ImperfectExtensionTest, AMononucleotideOfScoreFiveTriesNoStep) {
  seed("AAAAAACAAAAAAAAAAAA", 0, 1);
  forward();
  EXPECT_EQ(grown(), "[0,6) A score 5");
}

TEST_F(ImperfectExtensionTest, AMononucleotideOfScoreSixTriesAStep) {
  seed("AAAAAAACAAAAAAAAAAAA", 0, 1);  // 6, -6, 12
  forward();
  EXPECT_EQ(grown(), "[0,20) A score 12 1 mis");
}

TEST_F(ImperfectExtensionTest, ADinucleotideTriesAStepFromScoreFive) {
  seed("ACACACGCACACACACACAC", 0, 2);
  forward();
  EXPECT_EQ(grown(), "[0,6) AC score 4");
  seed("ACACACAGACACACACACAC", 0, 2);  // 5, -6, 12
  forward();
  EXPECT_EQ(grown(), "[0,20) AC score 11 1 mis");
}

TEST_F(ImperfectExtensionTest, AHexanucleotideTriesAStepFromScoreOne) {
  seed("ACGTTGTCGTTGACGTTGACGTTG", 0, 6);
  forward();
  EXPECT_EQ(grown(), "[0,6) ACGTTG score 0");
  seed("ACGTTGATGTTGACGTTGACGTTG", 0, 6);  // 1, -6, 16
  forward();
  EXPECT_EQ(grown(), "[0,24) ACGTTG score 11 1 mis");
}

TEST_F(ImperfectExtensionTest, AUnitOfSevenTriesAStepFromScoreZero) {
  seed("ACGTTGCTCGTTGCACGTTGC", 0, 7);  // 0, -6, 13
  forward();
  EXPECT_EQ(grown(), "[0,21) ACGTTGC score 7 1 mis");
  EXPECT_EQ(events(), "7M ");
}

TEST_F(ImperfectExtensionTest, MismatchesAndIndelsAreBoundApart) {
  global_mismatch_score = -20;
  global_indel_score = -2;
  seed("AAAAAACAAAAAA", 0, 1);  // 5, -2, 6; a mismatch is out of reach
  forward();
  EXPECT_EQ(grown(), "[0,13) A score 9 1 ins");
}

TEST_F(ImperfectExtensionTest, AContinuationThatRegainsOnlyTheScoreBeforeItIsDropped) {
  seed("AAAAAAACAAAAAA", 0, 1);  // 6, -6, 6
  forward();
  EXPECT_EQ(grown(), "[0,7) A score 6");
  EXPECT_EQ(events(), "");
}

TEST_F(ImperfectExtensionTest, AContinuationThatGainsOnePointIsKept) {
  seed("AAAAAAACAAAAAAA", 0, 1);  // 6, -6, 7
  forward();
  EXPECT_EQ(grown(), "[0,15) A score 7 1 mis");
}

TEST_F(ImperfectExtensionTest, TheWalkGoesThroughAValleyBehindTheLookahead) {
  global_maximum_recursion_depth = 1;
  seed(std::string(20, 'A') + "CCC" + std::string(30, 'A'), 0, 1);  // 19, -18, 30
  forward();
  EXPECT_EQ(grown(), "[0,53) A score 31 3 mis");
}

TEST_F(ImperfectExtensionTest, TheRecordEndsAtTheHighestStateOfTheWalkNotAtItsLast) {
  seed("AAAAAAAAAACAAAAAAAACAAACAAAGGGGGG", 0, 1);  // 9, -6+8 = 11, -6+3, -6+3, ...
  forward();
  EXPECT_EQ(grown(), "[0,19) A score 11 1 mis");
  EXPECT_EQ(events(), "10M ");
}

TEST_F(ImperfectExtensionTest, OfTwoEqualHighestStatesTheEarlierIsKept) {
  seed("AAAAAAAAAACAAAAAAAACAAAAAACG", 0, 1);  // 9, 11, 11
  forward();
  EXPECT_EQ(grown(), "[0,19) A score 11 1 mis");
}

TEST_F(ImperfectExtensionTest, AnOverLongRunOfNEndsTheWalkWhateverTheScore) {
  seed(repeated("AC", 50) + "NNNNN" + repeated("AC", 50), 0, 2);
  forward();
  EXPECT_EQ(grown().substr(0, 7), "[0,100)");
  seed(repeated("AC", 50) + "NNNNN" + repeated("AC", 50), 203, 2);
  backward();
  EXPECT_EQ(grown().substr(0, 9), "[105,205)");
}

TEST_F(ImperfectExtensionTest, AnAdmissibleRunOfNIsCrossedWithoutAStep) {
  seed("ACACACNNNNACACACGCACACACAC", 0, 2);  // 4, 6, -6, 9
  forward();
  EXPECT_EQ(grown(), "[0,26) AC score 13 1 mis 4 N");
}

TEST_F(ImperfectExtensionTest, WithNoNAllowedAnNIsAMismatch) {
  global_Ns_allowed_in_a_row = 0;
  seed("ACACACACACNCACACACACAC", 0, 2);
  forward();
  EXPECT_EQ(grown(), "[0,22) AC score 13 1 mis");
  EXPECT_EQ(events(), "10M ");
}

TEST_F(ImperfectExtensionTest, WithNAsMissenseAnNIsAMismatch) {
  global_treat_Ns_as_missense = true;
  seed("ACACACACACNCACACACACAC", 0, 2);
  forward();
  EXPECT_EQ(grown(), "[0,22) AC score 13 1 mis");
}

TEST_F(ImperfectExtensionTest, ForwardEventsAscendAndBackwardEventsDescend) {
  const std::string run = "AAAAAAAA";
  seed(run + "C" + run + "C" + run + "C" + run + "C" + run, 18, 1);
  forward();   // 7, 9, 11
  backward();  // 13, 15
  EXPECT_EQ(grown(), "[0,44) A score 15 4 mis");
  EXPECT_EQ(events(), "26M 35M 17M 8M ");
}

TEST_F(ImperfectExtensionTest, ForwardDeletionsNeverLieAtTheSequenceEnd) {
  seed("ACACACACACC", 0, 2);  // the deletion of A would only score the last C
  forward();
  EXPECT_EQ(grown(), "[0,10) AC score 8");
  global_indel_score = -2;
  seed("ACACACACACCAC", 0, 2);  // 8, -2, 3
  forward();
  EXPECT_EQ(grown(), "[0,13) AC score 9 1 del");
  EXPECT_EQ(events(), "10D ");
}

// The left end starts from what the right end earned, so it may go much further down than a seed could on its own.
TEST_F(ImperfectExtensionTest, BackwardInheritsTheScoreOfForward) {
  seed(std::string(20, 'A') + "CACAC" + std::string(21, 'A'), 25, 1);
  forward();
  EXPECT_EQ(grown(), "[25,46) A score 20");
  backward();  // 20, -6+1, -6+1, -6+20
  EXPECT_EQ(grown(), "[0,46) A score 24 3 mis");
}

TEST_F(ImperfectExtensionTest, ForwardCannotSpendWhatBackwardWillEarn) {
  seed(std::string(21, 'A') + "CACAC" + std::string(20, 'A'), 20, 1);
  forward();
  EXPECT_EQ(grown(), "[20,21) A score 0");
  backward();
  EXPECT_EQ(grown(), "[0,21) A score 20");
}

TEST_F(ImperfectExtensionTest, AnExtendedRecordCanBeExtendedAgainWithoutChange) {
  seed("ACACACACACGCACACACACAC", 0, 2);
  forward();
  forward();
  EXPECT_EQ(grown(), "[0,22) AC score 13 1 mis");
  EXPECT_EQ(events(), "10M ");
}

TEST_F(ImperfectExtensionTest, TwoMissingBasesAreTwoDeletionsAtOnePosition) {
  global_indel_score = -2;
  seed("ACGTTACGTTGTTACGTTACGTT", 0, 5);  // 5, -4, 13; to insert GTT instead would cost 6
  forward();
  EXPECT_EQ(grown(), "[0,23) ACGTT score 14 2 del");
  EXPECT_EQ(events(), "10D 10D ");
}

/// Indels so cheap that a wrong base is an insertion and a deletion rather than a mismatch. Backward both lie at the
/// base that was inserted.
class CheapIndelsTest : public ImperfectExtensionTest {
 protected:
  CheapIndelsTest() {
    global_mismatch_score = -9;
    global_indel_score = -2;
    seed("ACGACGACGTCGACGACG", 15, 3);  // 5, -2, -2, 9
    backward();
  }
};

TEST_F(CheapIndelsTest, AnInsertionAndADeletionLieAtOnePosition) {
  EXPECT_EQ(grown(), "[0,18) ACG score 10 1 ins 1 del");
  EXPECT_EQ(events(), "9I 9D ");
}

TEST_F(CheapIndelsTest, TheAlignmentShowsTheRepeatAndTheCyclicUnit) {
  sat.sort_missense();
  EXPECT_EQ(events(), "9D 9I ");
  const std::string report = test::bytes_written_by([&](std::FILE* out) { sat.report_sat(out, sequence->mol); });
  EXPECT_THAT(report, testing::EndsWith("ACGACGACG-TCGACGACG\n"
                                        "|||||||||  ||||||||\n"
                                        "ACGACGACGA-CGACGACG\n"));
}

TEST_F(ImperfectExtensionTest, PenaltiesAtTheEndOfTheIntegersForbidEveryStep) {
  global_mismatch_score = -2147483647 - 1;
  global_indel_score = -2147483647 - 1;
  seed("ACACACACACGCACACACACAC", 0, 2);
  forward();
  EXPECT_EQ(grown(), "[0,10) AC score 8");
}

// Deep recursion or a copy of the events at every step would not end within the time of a test.
TEST_F(ImperfectExtensionTest, ARepeatWithManyThousandEventsIsOneWalk) {
  constexpr std::size_t copies = 20000;
  seed(repeated("ACGTTGCACGTTGCACGTTGT", copies) + "ACGTTGC", 0, 7);  // every third copy ends in T
  forward();
  EXPECT_EQ(sat.mismatches, copies);
  EXPECT_EQ(sat.missense.size, copies);
  EXPECT_EQ(sat.length(), 21 * 20000 + 7);
  EXPECT_EQ(sat.score, 20 * 20000 - 6 * 20000);
}

// They cost 195 or so, which 240 bases bring in again and 160 do not.
TEST_F(ImperfectExtensionTest, AWalkComesBackFromAFarFall) {
  const std::string unit = "ACGGTCATTCAGGATCTTGC";
  const std::string array = repeated(unit, 60);
  const std::string departing = test::departing_copies(unit, 18);
  seed(array + departing + repeated(unit, 12), 0, 20);
  forward();
  EXPECT_EQ(sat.length(), 1200 + 360 + 240);
  seed(array + departing + repeated(unit, 8), 0, 20);
  forward();
  EXPECT_LT(sat.length(), 1210);

  seed(repeated(unit, 12) + departing + array, 240 + 360 + 1180, 20);
  backward();
  EXPECT_EQ(sat.length(), 1200 + 360 + 240);
  seed(repeated(unit, 8) + departing + array, 160 + 360 + 1180, 20);
  backward();
  EXPECT_LT(sat.length(), 1210);
}

}  // namespace
