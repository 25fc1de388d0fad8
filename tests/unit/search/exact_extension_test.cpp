#include "search/front.h"
#include "search/search_support.h"

namespace {

/// One seed of a sequence, grown in one direction.
class ExactExtensionTest : public test::SearchTest {
 protected:
  bool forward(const std::string& bases, std::ptrdiff_t seed, std::ptrdiff_t unit_length) {
    take(bases, seed, unit_length);
    return CSearchController(1, sequence->mol).extend_exact_forward(sat, sequence->mol.end());
  }

  bool backward(const std::string& bases, std::ptrdiff_t seed, std::ptrdiff_t unit_length) {
    take(bases, seed, unit_length);
    return CSearchController(1, sequence->mol).extend_exact_backward(sat, sequence->mol.begin() - 1);
  }

  std::string grown() const { return test::described(*sequence, sat); }

  std::unique_ptr<test::Sequence> sequence;
  Csat sat;

 private:
  void take(const std::string& bases, std::ptrdiff_t seed, std::ptrdiff_t unit_length) {
    sequence = std::make_unique<test::Sequence>(bases);
    sat.seed(sequence->at(seed), sequence->at(seed + unit_length));
  }
};

TEST_F(ExactExtensionTest, ForwardTakesBasesThatCopyTheUnit) {
  EXPECT_TRUE(forward("ACGACGACT", 0, 3));
  EXPECT_EQ(grown(), "[0,8) ACG score 5");
  EXPECT_EQ(sequence->index(sat.unit_right), 2);
}

TEST_F(ExactExtensionTest, ForwardOverOneWholeCopyExpectsTheUnitsFirstBaseAgain) {
  EXPECT_TRUE(forward("ACGACGT", 0, 3));
  EXPECT_EQ(grown(), "[0,6) ACG score 3");
  EXPECT_EQ(sequence->index(sat.unit_right), 0);
}

TEST_F(ExactExtensionTest, BackwardTakesBasesThatCopyTheUnit) {
  EXPECT_TRUE(backward("TCGACGACGT", 6, 3));
  EXPECT_EQ(grown(), "[1,9) ACG score 5");
  EXPECT_EQ(sequence->index(sat.unit_left), 6);
}

TEST_F(ExactExtensionTest, ForwardEndsAtTheSequenceEnd) {
  EXPECT_TRUE(forward("ACACAC", 0, 2));
  EXPECT_EQ(grown(), "[0,6) AC score 4");
  EXPECT_EQ(sequence->index(sat.unit_right), 0);
}

TEST_F(ExactExtensionTest, BackwardTakesTheFirstBaseOfTheSequence) {
  EXPECT_TRUE(backward("ACACAC", 4, 2));
  EXPECT_EQ(grown(), "[0,6) AC score 4");
  EXPECT_EQ(sequence->index(sat.unit_left), 5);
}

TEST_F(ExactExtensionTest, ForwardStopsBeforeItsStop) {
  test::Sequence bases("ACACACAC");
  Csat seed;
  seed.seed(bases.at(0), bases.at(2));
  EXPECT_TRUE(CSearchController(1, bases.mol).extend_exact_forward(seed, bases.at(5)));
  EXPECT_EQ(test::described(bases, seed), "[0,5) AC score 3");
}

TEST_F(ExactExtensionTest, BackwardDoesNotTakeItsStop) {
  test::Sequence bases("ACACACAC");
  Csat seed;
  seed.seed(bases.at(6), bases.at(8));
  EXPECT_TRUE(CSearchController(1, bases.mol).extend_exact_backward(seed, bases.at(2)));
  EXPECT_EQ(test::described(bases, seed), "[3,8) AC score 3");
}

TEST_F(ExactExtensionTest, ForwardTakesAnAdmissibleRunOfN) {
  EXPECT_TRUE(forward("ACACNNNNACACT", 0, 2));
  EXPECT_EQ(grown(), "[0,12) AC score 6 4 N");
  EXPECT_EQ(sequence->index(sat.unit_right), 0);
}

TEST_F(ExactExtensionTest, BackwardTakesAnAdmissibleRunOfN) {
  EXPECT_TRUE(backward("TACACNNNNACAC", 11, 2));
  EXPECT_EQ(grown(), "[1,13) AC score 6 4 N");
}

TEST_F(ExactExtensionTest, ForwardKeepsThePhaseAcrossAnOddRunOfN) {
  EXPECT_TRUE(forward("ACACNNNCACT", 0, 2));
  EXPECT_EQ(grown(), "[0,10) AC score 5 3 N");
  EXPECT_EQ(sequence->index(sat.unit_right), 0);
}

TEST_F(ExactExtensionTest, BackwardKeepsThePhaseAcrossARunLongerThanTheUnit) {
  EXPECT_TRUE(backward("TACGACNNNNACGACG", 13, 3));  // a run of four N in a unit of three
  EXPECT_EQ(grown(), "[1,16) ACG score 8 4 N");
}

TEST_F(ExactExtensionTest, AnOverLongRunOfNEndsItWithFalse) {
  EXPECT_FALSE(forward("ACACNNNNNACAC", 0, 2));
  EXPECT_EQ(grown(), "[0,4) AC score 2");
  EXPECT_FALSE(backward("ACACNNNNNACAC", 11, 2));
  EXPECT_EQ(grown(), "[9,13) AC score 2");
}

TEST_F(ExactExtensionTest, ARunOfNIsCountedToTheStopOnly) {
  EXPECT_TRUE(forward("ACACNNNN", 0, 2));
  EXPECT_EQ(grown(), "[0,8) AC score 2 4 N");
  EXPECT_TRUE(backward("NNNNACAC", 6, 2));
  EXPECT_EQ(grown(), "[0,8) AC score 2 4 N");
}

TEST_F(ExactExtensionTest, TwoAdmissibleRunsAreCountedApart) {
  EXPECT_TRUE(forward("ACACNNNNACACNNNNAC", 0, 2));
  EXPECT_EQ(grown(), "[0,18) AC score 8 8 N");
}

TEST_F(ExactExtensionTest, WithNoNAllowedAnNEndsItWithTrue) {
  global_Ns_allowed_in_a_row = 0;
  EXPECT_TRUE(forward("ACACNACAC", 0, 2));
  EXPECT_EQ(grown(), "[0,4) AC score 2");
  EXPECT_TRUE(backward("ACACNACAC", 7, 2));
  EXPECT_EQ(grown(), "[5,9) AC score 2");
}

TEST_F(ExactExtensionTest, WithNAsMissenseAnAdmissibleRunEndsItWithTrue) {
  global_treat_Ns_as_missense = true;
  EXPECT_TRUE(forward("ACACNNACAC", 0, 2));
  EXPECT_EQ(grown(), "[0,4) AC score 2");
}

TEST_F(ExactExtensionTest, WithNAsMissenseAnOverLongRunStillEndsItWithFalse) {
  global_treat_Ns_as_missense = true;
  EXPECT_FALSE(forward("ACACNNNNNACAC", 0, 2));
  EXPECT_EQ(grown(), "[0,4) AC score 2");
}

TEST_F(ExactExtensionTest, TheLimitOfNMayExceedTheSequence) {
  global_Ns_allowed_in_a_row = 2147483647;
  EXPECT_TRUE(forward("AC" + std::string(1000, 'N') + "ACG", 0, 2));
  EXPECT_EQ(grown(), "[0,1004) AC score 2 1000 N");
}

}  // namespace
