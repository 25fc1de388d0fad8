#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <vector>

#include "search/lag_kernel.h"

/// The bases of a stretch, as the rows of a programme need them: the sequence ascending, the units descending. An N of
/// the sequence stays one only if it may be crossed at no cost. Other N, and what lies outside the sequence, are bytes
/// that match nothing.
class RowBases {
 public:
  /// Positions [first, end); they may lie outside the sequence of `block`, which is read from its end if `forward` is
  /// false.
  RowBases(const LagBlock& block, bool forward, std::int64_t free_Ns, std::int64_t first, std::int64_t end)
      : first_(first),
        last_(end - 1),
        ascending_(static_cast<std::size_t>(end - first) + 64, 0),
        descending_(static_cast<std::size_t>(end - first) + 64, 0xFF) {
    const std::int64_t size = block.end - block.begin;
    const auto base = [&](std::int64_t i) { return forward ? block.begin[i] : block.end[-1 - i]; };
    end = std::min(end, size);
    std::int64_t i = std::max<std::int64_t>(0, first);
    while (i < end) {
      if (base(i) != 'N') {
        ascending_[static_cast<std::size_t>(i - first_)] = static_cast<std::uint8_t>(base(i));
        descending_[static_cast<std::size_t>(last_ - i)] = static_cast<std::uint8_t>(base(i));
        ++i;
        continue;
      }
      // A run that is longer than anybody minds is taken for free: that is never too low.
      const std::int64_t looked_at = std::min<std::int64_t>(free_Ns, 1000) + 1;
      std::int64_t run_begin = i;
      while (run_begin > 0 && i - run_begin < looked_at && base(run_begin - 1) == 'N') --run_begin;
      std::int64_t run_end = i;
      while (run_end < end && base(run_end) == 'N') ++run_end;
      std::int64_t seen = run_end;
      while (seen < size && seen - run_begin < looked_at && base(seen) == 'N') ++seen;
      const bool is_free = free_Ns > 0 && (seen - run_begin <= free_Ns || free_Ns > looked_at);
      if (is_free) std::fill_n(ascending_.begin() + (i - first_), run_end - i, std::uint8_t{'N'});
      i = run_end;
    }
  }

  const std::uint8_t* from(std::int64_t position) const { return ascending_.data() + (position - first_); }
  const std::uint8_t* down_from(std::int64_t position) const { return descending_.data() + (last_ - position); }

 private:
  std::int64_t first_;
  std::int64_t last_;
  std::vector<std::uint8_t> ascending_;
  std::vector<std::uint8_t> descending_;
};
