#pragma once

#include <cstdint>

#include "satellite/Csat.h"

/// To where its ends stop, however far that is.
inline constexpr std::int64_t any_bases = INT64_MAX;

/// A repeat that has grown in part, kept small: thousands may wait for the rest of their growth.
///
/// Positions are 0-based offsets in a sequence of at most 2^30 bases; ends as those of Csat.
struct GrowingRepeat {
  std::uint32_t unit;  ///< first base
  std::uint32_t left;
  std::uint32_t right_end;
  std::uint32_t unit_left;   ///< the unit base that is expected before `left`, where that end has not grown
  std::uint32_t unit_right;  ///< the same at `right_end`
  std::int32_t score;

  GrowingRepeat(const Csat& sat, const char* first_base)
      : unit(offset(sat.unit_begin, first_base)),
        left(offset(sat.pos_left, first_base)),
        right_end(offset(sat.pos_right_end, first_base)),
        unit_left(offset(sat.unit_left, first_base)),
        unit_right(offset(sat.unit_right, first_base)),
        score(static_cast<std::int32_t>(sat.score)) {}

  /// Of a record that is the seed of this unit: its ends and its score. It has no events, and more in number than none:
  /// they are to be found again.
  void store(Csat& sat, const char* first_base) const {
    sat.pos_left = first_base + left;
    sat.pos_right_end = first_base + right_end;
    sat.unit_left = first_base + unit_left;
    sat.unit_right = first_base + unit_right;
    sat.score = score;
    sat.mismatches = 1;
  }

 private:
  static std::uint32_t offset(const char* base, const char* first_base) {
    return static_cast<std::uint32_t>(base - first_base);
  }
};
