// Reports of small sequences in all modes and formats, worked out by hand.

#include "cli_support.h"

namespace cli {
namespace {

/// Ten bases of AC, an inserted G, ten bases of AC: two exact repeats or one imperfect one.
const char* const inserted = "ACACACACACGACACACACAC";

const std::string first_half =
    "    dinucleotide         1 :        10 |     10 bp |     10 BP |      8 pt | 100.000 % |"
    "   0 mis |   0 ins |   0 del |   0 N |  unit AC\n"
    "Missense: \n"
    "ACACACACAC\n||||||||||\nACACACACAC\n";

const std::string second_half =
    "    dinucleotide        12 :        21 |     10 bp |     10 BP |      8 pt | 100.000 % |"
    "   0 mis |   0 ins |   0 del |   0 N |  unit AC\n"
    "Missense: \n"
    "ACACACACAC\n||||||||||\nACACACACAC\n";

// Score 8 - 6 + 10; 19 of the 20 unit bases covered, with the one insertion taken off.
const std::string whole =
    "    dinucleotide         1 :        21 |     21 bp |     20 BP |     12 pt |  95.000 % |"
    "   0 mis |   1 ins |   0 del |   0 N |  unit AC\n"
    "Missense: (11,I),\n"
    "ACACACACACGACACACACAC\n|||||||||| ||||||||||\nACACACACAC-ACACACACAC\n";

class CliReportTest : public CliTest {
 protected:
  void write_bases(const std::string& bases) { write("x.fa", ">r\n" + bases + "\n"); }

  /// The records of the report, whatever its header lines are.
  std::string records(std::vector<std::string> arguments) {
    arguments.emplace_back("x.fa");
    const Result result = run(arguments);
    EXPECT_EQ(result.status, 0);
    const std::size_t from = result.out.find("\n>") + 1;
    return result.out.substr(from);
  }
};

const std::string header = ">r\nsequence length: 21\n";
const std::string closing = "## Finished successfully. ##\n";

TEST_F(CliReportTest, ModeExactShowsExactRepeatsOnly) {
  write_bases(inserted);
  EXPECT_EQ(records({"-M", "exact"}), header + first_half + second_half + closing);
}

TEST_F(CliReportTest, ModeExtendExactShowsThemExtended) {
  write_bases(inserted);
  EXPECT_EQ(records({"-M", "extendExact"}), header + whole + closing);
}

TEST_F(CliReportTest, ModeImperfectShowsImperfectRepeats) {
  write_bases(inserted);
  EXPECT_EQ(records({}), header + whole + closing);
  EXPECT_EQ(records({"-M", "imperfect"}), header + whole + closing);
}

TEST_F(CliReportTest, ModeExtendExactWithoutRemovalShowsARecordForEachSeed) {
  write_bases(inserted);
  EXPECT_EQ(records({"-M", "extendExact", "-D"}), header + whole + whole + closing);
}

TEST_F(CliReportTest, DepthZeroShowsPerfectRepeatsInEveryMode) {
  write_bases(inserted);
  for (const char* mode : {"exact", "extendExact", "imperfect"}) {
    EXPECT_EQ(records({"-M", mode, "-r", "0"}), header + first_half + second_half + closing) << mode;
    EXPECT_EQ(records({"-M", mode, "-r", "-3"}), header + first_half + second_half + closing) << mode;
  }
}

TEST_F(CliReportTest, ShortFormat) {
  write_bases(inserted);
  EXPECT_EQ(records({"--outputFormat", "0", "--printRepeatSeqMode", "0"}),
            header +
                "    dinucleotide         1 :        21 |     21 bp |     20 BP |     12 pt |  95.000 % | unit AC\n" +
                closing);
}

TEST_F(CliReportTest, SputnikFormat) {
  write_bases(inserted);
  EXPECT_EQ(records({"--outputFormat", "2", "--printRepeatSeqMode", "0"}),
            header + "dinucleotide 1 : 21 -- length 20 score 12 perfection 95 unit AC\n" + closing);
}

TEST_F(CliReportTest, BasesWithFlanks) {
  write_bases(std::string("GT") + inserted + "TGA");
  EXPECT_EQ(records({"--outputFormat", "0", "--printRepeatSeqMode", "1", "-f", "10"}),
            ">r\nsequence length: 26\n"
            "    dinucleotide         3 :        23 |     21 bp |     20 BP |     12 pt |  95.000 % | unit AC\n"
            "GT:ACACACACACGACACACACAC:TGA\n" +
                closing);
}

TEST_F(CliReportTest, BasesWithoutFlanks) {
  write_bases(inserted);
  EXPECT_EQ(records({"--outputFormat", "2", "--printRepeatSeqMode", "1"}),
            header + "dinucleotide 1 : 21 -- length 20 score 12 perfection 95 unit AC\n" + inserted + "\n" + closing);
}

TEST_F(CliReportTest, TheLargestFlankEndsAtTheSequenceEnds) {
  write_bases("GTACACACACACTGA");
  EXPECT_EQ(records({"-M", "exact", "--outputFormat", "2", "-f", "2147483647"}),
            ">r\nsequence length: 15\n"
            "dinucleotide 3 : 12 -- length 10 score 8 perfection 100 unit AC\n"
            "GT:ACACACACAC:TGA\n"
            "   ||||||||||    \n"
            "   ACACACACAC    \n" +
                closing);
}

TEST_F(CliReportTest, NegativeFlanksAreNone) {
  write_bases("GTACACACACACTGA");
  EXPECT_EQ(records({"-M", "exact", "--outputFormat", "2", "--printRepeatSeqMode", "1", "-f", "-5"}),
            ">r\nsequence length: 15\n"
            "dinucleotide 3 : 12 -- length 10 score 8 perfection 100 unit AC\n"
            "ACACACACAC\n" +
                closing);
}

TEST_F(CliReportTest, AnNIsNeutralUnlessItIsAskedForAsMissense) {
  write_bases("ACACNNACACACG");
  EXPECT_EQ(records({}),
            ">r\nsequence length: 13\n"
            "    dinucleotide         1 :        12 |     12 bp |     12 BP |      8 pt |  83.333 % |"
            "   0 mis |   0 ins |   0 del |   2 N |  unit AC\n"
            "Missense: \n"
            "ACACNNACACAC\n||||**||||||\nACACACACACAC\n" +
                closing);
  EXPECT_EQ(records({"--NsAsMissense"}), ">r\nsequence length: 13\n" + closing);
  EXPECT_EQ(records({"-N", "1"}), ">r\nsequence length: 13\n" + closing);
}

// 8, -6, 11: with no N allowed in a row it is a mismatch, as it is with --NsAsMissense.
TEST_F(CliReportTest, AnNThatIsAMismatchIsListed) {
  write_bases("ACACACACACNCACACACACAC");
  EXPECT_EQ(records({"-N", "0"}),
            ">r\nsequence length: 22\n"
            "    dinucleotide         1 :        22 |     22 bp |     22 BP |     13 pt |  95.455 % |"
            "   1 mis |   0 ins |   0 del |   0 N |  unit AC\n"
            "Missense: (11,M),\n"
            "ACACACACACNCACACACACAC\n|||||||||| |||||||||||\nACACACACACACACACACACAC\n" +
                closing);
  EXPECT_EQ(records({"--NsAsMissense"}),
            ">r\nsequence length: 22\n"
            "    dinucleotide         1 :        22 |     22 bp |     22 BP |     13 pt |  95.455 % |"
            "   1 mis |   0 ins |   0 del |  unit AC\n"
            "Missense: (11,M),\n"
            "ACACACACACNCACACACACAC\n|||||||||| |||||||||||\nACACACACACACACACACACAC\n" +
                closing);
}

TEST_F(CliReportTest, ThePerfectionCountsNAsAsked) {
  write_bases("ACACACNNACACACNNACACG");  // 18 bases, 4 of them N
  const auto line = [](const char* perfection) {
    return std::string(">r\nsequence length: 21\ndinucleotide 1 : 20 -- length 20 score 14 perfection ") + perfection +
           " unit AC\n" + closing;
  };
  const std::vector<std::string> sputnik = {"--outputFormat", "2", "--printRepeatSeqMode", "0", "--NPerfectionMode"};
  auto with = [&](const char* mode) {
    auto arguments = sputnik;
    arguments.emplace_back(mode);
    return records(arguments);
  };
  EXPECT_EQ(with("0"), line("80"));
  EXPECT_EQ(with("1"), line("100"));
  EXPECT_EQ(with("2"), line("100"));
}

TEST_F(CliReportTest, TheUnitIsShownAsAsked) {
  write_bases("TGTGTGTGTGTG");
  const auto with = [&](const char* mode) {
    return records({"--reportUnit", mode, "--outputFormat", "2", "--printRepeatSeqMode", "0"});
  };
  const std::string start = ">r\nsequence length: 12\ndinucleotide 1 : 12 -- length 12 score 10 perfection 100 unit ";
  EXPECT_EQ(with("0"), start + "TG\n" + closing);
  EXPECT_EQ(with("1"), start + "GT\n" + closing);
  EXPECT_EQ(with("2"), start + "AC\n" + closing);
}

// 0.1f is a little above a tenth: ten times that, rounded up, is two. A unit of ten with one match is then too little.
TEST_F(CliReportTest, ASlopeOfATenthAtUnitLengthTenIsTwo) {
  const std::vector<std::string> options = {"-M",
                                            "exact",
                                            "-s",
                                            "0",
                                            "--minScore_b",
                                            "0.1",
                                            "-l",
                                            "11",
                                            "-U",
                                            "10",
                                            "--outputFormat",
                                            "2",
                                            "--printRepeatSeqMode",
                                            "0"};
  write_bases("ACGGTTCAGTAC");  // the unit and AC: two matches, no base behind them
  EXPECT_EQ(records(options),
            ">r\nsequence length: 12\n"
            "10-nucleotide 1 : 12 -- length 12 score 2 perfection 100 unit AACCGTACTG\n" +
                closing);
  write_bases("ACGGTTCAGTAT");  // one match
  EXPECT_EQ(records(options), ">r\nsequence length: 12\n" + closing);
}

TEST_F(CliReportTest, ARecordWithoutRepeatsAndAnEmptyRecordKeepTheirHeaders) {
  write("x.fa", ">a\nACGT\n>b\n>c");
  const Result result = run({"x.fa"});
  EXPECT_EQ(result.out, report(Settings(), ">a\nsequence length: 4\n>b\nsequence length: 0\n>c\nsequence length: 0\n"));
  EXPECT_EQ(after_banner(result), finished(Settings(), progress(1, 1, "a") + progress(2, 1, "b") + progress(3, 1, "c") +
                                                           progress(3, 6, "c")));
  EXPECT_EQ(result.status, 0);
}

TEST_F(CliReportTest, AnEmptyRecordAfterALongerOneHasNoRepeats) {
  write("x.fa", ">a\nACACACACAC\n>b\n");
  EXPECT_EQ(run({"x.fa"}).out,
            report(Settings(), ">a\nsequence length: 10\n" + first_half + ">b\nsequence length: 0\n"));
}

TEST_F(CliReportTest, PositionsStartAnewInEveryRecord) {
  write("x.fa", ">a\nACACACACAC\n>b\nACACACACAC\n");
  EXPECT_EQ(run({"x.fa"}).out,
            report(Settings(), ">a\nsequence length: 10\n" + first_half + ">b\nsequence length: 10\n" + first_half));
}

TEST_F(CliReportTest, LineBreaksLowerCaseAndDroppedLettersDoNotMatter) {
  write("x.fa", ">r\r\nacacx\r\n\r\nAC-AC 10\r\nXac");
  Settings settings;
  settings.mode = "exact repeats";
  EXPECT_EQ(run({"-M", "exact", "x.fa"}).out, report(settings, ">r\nsequence length: 10\n" + first_half));
}

TEST_F(CliReportTest, TheReportGoesToTheOutputFile) {
  write_bases(inserted);
  Settings settings;
  settings.output = "sub/out.txt";
  std::filesystem::create_directory(path("sub"));
  write("sub/out.txt", "an old report that is longer than nothing\n");
  const Result result = run({"x.fa", "sub/out.txt"});
  EXPECT_EQ(result.out, "");
  EXPECT_EQ(read("sub/out.txt"), report(settings, header + whole));
  EXPECT_EQ(result.status, 0);
}

}  // namespace
}  // namespace cli
