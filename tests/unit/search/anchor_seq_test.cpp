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

}  // namespace
