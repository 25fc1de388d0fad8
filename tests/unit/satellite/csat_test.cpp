#include "satellite/Csat.h"

#include "test_support.h"

namespace {

/// A record over the bases [first, last) of a sequence whose unit has its seed at [unit, unit_end).
Csat seeded(const test::Sequence& sequence, std::ptrdiff_t begin, std::ptrdiff_t end) {
  Csat sat;
  sat.seed(sequence.at(begin), sequence.at(end));
  return sat;
}

TEST(SeedTest, IsOneCopyOfItsUnitWithoutScore) {
  const test::Sequence sequence("GGACGTT");
  const Csat sat = seeded(sequence, 2, 5);
  EXPECT_EQ(sat.pos_left, sequence.at(2));
  EXPECT_EQ(sat.pos_right_end, sequence.at(5));
  EXPECT_EQ(sat.unit_begin, sequence.at(2));
  EXPECT_EQ(sat.unit_end, sequence.at(5));
  EXPECT_EQ(sat.score, 0);
  EXPECT_EQ(sat.unit_length(), 3);
}

TEST(SeedTest, ExpectsItsFirstBaseToTheRightAndItsLastToTheLeft) {
  const test::Sequence sequence("GGACGTT");
  const Csat sat = seeded(sequence, 2, 5);
  EXPECT_EQ(sat.unit_right, sequence.at(2));
  EXPECT_EQ(sat.unit_left, sequence.at(4));
}

TEST(UnitStepTest, WrapsAtBothEnds) {
  const test::Sequence sequence("GGACGTT");
  const Csat sat = seeded(sequence, 2, 5);
  EXPECT_EQ(sat.next_unit_base(sequence.at(3)), sequence.at(4));
  EXPECT_EQ(sat.next_unit_base(sequence.at(4)), sequence.at(2));
  EXPECT_EQ(sat.previous_unit_base(sequence.at(3)), sequence.at(2));
  EXPECT_EQ(sat.previous_unit_base(sequence.at(2)), sequence.at(4));
}

TEST(NormalizedLengthTest, LeavesInsertionsOutAndAddsDeletions) {
  const test::Sequence sequence(std::string(20, 'A'));
  Csat sat = seeded(sequence, 0, 20);
  sat.insertions = 1;
  sat.deletions = 2;
  EXPECT_EQ(sat.length(), 20);
  EXPECT_EQ(sat.normalized_length(), 21);
}

class PerfectionTest : public test::WithParameters {
 protected:
  PerfectionTest() : sequence(std::string(20, 'A')), sat(seeded(sequence, 0, 20)) {}

  void depart() {
    sat.insertions = 1;
    sat.deletions = 2;
    sat.mismatches = 1;
    sat.num_Ns = 2;
  }

  test::Sequence sequence;
  Csat sat;
};

TEST_F(PerfectionTest, WithNAsMismatch) {
  depart();
  EXPECT_NEAR(sat.percentagePerfection(), 1500.0 / 21, 1e-12);
}

TEST_F(PerfectionTest, WithNNeutralStillSubtractsThemInTheNumerator) {
  depart();
  global_N_and_perfection_mode = 1;
  EXPECT_NEAR(sat.percentagePerfection(), 1500.0 / 19, 1e-12);
}

TEST_F(PerfectionTest, WithNAsMatch) {
  depart();
  global_N_and_perfection_mode = 2;
  EXPECT_NEAR(sat.percentagePerfection(), 1700.0 / 21, 1e-12);
}

TEST_F(PerfectionTest, OfAPerfectRepeatIsAHundredInEveryMode) {
  for (const int mode : {0, 1, 2}) {
    global_N_and_perfection_mode = mode;
    EXPECT_EQ(sat.percentagePerfection(), 100.0);
  }
}

TEST_F(PerfectionTest, MayBeNegative) {
  sat.mismatches = 30;
  EXPECT_EQ(sat.percentagePerfection(), -50.0);
}

using PerfectionDeathTest = PerfectionTest;

TEST_F(PerfectionDeathTest, InAnUnknownModeEndsTheProgramWithStatusTwo) {
  global_N_and_perfection_mode = 3;
  EXPECT_EXIT(sat.percentagePerfection(), testing::ExitedWithCode(2), "");
}

/// NACACN with the unit AC at 1: both N taken.
class TrimTest : public testing::Test {
 protected:
  TrimTest() : sequence("NACACN"), sat(seeded(sequence, 1, 3)) {
    sat.pos_left = sequence.at(0);
    sat.pos_right_end = sequence.at(6);
    sat.unit_left = sequence.at(1);   // A is expected before the N, which stands for C
    sat.unit_right = sequence.at(2);  // C is expected after the N, which stands for A
    sat.num_Ns = 2;
  }

  test::Sequence sequence;
  Csat sat;
};

TEST_F(TrimTest, TakesTheNOffBothEnds) {
  sat.remove_Ns_at_ends();
  EXPECT_EQ(sat.pos_left, sequence.at(1));
  EXPECT_EQ(sat.pos_right_end, sequence.at(5));
  EXPECT_EQ(sat.num_Ns, 0U);
}

TEST_F(TrimTest, StepsTheExpectedUnitBasesWithTheEnds) {
  sat.remove_Ns_at_ends();
  EXPECT_EQ(sat.unit_right, sequence.at(1));
  EXPECT_EQ(sat.unit_left, sequence.at(2));
}

TEST_F(TrimTest, WrapsTheExpectedUnitBases) {
  sat.unit_right = sequence.at(1);
  sat.unit_left = sequence.at(2);
  sat.remove_Ns_at_ends();
  EXPECT_EQ(sat.unit_right, sequence.at(2));
  EXPECT_EQ(sat.unit_left, sequence.at(1));
}

TEST_F(TrimTest, DoesNotChangeTheScore) {
  sat.score = 2;
  sat.remove_Ns_at_ends();
  EXPECT_EQ(sat.score, 2);
}

TEST(TrimWithoutNTest, LeavesTheRecordAlone) {
  const test::Sequence sequence("NACANACN");
  Csat sat = seeded(sequence, 1, 3);
  sat.pos_right_end = sequence.at(7);
  sat.num_Ns = 1;
  sat.remove_Ns_at_ends();
  EXPECT_EQ(sat.pos_left, sequence.at(1));
  EXPECT_EQ(sat.pos_right_end, sequence.at(7));
  EXPECT_EQ(sat.num_Ns, 1U);
  EXPECT_EQ(sat.unit_right, sequence.at(1));
  EXPECT_EQ(sat.unit_left, sequence.at(2));
}

TEST(TrimRunsTest, TakesWholeRunsOff) {
  const test::Sequence sequence("NNNACACNN");
  Csat sat = seeded(sequence, 3, 5);
  sat.pos_left = sequence.at(0);
  sat.pos_right_end = sequence.at(9);
  sat.num_Ns = 5;
  sat.remove_Ns_at_ends();
  EXPECT_EQ(sat.pos_left, sequence.at(3));
  EXPECT_EQ(sat.pos_right_end, sequence.at(7));
  EXPECT_EQ(sat.num_Ns, 0U);
}

class SatOrderTest : public testing::Test {
 protected:
  Csat between(std::ptrdiff_t begin, std::ptrdiff_t end) const { return seeded(sequence, begin, end); }
  static bool less(const Csat& a, const Csat& b) { return lessThan_sat(&a, &b); }

  test::Sequence sequence{"ACGTACGT"};
};

TEST_F(SatOrderTest, TheEarlierStartComesFirst) {
  EXPECT_TRUE(less(between(1, 8), between(2, 3)));
  EXPECT_FALSE(less(between(2, 3), between(1, 8)));
}

TEST_F(SatOrderTest, AtEqualStartsTheEarlierEndComesFirst) {
  EXPECT_TRUE(less(between(1, 3), between(1, 4)));
  EXPECT_FALSE(less(between(1, 4), between(1, 3)));
}

TEST_F(SatOrderTest, EqualRangesAreNotLessThanEachOther) {
  EXPECT_FALSE(less(between(1, 3), between(1, 3)));
}

TEST_F(SatOrderTest, EqualRangesKeepTheirOrderInASortedList) {
  Csat a = between(1, 3);
  Csat b = between(1, 3);
  Csat c = between(0, 5);
  std::list<Csat*> sats{&b, &a, &c};
  sats.sort(lessThan_sat);
  EXPECT_THAT(sats, testing::ElementsAre(&c, &b, &a));
}

std::string name_for(std::ptrdiff_t unit_length) {
  const std::string bases(4000, 'A');
  Csat sat;
  sat.seed(bases.data(), bases.data() + unit_length);
  return sat.get_repeat_name();
}

TEST(RepeatNameTest, OfTheShortUnitsIsAWord) {
  EXPECT_EQ(name_for(1), "mononucleotide");
  EXPECT_EQ(name_for(2), "dinucleotide");
  EXPECT_EQ(name_for(3), "trinucleotide");
  EXPECT_EQ(name_for(4), "tetranucleotide");
  EXPECT_EQ(name_for(5), "pentanucleotide");
  EXPECT_EQ(name_for(6), "hexanucleotide");
}

TEST(RepeatNameTest, OfLongerUnitsIsTheNumber) {
  EXPECT_EQ(name_for(7), "7-nucleotide");
  EXPECT_EQ(name_for(3999), "3999-nucleotide");
}

TEST(RepeatNameTest, OfAnEmptyUnitIsAnError) {
  EXPECT_EQ(name_for(0), "***  ERROR  ***");
}

TEST(CopyTest, OfARecordHasItsOwnEvents) {
  const test::Sequence sequence("ACGT");
  Csat original = seeded(sequence, 0, 2);
  original.missense.push_back({sequence.at(1), 'M'});
  const Csat copy = original;
  original.missense.buffer[0].second = 'D';
  EXPECT_EQ(copy.missense.buffer[0].second, 'M');
  EXPECT_EQ(copy.pos_right_end, sequence.at(2));
}

}  // namespace
