// The summary of the settings, which a report and standard error show alike.

#include "cli_support.h"

namespace cli {
namespace {

/// Runs a record without repeats and expects the settings in both places.
class CliSummaryTest : public CliTest {
 protected:
  void expect_settings(std::vector<std::string> arguments, const Settings& settings) {
    write_plain_input();
    arguments.emplace_back("x.fa");
    const Result result = run(arguments);
    const bool extends = settings.mode == "exact repeats which are extended to imperfect repeats";
    const std::string search = extends ? "  Searching for exact repeats.\n  Extend exact to imperfect repeats.\n" : "";
    const auto first = static_cast<unsigned>(std::stoul(settings.min_unit));
    const auto last = static_cast<unsigned>(std::stoul(settings.max_unit));
    EXPECT_EQ(result.out, report(settings, plain_record));
    EXPECT_EQ(after_banner(result), finished(settings, progress(1, first, "r") + search + progress(1, last, "r")));
    EXPECT_EQ(result.status, 0);
  }
};

TEST_F(CliSummaryTest, WithoutOptionsShowsTheDefaults) {
  expect_settings({}, Settings());
}

TEST_F(CliSummaryTest, OnStandardErrorNoLineStartsWithAHash) {
  write_plain_input();
  EXPECT_EQ(run({"x.fa"}).err.find("\n#"), std::string::npos);
}

TEST_F(CliSummaryTest, OfModeExact) {
  Settings settings;
  settings.mode = "exact repeats";
  expect_settings({"-M", "exact"}, settings);
  expect_settings({"--searchMode", "exact"}, settings);
}

TEST_F(CliSummaryTest, OfModeExtendExact) {
  Settings settings;
  settings.mode = "exact repeats which are extended to imperfect repeats";
  expect_settings({"-M", "extendExact"}, settings);
}

TEST_F(CliSummaryTest, OfModeImperfect) {
  expect_settings({"-M", "imperfect"}, Settings());
}

TEST_F(CliSummaryTest, OfTheRecursionDepth) {
  Settings settings;
  settings.depth = "7";
  expect_settings({"-r", "7"}, settings);
  expect_settings({"--recursion", "7"}, settings);
}

TEST_F(CliSummaryTest, ANegativeRecursionDepthIsZero) {
  Settings settings;
  settings.depth = "0";
  expect_settings({"-r", "-3"}, settings);
}

TEST_F(CliSummaryTest, OfTheUnitLengths) {
  Settings settings;
  settings.min_unit = "2";
  settings.max_unit = "3";
  expect_settings({"-u", "2", "-U", "3"}, settings);
  expect_settings({"--minUnitLen", "2", "--maxUnitLen", "3"}, settings);
}

TEST_F(CliSummaryTest, EqualUnitLengthsAreAccepted) {
  Settings settings;
  settings.max_unit = "1";
  expect_settings({"-U", "1"}, settings);
}

TEST_F(CliSummaryTest, OfTheMinimumScore) {
  Settings settings;
  settings.min_score = "maximum (9, -4+2.5*unitlength )";
  expect_settings({"-s", "9", "--minScore_a", "-4", "--minScore_b", "2.5"}, settings);
  expect_settings({"--minScore", "9", "--minScore_a", "-4", "--minScore_b", "2.5"}, settings);
}

TEST_F(CliSummaryTest, OfAFractionalSlope) {
  Settings settings;
  settings.min_score = "maximum (6, 0+0.5*unitlength )";
  expect_settings({"--minScore_b", "0.5"}, settings);
}

TEST_F(CliSummaryTest, OfTheMinimumLength) {
  Settings settings;
  settings.min_length = "maximum (12, 3+1.5*unitlength )";
  expect_settings({"-l", "12", "--minLength_a", "3", "--minLength_b", "1.5"}, settings);
  expect_settings({"--minLength", "12", "--minLength_a", "3", "--minLength_b", "1.5"}, settings);
}

TEST_F(CliSummaryTest, OfNAsMissense) {
  Settings settings;
  settings.treat_N = "missense";
  expect_settings({"--NsAsMissense"}, settings);
}

TEST_F(CliSummaryTest, OfSuccessiveN) {
  Settings settings;
  settings.successive_N = "0";
  expect_settings({"-N", "0"}, settings);
  expect_settings({"--succN", "-7"}, settings);
}

TEST_F(CliSummaryTest, OfThePenalties) {
  Settings settings;
  settings.mismatch = "-2";
  settings.indel = "-3";
  expect_settings({"-m", "-2", "-g", "-3"}, settings);
  expect_settings({"--mismatchScore", "-2", "--indelScore", "-3"}, settings);
}

TEST_F(CliSummaryTest, OfTheFlanks) {
  Settings settings;
  settings.flanking = "10";
  expect_settings({"-f", "10"}, settings);
  expect_settings({"--flanking", "10"}, settings);
}

TEST_F(CliSummaryTest, NegativeFlanksAreZero) {
  expect_settings({"-f", "-5"}, Settings());
}

TEST_F(CliSummaryTest, AMinimumPerfectionOfZeroIsAccepted) {
  expect_settings({"-P", "0"}, Settings());
  expect_settings({"--minPerfection", "0.0"}, Settings());
}

TEST_F(CliSummaryTest, OfKeptOverlaps) {
  Settings settings;
  settings.remove_overlapping = "no";
  expect_settings({"-D"}, settings);
  expect_settings({"--dontRemoveMostlyOverlapping"}, settings);
}

TEST_F(CliSummaryTest, OfMasking) {
  Settings settings;
  settings.mask = "yes";
  expect_settings({"--maskX"}, settings);
}

TEST_F(CliSummaryTest, OfNInThePerfection) {
  Settings settings;
  expect_settings({"--NPerfectionMode", "0"}, settings);
  settings.perfection_N = "asNeutral";
  expect_settings({"--NPerfectionMode", "1"}, settings);
  settings.perfection_N = "asMatch";
  expect_settings({"--NPerfectionMode", "2"}, settings);
}

TEST_F(CliSummaryTest, OfTheReportedUnit) {
  Settings settings;
  settings.unit = "as they are";
  expect_settings({"--reportUnit", "0"}, settings);
  settings.unit = "alphabetical normal form";
  expect_settings({"--reportUnit", "1"}, settings);
  expect_settings({"--reportUnit", "2"}, Settings());
}

TEST_F(CliSummaryTest, OfTheOutputFormat) {
  Settings settings;
  settings.format = "ostrel format";
  expect_settings({"--outputFormat", "0"}, settings);
  settings.format = "sputnik compatible format";
  expect_settings({"--outputFormat", "2"}, settings);
  expect_settings({"--outputFormat", "1"}, Settings());
}

TEST_F(CliSummaryTest, OfTheExtendedFormatWithNAsMissense) {
  Settings settings;
  settings.treat_N = "missense";
  expect_settings({"--outputFormat", "1", "--NsAsMissense"}, settings);
}

TEST_F(CliSummaryTest, OfTheSequenceMode) {
  Settings settings;
  settings.sequence_mode = "don't print sequence";
  expect_settings({"--printRepeatSeqMode", "0"}, settings);
  settings.sequence_mode = "print sequence";
  expect_settings({"--printRepeatSeqMode", "1"}, settings);
  expect_settings({"--printRepeatSeqMode", "2"}, Settings());
}

TEST_F(CliSummaryTest, OfTheSequenceRange) {
  Settings settings;
  settings.range = "1 - 5";
  expect_settings({"--lastSeq", "5"}, settings);
  settings.range = "0 - last sequence";
  expect_settings({"--firstSeq", "0", "--lastSeq", "-1"}, settings);
}

TEST_F(CliSummaryTest, AnOutputFileHasALineOfItsOwn) {
  write_plain_input();
  Settings settings;
  settings.output = "x.txt";
  const Result result = run({"x.fa", "x.txt"});
  EXPECT_EQ(result.out, "");
  EXPECT_EQ(after_banner(result), finished(settings, progress(1, 1, "r") + progress(1, 6, "r")));
  EXPECT_EQ(read("x.txt"), report(settings, plain_record));
  EXPECT_EQ(result.status, 0);
}

TEST_F(CliSummaryTest, ExtremePenaltiesAreShownAndRun) {
  Settings settings;
  settings.mismatch = "-2147483648";
  settings.indel = "-2147483648";
  expect_settings({"-m", "-2147483648", "-g", "-2147483648"}, settings);
}

TEST_F(CliSummaryTest, ExtremeScoresAreShownAndRun) {
  Settings settings;
  settings.min_score = "maximum (2147483647, 0+1*unitlength )";
  expect_settings({"-s", "2147483647"}, settings);
  settings.min_score = "maximum (6, -2147483648+1*unitlength )";
  expect_settings({"--minScore_a", "-2147483648"}, settings);
  settings.min_score = "maximum (6, 2147483647+1e+38*unitlength )";
  expect_settings({"--minScore_a", "2147483647", "--minScore_b", "1e38"}, settings);
  settings.min_score = "maximum (6, 0+-1e+38*unitlength )";
  expect_settings({"--minScore_b", "-1e38"}, settings);
}

TEST_F(CliSummaryTest, ExtremeLengthsAreShownAndRun) {
  Settings settings;
  settings.min_length = "maximum (2147483647, 0+0*unitlength )";
  expect_settings({"-l", "2147483647"}, settings);
  settings.min_length = "maximum (-2147483648, -2147483648+-1e+38*unitlength )";
  expect_settings({"-l", "-2147483648", "--minLength_a", "-2147483648", "--minLength_b", "-1e38"}, settings);
}

TEST_F(CliSummaryTest, LargeRecursionDepthsAreShownAndRun) {
  Settings settings;
  for (const char* depth : {"256", "1000000", "2147483647"}) {
    settings.depth = depth;
    expect_settings({"-r", depth}, settings);
  }
}

TEST_F(CliSummaryTest, TheLargestNumberOfSuccessiveNIsShownAndRun) {
  Settings settings;
  settings.successive_N = "2147483647";
  expect_settings({"-N", "2147483647"}, settings);
}

}  // namespace
}  // namespace cli
