// The vector kernel at every level that this machine has, against the same programme written out plainly.

#include "search/lag_kernel.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <random>
#include <string>
#include <vector>

namespace {

/// The programme for one task, one value at a time.
class PlainProgramme {
 public:
  PlainProgramme(const LagTask& task, const LagRows& rows) : task_(task), rows_(rows) {}

  bool certifies(std::int64_t x, std::int64_t unit_length) const {
    const std::int64_t line = (x + unit_length) / task_.line_distance * task_.line_distance;
    const auto lane = static_cast<std::size_t>(unit_length - task_.first_lag);
    const int crossing = values(x, line, task_.start)[lane];
    const int gain = std::min(values(x, rows_.highest + 1, 0)[lane], largest());
    return crossing <= task_.crossing_limit[lane] && gain <= task_.gain_limit[lane];
  }

 private:
  int largest() const { return task_.start + task_.last_unit + 1 <= 255 ? 255 : 65535; }

  /// The values of row x for paths to row `top`, where they have the value `start`.
  std::vector<int> values(std::int64_t x, std::int64_t top, int start) const {
    std::vector<int> above(task_.lanes, start);
    for (std::int64_t row = top - 1; row >= x; --row) above = row_below(above, row);
    return above;
  }

  std::vector<int> row_below(const std::vector<int>& above, std::int64_t x) const {
    const auto at = [](const std::vector<int>& row, std::size_t i) { return i < row.size() ? row[i] : 0; };
    std::vector<int> below(task_.lanes);
    for (std::size_t i = task_.lanes; i-- > 0;) {
      const char unit = rows_.bases[x];
      const char base = rows_.bases[x + task_.first_lag + static_cast<std::int64_t>(i)];
      const bool match = (unit == base && unit != 0) || base == 'N';
      below[i] = std::max({0, match ? std::min(above[i] + 1, largest()) : above[i] - task_.mismatch,
                           i > 0 ? above[i - 1] - task_.indel : 0});
    }
    // Insertions are followed by a match.
    std::vector<int> result = below;
    for (std::size_t i = 0; i < task_.lanes; ++i) {
      const std::size_t last = std::min(task_.lanes - 1, i + static_cast<std::size_t>(task_.longest_insertion));
      for (std::size_t j = i + 1; j <= last; ++j) {
        const char base = rows_.bases[x + task_.first_lag + static_cast<std::int64_t>(j)];
        const bool match = (rows_.bases[x] == base && base != 0) || base == 'N';
        const auto inserted = static_cast<std::int64_t>(j - i);
        if (!match) continue;
        const std::int64_t value = std::min(at(above, j) + 1, largest()) - inserted * task_.indel;
        result[i] = std::max<int>(result[i], static_cast<int>(std::max<std::int64_t>(value, 0)));
      }
    }
    return result;
  }

  const LagTask& task_;
  const LagRows& rows_;
};

LagTask make_task(std::int64_t first, std::int64_t last, std::uint16_t indel) {
  LagTask task;
  task.first_unit = first;
  task.last_unit = last;
  task.longest_insertion = 16;  // a power of two: the passes of the kernel then allow no more than that
  task.first_lag = std::max<std::int64_t>(1, first - 9);
  task.lanes = static_cast<std::size_t>((last + 20 - task.first_lag) / 64 + 1) * 64;
  task.line_distance = std::max<std::int64_t>(1, first / 4);
  task.mismatch = 5;
  task.indel = indel;
  task.start = static_cast<std::uint16_t>(last + 24);
  for (std::size_t i = 0; i < task.lanes; ++i) {
    const std::int64_t unit = task.first_lag + static_cast<std::int64_t>(i);
    task.crossing_limit.push_back(
        static_cast<std::uint16_t>(std::clamp<std::int64_t>(task.start - unit / 2, 0, 60000)));
    task.gain_limit.push_back(6);
  }
  return task;
}

std::vector<char> make_bases(std::size_t size, std::size_t inside, unsigned seed) {
  std::mt19937 random(seed);
  std::vector<char> bases(size, 0);
  const std::size_t period = 5 + seed % 40;
  for (std::size_t i = 0; i < inside; ++i) {
    bases[i] = i >= period && random() % 8 != 0 ? bases[i - period] : "ACGTACGTACGTN"[random() % 13];
  }
  return bases;
}

void compare_with_plain_programme(const LagKernelLevel& level, std::int64_t first, std::int64_t last,
                                  std::uint16_t indel, std::int64_t decided, unsigned seed) {
  const LagTask task = make_task(first, last, indel);
  const std::int64_t highest = decided + last;
  const std::size_t size = static_cast<std::size_t>(highest + task.first_lag) + task.lanes + 64;
  const std::vector<char> bases = make_bases(size, size - 100, seed);
  const LagRows rows{bases.data(), highest, 0, decided};
  std::vector<std::uint8_t> certified(static_cast<std::size_t>(decided) * task.lanes / 8);
  level.certify(task, rows, [&](std::int64_t row, const std::uint8_t* verdicts) {
    std::copy_n(verdicts, task.lanes / 8, certified.data() + static_cast<std::size_t>(row) * task.lanes / 8);
  });

  const PlainProgramme plain(task, rows);
  for (std::int64_t x = 0; x < decided; ++x) {
    for (std::int64_t unit = first; unit <= last; ++unit) {
      const auto bit = static_cast<std::size_t>(x) * task.lanes + static_cast<std::size_t>(unit - task.first_lag);
      ASSERT_EQ((certified[bit / 8] >> (bit % 8) & 1) != 0, plain.certifies(x, unit))
          << "row " << x << ", unit length " << unit << " of " << first << " to " << last << ", seed " << seed;
    }
  }
}

using LagKernelTest = testing::TestWithParam<LagKernelLevel>;

// Unit lengths round the widths of the vectors, and round 112, where values stop fitting 8 bits.
TEST_P(LagKernelTest, EqualsThePlainProgramme) {
  unsigned seed = 0;
  for (const std::int64_t first : {8, 15, 16, 17, 31, 33}) {
    compare_with_plain_programme(GetParam(), first, first + first / 2, 4, 24, ++seed);
  }
  for (const std::int64_t last : {63, 64, 65}) compare_with_plain_programme(GetParam(), last - 3, last, 6, 6, ++seed);
  for (const std::int64_t last : {114, 115, 116})
    compare_with_plain_programme(GetParam(), last - 1, last, 3, 3, ++seed);
}

std::string level_name(const testing::TestParamInfo<LagKernelLevel>& level) {
  return level.param.name;
}

INSTANTIATE_TEST_SUITE_P(Levels, LagKernelTest, testing::ValuesIn(lag_kernel_levels()), level_name);

TEST(LagKernelLevelsTest, EveryProcessorHasTheLastOne) {
  EXPECT_STREQ(lag_kernel_levels().back().name, "baseline");
}

}  // namespace
