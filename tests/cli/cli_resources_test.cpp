// Large settings and inputs within little memory. Sanitizers need more address space than any limit here would leave.

#include "cli_support.h"

#if defined(__SANITIZE_ADDRESS__)
#define OSTREL_UNDER_SANITIZER 1
#elif defined(__has_feature)
#if __has_feature(address_sanitizer)
#define OSTREL_UNDER_SANITIZER 1
#endif
#endif
#ifndef OSTREL_UNDER_SANITIZER
#define OSTREL_UNDER_SANITIZER 0
#endif

namespace cli {
namespace {

using testing::HasSubstr;
using testing::Not;

constexpr std::size_t mebibyte = std::size_t{1} << 20;

Surroundings within(std::size_t mebibytes) {
  Surroundings surroundings;
  if (OSTREL_UNDER_SANITIZER == 0) surroundings.memory_limit = mebibytes * mebibyte;
  return surroundings;
}

/// Two records, the second of two copies of a unit of eighty bases.
class CliLargeUnitTest : public CliTest, public testing::WithParamInterface<const char*> {
 protected:
  CliLargeUnitTest() {
    std::string bases;
    unsigned state = 12345;
    for (int i = 0; i < 80; ++i) {
      state = state * 1103515245U + 12345U;
      bases += "ACGT"[state >> 30];
    }
    write("x.fa", ">a\nACACACACAC\n>b\n" + bases + bases + "\n");
  }

  static bool reports_long_unit(const std::string& out) {
    return out.find("\n80-nucleotide 1 : 160 -- length 160 score 80 perfection 100 unit ") != std::string::npos;
  }
};

INSTANTIATE_TEST_SUITE_P(Lengths, CliLargeUnitTest, testing::Values("20000", "1000000", "4294967295", "-1"),
                         [](const testing::TestParamInfo<const char*>& length) {
                           return std::string(length.param) == "-1" ? std::string("MinusOne") : length.param;
                         });

TEST_P(CliLargeUnitTest, RunsNormallyInLittleMemory) {
  for (const char* mode : {"exact", "extendExact", "imperfect"}) {
    const Result result = run(
        {"-M", mode, "-U", GetParam(), "--outputFormat", "2", "--printRepeatSeqMode", "0", "--reportUnit", "0", "x.fa"},
        within(256));
    EXPECT_EQ(result.status, 0) << mode;
    EXPECT_TRUE(reports_long_unit(result.out)) << mode;
    EXPECT_THAT(result.err, HasSubstr("\nAnalysis finished successfully.\n")) << mode;
  }
}

using CliResourcesTest = CliTest;

TEST_F(CliResourcesTest, AUnitAboveTenThousandIsFoundAndTestedForPeriodicity) {
  std::string bases;
  unsigned state = 54321;
  for (int i = 0; i < 10500; ++i) {
    state = state * 1103515245U + 12345U;
    bases += "ACGT"[state >> 30];
  }
  write("x.fa", ">r\n" + bases + bases + "\n");
  const Result result = run({"-M", "exact", "-U", "10500", "-s", "1000", "--outputFormat", "2", "--printRepeatSeqMode",
                             "0", "--reportUnit", "0", "x.fa"});
  EXPECT_THAT(result.out, HasSubstr("\n10500-nucleotide 1 : 21000 -- length 21000 score 10500 perfection 100 unit "));
  EXPECT_EQ(result.status, 0);
}

TEST_F(CliResourcesTest, ADepthOfAMillionRunsOnARepeat) {
  write("x.fa", ">r\nACACACACACGACACACACAC\n");
  const std::string at_default = run({"x.fa"}).out;
  for (const char* depth : {"256", "1000000", "2147483647"}) {
    const Result result = run({"-r", depth, "x.fa"}, within(256));
    EXPECT_EQ(result.out.substr(result.out.find("\n>")), at_default.substr(at_default.find("\n>"))) << depth;
    EXPECT_EQ(result.status, 0);
  }
}

TEST_F(CliResourcesTest, ADepthOfTwelveEndsOnASatellite) {
  std::string bases;
  for (int i = 0; i < 12; ++i)
    bases += i % 4 == 3 ? "ACGTTGCATGTCCAGGATCATGCAAGTTCGA" : "ACGTTGCAAGTCCAGGATCATGCATGTTCGA";
  write("x.fa", ">r\n" + bases + "\n");
  const Result result = run({"-r", "12", "-U", "31", "--outputFormat", "2", "--printRepeatSeqMode", "0", "x.fa"});
  EXPECT_THAT(result.out, HasSubstr("\n31-nucleotide "));
  EXPECT_EQ(result.status, 0);
}

TEST_F(CliResourcesTest, RunningOutOfMemoryIsSaidInOneSentence) {
  if (OSTREL_UNDER_SANITIZER != 0) GTEST_SKIP() << "a sanitizer needs more than the limit itself";
  write("x.fa", ">a\nACGT\n>big\n" + std::string(60000000, 'N') + "\n");
  const Result result = run({"x.fa"}, within(64));
  EXPECT_EQ(result.out, unfinished_report(Settings(), ">a\nsequence length: 4\n"));
  EXPECT_THAT(after_banner(result), HasSubstr("Sorry! Memory ran out"));
  EXPECT_THAT(result.err, Not(HasSubstr("terminate called")));
  EXPECT_EQ(result.status, 150);
}

TEST_F(CliResourcesTest, ARecordOfTheReservedLengthRuns) {
  std::string bases(10000000, 'N');
  bases.replace(bases.size() - 10, 10, "ACACACACAC");
  write("x.fa", ">r\n" + bases + "\n");
  const Result result = run({"-U", "2", "-M", "exact", "--outputFormat", "2", "--printRepeatSeqMode", "0", "x.fa"});
  EXPECT_THAT(result.out, HasSubstr(">r\nsequence length: 10000000\n"
                                    "dinucleotide 9999991 : 10000000 -- length 10 score 8 perfection 100 unit AC\n##"));
  EXPECT_EQ(result.status, 0);
}

TEST_F(CliResourcesTest, ASequenceOfNAtTheEndOfAFullBufferRuns) {
  write("x.fa", ">r\n" + std::string(1 << 20, 'N') + "\n>s\nN\n>t\nACGTN\n");
  for (const char* mode : {"exact", "extendExact", "imperfect"}) {
    const Result result = run({"-M", mode, "x.fa"});
    EXPECT_THAT(result.out, HasSubstr(">r\nsequence length: 1048576\n>s\nsequence length: 1\n"
                                      ">t\nsequence length: 5\n## Finished"));
    EXPECT_EQ(result.status, 0);
  }
}

}  // namespace
}  // namespace cli
