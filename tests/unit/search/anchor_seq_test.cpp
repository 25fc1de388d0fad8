#include <random>

#include "search/CAnchorSeq.h"
#include "search/search_support.h"

namespace {

class AnchorSeqTest : public testing::Test {
 protected:
  /// Covers [begin, end) but for the bases of the events.
  void cover(std::ptrdiff_t begin, std::ptrdiff_t end, const std::vector<std::ptrdiff_t>& events = {}) {
    Csat sat;
    sat.seed(sequence.at(begin), sequence.at(end));
    for (const std::ptrdiff_t index : events) sat.missense.push_back({sequence.at(index), 'M'});
    anchors.cover(sat);
  }
  bool admits(std::ptrdiff_t index, std::int64_t unit_length) const {
    return anchors.admits(sequence.at(index), unit_length);
  }
  bool is_free(std::ptrdiff_t index) const { return anchors.is_free(sequence.at(index)); }

  test::Sequence sequence{"ACGTACGTACGTACGTACGT"};
  CAnchorSeq anchors{sequence.mol.begin(), sequence.mol.sequence.length};
};

TEST_F(AnchorSeqTest, StartsFree) {
  EXPECT_TRUE(admits(0, 1));
  EXPECT_TRUE(admits(0, 19));
}

TEST_F(AnchorSeqTest, AKeptRepeatTakesItsPositionsOut) {
  cover(5, 10);
  EXPECT_TRUE(is_free(4));
  EXPECT_FALSE(is_free(5));
  EXPECT_FALSE(is_free(9));
  EXPECT_TRUE(is_free(10));
}

TEST_F(AnchorSeqTest, AWindowInsideIsRefused) {
  cover(5, 15);
  EXPECT_FALSE(admits(6, 3));
  EXPECT_FALSE(admits(5, 10));
}

TEST_F(AnchorSeqTest, AWindowThatStartsFreeAndEndsOnTheFirstCoveredBaseIsRefused) {
  cover(5, 15);
  EXPECT_FALSE(admits(3, 3));  // [3, 6): first free, last and next covered
}

TEST_F(AnchorSeqTest, AWindowThatStartsFreeAndEndsBeforeTheRepeatIsTried) {
  cover(5, 15);
  EXPECT_TRUE(admits(2, 3));
}

TEST_F(AnchorSeqTest, AWindowThatStartsFreeAndEndsOnTheLastCoveredBaseIsTried) {
  cover(5, 15);
  EXPECT_TRUE(admits(3, 12));   // [3, 15): the base behind it is free
  EXPECT_FALSE(admits(3, 11));  // [3, 14): it is not
}

TEST_F(AnchorSeqTest, AWindowThatStartsOnTheFirstCoveredBaseAndEndsFreeIsTried) {
  cover(5, 15);
  EXPECT_TRUE(admits(5, 11));   // [5, 16): the base before it is free
  EXPECT_FALSE(admits(6, 10));  // [6, 16): it is not
}

TEST_F(AnchorSeqTest, AWindowBehindTheRepeatIsTried) {
  cover(5, 15);
  EXPECT_TRUE(admits(15, 2));
}

TEST_F(AnchorSeqTest, TheSentinelsAtBothEndsStayFree) {
  cover(0, 20);
  EXPECT_FALSE(admits(0, 19));  // last base covered
  EXPECT_FALSE(admits(1, 19));  // first base covered
  cover(0, 20, {19});
  EXPECT_TRUE(admits(0, 20));  // the base before the first is a free sentinel
  cover(0, 20, {3});
  EXPECT_TRUE(admits(3, 17));  // the base behind the last is a free sentinel
}

TEST_F(AnchorSeqTest, ThePositionsOfEventsStayFree) {
  cover(2, 18, {6, 9});
  EXPECT_TRUE(is_free(6));
  EXPECT_TRUE(is_free(9));
  EXPECT_FALSE(is_free(7));
}

TEST_F(AnchorSeqTest, ASeedMayStartOnTheFirstOfTwoEvents) {
  cover(2, 18, {6, 9});
  EXPECT_TRUE(admits(6, 3));
  cover(2, 18, {6});
  EXPECT_FALSE(admits(6, 3));
}

TEST_F(AnchorSeqTest, ALaterRepeatCoversTheEventsOfAnEarlierOne) {
  cover(2, 18, {6});
  cover(5, 8);
  EXPECT_FALSE(is_free(6));
}

TEST_F(AnchorSeqTest, ResettingFreesEverything) {
  cover(0, 20);
  anchors.reset();
  EXPECT_TRUE(is_free(0));
  EXPECT_TRUE(is_free(19));
}

/// Parts of a sequence of several words, compared position by position with the whole.
class AnchorPartTest : public testing::TestWithParam<std::size_t> {
 protected:
  static Csat repeat(const test::Sequence& sequence, std::ptrdiff_t begin, std::ptrdiff_t end,
                     const std::vector<std::ptrdiff_t>& events) {
    Csat sat;
    sat.seed(sequence.at(begin), sequence.at(end));
    for (const std::ptrdiff_t index : events) sat.missense.push_back({sequence.at(index), 'M'});
    return sat;
  }

  /// Of the positions that the part may be asked for: one before it to one behind it, within the sequence's sentinels.
  static void expect_same(const test::Sequence& sequence, const CAnchorSeq& whole, const CAnchorSeq& part,
                          std::size_t first_word, std::size_t words) {
    const auto size = static_cast<std::ptrdiff_t>(sequence.mol.sequence.length);
    const auto begin = static_cast<std::ptrdiff_t>(64 * first_word);
    const std::ptrdiff_t end = std::min(size, begin + static_cast<std::ptrdiff_t>(64 * words));
    for (std::ptrdiff_t index = begin - 1; index <= end; ++index) {
      ASSERT_EQ(part.is_free(sequence.at(index)), whole.is_free(sequence.at(index)))
          << index << " in the part of " << words << " words from word " << first_word;
    }
  }
};

INSTANTIATE_TEST_SUITE_P(Lengths, AnchorPartTest, testing::Values(1, 2, 62, 63, 64, 65, 127, 128, 129, 320),
                         testing::PrintToStringParamName());

TEST_P(AnchorPartTest, HasTheStateOfTheWhole) {
  const test::Sequence sequence(std::string(GetParam(), 'A'));
  const auto size = static_cast<std::ptrdiff_t>(GetParam());
  CAnchorSeq whole(sequence.mol.begin(), sequence.mol.sequence.length);
  for (std::ptrdiff_t index = 0; index < size; index += 1 + index % 3) {
    whole.cover(repeat(sequence, index, index + 1, {}));
  }
  for (std::size_t first = 0; 64 * first < GetParam(); ++first) {
    for (std::size_t words = 1; 64 * (first + words - 1) <= GetParam(); ++words) {
      expect_same(sequence, whole, whole.part(first, words), first, words);
    }
  }
}

TEST_P(AnchorPartTest, IsCoveredAsTheWholeIs) {
  const test::Sequence sequence(std::string(GetParam(), 'A'));
  const auto size = static_cast<std::ptrdiff_t>(GetParam());
  for (std::size_t first = 0; 64 * first < GetParam(); ++first) {
    for (const std::ptrdiff_t begin : {0, 1, 62, 63, 64, 65, 127, 128, 129, 192, 319}) {
      for (const std::ptrdiff_t length : {1, 2, 63, 64, 65, 128, 320}) {
        if (begin + length > size) continue;
        CAnchorSeq whole(sequence.mol.begin(), sequence.mol.sequence.length);
        CAnchorSeq part = whole.part(first, 2);
        const Csat sat = repeat(sequence, begin, begin + length, {begin, begin + length / 2, begin + length - 1});
        whole.cover(sat);
        part.cover(sat);
        expect_same(sequence, whole, part, first, 2);
      }
    }
  }
}

TEST_P(AnchorPartTest, DoesNotChangeTheWhole) {
  const test::Sequence sequence(std::string(GetParam(), 'A'));
  const CAnchorSeq whole(sequence.mol.begin(), sequence.mol.sequence.length);
  CAnchorSeq part = whole.part(0, 1);
  part.cover(repeat(sequence, 0, 1, {}));
  EXPECT_FALSE(part.is_free(sequence.at(0)));
  EXPECT_TRUE(whole.is_free(sequence.at(0)));
}

TEST(AnchorSeqWordsTest, SixtyFourWindowsAtOnceAreAdmittedAsOneByOne) {
  std::mt19937 random(7);
  for (int round = 0; round < 40; ++round) {
    const test::Sequence sequence(std::string(60 + random() % 200, 'A'));
    const auto size = static_cast<std::ptrdiff_t>(sequence.mol.sequence.length);
    CAnchorSeq anchors(sequence.mol.begin(), sequence.mol.sequence.length);
    for (int i = 0; i < 4; ++i) {
      const auto begin = static_cast<std::ptrdiff_t>(random() % static_cast<unsigned>(size - 20));
      Csat sat;
      sat.seed(sequence.at(begin), sequence.at(begin + 1 + static_cast<std::ptrdiff_t>(random() % 20)));
      if (random() % 2 == 0) sat.missense.push_back({sat.pos_left, 'M'});
      anchors.cover(sat);
    }
    for (const std::int64_t unit : {1, 2, 5, 63, 64, 65}) {
      for (std::ptrdiff_t p = 0; p + unit < size; ++p) {
        const std::uint64_t word = anchors.admitted(sequence.at(p / 64 * 64), unit);
        ASSERT_EQ((word >> (p % 64) & 1) != 0, anchors.admits(sequence.at(p), unit))
            << round << " " << unit << " " << p;
      }
    }
  }
}

}  // namespace
