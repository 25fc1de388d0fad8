#include "driver/messages.h"

#include <sstream>

#include "test_support.h"

namespace {

using testing::ElementsAre;
using testing::StartsWith;

std::string on_stderr(const std::function<void()>& write) {
  testing::internal::CaptureStderr();
  write();
  return testing::internal::GetCapturedStderr();
}

std::vector<std::string> lines_of(const std::string& text) {
  std::vector<std::string> lines;
  std::istringstream in(text);
  for (std::string line; std::getline(in, line);) lines.push_back(line);
  return lines;
}

std::vector<std::string> banner() {
  return lines_of(test::bytes_written_by(ostrel_welcome));
}

TEST(BannerTest, BeginsWithTwoEmptyLinesAndTheVersion) {
  const auto lines = banner();
  ASSERT_GE(lines.size(), 4U);
  EXPECT_EQ(lines[0], "");
  EXPECT_EQ(lines[1], "");
  EXPECT_EQ(lines[2], "      Welcome to Ostrel, version 3.2.6,");
  EXPECT_EQ(lines[3], "      a microsatellite and satellite search tool.");
}

TEST(BannerTest, HasARightsLineAndTenLinesOfTerms) {
  const auto lines = banner();
  ASSERT_EQ(lines.size(), 21U);
  for (std::size_t i = 4; i < 15; ++i) {
    EXPECT_THAT(lines[i], StartsWith("      ")) << i;
    EXPECT_NE(lines[i][6], ' ') << i;
  }
}

TEST(BannerTest, EndsWithTheImportantNoteAndTwoEmptyLines) {
  const auto lines = banner();
  ASSERT_EQ(lines.size(), 21U);
  EXPECT_THAT(std::vector<std::string>(lines.begin() + 15, lines.end()),
              ElementsAre("", "      Important note: The search mode: Search for repeats with",
                          "                      a minimum percentage perfection is not",
                          "                      fully implemented in this version.", "", ""));
}

TEST(CreatorTest, NamesTheVersionBehindThePrefix) {
  EXPECT_EQ(test::bytes_written_by([](std::FILE* out) { creator_message(out, "# "); }),
            "# Results computed with:\n#    Ostrel, version 3.2.6\n");
}

class ColumnsTest : public test::WithParameters {
 protected:
  static std::vector<std::string> columns() {
    return lines_of(test::bytes_written_by([](std::FILE* out) { print_output_format(out, "# "); }));
  }
};

TEST_F(ColumnsTest, OfTheExtendedFormat) {
  EXPECT_THAT(
      columns(),
      ElementsAre("# ", "# Columns in lines of output providing repeat information:", "# Column  1: Repeat unit length",
                  "# Column  2: Position at which repeat starts in current sequence",
                  "# Column  3: Position at which repeat ends in current sequence",
                  "# Column  4: Length of repeat in original sequence, i.e. (end-start+1)",
                  "# Column  5: Normalized repeat length, i.e. (end-start+1-insertions+deletions)",
                  "# Column  6: Repeat score", "# Column  7: Repeat perfection", "# Column  8: Number of mismatches",
                  "# Column  9: Number of insertions", "# Column 10: Number of deletions", "# Column 11: Number of N's",
                  "# Column 12: Repeat unit", "# "));
}

TEST_F(ColumnsTest, OfTheExtendedFormatWithNAsMissenseEndAtEleven) {
  global_treat_Ns_as_missense = true;
  const auto lines = columns();
  ASSERT_EQ(lines.size(), 14U);
  EXPECT_EQ(lines[11], "# Column 10: Number of deletions");
  EXPECT_EQ(lines[12], "# Column 11: Repeat unit");
}

TEST_F(ColumnsTest, OfTheOtherFormatsEndAtEight) {
  for (const int format : {0, 2}) {
    global_print_sat_mode = format;
    const auto lines = columns();
    ASSERT_EQ(lines.size(), 11U);
    EXPECT_EQ(lines[8], "# Column  7: Repeat perfection");
    EXPECT_EQ(lines[9], "# Column  8: Repeat unit");
  }
}

TEST(GoodByeTest, AfterACompleteRun) {
  EXPECT_EQ(on_stderr(good_bye), "\nAnalysis finished successfully.\n\nOstrel says goodbye.\n\n");
}

TEST(GoodByeTest, TheClosingLineOfAReport) {
  EXPECT_EQ(test::bytes_written_by(write_closing_line), "## Finished successfully. ##\n");
}

TEST(GoodByeOnErrorTest, AfterARefusedSettingIsAnEmptyLinePair) {
  EXPECT_EQ(on_stderr([] { good_bye_on_error(-1); }), "\n\n");
}

TEST(GoodByeOnErrorTest, BelowMinusOneNamesTheNumber) {
  EXPECT_EQ(on_stderr([] { good_bye_on_error(-2); }),
            "\nAnalysis has been aborted due to errors. Error number: -2\n\n");
  EXPECT_EQ(on_stderr([] { good_bye_on_error(-101); }),
            "\nAnalysis has been aborted due to errors. Error number: -101\n\n");
}

TEST(GoodByeOnErrorTest, OfAPositiveCodeNamesTheUser) {
  EXPECT_EQ(on_stderr([] { good_bye_on_error(1); }), "\nAnalysis has been stopped by the user.\n\n");
}

TEST(GoodByeOnErrorTest, OfZeroIsSilent) {
  EXPECT_EQ(on_stderr([] { good_bye_on_error(0); }), "");
}

TEST(PrintMessageTest, WritesEveryStringAsItIs) {
  EXPECT_EQ(test::bytes_written_by([](std::FILE* out) { general_PrintMessage(out, "%s", "100%", " %n", "\n"); }),
            "%s100% %n\n");
}

}  // namespace
