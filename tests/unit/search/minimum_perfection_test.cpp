#include "search/search_support.h"

namespace {

class MinimumPerfectionTest : public test::SearchTest {
 protected:
  MinimumPerfectionTest() {
    global_print_sat_mode = 2;  // start, end, BP, score, perfection
    global_print_sat_seq_mode = 0;
    global_Ns_allowed_in_a_row = 6;
    unit_lengths(2, 2);
    global_min_score = 5;
  }

  static std::string report(const std::string& bases) {
    test::Sequence sequence(bases);
    CSearchController controller(1, sequence.mol);
    controller.exact_search_2();
    return test::bytes_written_by([&](std::FILE* out) { controller.report_exact_sat_with_minimum_perfection(out); });
  }
};

/// Twenty bases of the unit AC with six N in their middle: 70 % with N as mismatches.
const char* const seventy_percent = "ACACACANNNNNNCACACAC";
const char* const header = ">r\nsequence length: 20\n";

TEST_F(MinimumPerfectionTest, ARepeatThatReachesItIsReportedWhole) {
  global_perfection_minimum = 70;
  EXPECT_EQ(report(seventy_percent),
            std::string(header) + "dinucleotide 1 : 20 -- length 20 score 12 perfection 70 unit AC\n");
}

// From the first base seven bases and one N are 87.5 %, two N would be 77.8 %. No start among the N reaches enough
// until one N is left, which with the last seven bases is 87.5 % again.
TEST_F(MinimumPerfectionTest, ARepeatThatFallsShortIsBrokenUp) {
  global_perfection_minimum = 80;
  EXPECT_EQ(report(seventy_percent), std::string(header) +
                                         "dinucleotide 1 : 8 -- length 8 score 5 perfection 88 unit AC\n"
                                         "dinucleotide 13 : 20 -- length 8 score 5 perfection 88 unit AC\n");
}

TEST_F(MinimumPerfectionTest, OtherTreatmentsOfNReportEveryRepeatWhole) {
  global_perfection_minimum = 99;
  global_N_and_perfection_mode = 1;
  EXPECT_EQ(report(seventy_percent),
            std::string(header) + "dinucleotide 1 : 20 -- length 20 score 12 perfection 100 unit AC\n");
  global_N_and_perfection_mode = 2;
  EXPECT_EQ(report(seventy_percent),
            std::string(header) + "dinucleotide 1 : 20 -- length 20 score 12 perfection 100 unit AC\n");
}

TEST_F(MinimumPerfectionTest, PiecesBelowTheThresholdsAreNotReported) {
  global_perfection_minimum = 80;
  global_min_score = 6;
  EXPECT_EQ(report(seventy_percent), header);
}

// One base and four N at the start: from there the best is the base alone, below the thresholds. The first start that
// gives a piece that passes is the third N, three bases further on.
TEST_F(MinimumPerfectionTest, AFailedPieceMovesTheStartByOneBase) {
  global_perfection_minimum = 80;
  EXPECT_EQ(report("ANNNNCACACACACAC"),
            ">r\nsequence length: 16\n"
            "dinucleotide 4 : 16 -- length 13 score 9 perfection 85 unit AC\n");
}

TEST_F(MinimumPerfectionTest, WithoutRepeatsWritesTheHeader) {
  global_perfection_minimum = 80;
  EXPECT_EQ(report("ACGTTGCA"), ">r\nsequence length: 8\n");
}

class BestPieceTest : public MinimumPerfectionTest {
 protected:
  /// The best piece from `start` of the one repeat that the bases hold.
  std::string piece(const std::string& bases, std::ptrdiff_t start) {
    test::Sequence sequence(bases);
    CSearchController controller(1, sequence.mol);
    controller.exact_search_2();
    if (controller.exact_sats.sats.size() != 1) return "not one repeat";
    Csat best;
    CSearchController::find_one_exact_sat_with_minimum_perfection_in_previously_determined_exact_repeat(
        *controller.exact_sats.sats.front(), sequence.at(start), best);
    return best.pos_left == nullptr ? "none" : test::described(sequence, best);
  }
};

TEST_F(BestPieceTest, FromTheFirstBaseIsTheLongestOfTheHighestScore) {
  global_perfection_minimum = 80;
  EXPECT_EQ(piece(seventy_percent, 0), "[0,8) AC score 5 1 N");
}

TEST_F(BestPieceTest, FromAnyBaseKeepsThePhaseOfTheRepeat) {
  global_perfection_minimum = 80;
  EXPECT_EQ(piece(seventy_percent, 3), "[3,8) AC score 2 1 N");
  EXPECT_EQ(piece(seventy_percent, 12), "[12,20) AC score 5 1 N");
}

TEST_F(BestPieceTest, WhereNoPrefixReachesTheMinimumThereIsNone) {
  global_perfection_minimum = 80;
  EXPECT_EQ(piece(seventy_percent, 8), "none");
}

TEST_F(BestPieceTest, OfExactlyTheMinimumReachesIt) {
  global_perfection_minimum = 87.5F;
  EXPECT_EQ(piece(seventy_percent, 12), "[12,20) AC score 5 1 N");
  global_perfection_minimum = 87.75F;
  EXPECT_EQ(piece(seventy_percent, 12), "none");
}

}  // namespace
