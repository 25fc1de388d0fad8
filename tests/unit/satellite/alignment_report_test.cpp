// What follows a repeat line: nothing, the bases, or three aligned lines.

#include "satellite/Csat.h"
#include "test_support.h"

namespace {

/// A repeat [begin, end) of a sequence, with the unit seeded at `unit`.
class FollowingLinesTest : public test::WithParameters {
 protected:
  FollowingLinesTest() { global_report_unit_mode = 0; }

  void repeat(const std::string& bases, std::ptrdiff_t begin, std::ptrdiff_t end, std::ptrdiff_t unit_length) {
    sequence = std::make_unique<test::Sequence>(bases);
    sat.seed(sequence->at(begin), sequence->at(begin + unit_length));
    sat.pos_right_end = sequence->at(end);
  }

  void event(std::ptrdiff_t index, char kind) { sat.missense.push_back({sequence->at(index), kind}); }

  /// The lines behind the repeat line, which is one line in the short format.
  std::string following(int seq_mode, int flanking = 0) {
    global_print_sat_mode = 0;
    global_print_sat_seq_mode = seq_mode;
    global_flanking = flanking;
    const std::string text = test::bytes_written_by([&](std::FILE* out) { sat.report_sat(out, sequence->mol); });
    return text.substr(text.find('\n') + 1);
  }

  std::unique_ptr<test::Sequence> sequence;
  Csat sat;
};

using BasesTest = FollowingLinesTest;

TEST_F(BasesTest, AreNotWrittenInModeZero) {
  repeat("GGACACACTT", 2, 8, 2);
  EXPECT_EQ(following(0), "");
  EXPECT_EQ(following(0, 3), "");
}

TEST_F(BasesTest, OtherModesWriteNothingEither) {
  repeat("GGACACACTT", 2, 8, 2);
  EXPECT_EQ(following(3), "");
}

TEST_F(BasesTest, WithoutFlanksHaveNoColons) {
  repeat("GGACACACTT", 2, 8, 2);
  EXPECT_EQ(following(1), "ACACAC\n");
}

TEST_F(BasesTest, WithFlanksAreBetweenColons) {
  repeat("GGACACACTT", 2, 8, 2);
  EXPECT_EQ(following(1, 1), "G:ACACAC:T\n");
}

TEST_F(BasesTest, FlanksEndAtTheSequenceEnds) {
  repeat("GGACACACTTT", 2, 8, 2);
  EXPECT_EQ(following(1, 10), "GG:ACACAC:TTT\n");
}

TEST_F(BasesTest, FlanksOfExactlyTheContextAreWhole) {
  repeat("GGACACACTT", 2, 8, 2);
  EXPECT_EQ(following(1, 2), "GG:ACACAC:TT\n");
}

TEST_F(BasesTest, EmptyFlanksKeepBothColons) {
  repeat("ACACAC", 0, 6, 2);
  EXPECT_EQ(following(1, 10), ":ACACAC:\n");
}

TEST_F(BasesTest, TheLargestFlankIsClampedWithoutOverflow) {
  repeat("GGACACACTT", 2, 8, 2);
  EXPECT_EQ(following(1, 2147483647), "GG:ACACAC:TT\n");
}

using AlignmentTest = FollowingLinesTest;

TEST_F(AlignmentTest, OfAPerfectRepeatHasBarsOnly) {
  repeat("GGACACACTT", 2, 8, 2);
  EXPECT_EQ(following(2), "ACACAC\n||||||\nACACAC\n");
}

TEST_F(AlignmentTest, ShowsAnInsertionAsAGapInTheUnit) {
  repeat("ACACGACAC", 0, 9, 2);
  event(4, 'I');
  EXPECT_EQ(following(2), "ACACGACAC\n|||| ||||\nACAC-ACAC\n");
}

TEST_F(AlignmentTest, ShowsAMismatchWithoutABar) {
  repeat("ACACGCAC", 0, 8, 2);
  event(4, 'M');
  EXPECT_EQ(following(2), "ACACGCAC\n|||| |||\nACACACAC\n");
}

TEST_F(AlignmentTest, ShowsADeletionAsAGapInTheSequence) {
  repeat("ACACCACAC", 0, 9, 2);
  event(4, 'D');
  EXPECT_EQ(following(2), "ACAC-CACAC\n|||| |||||\nACACACACAC\n");
}

TEST_F(AlignmentTest, ShowsEveryDeletionOfOnePosition) {
  repeat("ACGACGGACG", 0, 10, 3);
  event(6, 'D');
  event(6, 'D');
  EXPECT_EQ(following(2), "ACGACG--GACG\n||||||  ||||\nACGACGACGACG\n");
}

TEST_F(AlignmentTest, ShowsADeletionBeforeAMismatchOfTheSamePosition) {
  repeat("ACGACGTGACG", 0, 11, 3);
  event(6, 'D');
  event(6, 'M');
  EXPECT_EQ(following(2), "ACGACG-TGACG\n||||||  ||||\nACGACGACGACG\n");
}

TEST_F(AlignmentTest, ShowsADeletionBeforeAnInsertionOfTheSamePosition) {
  repeat("ACGACGTCGACG", 0, 12, 3);
  event(6, 'D');
  event(6, 'I');
  EXPECT_EQ(following(2), "ACGACG-TCGACG\n||||||  |||||\nACGACGA-CGACG\n");
}

TEST_F(AlignmentTest, ShowsAnNThatWasTakenAsNWithAStar) {
  repeat("ACACNCAC", 0, 8, 2);
  EXPECT_EQ(following(2), "ACACNCAC\n||||*|||\nACACACAC\n");
}

TEST_F(AlignmentTest, ShowsAnNThatIsAMismatchWithABlank) {
  repeat("ACACNCAC", 0, 8, 2);
  event(4, 'M');
  EXPECT_EQ(following(2), "ACACNCAC\n|||| |||\nACACACAC\n");
}

TEST_F(AlignmentTest, StartsWithTheUnitBaseOfTheFirstBase) {
  repeat("CACACACT", 1, 7, 2);
  sat.pos_left = sequence->at(0);
  sat.unit_left = sequence->at(1);  // A before the C that was taken
  EXPECT_EQ(following(2), "CACACAC\n|||||||\nCACACAC\n");
}

TEST_F(AlignmentTest, StartsAtTheUnitsFirstBaseAfterItsLast) {
  repeat("ACGACG", 0, 6, 3);
  EXPECT_EQ(following(2), "ACGACG\n||||||\nACGACG\n");
}

TEST_F(AlignmentTest, ShowsFlanksWithoutMarks) {
  repeat("GGACACACTTT", 2, 8, 2);
  EXPECT_EQ(following(2, 10),
            "GG:ACACAC:TTT\n"
            "   ||||||    \n"
            "   ACACAC    \n");
}

TEST_F(AlignmentTest, AnEmptyRightFlankKeepsItsColon) {
  repeat("GGACACAC", 2, 8, 2);
  EXPECT_EQ(following(2, 10),
            "GG:ACACAC:\n"
            "   |||||| \n"
            "   ACACAC \n");
}

TEST_F(AlignmentTest, TheLargestFlankIsClampedWithoutOverflow) {
  repeat("GACACACT", 1, 7, 2);
  EXPECT_EQ(following(2, 2147483647),
            "G:ACACAC:T\n"
            "  ||||||  \n"
            "  ACACAC  \n");
}

TEST_F(AlignmentTest, FollowsTheMissenseLineOfTheExtendedFormat) {
  repeat("ACACGACAC", 0, 9, 2);
  event(4, 'I');
  sat.insertions = 1;
  sat.score = 0;
  EXPECT_EQ(test::bytes_written_by([&](std::FILE* out) { sat.report_sat(out, sequence->mol); }),
            "    dinucleotide         1 :         9 |      9 bp |      8 BP |      0 pt |  87.500 % |"
            "   0 mis |   1 ins |   0 del |   0 N |  unit AC\n"
            "Missense: (5,I),\n"
            "ACACGACAC\n|||| ||||\nACAC-ACAC\n");
}

TEST_F(AlignmentTest, IsNotWrittenForASuppressedRepeat) {
  repeat("ATATATATAT", 0, 10, 4);
  EXPECT_EQ(following(2), "");
}

}  // namespace
