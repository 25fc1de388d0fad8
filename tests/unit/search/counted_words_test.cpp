// The most that walks can score in the words of a part of a sequence against the best of all ways, found state by
// state.

#include "search/counted_words.h"

#include <algorithm>
#include <string>
#include <vector>

#include "search/search_support.h"

namespace {

using test::Random;

/// Copies of a unit with departures, others among them, and behind them a unit that may be some of the copies, with
/// departures of its own.
struct Case {
  std::string bases;
  Stretch part;
  std::int64_t unit_begin;
  std::int64_t unit_length;
  ExtensionRules rules;
  CountedWords::Known known = {{0, 0}, 0};
};

Case make_case(unsigned number) {
  Random random(number);
  Case c;
  c.rules = {-6, -6, 5, 4, false};
  if (random.percent(50)) c.rules.mismatch_score = -random.pick({5, 6, 8, 200});
  if (random.percent(50)) c.rules.indel_score = -random.pick({5, 6, 8, 200});
  const std::string letters = random.pick({"ACGT", "AC", "AGT"});
  const std::string unit = random.bases(random.pick({1U, 2U, 3U, 5U, 7U, 12U, 24U}), letters);
  const std::size_t size = random.pick({0U, 5U, 20U, 100U, 300U, 1000U});
  while (c.bases.size() < size) {
    std::string copies;
    const std::size_t length = random.pick({30U, 100U, 1000U});
    while (copies.size() < length) copies += unit;
    c.bases += random.copy(copies, random.pick({0U, 100U, 40U, 15U}));
    if (random.percent(20)) c.bases += random.bases(random.pick({1U, 4U, 30U}), letters);
    if (random.percent(10)) c.bases += std::string(random.pick({1U, 4U, 30U}), 'N');
  }
  c.bases.resize(size);
  const auto end = static_cast<std::uint32_t>(size);
  c.part = random.percent(50) ? Stretch{0, end} : Stretch{end / 7, end - end / 5};
  const std::uint32_t begin = c.part.begin + random.below(c.part.length() + 1);
  c.known.stretch = {begin, begin + random.below(std::min(c.part.end - begin, random.pick({0U, 10U, 1000U})) + 1)};
  c.known.score = random.pick({0, 100});
  std::string copies;
  const unsigned turns = 1 + random.below(6);
  for (unsigned i = 0; i < turns; ++i) copies += unit;
  if (random.percent(70)) copies = random.copy(copies, 20);
  if (copies.empty() || random.percent(50)) copies += random.bases(1, letters);
  c.unit_begin = static_cast<std::int64_t>(size);
  c.unit_length = static_cast<std::int64_t>(copies.size());
  c.bases += copies + "A";
  return c;
}

/// What the best of all ways gains that begin in any phase at the end of the known stretch and go on in the part, or
/// the same before its beginning.
std::int64_t highest_gain_of(const Case& c, bool to_the_right) {
  const std::int64_t length = c.unit_length;
  constexpr std::int64_t none = INT64_MIN / 2;
  std::vector<std::int64_t> here(static_cast<std::size_t>(length), 0);
  std::int64_t highest = 0;
  const std::int64_t bases = to_the_right ? c.part.end - c.known.stretch.end : c.known.stretch.begin - c.part.begin;
  for (std::int64_t i = 0; i < bases; ++i) {
    const std::int64_t at = to_the_right ? c.known.stretch.end + i : c.known.stretch.begin - 1 - i;
    std::vector<std::int64_t> there(here.size(), none);
    const auto take = [&there, length](std::int64_t phase, std::int64_t score) {
      std::int64_t& state = there[static_cast<std::size_t>((phase + length) % length)];
      state = std::max(state, score);
    };
    const std::int64_t on = to_the_right ? 1 : -1;
    for (std::int64_t turn = 0; turn < 2 * length; ++turn) {
      const std::int64_t phase = to_the_right ? turn % length : length - 1 - turn % length;
      std::int64_t& next = here[static_cast<std::size_t>((phase + on + length) % length)];
      next = std::max(next, here[static_cast<std::size_t>(phase)] + c.rules.indel_score);
    }
    for (std::int64_t phase = 0; phase < length; ++phase) {
      const std::int64_t score = here[static_cast<std::size_t>(phase)];
      const char base = c.bases[static_cast<std::size_t>(at)];
      const bool agrees = base == c.bases[static_cast<std::size_t>(c.unit_begin + phase)];
      take(phase + on, score + (agrees ? 1 : base == 'N' ? 0 : c.rules.mismatch_score));
      take(phase, score + c.rules.indel_score);
    }
    here = there;
    highest = std::max(highest, *std::max_element(here.begin(), here.end()));
  }
  return highest;
}

/// The best of all walks of which that is known.
std::int64_t highest_score_of(const Case& c) {
  return c.known.score + highest_gain_of(c, true) + highest_gain_of(c, false);
}

class CountedWordsTest : public test::SearchTest {
 protected:
  static std::int64_t limit_of(const Case& c, std::int64_t bases, std::int64_t enough) {
    const test::Sequence sequence(c.bases);
    const BasePlanes planes(sequence.mol.begin(), sequence.mol.end());
    CountedWords words(bases, planes, sequence.mol.begin(), c.part, c.rules);
    const UnitCircle circle{sequence.at(c.unit_begin), sequence.at(c.unit_begin + c.unit_length)};
    const std::int64_t limit = words.highest_score(circle, c.known, enough);
    EXPECT_EQ(words.highest_score(circle, c.known, enough), limit) << "the question before leaves nothing";
    return limit;
  }

  /// Of a unit in an array of perfect copies.
  static std::int64_t limit_in_array(const std::string& copy, const std::string& unit, std::int64_t bases = 9) {
    Case c{"", {0, 0}, 0, static_cast<std::int64_t>(unit.size()), {-6, -6, 5, 4, false}, {{0, 0}, 0}};
    while (c.bases.size() < array_length) c.bases += copy;
    c.bases.resize(array_length);
    c.part.end = array_length;
    c.unit_begin = array_length;
    c.bases += unit + "A";
    return limit_of(c, bases, 0);
  }

  static constexpr std::uint32_t array_length = 10000;
};

TEST_F(CountedWordsTest, NoWalkScoresMore) {
  int close = 0;
  for (unsigned number = 0; number < 4000; ++number) {
    const Case c = make_case(number);
    const std::int64_t highest = highest_score_of(c);
    const std::int64_t limit = limit_of(c, 7 + number % 3, number % 2 == 0 ? 0 : highest);
    ASSERT_GE(limit, highest) << "case " << number;
    if (limit <= highest + 60) ++close;
  }
  EXPECT_GT(close, 1500);
}

TEST_F(CountedWordsTest, TellUnitsApartThatTheWordsDoNot) {
  EXPECT_GE(limit_in_array("ACGGT", "ACGGT"), array_length);
  EXPECT_GE(limit_in_array("ACGGT", "ACGGTACGGTACGGT"), array_length);
  // Each turn of these takes a step at least, which costs 6 or 7 of its bases.
  EXPECT_LT(limit_in_array("ACGGT", "ACGGTACGGTACGGTACGGTACGGTACGGTA"), array_length * 92 / 100) << "a base more";
  EXPECT_LT(limit_in_array("ACGGT", "ACGGTACGGTACGGTACGGTACGGTACGGTAC"), array_length * 92 / 100) << "two bases more";
  EXPECT_LT(limit_in_array("ACGGT", "ACGGTACGGTACGGTAAGGTACGGTACGGT"), array_length * 85 / 100) << "another base";
  EXPECT_LT(limit_in_array("ACGGTAAC", "ACGGTAACACGGTACACGGTAAC"), array_length * 92 / 100) << "a base less";
}

// A walk with such a unit may come to the end of a turn at the end of a word, and step there.
TEST_F(CountedWordsTest, TellUnitsOfSomeWordsApartByShorterOnes) {
  const std::string unit = "ACGGTACGGTACGGTACGGTACGGTACGGTACGGTA";
  ASSERT_EQ(unit.size(), 36U);
  EXPECT_GE(limit_in_array("ACGGT", unit, 9), array_length * 99 / 100);
  EXPECT_LT(limit_in_array("ACGGT", unit, 7), array_length * 90 / 100);
}

// The word that a walk takes with two steps in each turn is where the potential rises.
TEST_F(CountedWordsTest, AWordMayBeTakenWithTwoStepsInEachTurn) {
  const std::string unit = "ACGTTGCATCCGATAGGCTTAACGGATTCAGCTAGC";
  ASSERT_EQ(unit.size(), 36U);
  std::string copy = unit;
  copy[11] = 'A';
  copy[14] = 'C';
  Case c{test::repeated(copy, 100), {0, 3600}, 3600, 36, {-6, -6, 5, 4, false}, {{1000, 1100}, 70}};
  c.bases += unit + "A";
  const std::int64_t highest = highest_score_of(c);
  EXPECT_GE(highest, 95 * (36 - 14));
  EXPECT_GE(limit_of(c, 9, highest), highest);
  EXPECT_GE(limit_of(c, 9, 0), highest);
}

TEST_F(CountedWordsTest, TellNothingWhereStepsAreCheap) {
  Case c{std::string(300, 'A') + "CCCCCCCCCCA", {0, 300}, 300, 10, {-3, -6, 5, 4, false}, {{0, 0}, 0}};
  EXPECT_EQ(limit_of(c, 9, 0), INT64_MAX);
  c.rules = {-6, -4, 5, 4, false};
  EXPECT_EQ(limit_of(c, 9, 0), INT64_MAX);
  c.rules = {-4, -5, 5, 4, false};
  EXPECT_LT(limit_of(c, 9, 0), 50);
}

}  // namespace
