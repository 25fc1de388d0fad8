// What is told of the ends of walks at the edge of an array against where they end.

#include "search/array_edge.h"

#include <algorithm>
#include <string>
#include <vector>

#include "search/search_support.h"
#include "search/walker_support.h"

namespace {

using test::Random;
using test::Walker;
using test::walker_rules;

/// Copies of a unit between other bases; the unit may go on behind them, or be periodic itself.
std::string array(Random& random, std::size_t unit_length) {
  std::string unit = random.bases(unit_length, random.percent(20) ? "AC" : "ACGT");
  if (random.percent(30)) unit = random.copy(unit.substr(0, unit_length / 2) + unit.substr(0, unit_length / 2), 20);
  const unsigned rate = random.pick({15U, 40U, 100U, 1000U});
  std::string copies;
  while (copies.size() < 900) copies += random.copy(unit, rate);
  const auto flank = [&] {
    std::string bases = random.bases(random.pick({0U, 3U, 20U, 45U, 90U, 400U}));
    if (random.percent(40)) {
      std::string more;
      while (more.size() < random.pick({20U, 60U, 100U, 300U})) more += random.copy(unit, rate);
      bases += more.substr(random.below(20)) + random.bases(random.pick({0U, 30U, 100U}));
    }
    return bases;
  };
  return flank() + copies + flank();
}

class ArrayEdgeTest : public test::SearchTest {
 protected:
  int asked_ = 0;
  int told_at_end_ = 0;  ///< that a walk ends where it does

  template <bool forward>
  void compare(unsigned seed) {
    Random random(seed);
    const test::Sequence sequence(array(random, random.pick({7U, 12U, 20U, 31U, 64U, 90U})));
    const char* const begin = sequence.mol.begin();
    const char* const end = sequence.mol.end();
    const char* const limit = forward ? end : begin;
    const auto place = [&](std::int64_t bases) { return forward ? begin + bases : end - bases; };
    const BasePlanes planes(begin, end);
    UnitWords words(begin, end, planes, walker_rules);
    const Walker<forward> walker(begin, end);
    for (int i = 0; i < 40; ++i) {
      const auto unit_length = static_cast<std::int64_t>(random.pick({7U, 12U, 14U, 20U, 24U, 31U, 62U, 64U, 90U}));
      const char* const unit = begin + random.below(static_cast<unsigned>(end - begin - unit_length));
      const UnitCircle circle{unit, unit + unit_length};
      const std::int64_t from = random.below(static_cast<unsigned>(end - begin));
      BundledWalk<forward> walk(circle, {place(from), unit, random.pick({0, 60, 150, 200}), 0});
      walker(place(std::min<std::int64_t>(end - begin, from + random.pick({0, 100, 400}))), walk);
      if (walk.is_over || walk.best_score > walk.front.score) continue;
      const Front<forward> front = walk.front;
      walker(limit, walk);
      const std::int64_t end_of_walk = forward ? walk.best_position - begin : end - walk.best_position;
      ++asked_;
      for (const int bases : {-90, -30, -8, -3, -1, 0, 1, 5, 40}) {
        const std::int64_t at = end_of_walk + bases;
        if (at < from || at > end - begin) continue;
        const ArrayEdge<forward> edge(place(at), limit, walker_rules, words);
        if (!edge.stops(front, front.score + random.below(50), circle, walker)) continue;
        EXPECT_GE(at, end_of_walk) << "seed " << seed << ", walk " << i;
        if (bases == 0) ++told_at_end_;
      }
    }
  }
};

TEST_F(ArrayEdgeTest, NoWalkEndsBeyondWhereItIsToldToStop) {
  for (unsigned seed = 1; seed <= 600; ++seed) {
    compare<true>(seed);
    compare<false>(1000 + seed);
  }
  EXPECT_GT(asked_, 4000);
  EXPECT_GT(told_at_end_, 600);
}

}  // namespace
