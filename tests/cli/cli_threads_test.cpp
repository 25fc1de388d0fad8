// --threads: the same bytes with any number, and what is no number of threads.

#include <random>

#include "cli_support.h"

namespace cli {
namespace {

using testing::EndsWith;
using testing::HasSubstr;
using testing::Lt;
using testing::Not;

#if defined(__SANITIZE_ADDRESS__)
constexpr bool memory_can_be_limited = false;
#else
constexpr bool memory_can_be_limited = true;
#endif

/// Records of all lengths, from none to more than wait for others.
class CliThreadsTest : public CliTest {
 protected:
  std::string bases(std::size_t length) {
    std::string text;
    while (text.size() < length) {
      text += std::string(1 + random_() % 3, "ACGT"[random_() % 4]);
      if (random_() % 20 != 0) continue;
      const std::size_t copies = 1 + random_() % 15;
      for (std::size_t i = 0; i < copies; ++i) text += random_() % 9 == 0 ? "ACT" : "ACG";
      if (random_() % 9 == 0) text += std::string(random_() % 7, 'N');
    }
    return text.substr(0, length);
  }

  std::string records(std::size_t number) {
    constexpr std::size_t lengths[] = {0, 1, 5, 63, 64, 65, 300, 4000};
    std::string text;
    for (std::size_t i = 1; i <= number; ++i) {
      text += ">record " + std::to_string(i) + "\n" + bases(lengths[random_() % 8]) + "\n";
    }
    return text;
  }

  /// Standard output, standard error and all files of a run, but for the processor times.
  std::string all_that_is_written(std::vector<std::string> arguments, const char* threads) {
    const std::vector<std::string> files = {"r.bed", "r.gff3", "r.tsv", "r.jsonl", "x.fa.masked"};
    for (const std::string& name : files) std::filesystem::remove(path(name));
    arguments.insert(arguments.end(), {"--threads", threads, "--bed", "r.bed", "--gff3", "r.gff3", "--tsv", "r.tsv",
                                       "--jsonl", "r.jsonl", "--maskX", "x.fa"});
    const Result result = run(arguments);
    std::string text = std::to_string(result.status) + result.out + after_banner(result);
    for (const std::string& name : files) text += name + read(name);
    return text;
  }

  void expect_same(const std::vector<std::string>& arguments) {
    const std::string alone = all_that_is_written(arguments, "1");
    EXPECT_THAT(alone, HasSubstr(" pt | "));
    for (const char* threads : {"2", "3", "16"}) {
      EXPECT_EQ(all_that_is_written(arguments, threads) == alone, true) << threads << " threads";
    }
  }

 private:
  std::mt19937 random_{5};
};

TEST_F(CliThreadsTest, ManyShortRecords) {
  write("x.fa", records(300));
  for (const char* mode : {"exact", "extendExact", "imperfect"}) expect_same({"-M", mode});
}

TEST_F(CliThreadsTest, MoreRecordsThanWaitAtOnce) {
  std::string text;
  for (int i = 0; i < 4200; ++i) text += ">" + std::to_string(i) + "\nACACACACAC\n";
  write("x.fa", text);
  expect_same({"--outputFormat", "0"});
}

TEST_F(CliThreadsTest, ALongRecordBetweenShortOnes) {
  write("x.fa", records(20) + ">long\n" + bases(1000001) + "\n" + records(20));
  expect_same({"-U", "3"});
}

TEST_F(CliThreadsTest, SkippedRecordsBeforeAndBehind) {
  write("x.fa", records(40));
  expect_same({"--firstSeq", "5", "--lastSeq", "33"});
}

TEST_F(CliThreadsTest, RecordsBeforeAMalformedOneAreReportedFirst) {
  write("x.fa", records(60) + ">bad\nAC\rGT\n" + records(3));
  expect_same({});
}

// The run ends with the record at which a write fails, whatever has been read behind it.
TEST_F(CliThreadsTest, AWriteThatFailsAmongManyRecords) {
  write("x.fa", records(300) + ">bad\nAC\rGT\n");
  Surroundings full;
  full.file_size_limit = 500000;
  for (const char* last : {"-1", "290"}) {
    const Result alone = run({"--lastSeq", last, "x.fa", "out.txt"}, full);
    EXPECT_THAT(alone.err, HasSubstr("---\n00."));
    EXPECT_THAT(alone.err,
                EndsWith("Sorry! Failed to write file\n   \"out.txt\"\ncompletely: File too large.\n" + aborted(-104)));
    EXPECT_THAT(alone.err, Not(HasSubstr("malformed")));
    EXPECT_THAT(alone.err, Not(HasSubstr("Skipping")));
    for (const char* threads : {"2", "5"}) {
      const Result result = run({"--lastSeq", last, "--threads", threads, "x.fa", "out.txt"}, full);
      EXPECT_EQ(after_banner(result), after_banner(alone)) << threads << " threads, last record " << last;
      EXPECT_EQ(result.status, 152);
    }
  }
}

TEST_F(CliThreadsTest, AllProcessorsOrMoreThreadsThanAnyoneHas) {
  write("x.fa", records(10));
  const Result alone = run({"x.fa"});
  for (const char* threads : {"0", "1024", "2147483647"}) {
    const Result result = run({"--threads", threads, "x.fa"});
    EXPECT_EQ(result.out, alone.out) << threads;
    EXPECT_EQ(after_banner(result), after_banner(alone)) << threads;
    EXPECT_EQ(result.status, 0) << threads;
  }
}

TEST_F(CliThreadsTest, ANegativeNumberIsRefused) {
  write_plain_input();
  expect_refused(run({"--threads", "-1", "x.fa"}), 255, "Sorry, the number of threads must not be negative.\n\n\n");
}

TEST_F(CliThreadsTest, WhatIsNoNumberIsRefused) {
  write_plain_input();
  for (const char* word : {"x", "1.5", "2x", "99999999999"}) {
    const Result result = run({"--threads", word, "x.fa"});
    EXPECT_THAT(result.err, HasSubstr("--threads")) << word;
    EXPECT_EQ(result.out, "") << word;
    EXPECT_EQ(result.status, 1) << word;
  }
}

TEST_F(CliThreadsTest, AMissingNumberIsRefused) {
  write_plain_input();
  const Result result = run({"x.fa", "--threads"});
  EXPECT_THAT(result.err, HasSubstr("--threads"));
  EXPECT_EQ(result.status, 1);
}

// The stacks of so many threads do not fit, so the system gives fewer.
TEST_F(CliThreadsTest, FewerThreadsThanAskedForDo) {
  if (!memory_can_be_limited) GTEST_SKIP() << "a sanitizer needs more than the limit itself";
  write("x.fa", ">r\n" + bases(20000) + "\n");
  const Result alone = run({"x.fa"});
  Surroundings little;
  little.memory_limit = std::size_t{1} << 30;
  const Result result = run({"--threads", "1024", "x.fa"}, little);
  EXPECT_EQ(result.out, alone.out);
  EXPECT_EQ(result.status, 0);
}

TEST_F(CliThreadsTest, WhereMemoryRunsOutTheRunEndsInOrder) {
  if (!memory_can_be_limited) GTEST_SKIP() << "a sanitizer needs more than the limit itself";
  write("x.fa", records(200));
  for (std::size_t mebibytes = 36; mebibytes <= 80; mebibytes += 4) {
    Surroundings little;
    little.memory_limit = mebibytes << 20;
    EXPECT_THAT(run({"--threads", "8", "x.fa"}, little).status, Lt(1000)) << mebibytes << " MiB";
  }
}

}  // namespace
}  // namespace cli
