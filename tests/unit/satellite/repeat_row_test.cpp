#include "satellite/repeat_row.h"

#include "test_support.h"

namespace {

/// A repeat [begin, end) of a sequence, 0-based, with the unit seeded at [unit, unit + length).
class RepeatRowTest : public test::WithParameters {
 protected:
  void repeat(const std::string& bases, std::ptrdiff_t begin, std::ptrdiff_t end, std::ptrdiff_t unit,
              std::ptrdiff_t length) {
    sequence = std::make_unique<test::Sequence>(bases);
    sat.seed(sequence->at(unit), sequence->at(unit + length));
    sat.pos_left = sequence->at(begin);
    sat.pos_right_end = sequence->at(end);
  }

  void event(std::ptrdiff_t index, char kind) {
    sat.missense.push_back({sequence->at(index), kind});
    ++(kind == 'M' ? sat.mismatches : kind == 'I' ? sat.insertions : sat.deletions);
  }

  RepeatRow row() const { return repeat_row(sat, sequence->mol).value(); }

  std::unique_ptr<test::Sequence> sequence;
  Csat sat;
};

TEST_F(RepeatRowTest, HoldsTheValuesOfTheReport) {
  repeat("GGACACACTT", 2, 8, 2, 2);
  sat.score = 4;
  const RepeatRow row = this->row();
  EXPECT_EQ(row.start, 3);
  EXPECT_EQ(row.end, 8);
  EXPECT_EQ(row.unit_length, 2);
  EXPECT_EQ(row.length, 6);
  EXPECT_EQ(row.normalized_length, 6);
  EXPECT_EQ(row.score, 4);
  EXPECT_EQ(row.perfection, 100.0);
  EXPECT_EQ(row.copies, 3.0);
  EXPECT_EQ(row.unit, "AC");
  EXPECT_EQ(row.matched_unit, "AC");
  EXPECT_EQ(row.alignment, "6=");
}

TEST_F(RepeatRowTest, CountsCopiesOfThePerfectRepeat) {
  repeat("ACACGACACA", 0, 10, 0, 2);
  event(4, 'I');
  EXPECT_EQ(row().length, 10);
  EXPECT_EQ(row().normalized_length, 9);
  EXPECT_EQ(row().copies, 4.5);
}

TEST_F(RepeatRowTest, HoldsTheNumberOfEveryKind) {
  repeat("ACACGACTCCANAC", 0, 14, 0, 2);
  event(4, 'I');
  event(7, 'M');
  event(9, 'D');
  sat.num_Ns = 1;
  const RepeatRow row = this->row();
  EXPECT_EQ(row.insertions, 1U);
  EXPECT_EQ(row.mismatches, 1U);
  EXPECT_EQ(row.deletions, 1U);
  EXPECT_EQ(row.neutral_Ns, 1U);
  EXPECT_EQ(row.perfection, sat.percentagePerfection());
}

TEST_F(RepeatRowTest, TheAlignmentNamesEveryKindOfColumn) {
  repeat("ACACGACTCCANAC", 0, 14, 0, 2);
  event(4, 'I');
  event(7, 'M');
  event(9, 'D');
  EXPECT_EQ(row().alignment, "4=1I2=1X1=1D2=1M2=");
}

TEST_F(RepeatRowTest, TheAlignmentJoinsColumnsOfOneKind) {
  repeat("ACTTACGGGAC", 0, 11, 0, 2);
  event(2, 'M');
  event(3, 'M');
  event(6, 'I');
  event(7, 'I');
  event(8, 'I');
  EXPECT_EQ(row().alignment, "2=2X2=3I2=");
}

TEST_F(RepeatRowTest, AnNThatIsAMismatchIsNotNeutral) {
  repeat("ACNCAC", 0, 6, 0, 2);
  event(2, 'M');
  EXPECT_EQ(row().alignment, "2=1X3=");
}

TEST_F(RepeatRowTest, DeletionsComeBeforeTheMismatchAtTheirBase) {
  repeat("ACGACTGACG", 0, 10, 0, 3);
  event(5, 'D');
  event(5, 'M');
  EXPECT_EQ(row().alignment.substr(0, 6), "5=1D1X");
}

TEST_F(RepeatRowTest, TheUnitIsInItsReportForm) {
  repeat("TGTTGTTG", 0, 8, 0, 3);
  global_report_unit_mode = 0;
  EXPECT_EQ(row().unit, "TGT");
  global_report_unit_mode = 1;
  EXPECT_EQ(row().unit, "GTT");
  global_report_unit_mode = 2;
  EXPECT_EQ(row().unit, "AAC");
}

TEST_F(RepeatRowTest, TheMatchedUnitBeginsWithTheUnitBaseDueAtTheStart) {
  repeat("CGTACGTACG", 0, 10, 3, 4);  // seeded at ACGT
  sat.unit_left = sequence->at(3);    // A is due before the start, so C is due at it
  EXPECT_EQ(row().matched_unit, "CGTA");
  sat.unit_left = sequence->at(6);  // the last unit base, so the seed's own phase
  EXPECT_EQ(row().matched_unit, "ACGT");
}

TEST_F(RepeatRowTest, APeriodicUnitHasNone) {
  repeat("ACACACAC", 0, 8, 0, 4);
  EXPECT_FALSE(repeat_row(sat, sequence->mol).has_value());
}

}  // namespace
