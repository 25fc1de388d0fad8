#include "search/unit_guide.h"

#include <gtest/gtest.h>

#include <random>
#include <string>
#include <vector>

#include "search/CAnchorSeq.h"
#include "search/search_support.h"

namespace {

constexpr ExtensionRules rules{-6, -4, 5, 0, false};

/// A step of a way, and the bases taken behind it; matches but for N.
struct Step {
  char kind;
  std::uint32_t bases;
  std::uint32_t matches;
};

/// Some are longer than a byte can tell.
Step random_step(std::mt19937& random) {
  const char kind = "MID"[random() % 3];
  const auto below = [&random](std::uint32_t n) { return static_cast<std::uint32_t>(random() % n); };
  const std::uint32_t bases = below(10) == 0 ? 60 + below(10) : below(12);
  const std::uint32_t Ns = below(8) == 0 ? below(bases + 1) : 0;
  return {kind, bases, bases - Ns};
}

/// A guide with one way of several legs, and the steps on it.
struct OneWay {
  std::vector<Step> steps;
  UnitGuide guide;
  UnitGuide::Place begin;

  OneWay(std::mt19937& random, bool forward, std::uint32_t position, std::size_t legs)
      : guide(forward, rules), begin{position, 1} {
    std::uint32_t phase = begin.phase;
    for (std::size_t leg = 0; leg < legs; ++leg) {
      guide.begin_leg({position, phase});
      for (std::size_t i = 1 + random() % 5; i > 0; --i) {
        Step step = random_step(random);
        if (i == 1) step = {step.kind, step.bases + 1, step.matches + 1};  // there is a run before a checkpoint
        steps.push_back(step);
        guide.add_step(step.kind, step.bases, step.matches);
        const std::uint32_t taken = step.bases + (step.kind == 'D' ? 0 : 1);
        position = forward ? position + taken : position - taken;
      }
      phase = (phase + 1) % 4;
      guide.end_leg({position, phase});
    }
  }

  /// The stop behind so many steps.
  UnitGuide::Point stop(bool forward, std::size_t count) const {
    UnitGuide::Point point;
    point.position = begin.position;
    for (std::size_t i = 0; i < count; ++i) {
      const std::uint32_t taken = steps[i].bases + (steps[i].kind == 'D' ? 0 : 1);
      point.position = forward ? point.position + taken : point.position - taken;
      point.gain += static_cast<std::int32_t>(steps[i].matches) + (steps[i].kind == 'M' ? -6 : -4);
      point.steps.add(steps[i].kind);
    }
    return point;
  }
};

void expect_same(const UnitGuide::Point& a, const UnitGuide::Point& b) {
  EXPECT_EQ(a.position, b.position);
  EXPECT_EQ(a.gain, b.gain);
  EXPECT_EQ(a.steps.mismatches, b.steps.mismatches);
  EXPECT_EQ(a.steps.insertions, b.steps.insertions);
  EXPECT_EQ(a.steps.deletions, b.steps.deletions);
}

class UnitGuideTest : public testing::TestWithParam<bool> {};

INSTANTIATE_TEST_SUITE_P(Directions, UnitGuideTest, testing::Bool(),
                         [](const auto& direction) { return direction.param ? "Forward" : "Backward"; });

TEST_P(UnitGuideTest, LeadsToTheFirstStopWhereTooLittleIsGained) {
  std::mt19937 random(11);
  for (int round = 0; round < 300; ++round) {
    OneWay way(random, GetParam(), 5000, 1 + random() % 12);
    const std::int64_t too_little = -static_cast<std::int64_t>(random() % 60);
    std::size_t last = 1;
    std::size_t highest = 1;
    for (; last < way.steps.size() && way.stop(GetParam(), last).gain > too_little; ++last) {
      if (way.stop(GetParam(), last + 1).gain > way.stop(GetParam(), highest).gain) highest = last + 1;
    }
    const UnitGuide::Way led = way.guide.follow(way.guide.leg_at(way.begin), too_little);
    expect_same(led.last, way.stop(GetParam(), last));
    expect_same(led.highest, way.stop(GetParam(), highest));
    EXPECT_EQ(led.last_phase == UnitGuide::unknown, led.last.gain <= too_little) << round;
  }
}

TEST_P(UnitGuideTest, KnowsOnlyThePlacesWhereLegsBegin) {
  std::mt19937 random(12);
  const OneWay way(random, GetParam(), 5000, 40);
  EXPECT_NE(way.guide.leg_at(way.begin), UnitGuide::unknown);
  EXPECT_EQ(way.guide.leg_at({way.begin.position, way.begin.phase + 1}), UnitGuide::unknown);
  EXPECT_EQ(way.guide.leg_at({way.begin.position + 1, way.begin.phase}), UnitGuide::unknown);
}

TEST_P(UnitGuideTest, ALegThatDoesNotEndLeavesNothing) {
  std::mt19937 random(13);
  OneWay way(random, GetParam(), 5000, 3);
  const auto before = way.guide.follow(way.guide.leg_at(way.begin), INT32_MIN);
  way.guide.begin_leg({before.last.position, before.last_phase});
  way.guide.add_step('M', 5, 5);
  way.guide.drop_leg();
  const auto after = way.guide.follow(way.guide.leg_at(way.begin), INT32_MIN);
  expect_same(after.last, before.last);
}

/// A repeat along guides, one way to the left and one to the right of where it was seeded; the mask with its stretches
/// named against the mask with all its events.
class NamedStretchTest : public testing::Test {
 protected:
  static constexpr std::ptrdiff_t size = 20000;
  test::Sequence sequence{std::string(size, 'A')};
  std::mt19937 random{14};

  struct Repeat {
    Csat sat;
    std::vector<GuidedStretch> untold;
    std::vector<Csat::Event> all_events;
  };

  void add_stretch(Repeat& repeat, bool forward, std::uint32_t from) {
    const OneWay way(random, forward, from, 1 + random() % 150);
    // A walk may be led along a part of a leg.
    const std::size_t steps = random() % 2 == 0 ? way.steps.size() : 1 + random() % way.steps.size();
    const std::uint32_t end = way.stop(forward, steps).position;
    repeat.untold.push_back({std::make_shared<UnitGuide>(way.guide), 0, steps, from, end});
    repeat.untold.back().for_each_event([&](std::uint32_t position, char kind) {
      repeat.all_events.push_back({sequence.at(static_cast<std::ptrdiff_t>(position)), kind});
    });
    // Steps of its own and a run follow.
    const auto rest = static_cast<std::ptrdiff_t>(1 + random() % 20);
    (forward ? repeat.sat.pos_right_end : repeat.sat.pos_left) =
        sequence.at(static_cast<std::ptrdiff_t>(end) + (forward ? rest : -rest));
  }

  Repeat random_repeat() {
    Repeat repeat;
    const auto seed = static_cast<std::ptrdiff_t>(8000 + random() % 4000);
    repeat.sat.seed(sequence.at(seed), sequence.at(seed + 12));
    for (const std::ptrdiff_t at : {3, 7, 11}) repeat.sat.missense.push_back({sequence.at(seed + at), 'M'});
    if (random() % 4 != 0) add_stretch(repeat, true, static_cast<std::uint32_t>(seed) + 12);
    if (random() % 4 != 0) add_stretch(repeat, false, static_cast<std::uint32_t>(seed));
    // The step behind a stretch may be noted where it ends.
    for (const GuidedStretch& stretch : repeat.untold) {
      if (random() % 2 == 0)
        repeat.sat.missense.push_back({sequence.at(static_cast<std::ptrdiff_t>(stretch.end)), 'D'});
    }
    for (const Csat::Event& event : repeat.sat.missense) repeat.all_events.push_back(event);
    return repeat;
  }

  static Csat told(const Repeat& repeat) {
    Csat sat;
    sat.seed(repeat.sat.unit_begin, repeat.sat.unit_end);
    sat.pos_left = repeat.sat.pos_left;
    sat.pos_right_end = repeat.sat.pos_right_end;
    for (const Csat::Event& event : repeat.all_events) sat.missense.push_back(event);
    return sat;
  }

  void expect_same(CAnchorSeq& named, const CAnchorSeq& all, std::ptrdiff_t first, std::ptrdiff_t end) const {
    named.settle(sequence.at(first), end - first);
    for (std::ptrdiff_t at = first; at < end; ++at) {
      ASSERT_EQ(named.is_free(sequence.at(at)), all.is_free(sequence.at(at))) << at;
    }
  }
};

TEST_F(NamedStretchTest, IsCoveredLikeAnyOther) {
  for (int round = 0; round < 60; ++round) {
    CAnchorSeq named(sequence.mol.begin(), size);
    CAnchorSeq all(sequence.mol.begin(), size);
    for (int i = 0; i < 30; ++i) {
      const Repeat repeat = random_repeat();
      if (random() % 3 == 0) {  // a small one among the long ones
        Csat small;
        const auto at = static_cast<std::ptrdiff_t>(random() % (size - 40));
        small.seed(sequence.at(at), sequence.at(at + 1 + static_cast<std::ptrdiff_t>(random() % 30)));
        named.cover(small);
        all.cover(small);
      }
      named.cover(repeat.sat, repeat.untold);
      all.cover(told(repeat));
      const auto first = static_cast<std::ptrdiff_t>(random() % (size - 300));
      expect_same(named, all, first, first + 1 + static_cast<std::ptrdiff_t>(random() % 300));
    }
    expect_same(named, all, 0, size);
  }
}

TEST_F(NamedStretchTest, IsCoveredInAPartOfTheMask) {
  for (int round = 0; round < 60; ++round) {
    const std::size_t first_word = random() % 300;
    CAnchorSeq named = CAnchorSeq(sequence.mol.begin(), size).part(first_word, 10);
    CAnchorSeq all(sequence.mol.begin(), size);
    for (int i = 0; i < 5; ++i) {
      const Repeat repeat = random_repeat();
      named.cover(repeat.sat, repeat.untold);
      all.cover(told(repeat));
    }
    const auto first = static_cast<std::ptrdiff_t>(64 * first_word);
    expect_same(named, all, first, std::min<std::ptrdiff_t>(size, first + 640));
  }
}

TEST_F(NamedStretchTest, IsForgottenWhenAllPositionsAreFreed) {
  CAnchorSeq anchors(sequence.mol.begin(), size);
  Repeat repeat = random_repeat();
  while (repeat.untold.empty()) repeat = random_repeat();
  anchors.cover(repeat.sat, repeat.untold);
  anchors.reset();
  expect_same(anchors, CAnchorSeq(sequence.mol.begin(), size), 0, size);
}

}  // namespace
