#include "search/search_support.h"

namespace {

class ReportListTest : public test::SearchTest {
 protected:
  static std::string report(const std::string& bases, const std::string& name) {
    global_print_sat_mode = 0;
    global_print_sat_seq_mode = 0;
    test::Sequence sequence(bases, name);
    CSearchController controller(1, sequence.mol);
    controller.exact_search_2();
    return test::bytes_written_by([&](std::FILE* out) { controller.report_SATList(out, controller.exact_sats.sats); });
  }
};

TEST_F(ReportListTest, WritesTheHeaderAndTheRepeatsInTheirOrder) {
  EXPECT_EQ(report("ACACACACACTTGTTGTTGTTG", "one two"),
            ">one two\nsequence length: 22\n"
            "    dinucleotide         1 :        10 |     10 bp |     10 BP |      8 pt | 100.000 % | unit AC\n"
            "   trinucleotide        11 :        22 |     12 bp |     12 BP |      9 pt | 100.000 % | unit AAC\n");
}

TEST_F(ReportListTest, OfNoRepeatsIsTheHeader) {
  EXPECT_EQ(report("ACGT", "r"), ">r\nsequence length: 4\n");
}

TEST_F(ReportListTest, OfAnEmptySequenceIsTheHeader) {
  EXPECT_EQ(report("", "r"), ">r\nsequence length: 0\n");
}

TEST_F(ReportListTest, ANameWithPercentSignsIsWrittenAsItIs) {
  EXPECT_EQ(report("ACGT", "100%s %n \xc3\xa4"), ">100%s %n \xc3\xa4\nsequence length: 4\n");
}

TEST_F(ReportListTest, HandsOnEveryRepeatWithItsEvents) {
  std::string bases;
  for (int i = 0; i < 700; ++i) bases += "ACGTACGTACGTACGTACGA";  // more events than are kept until the report
  test::Sequence sequence(bases);
  CSearchController controller(1, sequence.mol);
  controller.complete_imperfect_search();
  CSearchController::remove_hidden(controller.imperfect_sats);
  std::size_t events = 0;
  test::bytes_written_by([&](std::FILE* out) {
    controller.report_SATList(out, controller.imperfect_sats.sats, [&events](const Csat& sat) {
      EXPECT_TRUE(sat.has_all_events());
      events = std::max<std::size_t>(events, sat.missense.size);
    });
  });
  EXPECT_GT(events, 512U);
}

}  // namespace
