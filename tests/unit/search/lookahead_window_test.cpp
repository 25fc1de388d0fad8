// The fast lookahead against the definition, and what it says of other scores.

#include "search/lookahead_window.h"

#include <gmock/gmock.h>

#include <memory>
#include <random>
#include <string>

namespace {

/// Random bases with copies that depart from one another, `rareness` bases apart, and a few N.
std::string make_sequence(std::mt19937& random, std::size_t size, std::size_t period, unsigned rareness) {
  std::string bases;
  while (bases.size() < size) {
    const std::size_t i = bases.size();
    if (random() % 400 == 0) bases += 'N';
    if (random() % (4 * rareness) == 0) continue;  // a base is missing in the copy
    bases += i >= period && random() % rareness != 0 ? bases[i - period] : "ACGT"[random() % 4];
    if (random() % (4 * rareness) == 0) bases += "ACGT"[random() % 4];
  }
  return bases;
}

/// The walk's lookahead as it is defined.
template <bool forward>
class Definition {
 public:
  Definition(const ExtensionRules& rules, const UnitCircle& circle, const char* limit)
      : rules_(rules), circle_(circle), limit_(limit) {}

  /// 'M', 'I', 'D' or '-'.
  char choose(const Front<forward>& front) const {
    char kind = '-';
    value(front, 0, &kind);
    return kind;
  }

 private:
  std::int64_t value(Front<forward> front, std::int64_t depth, char* choice) const {
    if (!extend_exact(front, circle_, limit_, rules_)) return front.score;
    if (depth == rules_.maximum_depth || front.position == limit_) return front.score;
    const std::int64_t bound = -circle_.length();
    std::int64_t best = bound - 1;
    char kind = '-';
    const auto attempt = [&](char step, std::int64_t penalty) {
      if (front.score + penalty <= bound) return;
      Front<forward> next = front;
      next.score += penalty;
      if (step != 'D') next.take_base();
      if (step != 'I') next.step_unit(circle_);
      const std::int64_t reached = value(next, depth + 1, nullptr);
      if (kind != '-' && reached <= best) return;
      best = reached;
      kind = step;
    };
    attempt('M', rules_.mismatch_score);
    attempt('I', rules_.indel_score);
    attempt('D', rules_.indel_score);
    if (choice != nullptr) *choice = kind;
    return kind == '-' ? front.score : std::max(best, front.score);
  }

  const ExtensionRules& rules_;
  const UnitCircle circle_;
  const char* const limit_;
};

/// With the usual rules sets of places decide where everything is permitted.
enum class Rules : std::uint8_t { any, usual };

class LookaheadWindowTest : public testing::Test {
 protected:
  template <bool forward>
  static void check(unsigned seed, Rules which = Rules::any) {
    std::mt19937 random(seed);
    const auto between = [&random](std::int64_t low, std::int64_t high) {
      return low + static_cast<std::int64_t>(random() % static_cast<unsigned>(high - low + 1));
    };
    const auto length = between(2, random() % 2 == 0 ? 60 : 140);
    // Indels pay where the copies are as long as the unit, or nearly.
    const std::int64_t period = random() % 2 == 0 ? between(2, 60) : std::max<std::int64_t>(2, length + between(-1, 1));
    // Between rare departures runs leave the window.
    const unsigned rareness = random() % 2 == 0 ? 50 : 10;
    const std::string bases = make_sequence(random, 500, static_cast<std::size_t>(period), rareness);
    const char* const begin = bases.data();
    const char* const end = begin + bases.size();
    ExtensionRules rules{-between(2, random() % 2 == 0 ? 3 : 9), -between(2, 12), between(1, random() % 2 == 0 ? 1 : 5),
                         between(0, 4), random() % 4 == 0};
    std::int64_t least_height = 1;
    if (which == Rules::usual) {
      rules.maximum_depth = 5;
      rules.indel_score = rules.mismatch_score;
      least_height = std::max<std::int64_t>(1, -5 * rules.mismatch_score - 5);
    }
    const char* const unit = begin + between(150, 200);
    const UnitCircle circle{unit, unit + length};
    if (std::find(circle.begin, circle.end, 'N') != circle.end) return;
    const char* const limit = forward ? end : begin;
    const BasePlanes planes(begin, end);
    const UnitRuns runs(planes, begin, circle);
    const auto space = std::make_unique<LookaheadSpace>();
    LookaheadWindow<forward> window(planes, runs, begin, circle, rules, *space);
    const Definition<forward> definition(rules, circle, limit);
    // A unit that is longer at the end that the walk comes to.
    const std::int64_t more = between(1, 30);
    const UnitCircle longer{forward ? circle.begin : circle.begin - more, forward ? circle.end + more : circle.end};
    const Definition<forward> of_longer(rules, longer, limit);
    Front<forward> front{forward ? circle.end : circle.begin, forward ? circle.begin : circle.end - 1, 0, 0};
    // The last bases of the sequence.
    if (which == Rules::usual && random() % 2 == 0)
      front.position = forward ? end - between(1, 80) : begin + between(1, 80);
    for (std::int64_t i = between(0, length - 1); i > 0; --i) {
      front.take_base();
      front.step_unit(circle);
    }
    for (int stop = 0; stop < 12; ++stop) {
      if (!runs.extend_exact(front, limit, rules) || front.position == limit) break;
      for (std::int64_t height = least_height; height < least_height + 59; height += between(1, 8)) {
        front.score = height - length;
        check_stop(window, definition, front, limit, height, rules);
        const StepChoice choice = can_step(height, rules) ? window.choose(front, limit) : StepChoice();
        if (choice.kind == '?') continue;
        check_that_no_more_was_seen<forward>(choice, bases, front, circle, rules);
        const std::int64_t rest = forward ? circle.end - front.unit : front.unit + 1 - circle.begin;
        if (choice.unit_bases_seen > rest) continue;
        ++units;
        Front<forward> same = front;
        same.score = height - longer.length();
        ASSERT_EQ(choice.kind, of_longer.choose(same)) << "height " << height << ", unit longer by " << more;
      }
      // Any step will do: the places are what matters.
      const auto step = random() % 6;
      if (step != 0) front.take_base();
      if (step != 1) front.step_unit(circle);
    }
  }

  template <bool forward>
  static void check_stop(LookaheadWindow<forward>& window, const Definition<forward>& definition, Front<forward> front,
                         const char* limit, std::int64_t height, const ExtensionRules& rules) {
    if (!can_step(height, rules)) return;
    const StepChoice choice = window.choose(front, limit);
    if (choice.kind == '?') return;
    ++chosen;
    ASSERT_EQ(choice.kind, definition.choose(front)) << "height " << height;
    ASSERT_TRUE(choice.holds(height));
    const std::int64_t score = front.score;
    for (std::int64_t other = std::max<std::int64_t>(choice.lowest, height - 12);
         other <= std::min(choice.highest, height + 12); other += 3) {
      front.score = score + other - height;
      ++heights;
      ASSERT_EQ(choice.kind, definition.choose(front)) << "chosen at height " << height << ", at height " << other;
    }
  }

  /// Of the sequence, of which the window has 64 bases.
  template <bool forward>
  static void check_that_no_more_was_seen(const StepChoice& choice, const std::string& bases,
                                          const Front<forward>& front, const UnitCircle& circle,
                                          const ExtensionRules& rules) {
    const auto seen = static_cast<std::ptrdiff_t>(std::min<std::int64_t>(64, choice.unit_bases_seen));
    std::string other = bases;
    const auto in_other = [&](const char* p) { return other.data() + (p - bases.data()); };
    const std::ptrdiff_t at = front.position - bases.data();
    const auto change = [](char& base) { base = base == 'A' ? 'C' : 'A'; };
    if (forward) {
      if (at + seen < static_cast<std::ptrdiff_t>(other.size()))
        std::for_each(other.begin() + at + seen, other.end(), change);
    } else {
      if (at > seen) std::for_each(other.begin(), other.begin() + at - seen, change);
    }
    const Definition<forward> definition(rules, {in_other(circle.begin), in_other(circle.end)},
                                         forward ? other.data() + other.size() : other.data());
    Front<forward> same = front;
    same.position = in_other(front.position);
    same.unit = in_other(front.unit);
    ASSERT_EQ(choice.kind, definition.choose(same)) << "seen " << choice.unit_bases_seen;
  }

  static bool can_step(std::int64_t height, const ExtensionRules& rules) {
    return height + std::max(rules.mismatch_score, rules.indel_score) > 0;
  }

  static std::size_t chosen;
  static std::size_t heights;
  static std::size_t units;
};

std::size_t LookaheadWindowTest::chosen = 0;
std::size_t LookaheadWindowTest::heights = 0;
std::size_t LookaheadWindowTest::units = 0;

TEST_F(LookaheadWindowTest, ChoosesAsDefinedAtEveryHeightThatItNamesAndForTheUnitBasesThatItHasSeen) {
  // In the last one a way must be permitted for another one to be beaten outside the window.
  for (unsigned number = 0; number <= 1000; ++number) {
    const unsigned seed = number < 1000 ? number : 195536;
    SCOPED_TRACE("seed " + std::to_string(seed));
    check<true>(seed);
    check<false>(seed + 1000000);
    if (HasFatalFailure()) return;
  }
  EXPECT_GT(chosen, 10000U);
  EXPECT_GT(heights, 20000U);
  EXPECT_GT(units, 5000U);
}

TEST_F(LookaheadWindowTest, ChoosesSoOnSetsOfPlacesToo) {
  for (unsigned seed = 0; seed < 60; ++seed) {
    SCOPED_TRACE("seed " + std::to_string(seed));
    check<true>(seed, Rules::usual);
    check<false>(seed + 1000000, Rules::usual);
    if (HasFatalFailure()) return;
  }
}

}  // namespace
