#pragma once

#include <cstdint>

#include "satellite/Csat.h"

/// The smallest score or length of a repeat that is kept, by unit length.
///
/// The entry for unit length u is the larger of `minimum` and ceil(`offset` + u * `slope`), in score points or bases.
/// It is computed on demand, in extended precision, and held within the signed 32-bit range: unit lengths go up to
/// 2^32 - 1, and a table of all of them would not fit.
class ThresholdTable {
 public:
  ThresholdTable(int minimum, int offset, float slope) : minimum_(minimum), offset_(offset), slope_(slope) {}
  std::int64_t operator[](std::int64_t unit_length) const;

 private:
  int minimum_;
  int offset_;
  float slope_;
};

/// What a repeat of one unit length must have to be kept.
struct Minimum {
  std::int64_t score;
  std::int64_t length;  ///< normalised

  Minimum(const ThresholdTable& scores, const ThresholdTable& lengths, std::int64_t unit_length)
      : score(scores[unit_length]), length(lengths[unit_length]) {}

  bool is_reached_by(const Csat& sat) const { return sat.score >= score && sat.normalized_length() >= length; }
};
