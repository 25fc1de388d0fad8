#include "sequence/global-types-and-parameters.h"
#include "test_support.h"

namespace {

using ParametersTest = test::WithParameters;

TEST_F(ParametersTest, TheSequenceRangeIsTheWholeFile) {
  EXPECT_EQ(global_sequence_from, 1U);
  EXPECT_EQ(global_sequence_to, 4294967295U);
}

TEST_F(ParametersTest, TheSearchIsImperfectWithDepthFive) {
  EXPECT_EQ(global_search_mode, 2);
  EXPECT_EQ(global_maximum_recursion_depth, 5);
}

TEST_F(ParametersTest, TheReportIsExtendedWithAlignmentAndBothStrands) {
  EXPECT_EQ(global_print_sat_mode, 1);
  EXPECT_EQ(global_print_sat_seq_mode, 2);
  EXPECT_EQ(global_report_unit_mode, 2);
  EXPECT_EQ(global_flanking, 0);
}

TEST_F(ParametersTest, UnitLengthsAreOneToSix) {
  EXPECT_EQ(global_min_unit_length, 1U);
  EXPECT_EQ(global_max_unit_length, 6U);
}

TEST_F(ParametersTest, NIsNeutralInTheSearchAndAMismatchInThePerfection) {
  EXPECT_FALSE(global_treat_Ns_as_missense);
  EXPECT_EQ(global_Ns_allowed_in_a_row, 4);
  EXPECT_EQ(global_N_and_perfection_mode, 0);
  EXPECT_EQ(global_perfection_minimum, 0.0F);
}

TEST_F(ParametersTest, ThresholdsAreScoreSixAndLengthOne) {
  EXPECT_EQ(global_min_score, 6);
  EXPECT_EQ(global_min_score_a, 0);
  EXPECT_EQ(global_min_score_bx, 1.0F);
  EXPECT_EQ(global_min_length, 1);
  EXPECT_EQ(global_min_length_a, 0);
  EXPECT_EQ(global_min_length_bx, 0.0F);
}

TEST_F(ParametersTest, PenaltiesAreMinusSix) {
  EXPECT_EQ(global_mismatch_score, -6);
  EXPECT_EQ(global_indel_score, -6);
}

TEST_F(ParametersTest, OverlapsAreRemovedAndNothingIsMasked) {
  EXPECT_TRUE(global_remove_mostly_hidden);
  EXPECT_FALSE(global_mask_repeats);
  EXPECT_FALSE(global_show_progress);
}

TEST_F(ParametersTest, TheFileNamesAreLeftAlone) {
  global_input_filename = "x.fa";
  global_output_filename = "x.txt";
  init_param();
  EXPECT_EQ(global_input_filename, "x.fa");
  EXPECT_EQ(global_output_filename, "x.txt");
}

}  // namespace
