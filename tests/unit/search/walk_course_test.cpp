// The course of a walk, told by stops that are made up, and what is foreseen of a seed, against what it grows into.

#include "search/walk_course.h"

#include <algorithm>
#include <string>
#include <type_traits>

#include "search/search_support.h"
#include "sequence/global-types-and-parameters.h"

namespace {

using test::Random;

/// Copies of a unit, so many percent of whose bases are others, are left out or have one more before them, with
/// stretches of other bases: walks that cross these are low, and rise again.
std::string satellite(Random& random, std::size_t unit_length, std::size_t length) {
  const char* const letters = random.pick({"ACGT", "ACGT", "AT"});
  const std::string unit = random.bases(unit_length, letters);
  const unsigned percent = random.pick({0U, 1U, 5U, 20U, 30U});
  const unsigned bases_between_others = random.pick({60U, 150U, 100'000U});
  std::string text = random.bases(random.pick({0U, 30U, 200U}), letters);
  for (std::size_t i = 0; text.size() < length; ++i) {
    const unsigned kind = random.below(100) < percent ? random.below(4) : 4;
    if (kind != 0) text += kind < 3 ? random.bases(1, letters) : std::string(1, unit[i % unit_length]);
    if (kind == 3) text += random.bases(1, letters);
    if (random.below(bases_between_others) == 0) {
      const unsigned others = 10 + random.below(50);
      text += random.bases(others, letters);
      i += others;
    }
    if (random.below(900) == 0) text += std::string(random.pick({1U, 3U, 4U, 9U}), 'N');
  }
  return text + random.bases(random.pick({0U, 30U, 200U}), letters);
}

/// Two copies of a unit side by side, between other bases, of which only a stretch is the same: walks fall, rise there,
/// and fall again.
std::string two_copies(Random& random, std::size_t unit_length) {
  const std::string unit = random.bases(unit_length, "ACGT");
  const std::size_t before = unit_length / 4 + random.below(static_cast<unsigned>(unit_length) / 4);
  const std::size_t same = unit_length / 8 + random.below(static_cast<unsigned>(unit_length) / 4);
  return random.bases(250, "ACGT") + unit + random.bases(before, "ACGT") + unit.substr(before, same) +
         random.bases(250 + unit_length, "ACGT");
}

/// A course through two steps, of a walk with a unit of ten bases whose number 0 is the first of them in the walk's
/// direction. It stops at height 15, moves 3 unit bases down to 11, and then 1 up to 13, where it is known what
/// follows. Places are bases from the beginning of the course on.
template <typename Direction>
class MadeUpCourseTest : public testing::Test {
 protected:
  static constexpr bool forward = Direction::value;
  using Course = WalkCourse<forward>;

  MadeUpCourseTest() {
    course.begin_walk();
    course.note(front(0, 2, 15), {'M', 4, 12, 30}, 3, 8);
    course.note(front(4, 5, 11), {'I', 2, 3, StepChoice::any_height}, 1, 5);
    course.end(front(6, 6, 13), {1, 20, 0, 5}, 2);
  }

  static const char* base(std::int64_t number) { return bases.data() + 100 + (forward ? number : -number); }
  static Front<forward> front(std::int64_t place, std::int64_t unit, std::int64_t height) {
    return {base(40 + place), base(unit), height, 0};
  }
  /// The unit ends behind this base.
  static UnitCircle circle(std::int64_t last) {
    return forward ? UnitCircle{base(last - 9), base(last) + 1} : UnitCircle{base(last), base(last - 9) + 1};
  }

  /// The heights for which it is told what becomes of a walk from a stop on.
  std::string heights(std::int64_t place, std::int64_t unit, std::int64_t last_unit_base) {
    std::string range;
    const auto* const stop = course.find(front(place, unit, 0));
    if (stop == nullptr) return "none";
    for (std::int64_t height = 0; height < 50; ++height) {
      const bool begins = course.holds(*stop, circle(last_unit_base), height) &&
                          !course.holds(*stop, circle(last_unit_base), height - 1);
      const bool ends = !course.holds(*stop, circle(last_unit_base), height) &&
                        course.holds(*stop, circle(last_unit_base), height - 1);
      if (begins) range += std::to_string(height) + "-";
      if (ends) range += std::to_string(height - 1);
    }
    return range;
  }

  static const std::string bases;
  Course course{bases.data()};
};

template <typename Direction>
const std::string MadeUpCourseTest<Direction>::bases(200, 'A');

using Directions = testing::Types<std::true_type, std::false_type>;
TYPED_TEST_SUITE(MadeUpCourseTest, Directions);

// 20 at the end are 18 at the second stop and 22 at the first one.
TYPED_TEST(MadeUpCourseTest, HeightsMustSuitAllThatFollows) {
  EXPECT_EQ(this->heights(0, 2, 9), "12-22");
  EXPECT_EQ(this->heights(4, 5, 9), "3-18");
  EXPECT_EQ(this->heights(6, 6, 9), "1-20");
}

// The bases 6 and 7 have been seen from the end on.
TYPED_TEST(MadeUpCourseTest, AUnitMustHaveAllBasesThatWereSeen) {
  EXPECT_EQ(this->heights(0, 2, 7), "12-22");
  EXPECT_EQ(this->heights(0, 2, 6), "");
}

TYPED_TEST(MadeUpCourseTest, ARunAndTheBaseBehindItWereSeen) {
  this->course.begin_walk();
  this->course.note(this->front(0, 2, 15), {'M', 1, 1, 30}, 5, 8);
  this->course.end(this->front(5, 7, 14), {1, 20, 0, 0}, 0);
  EXPECT_EQ(this->heights(0, 2, 7), "2-21");
  EXPECT_EQ(this->heights(0, 2, 6), "");
}

// It has come to where its own unit begins anew, which is elsewhere in another one.
TYPED_TEST(MadeUpCourseTest, AStepThatSawTheEndOfItsUnitHoldsForNoOther) {
  this->course.begin_walk();
  this->course.note(this->front(0, 2, 15), {'M', 4, 1, 30}, 1, 3);
  this->course.end(this->front(5, 7, 14), {1, 20, 0, 0}, 0);
  EXPECT_EQ(this->heights(0, 2, 30), "");
}

TYPED_TEST(MadeUpCourseTest, AnotherPhaseOrPlaceIsNoStop) {
  EXPECT_EQ(this->heights(0, 3, 9), "none");
  EXPECT_EQ(this->heights(3, 5, 9), "none");
}

TYPED_TEST(MadeUpCourseTest, TheHighestStopCounts) {
  const auto* stop = this->course.find(this->front(0, 2, 15));
  EXPECT_EQ(stop->outlook.gain, 0);
  EXPECT_EQ(stop->outlook.limit, 3);
  stop = this->course.find(this->front(4, 5, 11));
  EXPECT_EQ(stop->outlook.gain, 2);
  EXPECT_EQ(stop->outlook.limit, 7);
}

TYPED_TEST(MadeUpCourseTest, AWalkGoesAlongWhereEachStepHolds) {
  auto front = this->front(0, 2, 25);
  ASSERT_NE(this->course.find(front), nullptr);
  EXPECT_FALSE(this->course.go_on(this->circle(4), 25, front));
  EXPECT_FALSE(this->course.go_on(this->circle(9), 31, front));
  EXPECT_FALSE(this->course.go_on(this->circle(9), 11, front));
  ASSERT_TRUE(this->course.go_on(this->circle(5), 25, front));
  EXPECT_EQ(front.position, this->base(44));
  EXPECT_EQ(front.unit, this->base(5));
  EXPECT_EQ(front.score, 21);
}

TYPED_TEST(MadeUpCourseTest, AWalkThatJoinsBringsItsOwnSteps) {
  this->course.begin_walk();
  this->course.note(this->front(-2, 0, 20), {'M', 3, 14, 25}, 2, 10);
  ASSERT_NE(this->course.find(this->front(0, 2, 17)), nullptr);
  this->course.join(this->front(0, 2, 17));
  EXPECT_EQ(this->heights(-2, 0, 9), "15-25");
}

class WalkCourseTest : public test::SearchTest {
 protected:
  static void draw_rules(Random& random) {
    global_mismatch_score = random.pick({-6, -6, -2, -4, -9});
    global_indel_score = random.pick({-6, -6, -2, -4, -9});
    global_maximum_recursion_depth = random.pick({5, 5, 1, 2, 7, 9});
    global_Ns_allowed_in_a_row = random.pick({4, 4, 0, 100});
    global_treat_Ns_as_missense = random.below(4) == 0;
  }
};

// Most of the seeds stand side by side, as in a search, some further on.
TEST_F(WalkCourseTest, WhatIsForeseenIsWhatASeedGrowsInto) {
  int told = 0;
  int asked = 0;
  for (unsigned number = 0; number < 70; ++number) {
    Random random(number);
    draw_rules(random);
    const std::size_t period = random.pick({30U, 45U, 70U, 100U, 171U});
    const bool is_satellite = random.below(2) == 0;
    test::Sequence sequence(is_satellite ? satellite(random, period, 700 + random.below(900))
                                         : two_copies(random, period));
    CSearchController controller(1, sequence.mol);
    CSearchController plain(1, sequence.mol);
    const BasePlanes planes(sequence.mol.begin(), sequence.mol.end());
    const ExtensionRules extension_rules = rules();
    GrowthAids aids(sequence.mol.begin(), sequence.mol.end(), planes, extension_rules);
    for (const std::ptrdiff_t off : {0, -3, 9, 60}) {
      const std::ptrdiff_t length = static_cast<std::ptrdiff_t>(period) + off;
      const char* const last = sequence.mol.end() - length - 1;
      for (const char* p = sequence.mol.begin(); p < last; p += random.below(5) == 0 ? random.below(40) + 1 : 1) {
        if (std::find(p, p + length, 'N') != p + length) continue;
        Csat seed;
        seed.seed(p, p + length);
        const auto score = controller.foresee_score(seed, aids);
        EXPECT_EQ(seed.score, 0);
        ++asked;
        if (!score) continue;
        ++told;
        if (is_satellite && random.below(4) != 0) continue;
        Csat grown;
        grown.seed(p, p + length);
        plain.extend_imperfect_forward(grown, sequence.mol.end());
        plain.extend_imperfect_backward(grown, sequence.mol.begin() - 1);
        ASSERT_EQ(*score, grown.score) << "case " << number << " unit length " << length << " at "
                                       << p - sequence.mol.begin();
      }
    }
  }
  EXPECT_GT(told, asked / 4) << "of " << asked;
}

}  // namespace
