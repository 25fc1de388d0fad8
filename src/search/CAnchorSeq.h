#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <utility>
#include <vector>

#include "satellite/Csat.h"
#include "search/unit_guide.h"

/// Which positions of one sequence may still anchor a seed. A kept repeat takes its positions out, but for those where
/// it departs from the perfect repeat.
///
/// One bit for each base, set where it is free, and a sentinel before the first and behind the last base that stays
/// free, so that the test needs no bounds. The object owns the bits; it lives for one search.
///
/// In a satellite array thousands of repeats may each cover the whole array, one after the other, while the search gets
/// on by a few bases between them. So a stretch of a repeat that a guide knows is only named here. Its bits are
/// undefined until `settle` is called for them.
class CAnchorSeq {
 public:
  /// The sequence begins at `begin` and has `length` bases.
  CAnchorSeq(const char* begin, std::size_t length) : seq_begin(begin), first_base(begin), mask(length / 64 + 2) {
    reset();
  }

  /// Frees all positions.
  void reset() {
    std::fill(mask.begin(), mask.end(), ~std::uint64_t{0});
    named.clear();
  }

  /// To be called before the `count` positions from `first` on are asked for, if something was covered before. They may
  /// exceed the sequence.
  void settle(const char* first, std::ptrdiff_t count) {
    const std::ptrdiff_t bit = first - seq_begin + 1;
    if (!named.empty()) settle_bits(bit, bit + count);
  }

  /// The same for all positions: no guide is kept in memory any more.
  void settle_all() {
    while (!named.empty()) settle_bits(named.front().first, named.front().end);
  }

  /// Whether the window [p, p + unit_length) may be tried as a seed, which must end before the sequence's last base:
  /// its first base is free and so is its last or the one behind it, or the base before it and its last are both free.
  bool admits(const char* p, std::int64_t unit_length) const {
    const bool last = is_free(p + unit_length - 1);
    if (is_free(p)) return last || is_free(p + unit_length);
    return last && is_free(p - 1);
  }

  /// The same for the 64 windows that begin at `first` and behind it: bit i is the one at first + i. Of windows that do
  /// not end before the sequence's last base nothing is said.
  std::uint64_t admitted(const char* first, std::int64_t unit_length) const {
    const std::uint64_t last = bits_from(first + unit_length - 1);
    return (bits_from(first) & (last | bits_from(first + unit_length))) | (bits_from(first - 1) & last);
  }

  /// `p` may be one before the first base or one past the last.
  bool is_free(const char* p) const {
    const auto bit = bit_of(p);
    return (mask[bit / 64] >> (bit % 64) & 1) != 0;
  }

  /// The state of a part of the sequence, as a mask of its own that knows nothing of the rest: `words` times 64
  /// positions from base 64 * `first_word` on, and one before it.
  CAnchorSeq part(std::size_t first_word, std::size_t words) const {
    const std::size_t end = std::min(first_word + words + 1, mask.size());
    return CAnchorSeq(seq_begin + 64 * first_word, first_base,
                      std::vector<std::uint64_t>(mask.begin() + offset(first_word), mask.begin() + offset(end)));
  }

  /// Takes the positions of a kept repeat out, then frees those of its events. `untold` are the stretches whose events
  /// its list does not hold; at least a base that was taken by itself lies between two of them.
  void cover(const Csat& sat, const std::vector<GuidedStretch>& untold = {});

 private:
  /// A stretch of a repeat that is not in the bits: they are those of [first, end). Bits of other events of the repeat
  /// may lie there.
  struct NamedStretch {
    GuidedStretch stretch;
    std::ptrdiff_t first;
    std::ptrdiff_t end;
    std::vector<std::ptrdiff_t> other_events;
    std::ptrdiff_t settled_at_once;
  };

  CAnchorSeq(const char* begin, const char* first_base_of_sequence, std::vector<std::uint64_t> state)
      : seq_begin(begin), first_base(first_base_of_sequence), mask(std::move(state)) {}

  void settle_bits(std::ptrdiff_t first, std::ptrdiff_t end);
  void write(const NamedStretch& stretch, std::ptrdiff_t first, std::ptrdiff_t end);
  void forget_named(std::ptrdiff_t first, std::ptrdiff_t end);
  void free_event(std::ptrdiff_t bit);

  static std::ptrdiff_t offset(std::size_t word) { return static_cast<std::ptrdiff_t>(word); }

  std::ptrdiff_t bits() const { return static_cast<std::ptrdiff_t>(64 * mask.size()); }

  /// The sentinel before the first base has bit 0.
  std::size_t bit_of(const char* p) const { return static_cast<std::size_t>(p - seq_begin + 1); }

  /// Which of the 64 positions from `p` on are free; behind the end none.
  std::uint64_t bits_from(const char* p) const {
    const std::size_t word = bit_of(p) / 64;
    const std::size_t bit = bit_of(p) % 64;
    const std::uint64_t low = word < mask.size() ? mask[word] : 0;
    const std::uint64_t high = word + 1 < mask.size() ? mask[word + 1] : 0;
    return (low >> bit) | (high << 1 << (63 - bit));
  }

  void free(std::ptrdiff_t bit) {
    if (bit >= 0 && bit < bits()) mask[static_cast<std::size_t>(bit / 64)] |= std::uint64_t{1} << (bit % 64);
  }

  /// Half-open range of bits.
  void clear_bits(std::ptrdiff_t first, std::ptrdiff_t end) {
    if (first >= end) return;
    const std::ptrdiff_t first_word = first / 64;
    const std::ptrdiff_t last_word = (end - 1) / 64;
    const std::uint64_t from_first = ~std::uint64_t{0} << (first % 64);
    const std::uint64_t to_last = ~std::uint64_t{0} >> (63 - (end - 1) % 64);
    const auto word = [this](std::ptrdiff_t number) { return mask.begin() + number; };
    if (first_word == last_word) {
      *word(first_word) &= ~(from_first & to_last);
      return;
    }
    *word(first_word) &= ~from_first;
    std::fill(word(first_word + 1), word(last_word), std::uint64_t{0});
    *word(last_word) &= ~to_last;
  }

  const char* seq_begin;   ///< of the part of the sequence that this is the mask of
  const char* first_base;  ///< of the sequence
  std::vector<std::uint64_t> mask;
  std::vector<NamedStretch> named;  ///< they do not overlap
};
