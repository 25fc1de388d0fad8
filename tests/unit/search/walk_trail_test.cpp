// Where a walk may go on as the one before it, told by stops that are made up.

#include "search/walk_trail.h"

#include <gmock/gmock.h>

#include <string>

namespace {

// Units of ten bases, none the rotation of another one, but for those that begin at 40 and 41: base 40 is base 50.
const std::string sequence =
    "ACGGTCATTGCCATACGTAGGCTTAACGTACATCGATTAC"
    "GATCCTAGTAGTTACCGGATAACGTCCGATGTTACAGCAT";

class WalkTrailTest : public testing::Test {
 protected:
  static const char* base(std::size_t at) { return sequence.data() + at; }
  static UnitCircle unit(std::size_t at) { return {base(at), base(at + 10)}; }

  template <bool forward>
  struct Trail {
    WalkTrail<forward> trail{sequence.data(), sequence.data() + sequence.size()};

    /// A walk that has stopped at these, with the same choice at the first of them.
    void walk(const UnitCircle& circle, const Front<forward>& from, const Front<forward>& to,
              const StepChoice& choice) {
      trail.begin_walk(circle);
      trail.note(from, choice);
      trail.note(to, {'M', 1, 1, StepChoice::any_height});
    }

    /// Where a walk gets to: "60 2 score 7", or "" if it does not move.
    std::string follow(const UnitCircle& circle, Front<forward> front, std::int64_t bound) {
      const char* const from = front.position;
      std::int64_t last_height = 0;
      trail.begin_walk(circle);
      const auto stretch = trail.look(
          front, bound, [&](std::size_t /*stop*/, std::int64_t before, std::int64_t behind, std::int64_t lowest) {
            EXPECT_GE(before, lowest);
            EXPECT_EQ(before, front.score - bound);
            last_height = behind;
          });
      if (stretch.empty()) return "";
      std::string steps;
      trail.go(front, stretch, [&](const char* position, char kind) {
        EXPECT_EQ(position, from);
        steps += kind;
      });
      EXPECT_EQ(front.score - bound, last_height);
      steps += ' ';
      return steps + std::to_string(front.position - sequence.data()) + " " +
             std::to_string(front.unit - circle.begin) + " score " + std::to_string(front.score);
    }
  };
};

TEST_F(WalkTrailTest, AWalkTakesTheSameWayAtTheHeightsThatAreNamed) {
  const Front<true> from{base(53), base(22), 5, 0};
  const Front<true> to{base(56), base(25), 1, 0};
  for (const std::int64_t height : {11, 12, 15, 18, 19}) {
    Trail<true> trail;
    trail.walk(unit(20), from, to, {'M', 4, 12, 18});
    const Front<true> front{base(53), base(22), height - 10, 0};
    const std::string expected = "M 56 5 score " + std::to_string(height - 14);
    EXPECT_EQ(trail.follow(unit(20), front, -10), height < 12 || height > 18 ? "" : expected) << height;
  }
}

TEST_F(WalkTrailTest, AnotherPlaceIsNoPlaceOfTheTrail) {
  Trail<true> trail;
  trail.walk(unit(20), {base(53), base(22), 5, 0}, {base(56), base(25), 1, 0}, {'M', 4, 1, 50});
  EXPECT_EQ(trail.follow(unit(20), {base(53), base(23), 5, 0}, -10), "");
  trail.walk(unit(20), {base(53), base(22), 5, 0}, {base(56), base(25), 1, 0}, {'M', 4, 1, 50});
  EXPECT_EQ(trail.follow(unit(20), {base(54), base(22), 5, 0}, -10), "");
}

// The unit that begins at 21 has one base more behind, the one at 19 one less.
TEST_F(WalkTrailTest, ALookaheadThatHasSeenAUnitsEndTellsNothingOfOtherUnits) {
  const Front<true> from{base(53), base(22), 5, 0};
  const Front<true> to{base(56), base(25), 1, 0};
  for (const std::int64_t seen : {6, 7, 8, 9}) {
    const auto follow = [&](std::size_t old_unit, std::size_t new_unit) {
      Trail<true> trail;
      trail.walk(unit(old_unit), from, to, {'M', seen, 1, 50});
      return !trail.follow(unit(new_unit), from, -10).empty();
    };
    EXPECT_EQ(follow(20, 21), seen <= 8) << seen;
    EXPECT_EQ(follow(21, 20), seen <= 8) << seen;
    EXPECT_EQ(follow(20, 19), seen <= 7) << seen;
    EXPECT_TRUE(follow(20, 20)) << seen;
  }
}

TEST_F(WalkTrailTest, BackwardAUnitEndsWhereItBegins) {
  const Front<false> from{base(15), base(27), 5, 0};
  const Front<false> to{base(12), base(24), 1, 0};
  for (const std::int64_t seen : {6, 7, 8, 9}) {
    const auto follow = [&](std::size_t old_unit, std::size_t new_unit) {
      Trail<false> trail;
      trail.walk(unit(old_unit), from, to, {'M', seen, 1, 50});
      return !trail.follow(unit(new_unit), from, -10).empty();
    };
    EXPECT_EQ(follow(20, 21), seen <= 7) << seen;
    EXPECT_EQ(follow(20, 19), seen <= 8) << seen;
  }
}

TEST_F(WalkTrailTest, ARunAcrossAUnitsEndTellsNothingOfOtherUnits) {
  const Front<true> from{base(53), base(28), 5, 0};
  Trail<true> trail;
  trail.walk(unit(20), from, {base(57), base(22), 5, 0}, {'M', 1, 1, 50});
  EXPECT_EQ(trail.follow(unit(21), from, -10), "");
  trail.walk(unit(20), from, {base(57), base(22), 5, 0}, {'M', 1, 1, 50});
  EXPECT_EQ(trail.follow(unit(20), from, -10), "M 57 2 score 5");
}

// Base 40 of the one unit is base 50 of the other.
TEST_F(WalkTrailTest, OfRotationsTheWayIsTheSameAcrossTheEnd) {
  ASSERT_EQ(sequence[40], sequence[50]);
  Trail<true> trail;
  trail.walk(unit(40), {base(60), base(40), 5, 0}, {base(63), base(43), 2, 0}, {'M', StepChoice::whole_unit, 1, 50});
  EXPECT_EQ(trail.follow(unit(41), {base(60), base(50), 4, 0}, -10), "M 63 2 score 1");
  trail.walk(unit(41), {base(60), base(47), 5, 0}, {base(64), base(41), 2, 0}, {'M', StepChoice::whole_unit, 1, 50});
  EXPECT_EQ(trail.follow(unit(40), {base(60), base(47), 5, 0}, -10), "M 64 1 score 2");
}

}  // namespace
