// What is told of hidden repeats against what they grow into, and which of them are left out of a list.

#include "search/hidden_repeats.h"

#include <algorithm>
#include <array>
#include <list>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "search/search_support.h"

namespace {

using test::Random;

constexpr std::int64_t bases_to_pause = 200;

class HiddenRepeatsTest : public test::SearchTest {
 protected:
  void set(const std::string& bases) {
    sequence_ = std::make_unique<test::Sequence>(bases);
    planes_ = std::make_unique<BasePlanes>(sequence_->mol.begin(), sequence_->mol.end());
    controller_ = std::make_unique<CSearchController>(1, sequence_->mol);
  }

  /// Copies with departures, of so many bases or some more, between 300 others.
  void set_array(unsigned number, std::size_t unit_length, std::size_t bases) {
    Random random(number);
    const std::string unit = random.bases(unit_length);
    std::string copies;
    while (copies.size() < bases) copies += random.copy(unit, 40);
    set(random.bases(300) + copies + random.bases(300));
  }

  struct Seed {
    GrowingRepeat grown;
    Growth growth;
    Stretch at_last;  ///< where it lies when it has grown to its ends
    std::int64_t score;
  };

  std::uint32_t offset(const char* base) const { return static_cast<std::uint32_t>(sequence_->index(base)); }

  /// One that pauses.
  std::optional<Seed> seed(std::ptrdiff_t begin, std::ptrdiff_t unit_length, std::int64_t score = 100) const {
    const char* const first_base = sequence_->mol.begin();
    const ExtensionRules rules{global_mismatch_score, global_indel_score, global_maximum_recursion_depth,
                               global_Ns_allowed_in_a_row, global_treat_Ns_as_missense};
    GrowthAids aids(first_base, sequence_->mol.end(), *planes_, rules);
    Csat sat;
    sat.seed(sequence_->at(begin), sequence_->at(begin + unit_length));
    const Growth growth = controller_->grow_imperfect(sat, aids, {bases_to_pause, score});
    if (growth == Growth::finished) return std::nullopt;
    const GrowingRepeat grown(sat, first_base);
    sat.seed(sequence_->at(begin), sequence_->at(begin + unit_length));
    controller_->grow_imperfect(sat, aids, PausePoint::never());
    return Seed{grown, growth, {offset(sat.pos_left), offset(sat.pos_right_end)}, sat.score};
  }

  Csat* record(const Stretch& stretch, std::uint32_t unit_length, int score) const {
    Csat* const sat = sat_alloc.take(sequence_->at(stretch.begin), sequence_->at(stretch.begin + unit_length));
    sat->pos_right_end = sequence_->at(stretch.end);
    sat->score = score;
    return sat;
  }

  /// Adds a hidden repeat to a list of others. Whether it is in the list then.
  bool is_added(const Seed& seed, std::uint32_t unit_length, const Stretch& stretch, const std::vector<Csat*>& others) {
    HiddenRepeats hidden(*controller_, HiddenRepeats::any_number);
    hidden.add(seed.grown, seed.growth, unit_length, stretch);
    CsatContainer found;
    found.sats.assign(others.begin(), others.end());
    EXPECT_TRUE(hidden.settle(found.sats));
    const auto is_seed = [&](const Csat* sat) {
      return sat->score == seed.score && offset(sat->pos_left) == seed.at_last.begin &&
             offset(sat->pos_right_end) == seed.at_last.end && offset(sat->unit_begin) == seed.grown.unit;
    };
    const bool is_added = found.sats.size() == others.size() + 1;
    EXPECT_TRUE(is_added || found.sats.size() == others.size());
    EXPECT_EQ(std::count_if(found.sats.begin(), found.sats.end(), is_seed), is_added ? 1 : 0);
    EXPECT_TRUE(std::is_sorted(found.sats.begin(), found.sats.end(),
                               [](const Csat* a, const Csat* b) { return a->unit_length() < b->unit_length(); }));
    return is_added;
  }

  enum class After { left_out, added, unknown };

  /// The same, with a number of hidden repeats for which some are forgotten, while only the first of the others are
  /// found.
  After with_some_forgotten(const Seed& seed, std::uint32_t unit_length, const Stretch& stretch,
                            const std::vector<Csat*>& others, std::size_t found_before) {
    HiddenRepeats hidden(*controller_, 0);
    hidden.add(seed.grown, seed.growth, unit_length, stretch);
    CsatContainer found;
    found.sats.assign(others.begin(), others.begin() + static_cast<std::ptrdiff_t>(found_before));
    hidden.forget_some(found.sats);
    found.sats.assign(others.begin(), others.end());
    if (!hidden.settle(found.sats)) return After::unknown;
    return found.sats.size() == others.size() ? After::left_out : After::added;
  }

  std::unique_ptr<test::Sequence> sequence_;
  std::unique_ptr<BasePlanes> planes_;
  std::unique_ptr<CSearchController> controller_;
};

TEST_F(HiddenRepeatsTest, StayWhereTheyAreToldToStay) {
  int told = 0;
  int asked = 0;
  for (unsigned number = 1; number <= 150; ++number) {
    Random random(number);
    const std::size_t unit_length = random.pick<std::size_t>({9, 15, 24, 40, 64});
    const std::string unit = random.bases(unit_length);
    const unsigned departures = random.pick({20U, 50U, 200U});
    std::string copies;
    while (copies.size() < 900) copies += random.copy(unit, departures);
    const std::size_t flank = random.pick<std::size_t>({0, 5, 30, 200});
    set(random.bases(flank) + copies + random.bases(flank));
    for (int i = 0; i < 10; ++i) {
      const auto length = static_cast<std::ptrdiff_t>(unit_length + random.pick({0U, 0U, 1U}));
      const auto begin = static_cast<std::ptrdiff_t>(random.below(static_cast<unsigned>(flank + copies.size() / 2)));
      const std::optional<Seed> seed = this->seed(begin, length);
      if (!seed) continue;
      const auto size = static_cast<std::int64_t>(sequence_->mol.end() - sequence_->mol.begin());
      for (const int left : {-12, -1, 0, 1, 6}) {
        for (const int right : {-6, -1, 0, 1, 12}) {
          const std::int64_t first = std::max<std::int64_t>(0, std::int64_t{seed->at_last.begin} + left);
          const std::int64_t end = std::min(size, std::int64_t{seed->at_last.end} + right);
          const Stretch stretch{static_cast<std::uint32_t>(first), static_cast<std::uint32_t>(end)};
          if (!stretch.contains({seed->grown.left, seed->grown.right_end})) continue;
          ++asked;
          if (!controller_->stays_within(seed->grown, seed->growth, length, stretch)) continue;
          ++told;
          EXPECT_TRUE(stretch.contains(seed->at_last)) << "number " << number << ", seed " << begin;
        }
      }
    }
  }
  EXPECT_GT(asked, 5000);
  EXPECT_GT(told, 1000);
}

// Of a long array the words beyond what is known are counted, and walks grow in parts.
TEST_F(HiddenRepeatsTest, WinInLongArraysIfTheyMay) {
  constexpr std::uint32_t length = 31;
  set_array(2, length, 40000);
  for (const std::ptrdiff_t from : {400, 20000, 39000}) {
    std::optional<Seed> found;
    for (std::ptrdiff_t begin = from; !found || found->at_last.length() < 39000; ++begin) found = seed(begin, length);
    const Stretch stretch{found->at_last.begin - 2, found->at_last.end + 2};
    const auto score = static_cast<int>(found->score);
    EXPECT_TRUE(is_added(*found, length, stretch, {})) << from;
    EXPECT_TRUE(is_added(*found, length, stretch, {record(stretch, 20, score - 1)})) << from;
    EXPECT_TRUE(is_added(*found, length, stretch, {record(stretch, 20, score)})) << from;
    EXPECT_FALSE(is_added(*found, length, stretch, {record(stretch, 20, 2 * score)})) << from;
  }
}

// All but the first ones grow in parts.
TEST_F(HiddenRepeatsTest, ManyGrowToTheSameEndsAsAlone) {
  constexpr std::uint32_t length = 31;
  set_array(3, length, 30000);
  HiddenRepeats hidden(*controller_, HiddenRepeats::any_number);
  using Grown = std::array<std::int64_t, 3>;
  std::set<Grown> alone;
  for (std::ptrdiff_t begin = 400; begin < 30000; begin += 131) {
    const std::optional<Seed> seed = this->seed(begin, length);
    if (!seed) continue;
    hidden.add(seed->grown, seed->growth, length, {0, offset(sequence_->mol.end())});
    alone.insert({seed->at_last.begin, seed->at_last.end, seed->score});
  }
  ASSERT_GT(alone.size(), 10U);
  CsatContainer found;
  EXPECT_TRUE(hidden.settle(found.sats));
  std::int64_t highest = 0;
  for (const Csat* sat : found.sats) {
    EXPECT_EQ(alone.count({offset(sat->pos_left), offset(sat->pos_right_end), sat->score}), 1U);
    highest = std::max<std::int64_t>(highest, sat->score);
  }
  const auto lower = [](const Grown& a, const Grown& b) { return a[2] < b[2]; };
  EXPECT_EQ(highest, (*std::max_element(alone.begin(), alone.end(), lower))[2]);
}

// Each case but the first has something for which the repeat must be in the list.
TEST_F(HiddenRepeatsTest, AreLeftOutIfTheyLoseInAnyCase) {
  Random random(1);
  const std::string unit = random.bases(30);
  std::string copies;
  while (copies.size() < 1200) copies += random.copy(unit, 40);
  set(random.bases(300) + copies + random.bases(300));
  constexpr std::uint32_t length = 30;
  std::optional<Seed> found;
  for (std::ptrdiff_t begin = 600; !found; ++begin) found = seed(begin, length);
  const Seed& seed = *found;
  ASSERT_EQ(seed.growth, Growth::paused_forward);
  ASSERT_GT(seed.at_last.length(), 1000U);
  const auto score = static_cast<int>(seed.score);
  const std::uint32_t a = seed.at_last.begin - 2;
  const std::uint32_t b = seed.at_last.end + 2;
  const Stretch stretch{a, b};
  const Stretch all{a - 5, b + 5};
  const int high = 3 * score;

  EXPECT_FALSE(is_added(seed, length, stretch, {record(all, 20, high)}));
  EXPECT_TRUE(is_added(seed, length, stretch, {}));
  EXPECT_TRUE(is_added(seed, length, stretch, {record(all, 20, score - 1)})) << "it wins";
  EXPECT_TRUE(is_added(seed, length, stretch, {record(all, 20, score)})) << "it may win";
  EXPECT_TRUE(is_added(seed, length, stretch, {record(all, 20, score - 1), record(all, 31, score - 2)}))
      << "it stands before those of longer units";
  EXPECT_TRUE(is_added(seed, length, stretch, {record({a + 31, b}, 20, high)})) << "it may stick out by a unit";
  EXPECT_FALSE(is_added(seed, length, stretch, {record({a + 29, b}, 20, high)}));
  EXPECT_TRUE(is_added(seed, length, stretch, {record(all, 20, high), record({b - 10, b + 200}, 205, high + 1)}))
      << "the best one loses to another one";
  EXPECT_FALSE(is_added(seed, length, stretch, {record(all, 20, high), record({b - 10, b + 200}, 20, high + 1)}));
  const Stretch shorter{a + 10, b};
  // Before the best one, and not removed by it:
  EXPECT_FALSE(is_added(seed, length, stretch, {record({a - 60, a + 12}, 5, 50), record(shorter, 20, high)}));
  EXPECT_TRUE(is_added(seed, length, stretch, {record({a + 1, a + 11}, 5, 50), record(shorter, 20, high)}))
      << "it begins where the repeat may";
  EXPECT_TRUE(is_added(seed, length, stretch, {record({a - 8, a + 11}, 10, 50), record(shorter, 20, high)}))
      << "less than a unit lies outside";
  EXPECT_TRUE(is_added(seed, length, stretch,
                       {record({a - 200, a + 2 + seed.grown.right_end - seed.grown.left}, 5, 50),
                        record({a + 29, a + 5000 > b ? b : a + 5000}, 5, high)}))
      << "much of what is known of the repeat may lie inside";
  EXPECT_FALSE(is_added(seed, length, stretch, {record({a - 200, a - 10}, 5, 50), record(shorter, 20, high)}));

  // Some are forgotten before others are found.
  const auto after = [&](const std::vector<Csat*>& others, std::size_t found_before) {
    return with_some_forgotten(seed, length, stretch, others, found_before);
  };
  EXPECT_EQ(after({record(all, 20, high)}, 1), After::left_out);
  EXPECT_EQ(after({record(all, 20, high), record(all, 24, high + 1)}, 1), After::left_out);
  EXPECT_EQ(after({record(all, 20, high), record({b - 10, b + 200}, 20, high + 1)}, 1), After::left_out);
  EXPECT_EQ(after({record(all, 20, score - 1)}, 1), After::added) << "it was not forgotten";
  EXPECT_EQ(after({record(all, 20, high)}, 0), After::left_out) << "the same";
  EXPECT_EQ(after({record(all, 20, score)}, 1), After::added) << "the same";
  EXPECT_EQ(after({record(all, 20, high), record({b - 10, b + 200}, 205, high + 1)}, 1), After::unknown)
      << "the best one loses to another one";
  EXPECT_EQ(after({record(all, 20, high), record({a + 29, b}, 24, high + 1)}, 1), After::left_out);
  EXPECT_EQ(after({record(all, 20, high), record({a + 31, b}, 24, high + 1)}, 1), After::unknown)
      << "it may stick out of the best one by a unit";
  EXPECT_EQ(after({record(shorter, 20, high), record({a + 1, a + 11}, 5, 50)}, 1), After::unknown)
      << "one before the best one begins where it may";
  EXPECT_EQ(after({record({a - 200, a + 2 + seed.grown.right_end - seed.grown.left}, 5, 50),
                   record({a + 29, a + 5000 > b ? b : a + 5000}, 5, high)},
                  2),
            After::unknown)
      << "much of what is known of the repeat may lie inside of one before the best one";
}

}  // namespace
