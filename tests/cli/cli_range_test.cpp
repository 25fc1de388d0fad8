// Which records are searched, and what standard error says about the others.

#include "cli_support.h"

namespace cli {
namespace {

const char* const five_records = ">a\nACGT\n>b b\nACGTA\n>c\nACGTAC\n>d%s\nACGT\n>e\nAC\n";

class CliRangeTest : public CliTest {
 protected:
  CliRangeTest() { write("x.fa", five_records); }
};

TEST_F(CliRangeTest, OneRecordOfFiveIsSearchedAndTheOthersAreSkipped) {
  Settings settings;
  settings.range = "3 - 3";
  const Result result = run({"--firstSeq", "3", "--lastSeq", "3", "x.fa"});
  EXPECT_EQ(result.out, report(settings, ">c\nsequence length: 6\n"));
  EXPECT_EQ(after_banner(result), finished(settings,
                                           "Skipping sequence 1: a\n"
                                           "Skipping sequence 2: b b\n" +
                                               progress(3, 1, "c") +
                                               "Skipping sequence 4: d%s\n"
                                               "Skipping sequence 5: e\n" +
                                               progress(5, 6, "e")));
  EXPECT_EQ(result.status, 0);
}

TEST_F(CliRangeTest, WithoutARangeEveryRecordIsSearched) {
  const Result result = run({"x.fa"});
  EXPECT_EQ(result.out, report(Settings(),
                               ">a\nsequence length: 4\n>b b\nsequence length: 5\n"
                               ">c\nsequence length: 6\n>d%s\nsequence length: 4\n"
                               ">e\nsequence length: 2\n"));
  EXPECT_EQ(after_banner(result),
            finished(Settings(), progress(1, 1, "a") + progress(2, 1, "b b") + progress(3, 1, "c") +
                                     progress(4, 1, "d%s") + progress(5, 1, "e") + progress(5, 6, "e")));
}

TEST_F(CliRangeTest, BothEndsAreIncluded) {
  Settings settings;
  settings.range = "2 - 4";
  EXPECT_EQ(run({"--firstSeq", "2", "--lastSeq", "4", "x.fa"}).out,
            report(settings, ">b b\nsequence length: 5\n>c\nsequence length: 6\n>d%s\nsequence length: 4\n"));
}

TEST_F(CliRangeTest, ARangeBehindTheLastRecordSearchesNothing) {
  Settings settings;
  settings.range = "6 - last sequence";
  const Result result = run({"--firstSeq", "6", "x.fa"});
  EXPECT_EQ(result.out, report(settings, ""));
  EXPECT_EQ(result.status, 0);
}

TEST_F(CliRangeTest, AnInvertedRangeSearchesNothing) {
  Settings settings;
  settings.range = "4 - 2";
  EXPECT_EQ(run({"--firstSeq", "4", "--lastSeq", "2", "x.fa"}).out, report(settings, ""));
}

TEST_F(CliRangeTest, ANegativeFirstNumberIsALargeOne) {
  Settings settings;
  settings.range = "4294967295 - last sequence";
  EXPECT_EQ(run({"--firstSeq", "-1", "x.fa"}).out, report(settings, ""));
}

TEST_F(CliRangeTest, TheProgressLineShowsTheUnitLengthsOfTheSearch) {
  Settings settings;
  settings.range = "5 - last sequence";
  settings.min_unit = "2";
  settings.max_unit = "20";
  const Result result = run({"-u", "2", "-U", "20", "--firstSeq", "5", "x.fa"});
  EXPECT_EQ(after_banner(result), finished(settings,
                                           "Skipping sequence 1: a\nSkipping sequence 2: b b\nSkipping sequence 3: c\n"
                                           "Skipping sequence 4: d%s\n" +
                                               progress(5, 2, "e") + progress(5, 20, "e")));
}

TEST_F(CliRangeTest, TheNameInAProgressLineIsCutAtSeventyBytes) {
  const std::string name(100, 'n');
  write("x.fa", ">" + name + "\nACGT\n");
  const Result result = run({"x.fa"});
  const std::string cut(70, 'n');
  EXPECT_EQ(result.out, report(Settings(), ">" + name + "\nsequence length: 4\n"));
  EXPECT_EQ(after_banner(result), finished(Settings(), progress(1, 1, cut) + progress(1, 6, cut)));
}

}  // namespace
}  // namespace cli
