#include "search/lag_matches.h"

#include <algorithm>

#include "search/wide_vectors.h"

WITH_WIDE_VECTORS
std::uint64_t compare_at_lags(const TwoPlanes<std::uint64_t>& sequence, const TwoPlanes<Bits128>& unit,
                              std::size_t lags, unsigned long_run, bool forward, LagMatches& result) {
  const std::size_t lanes = (lags + 7) / 8 * 8;  // whole vectors
  std::uint64_t* const matches = result.matches;
  std::uint64_t* const starts = result.long_runs + 1;
  compare_bases(sequence, unit, lanes, matches);
  for (std::size_t lag = 0; lag < lanes; ++lag) starts[lag] = matches[lag];
  for (unsigned length = 1; length < long_run;) {
    const unsigned step = std::min(length, long_run - length);
    if (forward) {
      for (std::size_t lag = 0; lag < lanes; ++lag) starts[lag] &= starts[lag] >> step;
    } else {
      for (std::size_t lag = 0; lag < lanes; ++lag) starts[lag] &= starts[lag] << step;
    }
    length += step;
  }
  starts[-1] = starts[lanes] = 0;
  std::uint64_t any = 0;
  for (std::size_t lag = 0; lag < lags; ++lag) any |= starts[lag];
  return any;
}

WITH_WIDE_VECTORS
void find_prospects(const LagMatches& compared, std::size_t lags, unsigned steps, unsigned long_run, bool forward,
                    StepProspects& prospects) {
  const std::size_t lanes = (lags + 7) / 8 * 8;  // whole vectors
  const std::uint64_t* const long_runs = compared.long_runs + 1;
  const std::uint64_t* then = long_runs;  // what may follow a step
  for (unsigned step = 1; step <= steps; ++step) {
    // An insertion takes a base and makes the lag greater, in the direction of the walk; a deletion makes it smaller.
    const std::uint64_t* const inserted = forward ? then - 1 : then + 1;
    const std::uint64_t* const deleted = forward ? then + 1 : then - 1;
    std::uint64_t from[LagMatches::most_lags];
    std::uint64_t runs[LagMatches::most_lags];
    for (std::size_t lag = 0; lag < lanes; ++lag) {
      const std::uint64_t taken = then[lag] | inserted[lag];
      runs[lag] = compared.matches[lag];
      from[lag] = ((forward ? taken >> 1 : taken << 1) | deleted[lag]) & ~runs[lag];  // where a walk stops
    }
    for (unsigned distance = 1; distance < long_run; distance *= 2) {
      if (forward) {
        for (std::size_t lag = 0; lag < lanes; ++lag) {
          from[lag] |= from[lag] >> distance & runs[lag];
          runs[lag] &= runs[lag] >> distance;
        }
      } else {
        for (std::size_t lag = 0; lag < lanes; ++lag) {
          from[lag] |= from[lag] << distance & runs[lag];
          runs[lag] &= runs[lag] << distance;
        }
      }
    }
    std::uint64_t* const reached = prospects.reached[step] + 1;
    for (std::size_t lag = 0; lag < lanes; ++lag) reached[lag] = long_runs[lag] | from[lag];
    reached[-1] = reached[lanes] = 0;
    then = reached;
  }
}
