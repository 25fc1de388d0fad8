#pragma once

#include <cstddef>
#include <cstdint>

/// 128 bits in one value; a compiler extension that g++ and clang have on every 64-bit machine.
__extension__ using Bits128 = unsigned __int128;

/// 64 bases of a sequence against a repeated unit, at several lags: one bit for each base, set where it matches.
struct LagMatches {
  static constexpr std::size_t most_lags = 32;
  std::uint64_t matches[most_lags];
  /// The bases at which long runs of matches begin, in the direction of a walk: number lag + 1, between empty ones.
  std::uint64_t long_runs[most_lags + 2];
};

/// Where further steps can pay: bit p of number lag + 1 is set in `reached[steps]` if a long run of matches begins at
/// base p at this lag, or if the walk, going on from there, comes to one with up to so many steps, mismatches,
/// insertions and deletions. A bit is exact if all that matters to it lies within the 64 bases and the lags.
struct StepProspects {
  static constexpr unsigned most_steps = 6;
  std::uint64_t reached[most_steps + 1][LagMatches::most_lags + 2];  ///< none for no steps: they are the long runs
};

/// Bases as two bit planes; bit i is base i.
template <typename Bits>
struct TwoPlanes {
  Bits low;
  Bits high;
};

/// The lowest `n` bits of a word, at most all.
constexpr std::uint64_t lowest_bits(std::int64_t n) {
  return n >= 64 ? ~std::uint64_t{0} : (std::uint64_t{1} << n) - 1;
}

inline Bits128 joined_bits(std::uint64_t low, std::uint64_t high) {
  return (Bits128{high} << 64) | low;
}

/// The bits in the other order.
inline std::uint64_t reversed_bits(std::uint64_t bits) {
  bits = (bits >> 1 & 0x5555555555555555U) | (bits & 0x5555555555555555U) << 1;
  bits = (bits >> 2 & 0x3333333333333333U) | (bits & 0x3333333333333333U) << 2;
  bits = (bits >> 4 & 0x0F0F0F0F0F0F0F0FU) | (bits & 0x0F0F0F0F0F0F0F0FU) << 4;
  return __builtin_bswap64(bits);
}
inline Bits128 reversed_bits(const Bits128& bits) {
  return joined_bits(reversed_bits(static_cast<std::uint64_t>(bits >> 64)),
                     reversed_bits(static_cast<std::uint64_t>(bits)));
}

/// Compares sequence base i with unit base i + lag for the lags 0 to `lags` - 1, at most 63.
inline void compare_bases(const TwoPlanes<std::uint64_t>& sequence, const TwoPlanes<Bits128>& unit, std::size_t lags,
                          std::uint64_t* matches) {
  const auto low_0 = static_cast<std::uint64_t>(unit.low);
  const auto low_1 = static_cast<std::uint64_t>(unit.low >> 64);
  const auto high_0 = static_cast<std::uint64_t>(unit.high);
  const auto high_1 = static_cast<std::uint64_t>(unit.high >> 64);
  for (std::size_t lag = 0; lag < lags; ++lag) {
    const std::uint64_t low = (low_0 >> lag) | (low_1 << 1 << (63 - lag));
    const std::uint64_t high = (high_0 >> lag) | (high_1 << 1 << (63 - lag));
    matches[lag] = ~((sequence.low ^ low) | (sequence.high ^ high));
  }
}

/// The same for at most 32 lags, and marks runs of at least
/// `long_run` matches: those that a walk towards higher positions begins, or lower ones if `forward` is false. Returns
/// where they begin at any lag.
std::uint64_t compare_at_lags(const TwoPlanes<std::uint64_t>& sequence, const TwoPlanes<Bits128>& unit,
                              std::size_t lags, unsigned long_run, bool forward, LagMatches& result);

/// Finds the prospects for 1 to `steps` steps, at most `most_steps`, of the walk for which `compare_at_lags` found
/// `compared` with the same arguments.
void find_prospects(const LagMatches& compared, std::size_t lags, unsigned steps, unsigned long_run, bool forward,
                    StepProspects& prospects);
