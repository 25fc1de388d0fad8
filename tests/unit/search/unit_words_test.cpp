// The most that walks can gain by their words against the best of all ways, found state by state.

#include "search/unit_words.h"

#include <algorithm>
#include <string>
#include <vector>

#include "search/search_support.h"

namespace {

constexpr std::int64_t no_way = INT64_MIN / 2;

struct Case {
  std::string bases;
  std::int64_t unit_begin;
  std::int64_t unit_length;
  std::int64_t begin;  ///< where the walks stand
  std::int64_t phase;  ///< of the unit base that they expect
  std::int64_t score;
  ExtensionRules rules;
};

/// The highest score of all ways from the front on, the one there included.
template <bool forward>
std::int64_t highest_score(const Case& c) {
  const std::int64_t length = c.unit_length;
  const auto next = [length](std::int64_t phase) { return (phase + (forward ? 1 : length - 1)) % length; };
  const auto take = [&c](std::int64_t score, std::int64_t& state) {
    if (score > -c.unit_length) state = std::max(state, score);
  };
  std::vector<std::int64_t> here(static_cast<std::size_t>(length), no_way);
  here[static_cast<std::size_t>(c.phase)] = c.score;
  std::int64_t highest = c.score;
  const auto room = forward ? static_cast<std::int64_t>(c.bases.size()) - c.begin : c.begin;
  for (std::int64_t taken = 0; taken <= room; ++taken) {
    // Deletions, more than once around the unit.
    for (std::int64_t i = 0, phase = 0; i < 2 * length; ++i, phase = next(phase)) {
      take(here[static_cast<std::size_t>(phase)] + c.rules.indel_score, here[static_cast<std::size_t>(next(phase))]);
    }
    highest = std::max(highest, *std::max_element(here.begin(), here.end()));
    if (taken == room) break;
    const char base = c.bases[static_cast<std::size_t>(forward ? c.begin + taken : c.begin - taken - 1)];
    std::vector<std::int64_t> there(here.size(), no_way);
    for (std::int64_t phase = 0; phase < length; ++phase) {
      const std::int64_t score = here[static_cast<std::size_t>(phase)];
      const bool agrees = base == c.bases[static_cast<std::size_t>(c.unit_begin + phase)];
      const std::int64_t gain = agrees ? 1 : base == 'N' ? 0 : c.rules.mismatch_score;
      take(score + gain, there[static_cast<std::size_t>(next(phase))]);
      take(score + c.rules.indel_score, there[static_cast<std::size_t>(phase)]);
    }
    here = there;
  }
  return highest;
}

template <bool forward>
bool keeps_from(const Case& c, const test::Sequence& sequence, UnitWords& words, std::int64_t enough) {
  const UnitCircle circle{sequence.at(c.unit_begin), sequence.at(c.unit_begin + c.unit_length)};
  return words.keeps_from<forward>(enough, {sequence.at(c.begin), circle.begin + c.phase, c.score, 0}, circle);
}

/// A unit, and copies of it with many departures or few, in stretches, some of them of other bases.
Case make_case(unsigned number) {
  test::Random random(number);
  Case c;
  c.rules = {-6, -6, 5, 4, false};
  if (random.percent(50)) c.rules.mismatch_score = -random.pick({5, 6, 8, 20});
  if (random.percent(50)) c.rules.indel_score = -random.pick({5, 6, 8, 20});
  c.unit_length = random.pick({2, 5, 8, 9, 10, 11, 17, 30, 60});
  const std::string letters = random.pick({"ACGT", "AC", "AGT"});
  const std::string unit = random.bases(static_cast<std::size_t>(c.unit_length), letters);
  const std::size_t size = random.pick({0, 5, 9, 20, 62, 63, 64, 70, 150, 300});
  std::string copies;
  while (copies.size() < size) {
    const std::size_t end = copies.size() + random.pick({10, 30, 100});
    const unsigned rate = random.pick({0, 3, 8, 15, 100});
    for (std::size_t i = random.below(static_cast<unsigned>(unit.size())); copies.size() < end; ++i) {
      const unsigned departure = random.percent(rate) ? random.below(4) : 4;
      if (departure < 2) copies += random.bases(1, letters);
      if (departure == 3 && random.percent(20)) copies += 'N';
      if (departure == 2 || departure == 4) copies += unit[i % unit.size()];
      if (departure == 2) copies += random.bases(1, letters);
    }
  }
  copies.resize(size);
  if (random.percent(50)) {
    c.bases = unit + copies;
    c.unit_begin = 0;
    c.begin = c.unit_length;
  } else {
    c.bases = copies + unit;
    c.unit_begin = static_cast<std::int64_t>(size);
    c.begin = c.unit_begin;
  }
  c.phase = random.below(static_cast<unsigned>(c.unit_length));
  c.score = random.pick({0, 20, 100, 1000});
  return c;
}

class UnitWordsTest : public test::SearchTest {};

TEST_F(UnitWordsTest, NoWayComesToAScoreThatTheyKeepFrom) {
  int told = 0;
  int told_closely = 0;
  for (unsigned number = 0; number < 3000; ++number) {
    const Case c = make_case(number);
    const test::Sequence sequence(c.bases);
    const BasePlanes planes(sequence.mol.begin(), sequence.mol.end());
    UnitWords words(sequence.mol.begin(), sequence.mol.end(), planes, c.rules);
    const bool forward = c.unit_begin == 0;
    const std::int64_t highest = forward ? highest_score<true>(c) : highest_score<false>(c);
    const auto keeps_from_score = [&](std::int64_t enough) {
      return forward ? keeps_from<true>(c, sequence, words, enough) : keeps_from<false>(c, sequence, words, enough);
    };
    if (highest > c.score) {
      ASSERT_FALSE(keeps_from_score(highest)) << "case " << number;
    }
    if (keeps_from_score(highest + 40)) ++told;
    if (keeps_from_score(highest + 9)) ++told_closely;
  }
  EXPECT_GT(told, 1000);
  EXPECT_GT(told_closely, 250);
}

TEST_F(UnitWordsTest, GainsAreThoseUpToALimit) {
  int close = 0;
  for (unsigned number = 0; number < 1500; ++number) {
    Case c = make_case(number);
    const test::Sequence sequence(c.bases);
    const BasePlanes planes(sequence.mol.begin(), sequence.mol.end());
    UnitWords words(sequence.mol.begin(), sequence.mol.end(), planes, c.rules);
    const UnitCircle circle{sequence.at(c.unit_begin), sequence.at(c.unit_begin + c.unit_length)};
    const auto size = static_cast<std::int64_t>(c.bases.size());
    c.score = 10000;  // that permits everything
    constexpr std::int64_t any = 1 << 20;
    const std::int64_t rest = (size - c.unit_length) * 2 / 3;
    std::int64_t highest = 0;
    UnitWords::Gains gains{};
    if (c.unit_begin == 0) {
      gains = words.gains<true>(sequence.at(c.begin), sequence.at(c.begin + rest), circle, any, any);
      c.bases.resize(static_cast<std::size_t>(c.begin + rest));
      highest = highest_score<true>(c) - c.score;
    } else {
      gains = words.gains<false>(sequence.at(c.begin), sequence.at(c.begin - rest), circle, any, any);
      c.bases.erase(0, static_cast<std::size_t>(c.begin - rest));
      c.begin = c.unit_begin = rest;
      highest = highest_score<false>(c) - c.score;
    }
    ASSERT_GE(gains.highest, highest) << "case " << number;
    ASSERT_LE(gains.last, gains.highest) << "case " << number;
    if (gains.highest <= highest + 40) ++close;
  }
  EXPECT_GT(close, 500);
}

// A single word of each kind, with all that a walk can make of the bases behind it.
TEST_F(UnitWordsTest, TellStepsApart) {
  const std::string unit = "ACGGTCATTCAGGATCTTAC";
  const auto limit = [&unit](const std::string& ahead, const ExtensionRules& rules) {
    const Case c{unit + ahead, 0,    static_cast<std::int64_t>(unit.size()), static_cast<std::int64_t>(unit.size()), 0,
                 100,          rules};
    const test::Sequence sequence(c.bases);
    const BasePlanes planes(sequence.mol.begin(), sequence.mol.end());
    UnitWords words(sequence.mol.begin(), sequence.mol.end(), planes, c.rules);
    std::int64_t gain = -50;
    while (gain < 50 && !keeps_from<true>(c, sequence, words, c.score + gain + 1)) ++gain;
    return gain - 8;  // that many matches may follow
  };
  const ExtensionRules usual{-6, -6, 5, 4, false};
  EXPECT_EQ(limit("", usual), 0);
  EXPECT_EQ(limit("GGTCATTCA", usual), 9);
  EXPECT_EQ(limit("TTACACGGT", usual), 9) << "around the unit";
  EXPECT_EQ(limit("GGTCNTTCA", usual), 9);
  EXPECT_EQ(limit("GGTCATTCAGGATCTTAC", usual), 18);
  EXPECT_EQ(limit("GGTCATTCAGGATCTT", usual), 9) << "only whole words count";
  // The words behind hold them off, so that the first one is the highest.
  const std::string unlike = "AAAAAAAAACCCCCCCCC";
  const auto expect_one_step = [&](const std::string& word) {
    const bool is_of_unit = (unit + unit).find(word) != std::string::npos;
    EXPECT_EQ(limit(word + unlike, usual), is_of_unit ? 9 : 3) << word;
  };
  for (std::size_t place = 0; place < 9; ++place) {
    for (const char base : {'A', 'C', 'G', 'T'}) {
      std::string mismatched = "GGTCATTCA";
      mismatched[place] = base;
      expect_one_step(mismatched);
      expect_one_step(std::string("GGTCATTC").insert(place, 1, base));
    }
    expect_one_step(std::string("GGTCATTCAG").erase(place, 1));
  }
  EXPECT_EQ(limit("GGTCCTTAA" + unlike, usual), 0) << "two mismatches";
  EXPECT_EQ(limit("GGTCCTTCA" + unlike, {-20, -5, 5, 4, false}), 4) << "the milder one";
  EXPECT_EQ(limit("GGTATTCAG" + unlike, {-4, -20, 5, 4, false}), 4) << "a mismatch loses its base, too";
}

// A walk that is over does not come back, one that is permitted to fall does.
TEST_F(UnitWordsTest, TellWhereAWalkIsOver) {
  const std::string unit = "ACGGTCATTCAGGATCTTACGAGTTGCCTATGGACATCCGAGTAATCGCAACTTGGCTGT";
  const auto comes_back = [&unit](std::size_t words_between) {
    const auto length = static_cast<std::int64_t>(unit.size());
    const ExtensionRules usual{-6, -6, 5, 4, false};
    const Case c{unit + test::repeated("AAAAAAAAACCCCCCCCC", words_between / 2) + test::repeated(unit, 10),
                 0,
                 length,
                 length,
                 0,
                 50,
                 usual};
    const test::Sequence sequence(c.bases);
    const BasePlanes planes(sequence.mol.begin(), sequence.mol.end());
    UnitWords words(sequence.mol.begin(), sequence.mol.end(), planes, c.rules);
    return !keeps_from<true>(c, sequence, words, 60);
  };
  EXPECT_TRUE(comes_back(20));
  EXPECT_TRUE(comes_back(38));  // 50 + 8 - 3 * 38 > -60
  EXPECT_FALSE(comes_back(44));
}

TEST_F(UnitWordsTest, AreThoseOfTheUnitInQuestion) {
  test::Random random(1);
  const test::Sequence sequence(random.bases(60) + test::repeated(random.bases(40), 5) + random.bases(100));
  const BasePlanes planes(sequence.mol.begin(), sequence.mol.end());
  const ExtensionRules usual{-6, -6, 5, 4, false};
  UnitWords words(sequence.mol.begin(), sequence.mol.end(), planes, usual);
  int told = 0;
  for (int i = 0; i < 300; ++i) {
    const std::int64_t begin = random.pick({40, 60, 65});
    const UnitCircle circle{sequence.at(begin), sequence.at(begin + random.pick({20, 35, 40, 55}))};
    const Front<true> front{sequence.at(100 + random.below(200)), circle.begin, 1000, 0};
    const std::int64_t enough = 1000 + 10 * random.below(12);
    UnitWords others(sequence.mol.begin(), sequence.mol.end(), planes, usual);
    const bool keeps = words.keeps_from(enough, front, circle);
    EXPECT_EQ(keeps, others.keeps_from(enough, front, circle));
    told += keeps ? 1 : 0;
  }
  EXPECT_GT(told, 50);
  EXPECT_LT(told, 250);
}

TEST_F(UnitWordsTest, TellNothingWhereStepsAreCheap) {
  const test::Sequence sequence(test::repeated("ACGGTCA", 3) + test::repeated("T", 400));
  const BasePlanes planes(sequence.mol.begin(), sequence.mol.end());
  const UnitCircle circle{sequence.at(0), sequence.at(7)};
  const Front<true> front{sequence.at(21), circle.begin, 500, 0};
  const ExtensionRules cheap{-3, -4, 5, 4, false};
  EXPECT_FALSE(UnitWords(sequence.mol.begin(), sequence.mol.end(), planes, cheap).keeps_from(600, front, circle));
  const ExtensionRules dearer{-4, -5, 5, 4, false};
  EXPECT_TRUE(UnitWords(sequence.mol.begin(), sequence.mol.end(), planes, dearer).keeps_from(600, front, circle));
}

}  // namespace
