#include "search/search_support.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

using ExactSearchTest = test::SearchTest;

TEST_F(ExactSearchTest, ADinucleotideRepeatIsFoundOnceAndNotAtMultiplesOfItsUnit) {
  EXPECT_THAT(exact("ACACACACAC"), ElementsAre("[0,10) AC score 8"));
}

TEST_F(ExactSearchTest, AMononucleotideRunIsFoundAtUnitLengthOneOnly) {
  EXPECT_THAT(exact("AAAAAAAAAA"), ElementsAre("[0,10) A score 9"));
}

TEST_F(ExactSearchTest, ARunOfNInsideIsCrossed) {
  EXPECT_THAT(exact("ACACNNACACAC"), ElementsAre("[0,12) AC score 8 2 N"));
}

TEST_F(ExactSearchTest, WithNAsMissenseTheStretchesOnBothSidesFallShort) {
  global_treat_Ns_as_missense = true;
  EXPECT_THAT(exact("ACACNNACACAC"), IsEmpty());
}

TEST_F(ExactSearchTest, ARunOfNLongerThanAllowedSeparatesTheStretches) {
  global_Ns_allowed_in_a_row = 1;
  EXPECT_THAT(exact("ACACNNACACAC"), IsEmpty());
}

TEST_F(ExactSearchTest, ARunOfExactlyTheAllowedNIsCrossed) {
  EXPECT_THAT(exact("ACACACACACNNNNACACACAC"), ElementsAre("[0,22) AC score 16 4 N"));
  EXPECT_THAT(exact("ACACACACACNNNNNACACACAC"), ElementsAre("[0,10) AC score 8", "[15,23) AC score 6"));
}

TEST_F(ExactSearchTest, ASequenceOfNYieldsNothing) {
  accept_everything();
  EXPECT_THAT(exact("NNNNNNNNNN"), IsEmpty());
  EXPECT_THAT(exact("N"), IsEmpty());
}

TEST_F(ExactSearchTest, AWindowWithAnNIsNeverASeed) {
  accept_everything();
  unit_lengths(2, 2);
  EXPECT_THAT(exact("ANCNGNTN"), IsEmpty());
}

TEST_F(ExactSearchTest, AnEmptySequenceYieldsNothing) {
  accept_everything();
  EXPECT_THAT(exact(""), IsEmpty());
}

TEST_F(ExactSearchTest, AnEmptySequenceYieldsNothingHoweverLowTheMinimumScore) {
  global_min_score = -1;
  global_min_score_bx = -5.0F;
  EXPECT_THAT(exact(""), IsEmpty());
}

TEST_F(ExactSearchTest, WithUnitsFromTwoMononucleotideRunsAreNeverFound) {
  unit_lengths(2, 6);
  EXPECT_THAT(exact(std::string(15, 'A') + "ACACACACACACA"), ElementsAre("[15,28) AC score 11"));
}

TEST_F(ExactSearchTest, ARepeatThatReachesTheLastBaseIsFound) {
  EXPECT_THAT(exact("GTACACACAC"), ElementsAre("[2,10) AC score 6"));
  EXPECT_THAT(exact("CAAAAAAA"), ElementsAre("[1,8) A score 6"));
}

TEST_F(ExactSearchTest, AWindowThatEndsOnTheLastBaseIsNeverTried) {
  accept_everything();
  unit_lengths(2, 2);
  EXPECT_THAT(exact("AC"), IsEmpty());
  EXPECT_THAT(exact("ACG"), ElementsAre("[0,2) AC score 0"));
}

TEST_F(ExactSearchTest, TheLastBaseAloneIsNeverASeed) {
  accept_everything();
  unit_lengths(1, 1);
  EXPECT_THAT(exact("A"), IsEmpty());
  EXPECT_THAT(exact("AC"), ElementsAre("[0,1) A score 0"));
}

TEST_F(ExactSearchTest, NAtTheEndsOfARepeatAreTrimmed) {
  EXPECT_THAT(exact("NNACACACACNNN"), ElementsAre("[2,10) AC score 6"));
  EXPECT_THAT(exact("NNAAAAAAANN"), ElementsAre("[2,9) A score 6"));
}

TEST_F(ExactSearchTest, AMononucleotideRunWithNInsideIsFoundOnce) {
  EXPECT_THAT(exact("AAAANNAAAAC"), ElementsAre("[0,10) A score 7 2 N"));
}

TEST_F(ExactSearchTest, TheLongestWindowOfASequenceIsTried) {
  accept_everything();
  unit_lengths(2, 4294967295U);
  global_min_length = 5;
  EXPECT_THAT(exact("ACGTGA"), ElementsAre("[0,6) ACGTG score 1"));
}

TEST_F(ExactSearchTest, AMononucleotideRunDoesNotHideALongerUnit) {
  unit_lengths(1, 8);
  EXPECT_THAT(exact("AAAAAAACAAAAAAACAAAAAAAC"),
              ElementsAre("[0,7) A score 6", "[0,24) AAAAAAAC score 16", "[8,15) A score 6", "[16,23) A score 6"));
}

TEST_F(ExactSearchTest, NeighbouringRepeatsThatShareABaseAreBothFound) {
  EXPECT_THAT(exact("ACACACACAGAGAGAGAG"), ElementsAre("[0,9) AC score 7", "[8,18) GA score 8"));
}

TEST_F(ExactSearchTest, ARepeatBelowTheMinimumLengthIsDropped) {
  global_min_length = 11;
  EXPECT_THAT(exact("ACACACACAC"), IsEmpty());
  global_min_length = 10;
  EXPECT_THAT(exact("ACACACACAC"), ElementsAre("[0,10) AC score 8"));
}

TEST_F(ExactSearchTest, AScoreOfExactlyTheThresholdIsKept) {
  EXPECT_THAT(exact("GACACACACG"), ElementsAre("[1,9) AC score 6"));
  EXPECT_THAT(exact("GACACACAGG"), IsEmpty());
}

// A unit of twelve needs twelve matches: the unit length is the linear term of the default threshold.
TEST_F(ExactSearchTest, ALongUnitNeedsAsManyMatchesAsItIsLong) {
  unit_lengths(2, 12);
  EXPECT_THAT(exact("ACCTGGATTCGAACCTGGATTCGAT"), ElementsAre("[0,24) ACCTGGATTCGA score 12"));
  EXPECT_THAT(exact("ACCTGGATTCGAACCTGGATTCGTT"), IsEmpty());
}

// Inside the unit of eighteen lies a dinucleotide repeat; the longer unit is still found, because its first window
// starts on a free base and a free base follows it.
TEST_F(ExactSearchTest, ALongUnitAroundARepeatOfAShortUnitIsFound) {
  unit_lengths(1, 18);
  global_min_score_bx = 0;
  EXPECT_THAT(exact("GTGATGACACACACACACGTGATGT"),
              ElementsAre("[0,24) GTGATGACACACACACAC score 6", "[6,18) AC score 10"));
}

}  // namespace
