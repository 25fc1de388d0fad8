// Seeds that reach the minimum score by a hair: the lag filter must leave every one of them.

#include <random>

#include "search/lag_filter.h"
#include "search/search_support.h"

namespace {

using test::Sequence;

/// Random bases, the same on every machine.
class Bases {
 public:
  explicit Bases(unsigned seed) : random_(seed) {}

  std::size_t between(std::size_t low, std::size_t high) { return low + random_() % (high - low + 1); }

  std::string some(std::size_t length) {
    std::string bases;
    while (bases.size() < length) bases += "ACGT"[random_() % 4];
    return bases;
  }

  static char other(char base) { return base == 'A' ? 'C' : 'A'; }

 private:
  std::mt19937 random_;
};

/// A unit between the end and the beginning of its neighbours, `score` bases altogether.
std::string scanty_repeat(Bases& bases, std::size_t unit_length, std::size_t score) {
  const std::string unit = bases.some(unit_length);
  const std::size_t behind = bases.between(0, score);
  const std::size_t before = score - behind;
  std::string sequence = bases.some(unit_length) + Bases::other(unit[unit_length - before - 1]);
  sequence += unit.substr(unit_length - before) + unit + unit.substr(0, behind);
  return sequence + Bases::other(unit[behind]) + bases.some(unit_length);
}

/// A unit, then a copy with as many mismatches as a walk bears and some matches before and between them, and then good
/// copies.
std::string repeat_behind_a_bad_copy(Bases& bases, std::size_t unit_length, std::int64_t mismatch_score) {
  const std::string unit = bases.some(unit_length);
  const auto bound = -static_cast<std::int64_t>(unit_length);
  const std::size_t matches_allowed = bases.between(0, unit_length / 2);
  std::string copy = unit;
  std::int64_t score = 0;
  std::size_t matches = 0;
  for (std::size_t i = 0; i < unit_length; ++i) {
    const bool matching = matches < matches_allowed && bases.between(0, 2) > 0;
    if (!matching && score + mismatch_score > bound) {
      copy[i] = Bases::other(copy[i]);
      score += mismatch_score;
    } else {
      ++score;
      ++matches;
    }
  }
  return bases.some(unit_length) + unit + copy + unit + unit + unit + bases.some(unit_length);
}

std::string reversed(const std::string& bases) {
  return {bases.rbegin(), bases.rend()};
}

class LagFilterLimitsTest : public test::SearchTest {
 protected:
  static ExtensionRules rules() {
    return {global_mismatch_score, global_indel_score, global_maximum_recursion_depth, global_Ns_allowed_in_a_row,
            global_treat_Ns_as_missense};
  }

  static std::int64_t grown_score(const CSearchController& controller, const char* begin, const char* end) {
    Csat sat;
    sat.seed(begin, end);
    controller.extend_imperfect_forward(sat, controller.seq.end());
    controller.extend_imperfect_backward(sat, controller.seq.begin() - 1);
    return sat.score;
  }

  /// Every seed that reaches the score is a candidate. Counts the seeds that are not.
  static void check(const std::string& bases, std::int64_t unit_length, int minimum_score, std::size_t& rejected) {
    Sequence sequence(bases);
    const CSearchController controller(1, sequence.mol);
    const char* const first_base = sequence.mol.begin();
    std::vector<CandidateWords> candidates;
    LagFilter(first_base, sequence.mol.end(), rules())
        .mark_candidates(unit_length, unit_length, ThresholdTable(minimum_score, 0, 0.0F), candidates);
    std::vector<std::uint64_t> marked(bases.size() / 64 + 1);
    candidates[0].for_each(0, marked.size(), [&](std::size_t number, std::uint64_t bits) { marked[number] = bits; });
    for (const char* p = first_base; sequence.mol.end() - p > unit_length; ++p) {
      const auto at = static_cast<std::size_t>(p - first_base);
      if ((marked[at / 64] >> (at % 64) & 1) != 0) continue;
      ++rejected;
      ASSERT_LT(grown_score(controller, p, p + unit_length), minimum_score)
          << bases << ", seed at " << at << ", unit length " << unit_length;
    }
  }
};

TEST_F(LagFilterLimitsTest, ScoresThatAreJustReached) {
  global_maximum_recursion_depth = 2;
  std::size_t rejected = 0;
  for (unsigned seed = 0; seed < 100; ++seed) {
    Bases bases(seed);
    const std::size_t unit_length = bases.between(14, 40);
    const std::size_t score = bases.between(4, 13);
    const std::string sequence = scanty_repeat(bases, unit_length, score);
    ASSERT_NO_FATAL_FAILURE(check(sequence, static_cast<std::int64_t>(unit_length), static_cast<int>(score), rejected));
  }
  EXPECT_GT(rejected, 1000U);
}

TEST_F(LagFilterLimitsTest, WalksThatJustSurvive) {
  global_maximum_recursion_depth = 2;
  std::size_t rejected = 0;
  for (unsigned seed = 0; seed < 400; ++seed) {
    Bases bases(seed);
    const std::size_t unit_length = bases.between(14, 40);
    global_mismatch_score = -static_cast<int>(bases.between(3, 8));
    global_indel_score = 2 * global_mismatch_score;
    std::string sequence = repeat_behind_a_bad_copy(bases, unit_length, global_mismatch_score);
    if (seed % 2 == 1) sequence = reversed(sequence);
    const int score = static_cast<int>(bases.between(unit_length, 2 * unit_length));
    ASSERT_NO_FATAL_FAILURE(check(sequence, static_cast<std::int64_t>(unit_length), score, rejected));
  }
  EXPECT_GT(rejected, 1000U);
}

}  // namespace
