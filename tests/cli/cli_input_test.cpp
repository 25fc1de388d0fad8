// Inputs that cannot be opened or are not well-formed, and names of all kinds.

#include <unistd.h>

#include "cli_support.h"

namespace cli {
namespace {

class CliInputTest : public CliTest {
 protected:
  static std::string not_opened(const std::string& name) {
    return "Sorry! The input file \n   \"" + name + "\"\ncould not be opened. I guess it does not exist.\n" +
           aborted(-101);
  }
};

TEST_F(CliInputTest, AMissingFileIsNamed) {
  expect_refused(run({"missing.fa"}), 155, not_opened("missing.fa"));
}

TEST_F(CliInputTest, AMissingFileLeavesTheOutputAlone) {
  write("out.txt", "precious\n");
  expect_refused(run({"missing.fa", "out.txt"}), 155, not_opened("missing.fa"));
  EXPECT_EQ(read("out.txt"), "precious\n");
}

TEST_F(CliInputTest, ADirectoryCannotBeOpened) {
  std::filesystem::create_directory(path("dir"));
  expect_refused(run({"dir"}), 155, not_opened("dir"));
}

TEST_F(CliInputTest, AnUnreadableFileCannotBeOpened) {
  if (geteuid() == 0) GTEST_SKIP() << "root may read every file";
  write_plain_input();
  std::filesystem::permissions(path("x.fa"), std::filesystem::perms::none);
  expect_refused(run({"x.fa"}), 155, not_opened("x.fa"));
}

TEST_F(CliInputTest, AMissingFileWithPercentSignsIsNamedAsItIs) {
  expect_refused(run({"100%s %n.fa"}), 155, not_opened("100%s %n.fa"));
}

TEST_F(CliInputTest, FileNamesWithPercentSignsBlanksAndOtherBytesWork) {
  const std::string input = "100%s %n \xc3\xa4\xff.fa";
  const std::string output = "%d out \xe2\x82\xac.txt";
  write(input, ">r\nACGT\n");
  Settings settings;
  settings.input = input;
  settings.output = output;
  settings.mask = "yes";
  const Result result = run({"--maskX", input, output});
  EXPECT_EQ(after_banner(result), finished(settings, progress(1, 1, "r") + progress(1, 6, "r")));
  EXPECT_EQ(read(output), report(settings, plain_record));
  EXPECT_EQ(read(input + ".masked"), ">r\nACGT\n");
  EXPECT_EQ(result.status, 0);
}

TEST_F(CliInputTest, RecordNamesWithPercentSignsBlanksAndOtherBytesPrintAsTheyAre) {
  const std::string name = "  100%s %n%% \xc3\xa4\xff\t ";
  write("x.fa", ">" + name + "\nACGT\n>" + name + "\nACGT\n");
  Settings settings;
  settings.range = "1 - 1";
  settings.mask = "yes";
  const Result result = run({"--maskX", "--lastSeq", "1", "x.fa"});
  EXPECT_EQ(result.out, report(settings, ">" + name + "\nsequence length: 4\n"));
  EXPECT_EQ(after_banner(result),
            finished(settings, progress(1, 1, name) + "Skipping sequence 2: " + name + "\n" + progress(2, 6, name)));
  EXPECT_EQ(read("x.fa.masked"), ">" + name + "\nACGT\n");
}

/// Well-formed records up to a place that is not.
class CliMalformedTest : public CliTest {
 protected:
  /// Runs the file and expects the records before the malformed one reported and the place named.
  void expect_malformed(const std::string& content, const std::vector<std::string>& names_before,
                        const std::string& place) {
    write("x.fa", content);
    const Result result = run({"x.fa"});
    std::string records;
    std::string lines;
    unsigned number = 0;
    for (const std::string& name : names_before) {
      records += ">" + name + "\nsequence length: 4\n";
      lines += progress(++number, 1, name);
    }
    EXPECT_EQ(result.out, unfinished_report(Settings(), records));
    EXPECT_EQ(after_banner(result),
              started(Settings(),
                      lines + "Sorry! The input file \n   \"x.fa\"\nis malformed at " + place + "\n" + aborted(-103)));
    EXPECT_EQ(result.status, 153);
  }
};

const std::string header_expected = "a header, \">\" and a name, was expected.";
const std::string line_feed_expected = "a line feed was expected after the carriage return.";

TEST_F(CliMalformedTest, AnEmptyFile) {
  expect_malformed("", {}, "record 1, line 1: " + header_expected);
}

TEST_F(CliMalformedTest, ABlankFirstLine) {
  expect_malformed("\n>a\nACGT\n", {}, "record 1, line 1: " + header_expected);
}

TEST_F(CliMalformedTest, BasesWithoutAHeader) {
  expect_malformed("ACGT\n", {}, "record 1, line 1: " + header_expected);
}

TEST_F(CliMalformedTest, AHeaderMarkAtTheEnd) {
  expect_malformed(">a\nACGT\n>", {"a"}, "record 2, line 3: " + header_expected);
}

TEST_F(CliMalformedTest, AHeaderMarkBeforeALastLoneCr) {
  expect_malformed(">a\nACGT\n>\r", {"a"}, "record 2, line 3: " + header_expected);
}

TEST_F(CliMalformedTest, ALoneCrInASequenceLine) {
  expect_malformed(">a\nACGT\n>b\nACGT\nAC\rGT\n>c\nACGT\n", {"a"}, "record 2, line 5: " + line_feed_expected);
}

TEST_F(CliMalformedTest, ALoneCrInAHeader) {
  expect_malformed(">a\r\nACGT\r\n>b\rACGT\r\n", {"a"}, "record 2, line 3: " + line_feed_expected);
}

TEST_F(CliMalformedTest, RecordsBeforeItAreReportedInTheOutputFileToo) {
  write("x.fa", ">a\nACGT\n>b\nAC\rGT\n");
  Settings settings;
  settings.output = "out.txt";
  const Result result = run({"x.fa", "out.txt"});
  EXPECT_EQ(result.out, "");
  EXPECT_EQ(read("out.txt"), unfinished_report(settings, ">a\nsequence length: 4\n"));
  EXPECT_EQ(result.status, 153);
}

TEST_F(CliMalformedTest, RecordsBeforeItAreMasked) {
  write("x.fa", ">a\nACACACACAC\n>b\nAC\rGT\n");
  EXPECT_EQ(run({"--maskX", "x.fa"}).status, 153);
  EXPECT_EQ(read("x.fa.masked"), ">a\nXXXXXXXXXX\n");
}

TEST_F(CliMalformedTest, ItIsNoticedInASkippedRecordToo) {
  write("x.fa", ">a\nAC\rGT\n");
  EXPECT_EQ(run({"--firstSeq", "2", "x.fa"}).status, 153);
}

}  // namespace
}  // namespace cli
