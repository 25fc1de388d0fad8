// The vector kernel at every level that this machine has, against the same programme written out plainly.

#include "search/lag_kernel.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <random>
#include <string>
#include <vector>

namespace {

/// The programme for one task over one direction of a sequence, one value at a time.
class PlainProgramme {
 public:
  PlainProgramme(const LagTask& task, std::string sequence) : task_(task), sequence_(std::move(sequence)) {
    gains_ = table([this](std::int64_t) { return 0; }, size(), task.last_unit);
    for (std::int64_t line = 0; line <= size() / task.line_distance; ++line) {
      lines_.push_back(table([this](std::int64_t) { return most(); }, line * task.line_distance, most()));
    }
  }

  std::int64_t most() const { return fits_bytes(task_) ? 255 : 65535; }

  std::int64_t gain(std::int64_t x, std::int64_t lag) const { return at(gains_, x, lag); }

  /// For the last line within the unit of this length that begins at `x`.
  std::int64_t crossing(std::int64_t x, std::int64_t unit_length) const {
    return at(lines_[static_cast<std::size_t>((x + unit_length) / task_.line_distance)], x, unit_length);
  }

 private:
  using Table = std::vector<std::vector<std::int64_t>>;  ///< by x and lag

  std::int64_t size() const { return static_cast<std::int64_t>(sequence_.size()); }
  std::int64_t lags() const { return 2 * static_cast<std::int64_t>(task_.lanes); }

  std::int64_t at(const Table& table, std::int64_t x, std::int64_t lag) const {
    if (lag < task_.first_lag || lag >= task_.first_lag + lags()) return 0;
    return table[static_cast<std::size_t>(x)][static_cast<std::size_t>(lag - task_.first_lag)];
  }

  /// What the walk gets for comparing a unit base with a base: a run of N is free if it is not longer than that.
  std::int64_t score(std::int64_t x, std::int64_t y) const {
    const auto base = [this](std::int64_t i) { return i < size() ? sequence_[static_cast<std::size_t>(i)] : '-'; };
    if (base(x) == base(y) && base(x) != 'N' && base(x) != '-') return 1;
    if (base(y) != 'N') return -std::int64_t{task_.mismatch};
    std::int64_t begin = y;
    std::int64_t end = y;
    while (begin > 0 && base(begin - 1) == 'N') --begin;
    while (base(end) == 'N') ++end;
    return end - begin <= task_.free_Ns ? 0 : -std::int64_t{task_.mismatch};
  }

  /// Values from row `end` down, where they are what `beyond` says.
  template <typename Beyond>
  Table table(Beyond beyond, std::int64_t end, std::int64_t highest) const {
    Table values(static_cast<std::size_t>(size() + 2),
                 std::vector<std::int64_t>(static_cast<std::size_t>(lags()), beyond(0)));
    for (std::int64_t x = std::min(end, size()) - 1; x >= 0; --x) {
      for (std::int64_t lag = task_.first_lag + lags() - 1; lag >= task_.first_lag; --lag) {
        const std::int64_t straight = at(values, x + 1, lag) + score(x, x + lag);
        const std::int64_t inserted = at(values, x, lag + 1) - task_.indel;
        const std::int64_t deleted = at(values, x + 1, lag - 1) - task_.indel;
        values[static_cast<std::size_t>(x)][static_cast<std::size_t>(lag - task_.first_lag)] =
            std::clamp<std::int64_t>(std::max({straight, inserted, deleted}), 0, highest);
      }
    }
    return values;
  }

  const LagTask& task_;
  std::string sequence_;
  Table gains_;
  std::vector<Table> lines_;
};

/// Which seeds are open, by start and unit length.
using Seeds = std::vector<std::vector<bool>>;

Seeds open_seeds_plainly(const LagTask& task, const std::string& sequence) {
  const PlainProgramme forward(task, sequence);
  const PlainProgramme backward(task, std::string(sequence.rbegin(), sequence.rend()));
  const auto size = static_cast<std::int64_t>(sequence.size());
  const std::int64_t most = forward.most();
  Seeds open(sequence.size());
  for (std::int64_t p = 0; p < size; ++p) {
    for (std::int64_t L = task.first_unit; L <= task.last_unit && p + L < size; ++L) {
      const auto number = static_cast<std::size_t>(L - task.first_unit);
      const std::int64_t gain = forward.gain(p, L);
      const std::int64_t back = size - p - L;
      const bool forward_ends = forward.crossing(p, L) <= most - L && gain <= task.most_forward_gain[number];
      const bool backward_ends = backward.crossing(back, L) + gain <= most - L;
      const bool little = gain + backward.gain(back, L) <= std::min<std::int64_t>(task.most_gain[number], most - 1);
      open[static_cast<std::size_t>(p)].push_back(!(forward_ends && backward_ends && little));
    }
  }
  return open;
}

Seeds open_seeds(const LagKernelLevel& level, const LagTask& task, const std::string& sequence) {
  const auto size = static_cast<std::int64_t>(sequence.size());
  Seeds open(sequence.size());
  for (std::int64_t p = 0; p < size; ++p) {
    const std::int64_t units = std::min(task.last_unit, size - 1 - p) - task.first_unit + 1;
    open[static_cast<std::size_t>(p)].resize(static_cast<std::size_t>(std::max<std::int64_t>(0, units)));
  }
  const LagBlock block{sequence.data(), sequence.data() + size, task.first_unit, 2 * size - task.first_unit};
  level.certify(task, block, [&](std::int64_t row, const std::uint8_t* bits, std::size_t bytes) {
    for (std::int64_t lane = 0; lane < static_cast<std::int64_t>(8 * bytes); ++lane) {
      if ((bits[lane / 8] >> (lane % 8) & 1) == 0) continue;
      const std::int64_t L = task.first_lag + 2 * lane + ((row - task.first_lag) & 1);
      ASSERT_THAT(L, testing::AllOf(testing::Ge(task.first_unit), testing::Le(task.last_unit)));
      const std::int64_t p = (row - L) / 2;
      if (row >= L && p + L < size) {
        open[static_cast<std::size_t>(p)][static_cast<std::size_t>(L - task.first_unit)] = true;
      }
    }
  });
  return open;
}

/// Lanes fill the vectors of every level, so that the kernel works no others.
LagTask make_task(std::int64_t first, std::int64_t last, std::size_t lanes, std::uint16_t indel) {
  LagTask task;
  task.first_unit = first;
  task.last_unit = last;
  task.lanes = lanes;
  task.first_lag = std::max<std::int64_t>(1, first - 9);
  task.line_distance = std::max<std::int64_t>(1, first / 4);
  task.mismatch = 5;
  task.indel = indel;
  task.free_Ns = 2;
  for (std::int64_t L = first; L <= last; ++L) {
    task.most_forward_gain.push_back(static_cast<std::uint16_t>(4 + L / 4));
    task.most_gain.push_back(static_cast<std::uint16_t>(5 + L / 2));
  }
  return task;
}

std::string make_sequence(std::size_t size, unsigned seed) {
  std::mt19937 random(seed);
  std::string bases;
  const std::size_t period = 5 + seed % 40;
  while (bases.size() < size) {
    const std::size_t i = bases.size();
    if (random() % 60 == 0) bases.append(1 + random() % 4, 'N');
    bases += i >= period && random() % 8 != 0 ? bases[i - period] : "ACGT"[random() % 4];
  }
  return bases.substr(0, size);
}

class LagKernelTest : public testing::TestWithParam<LagKernelLevel> {
 protected:
  static void compare_with_plain_programme(std::int64_t first, std::int64_t last, std::size_t lanes,
                                           std::uint16_t indel, std::size_t size, unsigned seed) {
    const LagTask task = make_task(first, last, lanes, indel);
    const std::string sequence = make_sequence(size, seed);
    const Seeds plain = open_seeds_plainly(task, sequence);
    const Seeds open = open_seeds(GetParam(), task, sequence);
    std::size_t rejected = 0;
    for (std::size_t p = 0; p < plain.size(); ++p) {
      rejected += static_cast<std::size_t>(std::count(plain[p].begin(), plain[p].end(), false));
      ASSERT_EQ(open[p], plain[p]) << "seed at " << p << ", unit lengths from " << first << " to " << last
                                   << ", sequence " << seed;
    }
    EXPECT_GT(rejected, 0U);
  }
};

// Lags round the widths of the vectors.
TEST_P(LagKernelTest, EqualsThePlainProgramme) {
  unsigned seed = 0;
  for (const std::int64_t first : {8, 15, 16, 17}) {
    compare_with_plain_programme(first, first + 7, 16, 4, 150, ++seed);
    compare_with_plain_programme(first, first + 24, 32, 24, 200, ++seed);
  }
  for (const std::int64_t last : {63, 64, 65}) compare_with_plain_programme(last - 20, last, 64, 6, 220, ++seed);
  for (const std::int64_t last : {127, 128, 129}) compare_with_plain_programme(last - 30, last, 128, 3, 300, ++seed);
}

// Values fit 8 bits as long as a unit and what a forward walk may gain are below 255.
TEST_P(LagKernelTest, EqualsThePlainProgrammeWhereValuesFitEightBitsNoLonger) {
  unsigned seed = 50;
  for (const std::int64_t last : {200, 201, 202}) compare_with_plain_programme(last - 1, last, 64, 6, 450, ++seed);
  EXPECT_TRUE(fits_bytes(make_task(200, 200, 64, 6)));
  EXPECT_FALSE(fits_bytes(make_task(202, 202, 64, 6)));
}

std::string level_name(const testing::TestParamInfo<LagKernelLevel>& level) {
  return level.param.name;
}

INSTANTIATE_TEST_SUITE_P(Levels, LagKernelTest, testing::ValuesIn(lag_kernel_levels()), level_name);

TEST(LagKernelLevelsTest, EveryProcessorHasTheLastOne) {
  EXPECT_STREQ(lag_kernel_levels().back().name, "baseline");
}

}  // namespace
