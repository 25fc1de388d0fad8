// Settings that are refused, words that cannot be parsed, and what is asked of the library.

#include <regex>

#include "cli_support.h"

namespace cli {
namespace {

using testing::EndsWith;
using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

class CliRefusalTest : public CliTest {
 protected:
  CliRefusalTest() { write_plain_input(); }

  /// Refused with -1: the message, then an empty line pair.
  void expect_implausible(const std::vector<std::string>& options, const std::string& message) {
    expect_refused(run_with(options), 255, message + "\n\n");
  }

  /// Refused with -2.
  void expect_unknown_mode(const std::vector<std::string>& options, const std::string& message) {
    expect_refused(run_with(options), 254, message + aborted(-2));
  }

  void expect_accepted(const std::vector<std::string>& options) {
    const Result result = run_with(options);
    EXPECT_THAT(result.out, EndsWith(">r\nsequence length: 4\n## Finished successfully. ##\n"));
    EXPECT_THAT(result.err, EndsWith("\nAnalysis finished successfully.\n\nOstrel says goodbye.\n\n"));
    EXPECT_EQ(result.status, 0);
  }

  /// Not parsed: the library's words behind the banner, no closing message, status 1.
  void expect_parse_error(const std::vector<std::string>& options, const std::string& about) {
    const Result result = run_with(options);
    EXPECT_EQ(result.out, "");
    EXPECT_THAT(after_banner(result), StartsWith("PARSE ERROR: "));
    EXPECT_THAT(result.err, HasSubstr(about));
    EXPECT_THAT(result.err, Not(HasSubstr("Analysis")));
    EXPECT_EQ(result.status, 1);
  }

 private:
  Result run_with(std::vector<std::string> options) {
    options.emplace_back("x.fa");
    return run(options);
  }
};

TEST_F(CliRefusalTest, NoFileName) {
  expect_refused(run({}), 255,
                 "Error: No input file has been specified. Type ostrel --help for more information.\n\n\n");
}

TEST_F(CliRefusalTest, NoFileNameIsNoticedBeforeAnUnknownMode) {
  expect_refused(run({"--outputFormat", "9"}), 255,
                 "Error: No input file has been specified. Type ostrel --help for more information.\n\n\n");
}

TEST_F(CliRefusalTest, AnyMinimumPerfectionButZero) {
  const std::string message = "Sorry, using a perfection minimum is not implemented in this version.\n";
  expect_implausible({"-P", "50"}, message);
  expect_implausible({"--minPerfection", "-1"}, message);
  expect_implausible({"-P", "1e-30"}, message);
}

TEST_F(CliRefusalTest, AMinimumUnitLengthThatIsNotOneOrTwo) {
  const std::string message = "The minimum unit length must be 1 or 2 in this version of Ostrel.\n";
  expect_implausible({"-u", "3"}, message);
  expect_implausible({"-u", "0"}, message);
  expect_implausible({"-u", "4294967295"}, message);
}

const std::string too_little = "Sorry, either the minimum score or the minimum length must be larger.\n";

TEST_F(CliRefusalTest, AMinimumScoreAndLengthBelowTwo) {
  expect_implausible({"-s", "1", "-l", "1"}, too_little);
}

TEST_F(CliRefusalTest, AMinimumLengthOfTwoIsEnough) {
  expect_accepted({"-s", "1", "-l", "2"});
}

TEST_F(CliRefusalTest, AMinimumScoreOfTwoIsEnough) {
  expect_accepted({"-s", "2", "-l", "1"});
}

TEST_F(CliRefusalTest, ALinearScoreOfTwoIsEnough) {
  expect_accepted({"--minScore_b", "1", "-s", "0", "--minScore_a", "1"});
}

TEST_F(CliRefusalTest, ALinearScoreBelowTwoIsNot) {
  expect_implausible({"--minScore_b", "0.99", "-s", "0", "--minScore_a", "1"}, too_little);
}

TEST_F(CliRefusalTest, ALinearLengthOfTwoIsEnough) {
  expect_accepted({"-s", "0", "--minLength_a", "1", "--minLength_b", "1"});
}

TEST_F(CliRefusalTest, TheLowestScoreAndLength) {
  expect_implausible({"-s", "-2147483648", "--minScore_a", "-2147483648", "--minScore_b", "-1e38", "-l", "-2147483648",
                      "--minLength_a", "-2147483648", "--minLength_b", "-1e38"},
                     too_little);
}

TEST_F(CliRefusalTest, AMismatchScoreAboveMinusTwo) {
  const std::string message = "Sorry, the mismatch score must be smaller or equal to -2.\n";
  expect_implausible({"-m", "-1"}, message);
  expect_implausible({"-m", "0"}, message);
  expect_implausible({"-m", "2147483647"}, message);
}

TEST_F(CliRefusalTest, AMismatchScoreOfMinusTwoIsAccepted) {
  expect_accepted({"-m", "-2"});
}

TEST_F(CliRefusalTest, AnIndelScoreAboveMinusTwo) {
  expect_implausible({"-g", "-1"}, "Sorry, the indel score must be smaller or equal to -2.\n");
}

TEST_F(CliRefusalTest, AnIndelScoreOfMinusTwoIsAccepted) {
  expect_accepted({"-g", "-2"});
}

const std::string crossed_lengths =
    "I think you have made a mistake here: The maximum unit length must be greater\n"
    "or equal to the minimum unit length.\n";

TEST_F(CliRefusalTest, AMaximumUnitLengthBelowTheMinimum) {
  expect_implausible({"-u", "2", "-U", "1"}, crossed_lengths);
  expect_implausible({"-U", "0"}, crossed_lengths);
}

TEST_F(CliRefusalTest, TheFirstOfSeveralImplausibleSettingsIsNamed) {
  expect_implausible({"-u", "3", "-P", "1"}, "Sorry, using a perfection minimum is not implemented in this version.\n");
  expect_implausible({"-m", "0", "-u", "3"}, "The minimum unit length must be 1 or 2 in this version of Ostrel.\n");
  expect_implausible({"-m", "0", "-s", "0"}, too_little);
  expect_implausible({"-g", "0", "-m", "0"}, "Sorry, the mismatch score must be smaller or equal to -2.\n");
  expect_implausible({"-U", "0", "-g", "0"}, "Sorry, the indel score must be smaller or equal to -2.\n");
}

const std::string problem = "Sorry, a problem occured when parsing the command line options. ";

TEST_F(CliRefusalTest, AnUnknownOutputFormat) {
  expect_unknown_mode({"--outputFormat", "3"}, problem + "An outputFormat with a value of 3 is unknown.\n\n");
  expect_unknown_mode({"--outputFormat", "-1"}, problem + "An outputFormat with a value of -1 is unknown.\n\n");
}

TEST_F(CliRefusalTest, AnUnknownPrintRepeatSeqMode) {
  expect_unknown_mode({"--printRepeatSeqMode", "3"},
                      problem + "A printRepeatSeqMode with a value of 3 is unknown.\n\n");
  expect_unknown_mode({"--printRepeatSeqMode", "-2147483648"},
                      problem + "A printRepeatSeqMode with a value of -2147483648 is unknown.\n\n");
}

TEST_F(CliRefusalTest, AnUnknownReportUnit) {
  expect_unknown_mode({"--reportUnit", "3"},
                      problem + "An option value of 3 for the reportUnit option is unknown.\n\n");
}

TEST_F(CliRefusalTest, AnUnknownNPerfectionModeNamesTheReportUnitOption) {
  expect_unknown_mode({"--NPerfectionMode", "-1"},
                      problem + "An option value of -1 for the reportUnit option is unknown.\n\n");
}

TEST_F(CliRefusalTest, TheFirstOfSeveralUnknownModesIsNamed) {
  expect_unknown_mode(
      {"--reportUnit", "8", "--NPerfectionMode", "7", "--printRepeatSeqMode", "6", "--outputFormat", "5"},
      problem + "An outputFormat with a value of 5 is unknown.\n\n");
  expect_unknown_mode({"--reportUnit", "8", "--NPerfectionMode", "7", "--printRepeatSeqMode", "6"},
                      problem + "A printRepeatSeqMode with a value of 6 is unknown.\n\n");
  expect_unknown_mode({"--reportUnit", "8", "--NPerfectionMode", "7"},
                      problem + "An option value of 7 for the reportUnit option is unknown.\n\n");
}

TEST_F(CliRefusalTest, AnUnknownModeIsNoticedBeforeAnImplausibleSetting) {
  expect_unknown_mode({"-P", "50", "--outputFormat", "3"},
                      problem + "An outputFormat with a value of 3 is unknown.\n\n");
}

TEST_F(CliRefusalTest, ARefusedRunTouchesNoFile) {
  write("out.txt", "precious\n");
  const Result result = run({"-u", "3", "--maskX", "x.fa", "out.txt"});
  EXPECT_EQ(result.status, 255);
  EXPECT_EQ(read("out.txt"), "precious\n");
  EXPECT_FALSE(exists("x.fa.masked"));
}

TEST_F(CliRefusalTest, ThreeFileNamesLeaveTheInputWithoutAName) {
  write("y.txt", "precious\n");
  expect_refused(run({"x.fa", "y.txt", "z.txt"}), 155,
                 "Sorry! The input file \n   \"\"\ncould not be opened. I guess it does not exist.\n" + aborted(-101));
  EXPECT_EQ(read("y.txt"), "precious\n");
  EXPECT_FALSE(exists("z.txt"));
}

TEST_F(CliRefusalTest, AnUnknownOptionIsAParseError) {
  expect_parse_error({"--noSuchOption"}, "--noSuchOption");
}

TEST_F(CliRefusalTest, ASearchModeThatIsNotListedIsAParseError) {
  expect_parse_error({"-M", "exactly"}, "exactly");
}

TEST_F(CliRefusalTest, AWordInsteadOfANumberIsAParseError) {
  expect_parse_error({"-s", "six"}, "-s");
  expect_parse_error({"-s", "6x"}, "-s");
  expect_parse_error({"--minScore_b", "nan"}, "minScore_b");
  expect_parse_error({"--minScore_b", "inf"}, "minScore_b");
}

TEST_F(CliRefusalTest, ANumberOutOfRangeIsAParseError) {
  expect_parse_error({"-s", "2147483648"}, "-s");
  expect_parse_error({"-m", "-2147483649"}, "-m");
  expect_parse_error({"-U", "4294967296"}, "-U");
  expect_parse_error({"--minScore_b", "1e39"}, "minScore_b");
}

TEST_F(CliRefusalTest, AnOptionGivenTwiceIsAParseError) {
  expect_parse_error({"-s", "7", "-s", "8"}, "-s");
}

// Scripts that read standard output must not find the usage there.
TEST_F(CliRefusalTest, AParseErrorWritesAShortUsageToStandardError) {
  const Result result = run({"--noSuchOption", "x.fa"});
  EXPECT_EQ(result.out, "");
  EXPECT_THAT(result.err, HasSubstr("Brief USAGE"));
  EXPECT_EQ(result.status, 1);
}

TEST_F(CliRefusalTest, AMissingValueIsAParseError) {
  const Result result = run({"x.fa", "-s"});
  EXPECT_THAT(after_banner(result), StartsWith("PARSE ERROR: "));
  EXPECT_EQ(result.status, 1);
}

TEST_F(CliRefusalTest, VersionIsShownBehindTheBanner) {
  for (const char* option : {"-v", "--version"}) {
    const Result result = run({option});
    EXPECT_THAT(result.out, HasSubstr("3.2.6"));
    EXPECT_EQ(after_banner(result), "");
    EXPECT_EQ(result.status, 0);
  }
}

/// Text with every run of white space turned into one blank: the library breaks lines as it likes.
std::string unwrapped(const std::string& text) {
  return std::regex_replace(text, std::regex("\\s+"), " ");
}

TEST_F(CliRefusalTest, HelpIsShownBehindTheBanner) {
  for (const char* option : {"-h", "--help"}) {
    const Result result = run({option});
    EXPECT_THAT(unwrapped(result.out),
                HasSubstr("This program searches for tandemly repeated patterns in DNA sequences."));
    EXPECT_EQ(after_banner(result), "");
    EXPECT_EQ(result.status, 0);
  }
}

TEST_F(CliRefusalTest, HelpNamesEveryOption) {
  const std::string help = unwrapped(run({"--help"}).out);
  for (const char* option : {"-N <int>, --succN <int>",
                             "--NsAsMissense",
                             "--reportUnit <int>",
                             "--NPerfectionMode <int>",
                             "--printRepeatSeqMode <int>",
                             "--outputFormat <int>",
                             "--maskX",
                             "--progress",
                             "-f <int>, --flanking <int>",
                             "-P <float>, --minPerfection <float>",
                             "-D, --dontRemoveMostlyOverlapping",
                             "--firstSeq <int>",
                             "--lastSeq <int>",
                             "-r <int>, --recursion <int>",
                             "-u <int>, --minUnitLen <int>",
                             "-U <int>, --maxUnitLen <int>",
                             "--minLength_b <float>",
                             "--minLength_a <int>",
                             "-l <int>, --minLength <int>",
                             "--minScore_b <float>",
                             "--minScore_a <int>",
                             "-s <int>, --minScore <int>",
                             "-m <int>, --mismatchScore <int>",
                             "-g <int>, --indelScore <int>",
                             "-M <exact|extendExact|imperfect>, --searchMode <exact|extendExact",
                             "<Input and output filenames>"}) {
    EXPECT_THAT(help, HasSubstr(option));
  }
}

/// The description of every option, as users know it. Several name another default than the one in force.
const char* const descriptions[] = {
    "The maximum number of successive N's allowed in a satellite. Default: 2.",
    "Treat N's as missense. Default: Treat N's as neutral with score 0.",
    "Repeat units can be reported in three different modes. 0: asIs, 1: Alphabetical normal form, 2: Alphabetical "
    "normal "
    "form also considering the reverse complement. Default: 2",
    "Ostrel provides different modes to treat N's when computing the perfection of a repeat. 0: asMismatch, 1: "
    "asNeutral, "
    "2: asMatch. Default: 0",
    "Ostrel provides different modes to print the repeat sequence along with its information. 0: don't print sequence, "
    "1: "
    "print sequence, 2: print alignment.",
    "Ostrel provides different output formats for printing the repeat information. 0: Ostrel output format, 1: "
    "extended "
    "Ostrel output format",
    "Writes the sequences to a file with the extension \".masked\" in which repeats are masked.",
    "If the satellite sequence is printed, this is the number of flanking nucleotides to be printed to the left and "
    "right "
    "of it. Default: 0",
    "Minimum perfection of satellites. Satellites below this value are broken up or reduced in length if this yields a "
    "satellite above the minimum perfection. If N's are treated as mismatch when computing the perfection, this value "
    "also "
    "has an influence when searching for exact repeats.",
    "Ostrel sometimes finds repeats that partially or completely overlap with other repeats, e.g. if alignments with "
    "alternative repeat patterns exist at the same locus in a sequence. The default is to remove one of any two mostly "
    "overlapping repeats in favour of that repeat with the highest score. With this option, Ostrel reports also "
    "repeats "
    "that mostly overlap with higher scoring repeats.",
    "Number of first sequence to be processed in this run.",
    "Number of last sequence to be processed in this run.",
    "The recursion depth used in the search. Values in the range 3 to 7 are recommended. A value of 0 implies a search "
    "for "
    "perfect repeats only.",
    "Minimum unit length. Default: 2",
    "Maximum unit length. Default: 5",
    "The minimum length of a repeat is determined with: maximum( minLength, minLength_a + minLength_b*(unit-length) ). "
    "Default value of minLength_b: 0",
    "Default value of minLength_a: 0",
    "Default value of minLength: 1",
    "The minimum score of a repeat is determined with: maximum( minScore, minScore_a + minScore_b*(unit-length) ). "
    "Default "
    "value of minScore_b: 0",
    "Default value of minScore_a: 0",
    "Default value of minScore: 0",
    "Score for mismatch - must be negative. Default: -6. Match score is fixed to one.",
    "Score for indels - must be negative. Default: -6. Match score is fixed to one.",
    "Ostrel provides three different search modes. exact: Search for exact repeats, only. extendExact: Searches for "
    "exact "
    "repeats and extends them by inserting mismatches and indels. imperfect: Searches directly for imperfect repeats.",
    "Ostrel requires either one or two file names as parameters. The first must be the input file in FASTA format. If "
    "a "
    "second file is specified, output is written to it. If no second file is given, output is written to the console. ",
};

TEST_F(CliRefusalTest, HelpDescribesEveryOption) {
  const std::string help = unwrapped(run({"--help"}).out);
  for (const char* description : descriptions) EXPECT_THAT(help, HasSubstr(description));
}

TEST_F(CliRefusalTest, FileNamesMayFollowTheIgnoreRestOption) {
  expect_accepted({"-M", "exact", "--"});
}

}  // namespace
}  // namespace cli
