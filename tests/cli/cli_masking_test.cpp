#include "cli_support.h"

namespace cli {
namespace {

using testing::EndsWith;
using testing::HasSubstr;

class CliMaskingTest : public CliTest {
 protected:
  /// The masked copy of a file after a run that is expected to succeed.
  std::string masked(const std::string& content, std::vector<std::string> options = {}) {
    write("x.fa", content);
    options.emplace_back("--maskX");
    options.emplace_back("x.fa");
    const Result result = run(options);
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(read("x.fa"), content);
    return read("x.fa.masked");
  }
};

TEST_F(CliMaskingTest, RepeatsAreOverwrittenByX) {
  EXPECT_EQ(masked(">r\nGTACACACACACTGA\n"), ">r\nGTXXXXXXXXXXTGA\n");
}

TEST_F(CliMaskingTest, RecordsWithoutRepeatsAreWrittenToo) {
  EXPECT_EQ(masked(">a\nACGT\n>b\n>c\nACACACACAC\n"), ">a\nACGT\n>b\n>c\nXXXXXXXXXX\n");
}

TEST_F(CliMaskingTest, LinesHoldEightyBases) {
  const std::string bases = std::string(40, 'A') + "CGT";
  EXPECT_EQ(masked(">r\n" + std::string(75, 'N') + bases + "\n"),
            ">r\n" + std::string(75, 'N') + "XXXXX\n" + std::string(35, 'X') + "CGT\n");
}

TEST_F(CliMaskingTest, AFullLastLineIsNotFollowedByAnEmptyOne) {
  EXPECT_EQ(masked(">r\n" + std::string(160, 'N') + "\n"),
            ">r\n" + std::string(80, 'N') + "\n" + std::string(80, 'N') + "\n");
}

TEST_F(CliMaskingTest, TheCopyHoldsTheBasesAsTheSearchSeesThem) {
  EXPECT_EQ(masked(">a name \r\nacgtRYx-9\r\n"), ">a name \nACGTNN\n");
}

TEST_F(CliMaskingTest, SkippedRecordsAreNotWritten) {
  EXPECT_EQ(masked(">a\nACGT\n>b\nACGTA\n>c\nAC\n", {"--firstSeq", "2", "--lastSeq", "2"}), ">b\nACGTA\n");
}

TEST_F(CliMaskingTest, TheReportShowsTheBasesUnmasked) {
  write("x.fa", ">r\nGTACACACACACTGA\n");
  EXPECT_THAT(run({"--maskX", "x.fa"}).out, HasSubstr("\nACACACACAC\n||||||||||\nACACACACAC\n"));
}

TEST_F(CliMaskingTest, EventsInsideARepeatAreMaskedWithIt) {
  EXPECT_EQ(masked(">r\nGTACACACACACGACACACACACTGA\n"), ">r\nGTXXXXXXXXXXXXXXXXXXXXXTGA\n");
}

TEST_F(CliMaskingTest, TheCopyLiesBesideTheInputAndNotBesideTheOutput) {
  std::filesystem::create_directory(path("in"));
  std::filesystem::create_directory(path("out"));
  write("in/x.fa", ">r\nACGT\n");
  const Result result = run({"--maskX", "in/x.fa", "out/report"});
  EXPECT_EQ(result.status, 0);
  EXPECT_EQ(read("in/x.fa.masked"), ">r\nACGT\n");
  EXPECT_FALSE(exists("out/x.fa.masked"));
}

TEST_F(CliMaskingTest, WithoutTheSwitchNothingIsWritten) {
  write_plain_input();
  run({"x.fa"});
  EXPECT_FALSE(exists("x.fa.masked"));
}

TEST_F(CliMaskingTest, AnOldCopyIsReplaced) {
  write("x.fa.masked", std::string(1000, 'o'));
  EXPECT_EQ(masked(">r\nACGT\n"), ">r\nACGT\n");
}

// The unit of eighteen is GTGATG and twelve bases of AC; it scores 6 and is removed in favour of the AC inside it,
// which scores 10.
const char* const repeat_in_a_repeat = ">r\nGTGATGACACACACACACGTGATGT\n";
const std::vector<std::string> long_units = {"-M", "exact", "-U", "18", "--minScore_b", "0"};

TEST_F(CliMaskingTest, BasesOfRemovedRepeatsAreNotMasked) {
  EXPECT_EQ(masked(repeat_in_a_repeat, long_units), ">r\nGTGATGXXXXXXXXXXXXGTGATGT\n");
}

TEST_F(CliMaskingTest, WithoutRemovalEveryRepeatIsMasked) {
  std::vector<std::string> options = long_units;
  options.emplace_back("-D");
  EXPECT_EQ(masked(repeat_in_a_repeat, options), ">r\nXXXXXXXXXXXXXXXXXXXXXXXXT\n");
}

TEST_F(CliMaskingTest, WithoutRemovalEveryRepeatIsReported) {
  write("x.fa", repeat_in_a_repeat);
  const Result result = run({"-M", "exact", "-U", "18", "--minScore_b", "0", "-D", "--outputFormat", "2",
                             "--printRepeatSeqMode", "0", "--reportUnit", "0", "x.fa"});
  EXPECT_THAT(result.out, EndsWith(">r\nsequence length: 25\n"
                                   "18-nucleotide 1 : 24 -- length 24 score 6 perfection 100 unit GTGATGACACACACACAC\n"
                                   "dinucleotide 7 : 18 -- length 12 score 10 perfection 100 unit AC\n"
                                   "## Finished successfully. ##\n"));
}

// Minimum scores of 6 at unit length 2, 2 at 4 and 0 from 5 on. So ATATATA is no repeat of AT, which would score 5, but
// one of ATAT, which scores 3; and that unit is periodic.
const std::vector<std::string> falling_thresholds = {"-M",           "exact", "-U",           "8", "-s", "0",
                                                     "--minScore_a", "10",    "--minScore_b", "-2"};

TEST_F(CliMaskingTest, ARepeatKeptOutOfTheReportForItsPeriodicUnitIsMasked) {
  std::vector<std::string> options = falling_thresholds;
  options[3] = "4";
  EXPECT_EQ(masked(">r\nATATATAG\n", options), ">r\nXXXXXXXG\n");
  options.emplace_back("x.fa");
  EXPECT_THAT(run(options).out, EndsWith(">r\nsequence length: 8\n## Finished successfully. ##\n"));
}

// GATATATA and a G score 1 as a repeat of a unit of eight, which goes in favour of the ATAT inside.
TEST_F(CliMaskingTest, ARepeatKeptOutOfTheReportCountsInTheOverlapRemoval) {
  EXPECT_EQ(masked(">r\nGATATATAG\n", falling_thresholds), ">r\nGXXXXXXXG\n");
  std::vector<std::string> options = falling_thresholds;
  options.insert(options.end(), {"--outputFormat", "2", "--printRepeatSeqMode", "0", "--reportUnit", "0", "x.fa"});
  EXPECT_THAT(run(options).out, EndsWith(">r\nsequence length: 9\n## Finished successfully. ##\n"));
  options.emplace_back("-D");
  EXPECT_THAT(run(options).out, EndsWith(">r\nsequence length: 9\n"
                                         "8-nucleotide 1 : 9 -- length 9 score 1 perfection 100 unit GATATATA\n"
                                         "## Finished successfully. ##\n"));
}

TEST_F(CliMaskingTest, AnOutputThatIsTheMaskedFileIsRefused) {
  write_plain_input();
  const Result result = run({"--maskX", "x.fa", "x.fa.masked"});
  EXPECT_EQ(result.out, "");
  EXPECT_THAT(after_banner(result), testing::StartsWith("Sorry! "));
  EXPECT_THAT(after_banner(result), EndsWith(aborted(-102)));
  EXPECT_EQ(result.status, 154);
  EXPECT_FALSE(exists("x.fa.masked"));
}

TEST_F(CliMaskingTest, AnOutputThatIsTheMaskedFileByAnotherPathIsRefused) {
  write_plain_input();
  EXPECT_EQ(run({"--maskX", "x.fa", "./x.fa.masked"}).status, 154);
  EXPECT_EQ(run({"--maskX", "x.fa", path("x.fa.masked")}).status, 154);
  write("x.fa.masked", "precious\n");
  std::filesystem::create_symlink("x.fa.masked", path("link"));
  EXPECT_EQ(run({"--maskX", "x.fa", "link"}).status, 154);
  EXPECT_EQ(read("x.fa.masked"), "precious\n");
}

TEST_F(CliMaskingTest, AnOutputThatLinksToAMissingMaskedFileIsRefused) {
  write_plain_input();
  std::filesystem::create_symlink("x.fa.masked", path("link"));
  EXPECT_EQ(run({"--maskX", "x.fa", "link"}).status, 154);
}

TEST_F(CliMaskingTest, TheSameOutputIsFineWithoutMasking) {
  write_plain_input();
  EXPECT_EQ(run({"x.fa", "x.fa.masked"}).status, 0);
  EXPECT_THAT(read("x.fa.masked"), EndsWith("## Finished successfully. ##\n"));
}

TEST_F(CliMaskingTest, StandardOutputRedirectedIntoTheMaskedFileIsRefused) {
  write_plain_input();
  Surroundings redirected;
  redirected.stdout_path = "x.fa.masked";
  const Result result = run({"--maskX", "x.fa"}, redirected);
  EXPECT_EQ(result.status, 154);
  EXPECT_EQ(read("x.fa.masked"), "");
}

TEST_F(CliMaskingTest, AMaskedFileThatLinksToTheInputIsRefused) {
  write_plain_input();
  std::filesystem::create_symlink("x.fa", path("x.fa.masked"));
  const Result result = run({"--maskX", "x.fa"});
  EXPECT_EQ(result.status, 154);
  EXPECT_EQ(read("x.fa"), ">r\nACGT\n");
}

TEST_F(CliMaskingTest, AMaskedFileThatCannotBeOpenedLeavesTheReportComplete) {
  write("x.fa", ">r\nACGT\n");
  std::filesystem::create_directory(path("x.fa.masked"));
  Settings settings;
  settings.mask = "yes";
  const Result result = run({"--maskX", "x.fa"});
  EXPECT_EQ(result.out, report(settings, plain_record));
  const std::string sentence =
      "Sorry! Failed to open file\n   \"x.fa.masked\"\nfor the masked sequences: Is a directory.\n";
  EXPECT_EQ(after_banner(result),
            started(settings, sentence + progress(1, 1, "r") + progress(1, 6, "r") + aborted(-105)));
  EXPECT_EQ(result.status, 151);
}

}  // namespace
}  // namespace cli
