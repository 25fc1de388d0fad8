#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <memory>

#include "satellite/Csat.h"

/// Which positions of one sequence may still anchor a seed. A kept repeat takes its positions out, but for those where
/// it departs from the perfect repeat.
///
/// `mask`[i] describes the base `seq_begin` + i: 'a' free, ' ' covered. `mask`[-1] and `mask`[seq_length] are
/// sentinels that stay free, so that the test needs no bounds. The object owns the mask; it lives for one search.
class CAnchorSeq {
 public:
  CAnchorSeq(const char* begin, std::size_t length)
      : seq_begin(begin), seq_length(length), mask_buffer(new char[length + 3]), mask(mask_buffer.get() + 1) {
    mask[length + 1] = '\0';
    reset();
  }

  /// Frees all positions.
  void reset() { std::memset(mask_buffer.get(), 'a', seq_length + 2); }

  /// Whether the window [p, p + unit_length) may be tried as a seed, which must end before the sequence's last base:
  /// its first base is free and so is its last or the one behind it, or the base before it and its last are both free.
  bool admits(const char* p, std::int64_t unit_length) const {
    const char* const m = mask + (p - seq_begin);
    const bool last = m[unit_length - 1] == 'a';
    return (m[0] == 'a' && (last || m[unit_length] == 'a')) || (m[-1] == 'a' && last);
  }

  bool is_free(const char* p) const { return mask[p - seq_begin] == 'a'; }

  /// Takes the positions of a kept repeat out, then frees those of its events.
  void cover(const Csat& sat) {
    std::memset(mask + (sat.pos_left - seq_begin), ' ', static_cast<std::size_t>(sat.length()));
    for (const Csat::Event& event : sat.missense) mask[event.first - seq_begin] = 'a';
  }

 private:
  const char* seq_begin;
  std::size_t seq_length;
  std::unique_ptr<char[]> mask_buffer;
  char* mask;
};
