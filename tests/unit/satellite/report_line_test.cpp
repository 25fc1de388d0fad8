// The line of one repeat in the three formats, and the unit that it shows.

#include "satellite/Csat.h"
#include "test_support.h"

namespace {

class ReportLineTest : public test::WithParameters {
 protected:
  ReportLineTest() { global_print_sat_seq_mode = 0; }

  /// The report of the whole of `bases` as a repeat whose unit is its first bases.
  std::string report(const std::string& bases, std::ptrdiff_t unit_length) {
    test::Sequence sequence(bases);
    sat.seed(sequence.at(0), sequence.at(unit_length));
    sat.pos_right_end = sequence.mol.end();
    prepare(sequence);
    return test::bytes_written_by([&](std::FILE* out) { sat.report_sat(out, sequence.mol); });
  }

  virtual void prepare(const test::Sequence& /*sequence*/) { sat.score = sat.length() - sat.unit_length(); }

  Csat sat;
};

TEST_F(ReportLineTest, ExtendedFormat) {
  EXPECT_EQ(report("ACACACACAC", 2),
            "    dinucleotide         1 :        10 |     10 bp |     10 BP |      8 pt | 100.000 % |"
            "   0 mis |   0 ins |   0 del |   0 N |  unit AC\n"
            "Missense: \n");
}

TEST_F(ReportLineTest, ExtendedFormatWithNAsMissenseHasNoColumnForN) {
  global_treat_Ns_as_missense = true;
  EXPECT_EQ(report("ACACACACAC", 2),
            "    dinucleotide         1 :        10 |     10 bp |     10 BP |      8 pt | 100.000 % |"
            "   0 mis |   0 ins |   0 del |  unit AC\n"
            "Missense: \n");
}

TEST_F(ReportLineTest, ShortFormat) {
  global_print_sat_mode = 0;
  EXPECT_EQ(report("ACACACACAC", 2),
            "    dinucleotide         1 :        10 |     10 bp |     10 BP |      8 pt | 100.000 % | unit AC\n");
}

TEST_F(ReportLineTest, SputnikFormat) {
  global_print_sat_mode = 2;
  EXPECT_EQ(report("ACACACACAC", 2), "dinucleotide 1 : 10 -- length 10 score 8 perfection 100 unit AC\n");
}

TEST_F(ReportLineTest, AnyOtherFormatNumberIsTheExtendedFormat) {
  const std::string extended = report("ACACACACAC", 2);
  global_print_sat_mode = 7;
  EXPECT_EQ(report("ACACACACAC", 2), extended);
}

TEST_F(ReportLineTest, AUnitOfSevenIsNamedByItsNumberInSixteenColumns) {
  EXPECT_EQ(report("AAAAAACAAAAAAC", 7).substr(0, 27), "    7-nucleotide         1 ");
  global_print_sat_mode = 0;
  EXPECT_EQ(report("AAAAAACAAAAAAC", 7).substr(0, 27), "    7-nucleotide         1 ");
}

TEST_F(ReportLineTest, AUnitOfSevenIsNamedWithoutBlanksInSputnikFormat) {
  global_print_sat_mode = 2;
  EXPECT_EQ(report("AAAAAACAAAAAAC", 7), "7-nucleotide 1 : 14 -- length 14 score 7 perfection 100 unit AAAAAAC\n");
}

/// Events and counts that the line must show.
class DepartedReportLineTest : public ReportLineTest {
 protected:
  void prepare(const test::Sequence& sequence) override {
    sat.score = -12;
    sat.mismatches = 1;
    sat.insertions = 2;
    sat.deletions = 3;
    sat.num_Ns = 4;
    sat.missense.push_back({sequence.at(4), 'D'});
    sat.missense.push_back({sequence.at(4), 'M'});
    sat.missense.push_back({sequence.at(9), 'I'});
  }
};

TEST_F(DepartedReportLineTest, ShowsCountsAndEventsOfAllKinds) {
  // 20 bases, BP 20 - 2 + 3 = 21, perfection (21 - 1 - 2 - 3 - 4) / 21.
  EXPECT_EQ(report("ACACACACACACACACACAC", 2),
            "    dinucleotide         1 :        20 |     20 bp |     21 BP |    -12 pt |  52.381 % |"
            "   1 mis |   2 ins |   3 del |   4 N |  unit AC\n"
            "Missense: (5,D),(5,M),(10,I),\n");
}

TEST_F(DepartedReportLineTest, SputnikFormatShowsTheNormalizedLength) {
  global_print_sat_mode = 2;
  EXPECT_EQ(report("ACACACACACACACACACAC", 2), "dinucleotide 1 : 20 -- length 21 score -12 perfection 52 unit AC\n");
}

TEST_F(DepartedReportLineTest, ReportingChangesNothingInTheRecord) {
  report("ACACACACACACACACACAC", 2);
  EXPECT_EQ(sat.missense.size, 3U);
  EXPECT_EQ(sat.score, -12);
  EXPECT_EQ(sat.length(), 20);
}

/// A repeat of the given length whose perfection is set by its mismatches.
class RoundingTest : public ReportLineTest {
 protected:
  std::string rounded(std::size_t length, std::uint32_t mismatches) {
    global_print_sat_mode = 2;
    wanted_mismatches = mismatches;
    const std::string line = report(std::string(length - 1, 'A') + "C", 1);
    const std::size_t from = line.find("perfection ") + 11;
    return line.substr(from, line.find(' ', from) - from);
  }
  void prepare(const test::Sequence& /*sequence*/) override { sat.mismatches = wanted_mismatches; }

  std::uint32_t wanted_mismatches = 0;
};

TEST_F(RoundingTest, HalfAPercentIsRoundedUp) {
  EXPECT_EQ(rounded(8, 1), "88");
}  // 87.5

TEST_F(RoundingTest, LessThanHalfAPercentIsRoundedDown) {
  EXPECT_EQ(rounded(10000, 1251), "87");
}  // 87.49

TEST_F(RoundingTest, ANegativePerfectionIsTruncatedTowardZero) {
  EXPECT_EQ(rounded(8, 9), "-12");
}  // -12.5 + 0.5

TEST_F(RoundingTest, ASmallNegativePerfectionIsZero) {
  EXPECT_EQ(rounded(1000, 1010), "0");
}  // -1.0 + 0.5

/// The unit shown by the modes; an empty string for a repeat that is not reported.
class ReportedUnitTest : public ReportLineTest {
 protected:
  std::string shown(const std::string& unit, int mode) {
    global_report_unit_mode = mode;
    global_print_sat_mode = 0;
    const std::string line = report(unit + unit, static_cast<std::ptrdiff_t>(unit.size()));
    if (line.empty()) return "";
    const std::size_t from = line.rfind(' ') + 1;
    return line.substr(from, line.size() - from - 1);
  }
};

TEST_F(ReportedUnitTest, AsItIs) {
  EXPECT_EQ(shown("TGCA", 0), "TGCA");
}

TEST_F(ReportedUnitTest, InNormalFormIsTheSmallestRotation) {
  EXPECT_EQ(shown("TGCA", 1), "ATGC");
}

TEST_F(ReportedUnitTest, WithBothStrandsACAndGTAreOne) {
  for (const char* unit : {"AC", "CA", "GT", "TG"}) EXPECT_EQ(shown(unit, 2), "AC");
}

TEST_F(ReportedUnitTest, InNormalFormTheStrandsStayApart) {
  EXPECT_EQ(shown("TG", 1), "GT");
  EXPECT_EQ(shown("CA", 1), "AC");
}

TEST_F(ReportedUnitTest, OfOneStrandOnlyMononucleotidesPairToo) {
  EXPECT_EQ(shown("T", 2), "A");
  EXPECT_EQ(shown("G", 2), "C");
  EXPECT_EQ(shown("T", 1), "T");
}

TEST_F(ReportedUnitTest, TheSmallerStrandWins) {
  EXPECT_EQ(shown("CTTG", 2), "AAGC");
}  // CTTG; CAAG -> AAGC

TEST_F(ReportedUnitTest, APeriodicUnitIsNotReportedInAnyMode) {
  for (const int mode : {0, 1, 2}) EXPECT_EQ(shown("ATAT", mode), "") << mode;
}

TEST_F(ReportedUnitTest, ARepeatedBaseOfPrimeLengthIsReportedAsItIsOnly) {
  EXPECT_EQ(shown("AAA", 0), "AAA");
  EXPECT_EQ(shown("AAA", 1), "");
  EXPECT_EQ(shown("AAA", 2), "");
}

TEST_F(ReportedUnitTest, LongerThanTenThousandIsTestedForPeriodicityToo) {
  EXPECT_EQ(shown(test::repeated("AAC", 5000), 0), "");
  EXPECT_EQ(shown(std::string(15000, 'A') + "C", 0), std::string(15000, 'A') + "C");
}

/// Whether a line reaches the file before the stream is flushed or closed.
class FlushTest : public ReportLineTest {
 protected:
  std::string on_disk_after_report() {
    const test::Sequence sequence("ACACACACAC");
    sat.seed(sequence.at(0), sequence.at(2));
    const test::TempDir dir;
    std::FILE* const out = std::fopen(dir.path("out").c_str(), "w");
    std::setvbuf(out, nullptr, _IOFBF, 100000);
    sat.report_sat(out, sequence.mol);
    const std::string content = test::read_file(dir.path("out"));
    std::fclose(out);
    return content;
  }
};

TEST_F(FlushTest, SputnikFormatFlushesEveryLine) {
  global_print_sat_mode = 2;
  EXPECT_EQ(on_disk_after_report(), "dinucleotide 1 : 2 -- length 2 score 0 perfection 100 unit AC\n");
}

TEST_F(FlushTest, TheOtherFormatsDoNotFlush) {
  global_print_sat_mode = 1;
  EXPECT_EQ(on_disk_after_report(), "");
}

}  // namespace
