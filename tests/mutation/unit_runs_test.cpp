// Matches counted 64 bases at a time, against the plain loop, for units on either side of a word's width.

#include "search/unit_runs.h"

#include <algorithm>
#include <random>

#include "search/search_support.h"

namespace {

using test::Sequence;

/// Copies of a random unit with few faults, so that runs are long; some of them are N.
std::string array_of(std::size_t unit_length, std::mt19937& random) {
  std::string unit;
  for (std::size_t i = 0; i < unit_length; ++i) unit += "ACGT"[random() % 4];
  std::string bases = test::repeated(unit, 300 / unit_length + 4);
  for (std::size_t fault = 0; fault < bases.size() / 150 + 1; ++fault) {
    bases[random() % bases.size()] = "ACGTNN"[random() % 6];
  }
  return bases;
}

template <bool forward>
void compare(const Sequence& sequence, const UnitCircle& circle, const ExtensionRules& rules, Front<forward> front) {
  const CSequence_Mol& mol = sequence.mol;
  const BasePlanes planes(mol.begin(), mol.end());
  const UnitRuns runs(planes, mol.begin(), circle);
  const char* const limit = forward ? mol.end() : mol.begin();
  Front<forward> plain = front;
  const bool plain_result = extend_exact(plain, circle, limit, rules);
  ASSERT_EQ(runs.extend_exact(front, limit, rules), plain_result);
  ASSERT_EQ(sequence.index(front.position), sequence.index(plain.position));
  ASSERT_EQ(sequence.index(front.unit), sequence.index(plain.unit));
  ASSERT_EQ(front.score, plain.score);
  ASSERT_EQ(front.num_Ns, plain.num_Ns);
}

TEST(UnitRunsTest, EqualThePlainExtension) {
  const ExtensionRules rules{-6, -6, 5, 2, false};
  for (const std::size_t unit_length :
       {1U, 2U, 3U, 7U, 31U, 32U, 33U, 62U, 63U, 64U, 65U, 66U, 100U, 127U, 128U, 129U}) {
    std::mt19937 random(static_cast<unsigned>(unit_length));
    for (int round = 0; round < 20; ++round) {
      const Sequence sequence(array_of(unit_length, random));
      const auto size = static_cast<std::size_t>(sequence.mol.end() - sequence.mol.begin());
      const char* const begin = sequence.at(static_cast<std::ptrdiff_t>(random() % (size - unit_length)));
      const UnitCircle circle{begin, begin + unit_length};
      if (std::find(circle.begin, circle.end, 'N') != circle.end) continue;  // no unit
      SCOPED_TRACE("unit length " + std::to_string(unit_length) + ", round " + std::to_string(round));
      // Besides the seed itself, a walk that is somewhere in its unit.
      const char* const unit = begin + random() % unit_length;
      ASSERT_NO_FATAL_FAILURE(compare<true>(sequence, circle, rules, {circle.end, circle.begin, 0, 0}));
      ASSERT_NO_FATAL_FAILURE(compare<true>(sequence, circle, rules, {begin, unit, 0, 0}));
      ASSERT_NO_FATAL_FAILURE(compare<false>(sequence, circle, rules, {circle.begin, circle.end - 1, 0, 0}));
      ASSERT_NO_FATAL_FAILURE(compare<false>(sequence, circle, rules, {circle.end, unit, 0, 0}));
    }
  }
}

}  // namespace
