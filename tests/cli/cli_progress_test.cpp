// --progress: one line on a terminal, and nothing of it anywhere else.

#include <sys/stat.h>

#include <algorithm>
#include <chrono>
#include <fstream>
#include <regex>
#include <thread>

#include "cli_support.h"

namespace cli {
namespace {

using testing::Each;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::MatchesRegex;
using testing::Not;
using testing::SizeIs;

constexpr unsigned short wide = 100;

Surroundings terminal(unsigned short columns) {
  Surroundings surroundings;
  surroundings.terminal_columns = columns;
  return surroundings;
}

/// The lines that were drawn in place: from a carriage return to an erasure of the rest of the line.
std::vector<std::string> drawings(const std::string& written) {
  static const std::regex drawing("\r([^\r\x1b]+)\x1b\\[K");
  std::vector<std::string> found;
  for (std::sregex_iterator at(written.begin(), written.end(), drawing), end; at != end; ++at)
    found.push_back((*at)[1]);
  return found;
}

/// What a terminal shows in the end of what was written to it.
std::string screen(const std::string& written) {
  std::string done;
  std::string line;
  std::size_t column = 0;
  for (std::size_t at = 0; at < written.size(); ++at) {
    if (written.compare(at, 3, "\x1b[K") == 0) {
      line.resize(column);
      at += 2;
    } else if (written[at] == '\r') {
      column = 0;
    } else if (written[at] == '\n') {
      done += line + "\n";
      line.clear();
      column = 0;
    } else {
      line.resize(std::max(line.size(), column + 1), ' ');
      line[column++] = written[at];
    }
  }
  return done + line;
}

std::string without_times(std::string text) {
  return std::regex_replace(text, std::regex("\\d\\d\\.\\d\\d\\.\\d\\d - #"), "00.00.00 - #");
}

class CliProgressTest : public CliTest {
 protected:
  CliProgressTest() { write("x.fa", ">a\n" + bases(60000) + "\n>b\n" + bases(30000) + "\n>c\nACGT\n"); }

  static std::string bases(std::size_t count) {
    std::string text;
    unsigned state = 4711;
    while (text.size() < count) {
      state = state * 1103515245U + 12345U;
      text += "ACGT"[state >> 30];
    }
    return text;
  }

  Result plain() const { return run({"x.fa"}); }
};

TEST_F(CliProgressTest, WithoutATerminalTheOptionChangesNothing) {
  const Result result = run({"--progress", "x.fa"});
  EXPECT_EQ(result.out, plain().out);
  EXPECT_EQ(without_times(result.err), without_times(plain().err));
  EXPECT_EQ(result.status, 0);
}

TEST_F(CliProgressTest, WithoutTheOptionNothingIsDrawn) {
  const Result result = run({"x.fa"}, terminal(wide));
  EXPECT_EQ(result.out, plain().out);
  EXPECT_EQ(without_times(result.err), without_times(plain().err));
  EXPECT_EQ(result.status, 0);
}

TEST_F(CliProgressTest, ALineIsDrawnInEveryMode) {
  for (const char* mode : {"exact", "extendExact", "imperfect"}) {
    const Result result = run({"--progress", "-M", mode, "x.fa"}, terminal(wide));
    EXPECT_THAT(drawings(result.err), Not(IsEmpty())) << mode;
    EXPECT_THAT(drawings(result.err), Each(MatchesRegex("[0-9.]+ k?bp, [0-9]+ % of 90\\.02 kB(, .*)?"))) << mode;
    EXPECT_EQ(result.out, run({"-M", mode, "x.fa"}).out) << mode;
    EXPECT_EQ(result.status, 0) << mode;
  }
}

TEST_F(CliProgressTest, InTheEndTheScreenShowsTheOtherMessagesAlone) {
  for (const char* mode : {"exact", "extendExact", "imperfect"}) {
    const Result result = run({"--progress", "-M", mode, "x.fa"}, terminal(wide));
    EXPECT_EQ(without_times(screen(result.err)), without_times(run({"-M", mode, "x.fa"}).err)) << mode;
  }
}

TEST_F(CliProgressTest, TheLineIsGoneBeforeAnErrorIsReported) {
  write("x.fa", ">a\n" + bases(60000) + "\n>");
  const Result cut = run({"--progress", "x.fa"}, terminal(wide));
  EXPECT_THAT(drawings(cut.err), Not(IsEmpty()));
  EXPECT_EQ(without_times(screen(cut.err)), without_times(plain().err));
  EXPECT_EQ(cut.status, 153);
}

TEST_F(CliProgressTest, TheLineFitsANarrowTerminal) {
  const Result result = run({"--progress", "x.fa"}, terminal(12));
  EXPECT_THAT(drawings(result.err), Not(IsEmpty()));
  EXPECT_THAT(drawings(result.err), Each(SizeIs(testing::Le(11U))));
}

TEST_F(CliProgressTest, ATerminalOfOneColumnIsBorne) {
  const Result result = run({"--progress", "x.fa"}, terminal(1));
  EXPECT_THAT(drawings(result.err), IsEmpty());
  EXPECT_EQ(without_times(screen(result.err)), without_times(plain().err));
}

TEST_F(CliProgressTest, TheLineIsDrawnFourTimesASecondAtMost) {
  write("x.fa", ">a\n" + bases(500000) + "\n");
  const auto start = std::chrono::steady_clock::now();
  const Result result = run({"--progress", "-U", "30", "x.fa", "out.txt"}, terminal(wide));
  const std::chrono::duration<double> seconds = std::chrono::steady_clock::now() - start;
  EXPECT_LE(static_cast<double>(drawings(result.err).size()), 1 + 4 * seconds.count());
}

TEST_F(CliProgressTest, TheShareNeverGoesBack) {
  write("x.fa", ">a\n" + bases(300000) + "\n>b\n" + bases(200000) + "\n");
  const Result result = run({"--progress", "-U", "50", "x.fa", "out.txt"}, terminal(wide));
  std::vector<int> shares;
  for (const std::string& drawing : drawings(result.err))
    shares.push_back(std::stoi(drawing.substr(drawing.find(", ") + 2)));
  EXPECT_THAT(shares, Not(IsEmpty()));
  EXPECT_TRUE(std::is_sorted(shares.begin(), shares.end())) << testing::PrintToString(shares);
  EXPECT_LE(shares.back(), 100);
}

TEST_F(CliProgressTest, OfAPipeBasesAndRateAreShown) {
  ASSERT_EQ(mkfifo(path("pipe").c_str(), 0600), 0);
  std::thread writer([this] { std::ofstream(path("pipe")) << read("x.fa"); });
  const Result result = run({"--progress", "pipe"}, terminal(wide));
  writer.join();
  EXPECT_THAT(drawings(result.err), Not(IsEmpty()));
  EXPECT_THAT(drawings(result.err), Each(MatchesRegex("[0-9.]+ k?bp(, [0-9.]+ [kMG]?bp/s)?")));
  EXPECT_EQ(result.status, 0);
}

TEST_F(CliProgressTest, OfARangeThatEndsBeforeTheFileNoShareIsShown) {
  const Result result = run({"--progress", "--lastSeq", "1", "x.fa"}, terminal(wide));
  EXPECT_THAT(drawings(result.err), Not(IsEmpty()));
  EXPECT_THAT(drawings(result.err), Each(Not(HasSubstr("%"))));
}

TEST_F(CliProgressTest, SkippedRecordsCountInTheShareButNotAsBases) {
  const Result result = run({"--progress", "--firstSeq", "2", "x.fa"}, terminal(wide));
  ASSERT_THAT(drawings(result.err), Not(IsEmpty()));
  EXPECT_EQ(drawings(result.err).front(), "0 bp, 66 % of 90.02 kB");
}

}  // namespace
}  // namespace cli
