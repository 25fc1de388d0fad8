#include "search/lag_matches.h"

#include <algorithm>

#include "search/wide_vectors.h"

WITH_WIDE_VECTORS
std::uint64_t compare_at_lags(const TwoPlanes<std::uint64_t>& sequence, const TwoPlanes<Bits128>& unit,
                              std::size_t lags, unsigned long_run, bool forward, LagMatches& result) {
  const auto low_0 = static_cast<std::uint64_t>(unit.low);
  const auto low_1 = static_cast<std::uint64_t>(unit.low >> 64);
  const auto high_0 = static_cast<std::uint64_t>(unit.high);
  const auto high_1 = static_cast<std::uint64_t>(unit.high >> 64);
  const std::size_t lanes = (lags + 7) / 8 * 8;  // whole vectors
  std::uint64_t* const matches = result.matches;
  std::uint64_t* const starts = result.long_runs;
  for (std::size_t lag = 0; lag < lanes; ++lag) {
    const std::uint64_t low = (low_0 >> lag) | (low_1 << 1 << (63 - lag));
    const std::uint64_t high = (high_0 >> lag) | (high_1 << 1 << (63 - lag));
    matches[lag] = ~((sequence.low ^ low) | (sequence.high ^ high));
    starts[lag] = matches[lag];
  }
  for (unsigned length = 1; length < long_run;) {
    const unsigned step = std::min(length, long_run - length);
    if (forward) {
      for (std::size_t lag = 0; lag < lanes; ++lag) starts[lag] &= starts[lag] >> step;
    } else {
      for (std::size_t lag = 0; lag < lanes; ++lag) starts[lag] &= starts[lag] << step;
    }
    length += step;
  }
  std::uint64_t any = 0;
  for (std::size_t lag = 0; lag < lags; ++lag) any |= starts[lag];
  return any;
}
