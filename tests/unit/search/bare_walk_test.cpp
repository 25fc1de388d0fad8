// What is known of a walk before it is gone, against the record that it leaves.

#include "search/bare_walk.h"

#include <algorithm>
#include <string>
#include <vector>

#include "search/search_support.h"

namespace {

using test::Random;

/// Copies of a unit, and at places one or more bases that all of them have lost.
std::string satellite(Random& random, std::size_t period) {
  const std::string unit = random.bases(period, random.percent(30) ? "AC" : "ACGT");
  std::string bases = random.bases(random.pick({0U, 30U, 100U}));
  while (bases.size() < 600) {
    const std::string copy = random.percent(30) ? unit.substr(random.below(4) % period) : unit;
    bases += random.copy(copy, random.pick({10U, 30U, 100U}));
    if (random.percent(4)) bases += random.percent(50) ? "N" : random.bases(1 + random.below(40));
  }
  return bases;
}

class BareWalkTest : public test::SearchTest {
 protected:
  /// Whether a backward walk from the seed notes an event at the base it begins with, if it has this score.
  static bool notes_event_at_begin(const CSearchController& controller, const test::Sequence& sequence,
                                   const Csat& seed, std::int64_t score) {
    Csat grown;
    grown.seed(seed.unit_begin, seed.unit_end);
    grown.score = score;
    controller.extend_imperfect_backward(grown, sequence.mol.begin() - 1);
    return std::any_of(grown.missense.begin(), grown.missense.end(),
                       [&](const Csat::Event& event) { return event.first == seed.pos_left; });
  }
};

TEST_F(BareWalkTest, TellsTheEventAtItsBeginForAllHigherScores) {
  int deletions = 0;
  int none = 0;
  for (unsigned number = 0; number < 150; ++number) {
    Random random(number);
    if (random.percent(50)) global_mismatch_score = -random.pick({3, 4, 9});
    if (random.percent(50)) global_indel_score = -random.pick({3, 4, 9});
    if (random.percent(30)) global_maximum_recursion_depth = random.pick({1, 3, 7});
    const std::size_t period = random.pick({5U, 12U, 20U, 31U});
    test::Sequence sequence(satellite(random, period));
    const CSearchController controller(1, sequence.mol);
    const BasePlanes planes(sequence.mol.begin(), sequence.mol.end());
    const ExtensionRules extension_rules = rules();
    const std::int64_t deepest = extension_rules.deepest_lookahead();
    GrowthAids aids(sequence.mol.begin(), sequence.mol.end(), planes, extension_rules);
    for (const char* p = sequence.mol.begin() + 50; p < sequence.mol.end() - 60; p += 1 + random.below(6)) {
      Csat seed;
      seed.seed(p, p + period + random.below(2));
      if (std::find(seed.unit_begin, seed.unit_end, 'N') != seed.unit_end) continue;
      // Most often such that a step or two more leave a score that does not permit everything.
      seed.score = random.percent(20) ? 400 : 1 + random.below(20) - seed.unit_length() - deepest;
      const UnitCircle unit{seed.unit_begin, seed.unit_end};
      BareWalk<false> walk(unit, sequence.mol.begin(), extension_rules, planes, sequence.mol.begin(), aids.backward);
      const BeginEvent event = walk.event_at_begin(Front<false>::of(seed));
      if (event == BeginEvent::unknown) continue;
      const bool is_deletion = event == BeginEvent::deletion;
      ++(is_deletion ? deletions : none);
      for (const std::int64_t more : {0, 1, 7, 30, 1000}) {
        ASSERT_EQ(notes_event_at_begin(controller, sequence, seed, seed.score + more), is_deletion)
            << "case " << number << " at " << sequence.index(p) << ", score " << seed.score << " and " << more;
      }
    }
  }
  EXPECT_GT(deletions, 500);
  EXPECT_GT(none, 5000);
}

// With a score that forbids a step the walk goes a way on which it gains something; with a higher one it is lost.
TEST_F(BareWalkTest, DoesNotTellWhatDependsOnTheScore) {
  global_mismatch_score = -9;
  global_indel_score = -3;
  global_maximum_recursion_depth = 1;
  test::Sequence sequence("CAGCCAACGGCCAGCCAACGTCAC");
  const CSearchController controller(1, sequence.mol);
  const BasePlanes planes(sequence.mol.begin(), sequence.mol.end());
  const ExtensionRules extension_rules = rules();
  GrowthAids aids(sequence.mol.begin(), sequence.mol.end(), planes, extension_rules);
  Csat seed;
  seed.seed(sequence.at(11), sequence.at(23));
  ASSERT_TRUE(notes_event_at_begin(controller, sequence, seed, -1));
  ASSERT_FALSE(notes_event_at_begin(controller, sequence, seed, 0));
  seed.score = -1;
  const UnitCircle unit{seed.unit_begin, seed.unit_end};
  BareWalk<false> walk(unit, sequence.mol.begin(), extension_rules, planes, sequence.mol.begin(), aids.backward);
  EXPECT_EQ(walk.event_at_begin(Front<false>::of(seed)), BeginEvent::unknown);
}

}  // namespace
