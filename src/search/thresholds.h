#pragma once

#include <cstdint>

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
