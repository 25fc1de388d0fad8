#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

/// The bases of one sequence as three bit planes, 64 bases a word: two bits that tell A, C, G and T apart, and one that
/// marks N. Word 0 begins with the first base; base i is bit i % 64 of word i / 64. Positions outside the sequence read
/// as N, so they never match.
class BasePlanes {
 public:
  /// Half-open range [begin, end) of upper-case A, C, G, T, N.
  BasePlanes(const char* begin, const char* end);

  /// Words that hold bases.
  std::size_t words() const { return words_; }

  /// Sets matches[0 .. count) so that bit i of word j tells whether the base at 64 * (first_word + j) + i and the base
  /// `lag` positions before it are equal and not N. `first_word` may lie outside the sequence.
  void matches(std::int64_t first_word, std::size_t count, std::int64_t lag, std::uint64_t* matches) const;

  /// Sets unknown[0 .. count) to the N bits of those words, shifted up by `lag`: bit i of word j is the base at
  /// 64 * (first_word + j) + i - lag.
  void unknown(std::int64_t first_word, std::size_t count, std::int64_t lag, std::uint64_t* unknown) const;

  /// The number of the first N at or after base `first`, or the length of the sequence; `first` is at most that.
  std::int64_t first_unknown(std::int64_t first) const;

  /// The number of the first base at or after base `first` that is not N, or one that is not below the length of the
  /// sequence.
  std::int64_t first_known(std::int64_t first) const;
  /// One past the number of the last base before base `end` that is not N; 0 if there is none.
  std::int64_t end_of_known_before(std::int64_t end) const;

  /// The 64 bits of a plane from base `first` on, which must lie inside the sequence; beyond its end N, or any base.
  std::uint64_t low_bits(std::int64_t first) const { return bits_from(low_, first); }
  std::uint64_t high_bits(std::int64_t first) const { return bits_from(high_, first); }
  std::uint64_t unknown_bits(std::int64_t first) const { return bits_from(unknown_, first); }

 private:
  static std::uint64_t bits_from(const std::vector<std::uint64_t>& plane, std::int64_t first) {
    const auto word = static_cast<std::size_t>(first / 64) + 1;  // one word stands in front
    const auto bit = static_cast<unsigned>(first % 64);
    return (plane[word] >> bit) | (plane[word + 1] << 1 << (63 - bit));
  }

  std::size_t words_;
  std::vector<std::uint64_t> low_;
  std::vector<std::uint64_t> high_;
  std::vector<std::uint64_t> unknown_;
};
