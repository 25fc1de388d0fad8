#include <random>
#include <tuple>

#include "search/search_support.h"

namespace {

using testing::ElementsAre;

/// A list of fabricated repeats over one sequence, sorted by whoever adds them.
class OverlapRemovalTest : public test::SearchTest {
 protected:
  void add(std::ptrdiff_t begin, std::ptrdiff_t end, std::ptrdiff_t unit_length, std::int64_t score) {
    Csat* const sat = sat_alloc.take(sequence.at(begin), sequence.at(begin + unit_length));
    sat->pos_right_end = sequence.at(end);
    sat->score = score;
    container.sats.push_back(sat);
  }

  std::vector<std::string> left() {
    CSearchController::remove_hidden(container);
    std::vector<std::string> texts;
    for (const Csat* sat : container.sats) {
      texts.push_back(std::to_string(sequence.index(sat->pos_left)) + "-" +
                      std::to_string(sequence.index(sat->pos_right_end)) + " " + std::to_string(sat->score));
    }
    return texts;
  }

  test::Sequence sequence{test::repeated("ACGT", 100)};
  CsatContainer container;
};

TEST_F(OverlapRemovalTest, OfAnEmptyListLeavesItEmpty) {
  EXPECT_THAT(left(), testing::IsEmpty());
}

TEST_F(OverlapRemovalTest, OfOneRecordLeavesIt) {
  add(0, 30, 2, 5);
  EXPECT_THAT(left(), ElementsAre("0-30 5"));
}

TEST_F(OverlapRemovalTest, TwoRepeatsThatShareAThirdAreKept) {
  add(0, 30, 2, 28);
  add(20, 50, 2, 28);
  EXPECT_THAT(left(), ElementsAre("0-30 28", "20-50 28"));
}

TEST_F(OverlapRemovalTest, OneFullUnitBeyondTheSharedStretchIsEnough) {
  add(0, 30, 4, 5);
  add(4, 34, 4, 9);
  EXPECT_THAT(left(), ElementsAre("0-30 5", "4-34 9"));
}

TEST_F(OverlapRemovalTest, OneBaseLessThanAUnitBeyondItIsTooLittleOnTheLeft) {
  add(0, 30, 4, 5);
  add(3, 34, 4, 9);
  EXPECT_THAT(left(), ElementsAre("3-34 9"));
}

TEST_F(OverlapRemovalTest, OneBaseLessThanAUnitBeyondItIsTooLittleOnTheRight) {
  add(0, 30, 4, 9);
  add(4, 33, 4, 5);
  EXPECT_THAT(left(), ElementsAre("0-30 9"));
}

TEST_F(OverlapRemovalTest, EachRepeatIsMeasuredByItsOwnUnit) {
  add(0, 30, 2, 5);
  add(2, 60, 6, 9);
  EXPECT_THAT(left(), ElementsAre("0-30 5", "2-60 9"));
}

TEST_F(OverlapRemovalTest, OfARepeatInsideAnotherTheLowerScoreGoes) {
  add(0, 60, 2, 40);
  add(20, 30, 2, 8);
  EXPECT_THAT(left(), ElementsAre("0-60 40"));
}

TEST_F(OverlapRemovalTest, ARepeatAroundAHigherScoringOneGoes) {
  add(0, 60, 2, 7);
  add(20, 30, 2, 8);
  EXPECT_THAT(left(), ElementsAre("20-30 8"));
}

TEST_F(OverlapRemovalTest, OnEqualScoresTheEarlierStartIsKept) {
  add(0, 30, 2, 8);
  add(1, 40, 2, 8);
  EXPECT_THAT(left(), ElementsAre("0-30 8"));
}

TEST_F(OverlapRemovalTest, OnEqualScoresAndStartsTheShorterIsKept) {
  add(0, 30, 2, 8);
  add(0, 40, 2, 8);
  EXPECT_THAT(left(), ElementsAre("0-30 8"));
}

TEST_F(OverlapRemovalTest, ScoresAreComparedSigned) {
  add(0, 30, 2, -3);
  add(0, 30, 2, 2);
  EXPECT_THAT(left(), ElementsAre("0-30 2"));
}

TEST_F(OverlapRemovalTest, RepeatsThatOnlyTouchNeverCompete) {
  add(0, 3, 3, 1);
  add(3, 6, 3, 9);
  EXPECT_THAT(left(), ElementsAre("0-3 1", "3-6 9"));
}

TEST_F(OverlapRemovalTest, ARepeatOfOneUnitThatSharesABaseCompetes) {
  add(0, 4, 3, 1);
  add(3, 6, 3, 9);
  EXPECT_THAT(left(), ElementsAre("3-6 9"));
}

TEST_F(OverlapRemovalTest, WithTheOptionOffEverythingStays) {
  global_remove_mostly_hidden = false;
  add(0, 60, 2, 40);
  add(20, 30, 2, 8);
  EXPECT_THAT(left(), ElementsAre("0-60 40", "20-30 8"));
}

TEST_F(OverlapRemovalTest, ThePassGoesOnBehindARemovedSecond) {
  add(0, 60, 2, 40);
  add(20, 30, 2, 8);
  add(30, 40, 2, 8);
  add(58, 80, 2, 20);
  EXPECT_THAT(left(), ElementsAre("0-60 40", "58-80 20"));
}

TEST_F(OverlapRemovalTest, ThePassGoesOnBehindAKeptSecond) {
  add(0, 60, 2, 40);
  add(50, 70, 2, 8);
  add(52, 60, 2, 8);
  EXPECT_THAT(left(), ElementsAre("0-60 40", "50-70 8"));
}

TEST_F(OverlapRemovalTest, AChainOfRisingScoresLeavesTheHighest) {
  add(0, 30, 2, 10);
  add(1, 33, 2, 20);
  add(2, 34, 2, 30);
  EXPECT_THAT(left(), ElementsAre("2-34 30"));
}

TEST_F(OverlapRemovalTest, ANeighbourKeptBesideARemovedRecordStays) {
  add(0, 30, 2, 10);
  add(20, 50, 2, 20);
  add(21, 51, 2, 30);
  EXPECT_THAT(left(), ElementsAre("0-30 10", "21-51 30"));
}

TEST_F(OverlapRemovalTest, RemovedRecordsGoToThePool) {
  add(0, 60, 2, 40);
  add(20, 30, 2, 8);
  const std::size_t before = sat_alloc.size();
  left();
  EXPECT_EQ(sat_alloc.size(), before + 1);
}

/// Made-up repeats in the order of a search: by unit length, those of one unit length in any order.
struct MadeUp {
  std::ptrdiff_t begin;
  std::ptrdiff_t end;
  std::ptrdiff_t unit_length;
  std::int64_t score;

  auto stretch() const { return std::make_tuple(unit_length, begin, end); }
};

std::vector<MadeUp> made_up_repeats(std::mt19937& random) {
  std::vector<MadeUp> repeats;
  for (std::ptrdiff_t unit = 2; unit < 9; unit += 1 + static_cast<std::ptrdiff_t>(random() % 3)) {
    for (unsigned i = random() % 8; i > 0; --i) {
      const auto begin = static_cast<std::ptrdiff_t>(random() % 6);
      repeats.push_back({begin, begin + 10 + static_cast<std::ptrdiff_t>(random() % 8), unit,
                         static_cast<std::int64_t>(random() % 6)});
    }
  }
  return repeats;
}

/// The best of those with the same unit length and the same stretch, the first of several, where it stood.
std::vector<MadeUp> best_ones(const std::vector<MadeUp>& repeats) {
  std::vector<MadeUp> best;
  for (std::size_t i = 0; i < repeats.size(); ++i) {
    bool is_best = true;
    for (std::size_t j = 0; j < repeats.size(); ++j) {
      if (j == i || repeats[j].stretch() != repeats[i].stretch()) continue;
      is_best = is_best && (repeats[j].score < repeats[i].score || (repeats[j].score == repeats[i].score && i < j));
    }
    if (is_best) best.push_back(repeats[i]);
  }
  return best;
}

TEST_F(OverlapRemovalTest, OfTheSameStretchInTheSameUnitLengthOnlyTheBestDecides) {
  std::mt19937 random(3);
  const auto left_of = [this](const std::vector<MadeUp>& repeats) {
    sat_alloc.give_back_all(container.sats);
    for (const MadeUp& repeat : repeats) add(repeat.begin, repeat.end, repeat.unit_length, repeat.score);
    sort_sats(container.sats);
    return left();
  };
  for (int round = 0; round < 20000; ++round) {
    const std::vector<MadeUp> repeats = made_up_repeats(random);
    const std::vector<MadeUp> best = best_ones(repeats);
    if (best.size() == repeats.size()) continue;
    ASSERT_EQ(left_of(best), left_of(repeats)) << "round " << round;
  }
}

}  // namespace
