// Compressed input and standard input.

#include <random>

#include "cli_support.h"
#include "compressed.h"

namespace cli {
namespace {

using testing::HasSubstr;

const std::string two_records = ">a\nACGT\n>b\nACACACACAC\n";

class CliCompressedTest : public CliTest {
 protected:
  /// The report of the plain text under the same name.
  std::string plain_report(const std::string& text) {
    write("x.fa", text);
    return run({"x.fa"}).out;
  }

  void expect_same_report(const std::string& compressed, const std::string& text) {
    const std::string expected = plain_report(text);
    write("x.fa", compressed);
    const Result result = run({"x.fa"});
    EXPECT_EQ(result.out, expected);
    EXPECT_THAT(result.err, HasSubstr("\nAnalysis finished successfully.\n"));
    EXPECT_EQ(result.status, 0);
  }

  void expect_malformed(const std::string& content, const std::string& records, const std::string& place) {
    write("x.fa", content);
    const Result result = run({"x.fa"});
    EXPECT_EQ(result.out, unfinished_report(Settings(), records));
    EXPECT_THAT(result.err,
                HasSubstr("Sorry! The input file \n   \"x.fa\"\nis malformed at " + place + "\n" + aborted(-103)));
    EXPECT_EQ(result.status, 153);
  }
};

const std::string damaged = "the compressed data are damaged or end too early.";
const std::string header_expected = "a header, \">\" and a name, was expected.";

TEST_F(CliCompressedTest, GzipIsRecognisedByItsContent) {
  expect_same_report(test::gzip_of(two_records), two_records);
}

TEST_F(CliCompressedTest, BgzfIsRecognisedByItsContent) {
  expect_same_report(test::bgzf_of(two_records), two_records);
}

TEST_F(CliCompressedTest, ConcatenatedFilesAreReadToTheEnd) {
  expect_same_report(test::gzip_of(two_records) + test::gzip_of(two_records), two_records + two_records);
  expect_same_report(test::bgzf_of(two_records) + test::bgzf_of(two_records), two_records + two_records);
}

TEST_F(CliCompressedTest, ANameThatEndsInGzDoesNotMakeAFileCompressed) {
  write("x.fa.gz", ">r\nACGT\n");
  Settings settings;
  settings.input = "x.fa.gz";
  EXPECT_EQ(run({"x.fa.gz"}).out, report(settings, plain_record));
}

TEST_F(CliCompressedTest, BgzfWithoutItsEndMarkerIsReadWithANote) {
  write("x.fa", test::bgzf_blocks(">r\nACGT\n"));
  const Result result = run({"x.fa"});
  EXPECT_EQ(result.out, report(Settings(), plain_record));
  EXPECT_EQ(after_banner(result),
            finished(Settings(), progress(1, 1, "r") +
                                     "Note: The compressed input file \n   \"x.fa\"\nhas no end marker. It may have "
                                     "been cut off; what is there has been searched.\n" +
                                     progress(1, 6, "r")));
  EXPECT_EQ(result.status, 0);
}

TEST_F(CliCompressedTest, RecordsBeforeADamagedBlockAreReported) {
  expect_malformed(test::bgzf_blocks(">a\nACGT\n>b\nAC") + "rest", ">a\nsequence length: 4\n",
                   "record 2, line 4: " + damaged);
}

TEST_F(CliCompressedTest, TruncatedGzipIsMalformed) {
  const std::string member = test::gzip_of(two_records);
  expect_malformed(member.substr(0, member.size() - 1), ">a\nsequence length: 4\n", "record 2, line 5: " + damaged);
  expect_malformed("\x1f\x8b", "", "record 1, line 1: " + damaged);
}

TEST_F(CliCompressedTest, WhatStandsBeforeTheCutOfAGzipFileIsSearched) {
  std::mt19937 random(11);
  std::string text = ">a\nACGT\n>b\n";
  while (text.size() < 4000) text += "ACGT"[random() % 4];
  const std::string member = test::gzip_of(text + "\n");
  expect_malformed(member.substr(0, member.size() / 2), ">a\nsequence length: 4\n", "record 2, line 4: " + damaged);
}

TEST_F(CliCompressedTest, CompressedNothingIsMalformedLikeAnEmptyFile) {
  expect_malformed(test::gzip_of(""), "", "record 1, line 1: " + header_expected);
}

TEST_F(CliCompressedTest, CompressedTextThatIsNotFastaIsMalformed) {
  expect_malformed(test::gzip_of(">a\nACGT\n>b\nAC\rGT\n"), ">a\nsequence length: 4\n",
                   "record 2, line 4: a line feed was expected after the carriage return.");
}

TEST_F(CliCompressedTest, APlainFileThatBeginsLikeGzipIsMalformed) {
  expect_malformed("\x1f>a\nACGT\n", "", "record 1, line 1: " + header_expected);
}

TEST_F(CliCompressedTest, TheMaskedCopyIsPlainText) {
  write("x.fa.gz", test::gzip_of(two_records));
  EXPECT_EQ(run({"--maskX", "x.fa.gz"}).status, 0);
  EXPECT_EQ(read("x.fa.gz.masked"), ">a\nACGT\n>b\nXXXXXXXXXX\n");
}

class CliStandardInputTest : public CliCompressedTest {
 protected:
  static Surroundings from_pipe(const std::string& bytes) {
    Surroundings surroundings;
    surroundings.stdin_bytes = bytes;
    return surroundings;
  }

  static Surroundings from_file(const std::string& path) {
    Surroundings surroundings;
    surroundings.stdin_path = path;
    return surroundings;
  }

  static std::string records_of(const std::string& report) { return report.substr(report.find("\n>")); }
};

TEST_F(CliStandardInputTest, ADashReadsAPipe) {
  const Result result = run({"-"}, from_pipe(">r\nACGT\n"));
  Settings settings;
  settings.input = "-";
  EXPECT_EQ(result.out, report(settings, plain_record));
  EXPECT_EQ(after_banner(result), finished(settings, progress(1, 1, "r") + progress(1, 6, "r")));
  EXPECT_EQ(result.status, 0);
}

TEST_F(CliStandardInputTest, ADashReadsACompressedPipe) {
  const std::string expected = records_of(plain_report(two_records));
  EXPECT_EQ(records_of(run({"-"}, from_pipe(test::gzip_of(two_records))).out), expected);
  EXPECT_EQ(records_of(run({"-"}, from_pipe(test::bgzf_of(two_records))).out), expected);
}

TEST_F(CliStandardInputTest, ADashReadsARedirectedFile) {
  const std::string expected = records_of(plain_report(two_records));
  EXPECT_EQ(records_of(run({"-"}, from_file("x.fa")).out), expected);
}

TEST_F(CliStandardInputTest, AFileThatIsNamedDashNeedsItsDirectory) {
  write("-", ">r\nACGT\n");
  Settings settings;
  settings.input = "./-";
  EXPECT_EQ(run({"./-"}).out, report(settings, plain_record));
}

TEST_F(CliStandardInputTest, AnEmptyStandardInputIsMalformed) {
  const Result result = run({"-"});
  EXPECT_THAT(result.err, HasSubstr("Sorry! The input file \n   \"-\"\nis malformed at record 1, line 1: " +
                                    header_expected + "\n" + aborted(-103)));
  EXPECT_EQ(result.status, 153);
}

TEST_F(CliStandardInputTest, AStandardInputThatCannotBeReadIsRefused) {
  const std::string sentence =
      "Sorry! The input file \n   \"-\"\nis standard input, which is no file or pipe that can be read.\n" +
      aborted(-101);
  Surroundings closed;
  closed.stdin_is_closed = true;
  expect_refused(run({"-"}, closed), 155, sentence);
  expect_refused(run({"-"}, from_file(".")), 155, sentence);
}

TEST_F(CliStandardInputTest, ItCannotBeMasked) {
  expect_refused(run({"--maskX", "-"}, from_pipe(">r\nACGT\n")), 255,
                 "Sorry, standard input cannot be masked: --maskX needs the name of an input file.\n\n\n");
  EXPECT_FALSE(exists("-.masked"));
}

TEST_F(CliStandardInputTest, AnOutputThatIsRedirectedToItIsRefused) {
  write_plain_input();
  const std::string sentence = "Sorry! The output would overwrite the input file\n   \"-\".\n" + aborted(-102);
  expect_refused(run({"-", "x.fa"}, from_file("x.fa")), 154, sentence);
  Surroundings both = from_file("x.fa");
  both.stdout_path = "x.fa";
  both.append_stdout = true;
  expect_refused(run({"-"}, both), 154, sentence);
  EXPECT_EQ(read("x.fa"), ">r\nACGT\n");
}

}  // namespace
}  // namespace cli
