// Walks along a satellite array that follow the guide of an earlier walk, against the same walks on their own.

#include <random>

#include "search/extension_support.h"

namespace {

using test::described;
using test::events_of;
using test::Sequence;

/// Faults of an array: one of `rate` bases is a mismatch, one a deletion, one an insertion. One of `stretch_rate` bases
/// is followed by up to nine random bases, behind which the unit goes on up to `most_shift` bases out of phase: there
/// walks that the score holds back take other steps than the rest.
struct Faults {
  unsigned seed;
  unsigned rate;
  unsigned stretch_rate;
  unsigned most_shift;
};

std::string satellite_array(const std::string& unit, std::size_t length, const Faults& faults) {
  std::mt19937 random(faults.seed);
  std::string bases;
  for (std::size_t phase = 0; bases.size() < length; ++phase) {
    const char base = unit[phase % unit.size()];
    const char other = "ACGT"[random() % 4];
    switch (random() % faults.rate) {
      case 0:
        bases += other;
        break;
      case 1:
        break;
      case 2:
        bases += {other, base};
        break;
      default:
        bases += base;
    }
    if (random() % faults.stretch_rate != 0) continue;
    const std::size_t stretch = 2 + random() % 8;
    for (std::size_t i = 0; i < stretch; ++i) bases += "ACGT"[random() % 4];
    phase += stretch + random() % (faults.most_shift + 1);
  }
  return bases;
}

class GuidedWalksTest : public test::SearchTest {
 protected:
  static void rules(int mismatch, int indel, int depth) {
    global_mismatch_score = mismatch;
    global_indel_score = indel;
    global_maximum_recursion_depth = depth;
  }

  /// Everything that a seed grows into.
  static std::string grown(const CSearchController& controller, const Sequence& sequence, std::ptrdiff_t begin,
                           std::ptrdiff_t unit_length) {
    Csat sat;
    sat.seed(sequence.at(begin), sequence.at(begin + unit_length));
    controller.extend_imperfect_forward(sat, sequence.mol.end());
    controller.extend_imperfect_backward(sat, sequence.mol.begin() - 1);
    return described(sequence, sat) + ": " + events_of(sequence, sat);
  }

  /// Seeds all along the array; a controller of its own has no guide for the first seed that it grows.
  static void compare(const std::string& period, std::size_t unit, const Faults& faults) {
    constexpr std::size_t length = 2500;
    Sequence sequence(satellite_array(period, length, faults));
    const CSearchController guided(1, sequence.mol);
    const auto unit_length = static_cast<std::ptrdiff_t>(unit);
    std::size_t long_walks = 0;
    for (std::ptrdiff_t begin = 0; begin < 2400; begin += 5) {
      const std::string expected = grown(CSearchController(1, sequence.mol), sequence, begin, unit_length);
      ASSERT_EQ(grown(guided, sequence, begin, unit_length), expected) << "seed at " << begin;
      if (expected.size() > 1000) ++long_walks;
    }
    EXPECT_GT(long_walks, 20U);  // or there was no guide to follow
  }
};

TEST_F(GuidedWalksTest, EqualWalksOnTheirOwn) {
  rules(-2, -3, 5);
  compare("AACCAA", 6, {3350943525, 10, 96, 1});
}

TEST_F(GuidedWalksTest, EqualWalksOnTheirOwnWhereMismatchesAreDear) {
  rules(-4, -2, 2);
  compare("ACAAAA", 6, {1406705090, 15, 114, 1});
}

TEST_F(GuidedWalksTest, EqualWalksOnTheirOwnWithLongUnits) {
  rules(-3, -4, 3);
  compare("ACGTTACCGGA", 11, {1, 24, 90, 0});
}

/// Walks with a unit that is no multiple of the period go through an array in several phases that never meet.
TEST_F(GuidedWalksTest, EqualWalksOnTheirOwnInEveryPhase) {
  rules(-6, -6, 5);
  compare("ACGGT", 11, {1, 150, 2000, 0});
}

}  // namespace
