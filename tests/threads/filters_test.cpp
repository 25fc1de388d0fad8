// What the filters mark must not depend on the number of threads that share the sequence.

#include <random>
#include <thread>

#include "search/lag_filter.h"
#include "search/search_support.h"
#include "search/seed_filter.h"

namespace {

using Bits = std::vector<std::uint64_t>;

/// Bases in which runs, copies and departures lie everywhere, and so across every limit between two tasks.
std::string bases_full_of_repeats(unsigned number, std::size_t length, std::size_t longest_unit) {
  std::mt19937 random(number);
  const auto below = [&random](std::size_t n) { return static_cast<std::size_t>(random() % n); };
  std::string bases;
  bases.reserve(length + 16 * longest_unit);
  while (bases.size() < length) {
    std::string unit;
    for (std::size_t i = 1 + below(longest_unit); i > 0; --i) unit += "ACGT"[below(4)];
    for (std::size_t copies = 1 + below(8); copies > 0; --copies) {
      std::string copy = unit;
      if (below(4) == 0) copy[below(copy.size())] = "ACGTN"[below(5)];
      if (below(6) == 0) copy.erase(below(copy.size()), 1);
      bases += copy;
    }
  }
  bases.resize(length);
  return bases;
}

class FiltersOnThreadsTest : public test::SearchTest {
 protected:
  static ExtensionRules rules() {
    return {global_mismatch_score, global_indel_score, global_maximum_recursion_depth, global_Ns_allowed_in_a_row,
            global_treat_Ns_as_missense};
  }

  static void expect_same_seeds(const std::string& bases, std::int64_t unit_length, const ExtensionRules& how) {
    const test::Sequence sequence(bases);
    const char* const begin = sequence.mol.begin();
    const char* const end = sequence.mol.end();
    const BasePlanes planes(begin, end);
    const SeedFilter filter(planes, begin, end);
    const std::int64_t minimum_score = std::max<std::int64_t>(6, unit_length);
    Bits alone;
    filter.mark_candidates(unit_length, minimum_score, how, alone);
    for (const unsigned threads : {2U, 3U}) {
      Bits shared;
      filter.mark_candidates(unit_length, minimum_score, how, shared, Workers(threads));
      EXPECT_EQ(shared == alone, true) << bases.size() << " bases, unit length " << unit_length << ", " << threads
                                       << " threads";
    }
  }
};

constexpr std::size_t bases_of_a_task = 262144;

TEST_F(FiltersOnThreadsTest, TheSeedFilterMarksTheSameSeeds) {
  unsigned number = 0;
  for (const std::size_t size : {bases_of_a_task - 1, bases_of_a_task, bases_of_a_task + 1, 2 * bases_of_a_task + 63,
                                 4 * bases_of_a_task + 70}) {
    const std::string bases = bases_full_of_repeats(++number, size, 6);
    for (std::int64_t unit_length = 1; unit_length <= 6; ++unit_length) {
      if (SeedFilter::is_useful(unit_length, std::max<std::int64_t>(6, unit_length), rules()))
        expect_same_seeds(bases, unit_length, rules());
    }
  }
}

// A seed lies a unit before the stretch that tells of it, so it may be marked by the task behind its own, or one
// further off.
TEST_F(FiltersOnThreadsTest, TheSeedFilterMarksTheSameLongUnits) {
  ExtensionRules exact = rules();
  exact.maximum_depth = 0;
  const std::string part = bases_full_of_repeats(7, bases_of_a_task + 100, 40);
  for (const std::size_t unit_length : {1000U, 4159U, 262144U, 262244U}) {
    const std::string unit = part.substr(0, unit_length);
    const std::size_t copies = 4 * bases_of_a_task / unit_length + 1;
    expect_same_seeds(test::repeated(unit, copies) + "ACGT", static_cast<std::int64_t>(unit_length), exact);
  }
}

TEST_F(FiltersOnThreadsTest, ARunOfOneBaseOverSeveralTasksIsMarkedThroughout) {
  expect_same_seeds(std::string(3 * bases_of_a_task + 5, 'A'), 1, rules());
  expect_same_seeds(std::string(2 * bases_of_a_task - 1, 'A') + std::string(bases_of_a_task, 'N'), 2, rules());
}

class LagFilterOnThreadsTest : public FiltersOnThreadsTest {
 protected:
  using Words = std::vector<std::pair<std::size_t, std::uint64_t>>;

  static std::vector<Words> listed(const std::vector<CandidateWords>& candidates) {
    std::vector<Words> lists;
    for (const CandidateWords& words : candidates) {
      lists.emplace_back();
      words.for_each(0, SIZE_MAX, [&](std::size_t number, std::uint64_t bits) {
        lists.back().push_back({number, bits});
      });
    }
    return lists;
  }

  static void expect_same_range(const std::string& bases, std::int64_t first, std::int64_t last) {
    const test::Sequence sequence(bases);
    const ThresholdTable scores(6, 0, 1.0F);
    const LagFilter filter(sequence.mol.begin(), sequence.mol.end(), rules());
    std::vector<CandidateWords> alone;
    ASSERT_EQ(filter.mark_candidates(first, last, scores, alone), last);
    for (const unsigned threads : {2U, 3U}) {
      std::vector<CandidateWords> shared;
      ASSERT_EQ(filter.mark_candidates(first, last, scores, shared, Workers(threads)), last);
      EXPECT_EQ(listed(shared) == listed(alone), true)
          << bases.size() << " bases, unit lengths " << first << " to " << last << ", " << threads << " threads";
    }
  }
};

TEST_F(LagFilterOnThreadsTest, MarksTheSameSeeds) {
  constexpr std::size_t rows_of_a_block = 4096;
  unsigned number = 20;
  for (const std::size_t size : {rows_of_a_block - 1, rows_of_a_block, rows_of_a_block + 1, 4 * rows_of_a_block + 39,
                                 4 * rows_of_a_block + 40, 4 * rows_of_a_block + 41, 7 * rows_of_a_block}) {
    expect_same_range(bases_full_of_repeats(++number, size, 60), 40, 50);
  }
}

TEST_F(LagFilterOnThreadsTest, MarksTheSameSeedsOfUnitsAsLongAsABlock) {
  expect_same_range(bases_full_of_repeats(30, 20000, 1500), 1200, 1201);
}

TEST_F(LagFilterOnThreadsTest, TellsTheCallerAloneHowFarItIs) {
  const test::Sequence sequence(bases_full_of_repeats(31, 40000, 60));
  const auto caller = std::this_thread::get_id();
  std::vector<double> shares;
  bool is_caller = true;
  std::vector<CandidateWords> candidates;
  LagFilter(sequence.mol.begin(), sequence.mol.end(), rules())
      .mark_candidates(40, 50, ThresholdTable(6, 0, 1.0F), candidates, Workers(3), [&](double share) {
        is_caller = is_caller && std::this_thread::get_id() == caller;
        shares.push_back(share);
      });
  EXPECT_TRUE(is_caller);
  EXPECT_TRUE(std::is_sorted(shares.begin(), shares.end()));
  EXPECT_THAT(shares, testing::Each(testing::AllOf(testing::Gt(0), testing::Le(1))));
}

}  // namespace
