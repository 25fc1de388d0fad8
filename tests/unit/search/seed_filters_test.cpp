// The filters may only reject seeds that cannot reach the minimum score: every other seed is grown here by itself.

#include <random>

#include "search/lag_filter.h"
#include "search/search_support.h"
#include "search/seed_filter.h"

namespace {

using Bits = std::vector<std::uint64_t>;

bool marked(const Bits& bits, std::int64_t index) {
  return (bits[static_cast<std::size_t>(index / 64)] >> (index % 64) & 1) != 0;
}

/// Random bases of few letters, with copies of units that were changed here and there.
std::string bases_with_repeats(unsigned number, std::size_t length, std::size_t longest_unit) {
  std::mt19937 random(number);
  const auto below = [&random](std::size_t n) { return static_cast<std::size_t>(random() % n); };
  std::string bases;
  while (bases.size() < length) {
    std::string unit;
    for (std::size_t i = 1 + below(longest_unit); i > 0; --i) unit += "ACGT"[below(number % 2 == 0 ? 4 : 2)];
    for (std::size_t copies = 1 + below(5); copies > 0; --copies) {
      bases += unit;
      if (below(3) == 0) bases[below(bases.size())] = "ACGTN"[below(5)];
      if (below(4) == 0) bases.erase(below(bases.size()), 1);
    }
  }
  return bases.substr(0, length);
}

class SeedFiltersTest : public test::SearchTest {
 protected:
  /// The seeds that reach the score although they are not marked.
  static std::vector<std::int64_t> wrongly_rejected(test::Sequence& sequence, std::int64_t unit_length,
                                                    std::int64_t minimum_score, const Bits& bits) {
    const CSearchController controller(1, sequence.mol);
    const char* const begin = sequence.mol.begin();
    const char* const end = sequence.mol.end();
    std::vector<std::int64_t> wrong;
    for (const char* p = begin; end - p > unit_length; ++p) {
      if (marked(bits, p - begin)) continue;
      const char* const next_N = std::find(p, end, 'N');
      if (!CSearchController::valid_starting_pattern(p, p + unit_length, next_N)) continue;
      Csat sat;
      sat.seed(p, p + unit_length);
      controller.extend_imperfect_forward(sat, end);
      controller.extend_imperfect_backward(sat, begin - 1);
      if (sat.score >= minimum_score) wrong.push_back(p - begin);
    }
    return wrong;
  }
};

TEST_F(SeedFiltersTest, TheSeedFilterRejectsNoSeedThatReachesTheScore) {
  std::size_t decided = 0;
  for (unsigned number = 0; number < 40; ++number) {
    test::Sequence sequence(bases_with_repeats(number, 300, 8));
    const BasePlanes planes(sequence.mol.begin(), sequence.mol.end());
    const SeedFilter filter(planes, sequence.mol.begin(), sequence.mol.end());
    for (std::int64_t unit_length = 1; unit_length <= 8; ++unit_length) {
      const std::int64_t minimum_score = std::max<std::int64_t>(6, unit_length);
      if (!SeedFilter::is_useful(unit_length, minimum_score, rules())) continue;
      ++decided;
      Bits bits;
      filter.mark_candidates(unit_length, minimum_score, rules(), bits);
      ASSERT_THAT(wrongly_rejected(sequence, unit_length, minimum_score, bits), testing::IsEmpty())
          << "sequence " << number << ", unit length " << unit_length;
    }
  }
  EXPECT_GT(decided, 0U);
}

/// In a sequence without N, what the filter must say of each seed with depth zero: 'c' a candidate, for its exact
/// repeat reaches the score; '-' none; '?' either, for its repeat touches an end of the sequence, where an N might
/// stand.
std::string verdicts_on_exact_repeats(const std::string& bases, std::int64_t unit_length, std::int64_t minimum_score) {
  const auto size = static_cast<std::int64_t>(bases.size());
  const auto matches = [&](std::int64_t q) {
    return q >= unit_length && q < size &&
           bases[static_cast<std::size_t>(q)] == bases[static_cast<std::size_t>(q - unit_length)];
  };
  std::string verdicts;
  for (std::int64_t q = unit_length; q < size; ++q) {
    std::int64_t begin = q;
    std::int64_t end = q;
    while (matches(begin - 1)) --begin;
    while (matches(end)) ++end;
    const bool at_an_end = begin == unit_length || end == size;
    verdicts += end - begin >= minimum_score ? 'c' : at_an_end ? '?' : '-';
  }
  return verdicts;
}

// Words have 64 bases and blocks 4096; a run may lie across either limit, and the sequence may end there.
TEST_F(SeedFiltersTest, WithDepthZeroTheSeedFilterMarksTheExactRepeatsOfTheScore) {
  ExtensionRules exact = rules();
  exact.maximum_depth = 0;
  unsigned number = 0;
  for (const std::size_t size : {1, 2, 63, 64, 65, 127, 128, 129, 4095, 4096, 4097, 4159, 4160, 4161, 8192, 8193}) {
    for (const std::int64_t minimum_score : {1, 2, 6, 31, 32}) {
      std::string bases = bases_with_repeats(++number, size, 20);
      std::replace(bases.begin(), bases.end(), 'N', 'A');
      const test::Sequence sequence(bases);
      const BasePlanes planes(sequence.mol.begin(), sequence.mol.end());
      for (const std::int64_t unit_length : {1, 2, 6, 63, 64, 65}) {
        Bits bits;
        SeedFilter(planes, sequence.mol.begin(), sequence.mol.end())
            .mark_candidates(unit_length, minimum_score, exact, bits);
        const std::string expected = verdicts_on_exact_repeats(bases, unit_length, minimum_score);
        std::string verdicts;
        for (std::size_t p = 0; p < expected.size(); ++p) {
          const bool candidate = marked(bits, static_cast<std::int64_t>(p));
          verdicts += expected[p] == '?' ? '?' : candidate ? 'c' : '-';
        }
        ASSERT_EQ(verdicts, expected) << size << " bases, unit length " << unit_length << ", score " << minimum_score;
        for (std::size_t p = expected.size(); p < 64 * bits.size(); ++p) {
          ASSERT_FALSE(marked(bits, static_cast<std::int64_t>(p))) << "a seed that ends at or behind the last base";
        }
      }
    }
  }
}

TEST_F(SeedFiltersTest, RunsAcrossABlockLimitAreCandidates) {
  unsigned number = 100;
  for (const std::size_t size : {4095, 4096, 4097, 4170}) {
    test::Sequence sequence(bases_with_repeats(number += 2, size, 8));
    const BasePlanes planes(sequence.mol.begin(), sequence.mol.end());
    for (std::int64_t unit_length = 2; unit_length <= 6; ++unit_length) {
      Bits bits;
      SeedFilter(planes, sequence.mol.begin(), sequence.mol.end()).mark_candidates(unit_length, 6, rules(), bits);
      ASSERT_THAT(wrongly_rejected(sequence, unit_length, 6, bits), testing::IsEmpty())
          << size << " bases, unit length " << unit_length;
    }
  }
}

TEST_F(SeedFiltersTest, TheSeedFilterRejectsMostSeedsOfRandomBases) {
  std::mt19937 random(1);
  std::string bases;
  for (int i = 0; i < 10000; ++i) bases += "ACGT"[random() % 4];
  const test::Sequence sequence(bases);
  const BasePlanes planes(sequence.mol.begin(), sequence.mol.end());
  ASSERT_TRUE(SeedFilter::is_useful(2, 6, rules()));
  Bits bits;
  SeedFilter(planes, sequence.mol.begin(), sequence.mol.end()).mark_candidates(2, 6, rules(), bits);
  int candidates = 0;
  for (const std::uint64_t word : bits) candidates += __builtin_popcountll(word);
  EXPECT_LT(candidates, 500);
}

Bits bits_of(const CandidateWords& words, std::size_t bases) {
  Bits bits(bases / 64 + 1);
  words.for_each(0, bits.size(), [&bits](std::size_t number, std::uint64_t word) { bits[number] = word; });
  return bits;
}

TEST_F(SeedFiltersTest, TheLagFilterRejectsNoSeedThatReachesTheScore) {
  global_maximum_recursion_depth = 2;
  std::size_t rejected = 0;
  for (unsigned number = 0; number < 6; ++number) {
    global_Ns_allowed_in_a_row = static_cast<int>(number % 3);
    global_treat_Ns_as_missense = number == 4;
    test::Sequence sequence(bases_with_repeats(number, 400, 60));
    const LagFilter filter(sequence.mol.begin(), sequence.mol.end(), rules());
    const ThresholdTable scores(6, 0, 1.0F);
    constexpr std::int64_t first = 40;
    constexpr std::int64_t last = 70;
    ASSERT_TRUE(LagFilter::is_useful(first, scores[first], rules()));
    ASSERT_TRUE(LagFilter::is_useful(last, scores[last], rules()));
    ASSERT_EQ(filter.end_of_range(first, last), last);
    std::vector<CandidateWords> candidates;
    ASSERT_EQ(filter.mark_candidates(first, last, scores, candidates), last);
    for (std::int64_t unit_length = first; unit_length <= last; unit_length += 3) {
      const Bits bits = bits_of(candidates[static_cast<std::size_t>(unit_length - first)], 400);
      for (std::int64_t p = 0; p + unit_length < 400; ++p) rejected += marked(bits, p) ? 0 : 1;
      ASSERT_THAT(wrongly_rejected(sequence, unit_length, scores[unit_length], bits), testing::IsEmpty())
          << "sequence " << number << ", unit length " << unit_length;
    }
  }
  EXPECT_GT(rejected, 1000U);
}

// Where every seed is a candidate, there is not room for all unit lengths at once. Those that are decided are decided
// as ever.
TEST_F(SeedFiltersTest, ARangeOfTheLagFilterIsCutShortWhereCandidatesWouldTakeTooMuch) {
  std::string unit;
  std::mt19937 random(3);
  while (unit.size() < 50) unit += "ACGT"[random() % 4];
  const test::Sequence sequence(test::repeated(unit, 1000));
  const ThresholdTable scores(6, 0, 1.0F);
  std::vector<CandidateWords> all;
  const std::int64_t last =
      LagFilter(sequence.mol.begin(), sequence.mol.end(), rules()).mark_candidates(45, 60, scores, all);
  EXPECT_EQ(last, 60);
  std::vector<CandidateWords> some;
  const std::int64_t earlier =
      LagFilter(sequence.mol.begin(), sequence.mol.end(), rules(), 40000).mark_candidates(45, 60, scores, some);
  EXPECT_THAT(earlier, testing::AllOf(testing::Ge(45), testing::Lt(60)));
  ASSERT_EQ(some.size(), static_cast<std::size_t>(earlier - 45 + 1));
  for (std::size_t i = 0; i < some.size(); ++i) EXPECT_EQ(bits_of(some[i], 50000) == bits_of(all[i], 50000), true) << i;
}

}  // namespace
