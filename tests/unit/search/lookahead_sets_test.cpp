// The lookahead on sets of places against the definition, on bases that match at many lags.

#include "search/lookahead_sets.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <string>

namespace {

constexpr int depth = LookaheadSets::depth;

/// A stop: the sequence from there on, and the unit from `depth` bases before.
struct Stop {
  std::string sequence;
  std::string unit;
};

/// The lookahead as it is defined, of a walk that stops with a score so high above the bound.
class Definition {
 public:
  Definition(const Stop& stop, std::int64_t penalty, std::int64_t height)
      : stop_(stop), penalty_(penalty), height_(height) {}

  StepKind choose() const {
    StepKind best = StepKind::mismatch;
    std::int64_t highest = value(1, 1, -penalty_, 1);
    const auto raise = [&](StepKind kind, std::int64_t score) {
      if (score <= highest) return;
      highest = score;
      best = kind;
    };
    raise(StepKind::insertion, value(1, 0, -penalty_, 1));
    raise(StepKind::deletion, value(0, 1, -penalty_, 1));
    return best;
  }

 private:
  std::int64_t value(std::size_t base, std::size_t unit_base, std::int64_t score, int steps) const {
    while (base < stop_.sequence.size() && stop_.sequence[base] == stop_.unit[unit_base + depth]) {
      ++base;
      ++unit_base;
      ++score;
    }
    std::int64_t highest = score;
    if (base == stop_.sequence.size() || steps == depth || height_ + score - penalty_ <= 0) return highest;
    highest = std::max(highest, value(base + 1, unit_base + 1, score - penalty_, steps + 1));
    highest = std::max(highest, value(base + 1, unit_base, score - penalty_, steps + 1));
    return std::max(highest, value(base, unit_base + 1, score - penalty_, steps + 1));
  }

  const Stop& stop_;
  const std::int64_t penalty_;
  const std::int64_t height_;
};

class Bases {
 public:
  explicit Bases(unsigned seed) : random_(seed) {}

  std::size_t below(std::size_t n) { return random_() % n; }

  std::string of(std::size_t letters, std::size_t size) {
    std::string bases;
    while (bases.size() < size) bases += "ACGT"[below(letters)];
    return bases;
  }

  /// Repeats of short units, of one after the other.
  std::string of_short_repeats(std::size_t letters, std::size_t size) {
    std::string bases;
    while (bases.size() < size) {
      const std::string unit = of(letters, 1 + below(4));
      for (std::size_t copies = 1 + below(8); copies > 0; --copies) bases += unit;
    }
    return bases.substr(0, size);
  }

  /// The same with some departures.
  std::string altered(const std::string& bases, std::size_t rareness, std::size_t letters) {
    std::string other;
    for (const char base : bases) {
      const std::size_t kind = below(3 * rareness);
      if (kind == 0) continue;
      if (kind == 1) other += of(letters, 1);
      other += kind == 2 ? of(letters, 1)[0] : base;
    }
    return other;
  }

  Stop stop() {
    const std::size_t letters = 2 + below(2);
    Stop stop;
    stop.unit = below(2) == 0 ? of(letters, 1000) : of_short_repeats(letters, 1000);
    stop.sequence = altered(stop.unit.substr(depth, 600), 2 + below(5), letters);
    if (stop.sequence[0] == stop.unit[depth]) stop.sequence[0] = stop.unit[depth] == 'A' ? 'C' : 'A';
    if (below(3) == 0) stop.sequence.resize(1 + below(70));
    return stop;
  }

 private:
  std::mt19937 random_;
};

template <typename Word>
TwoPlanes<Word> planes_of(const std::string& bases, std::size_t width) {
  TwoPlanes<Word> planes{};
  for (std::size_t i = 0; i < std::min(width, bases.size()); ++i) {
    const auto code = static_cast<unsigned>(std::string("ACGT").find(bases[i]));
    planes.low |= Word{code & 1} << i;
    planes.high |= Word{code >> 1} << i;
  }
  return planes;
}

bool choose(const Stop& stop, std::int64_t penalty, SetsChoice& choice) {
  // Behind the sequence's end may be anything, bases that agree with the unit as well.
  const std::string bases = stop.sequence + stop.unit.substr(stop.sequence.size() + depth, 64);
  return LookaheadSets::choose(planes_of<std::uint64_t>(bases, 64), planes_of<Bits128>(stop.unit, 128),
                               static_cast<std::int64_t>(stop.sequence.size()), penalty, choice);
}

TEST(LookaheadSetsTest, ChooseAsDefinedWhateverLiesBehindWhatTheyHaveSeen) {
  Bases bases(1);
  std::size_t told = 0;
  std::size_t told_near = 0;
  for (int number = 0; number < 40000; ++number) {
    SCOPED_TRACE("number " + std::to_string(number));
    Stop stop = bases.stop();
    const auto penalty = static_cast<std::int64_t>(2 + bases.below(6));
    SetsChoice choice;
    if (!choose(stop, penalty, choice)) continue;
    ++told;
    if (choice.bases_seen < 40) ++told_near;
    ASSERT_EQ(choice.step, Definition(stop, penalty, depth * penalty + 1).choose());
    ASSERT_EQ(choice.step, Definition(stop, penalty, choice.steps_needed * penalty + 1).choose());
    const auto seen = static_cast<std::size_t>(choice.bases_seen);
    const std::size_t unit_seen = seen + 2 * depth;
    stop.unit = stop.unit.substr(0, unit_seen) + bases.of(4, 1000 - unit_seen);
    if (stop.sequence.size() > seen) {
      // At the first place behind they agree, so that a walk may go on well.
      const std::size_t drift = bases.below(2 * depth + 1);
      stop.sequence = stop.sequence.substr(0, seen) + stop.unit.substr(seen + drift, 800);
    }
    ASSERT_EQ(choice.step, Definition(stop, penalty, depth * penalty + 1).choose());
  }
  EXPECT_GT(told, 30000U);
  EXPECT_GT(told_near, 20000U);
}

}  // namespace
