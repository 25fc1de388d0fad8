#include "search/thresholds.h"

#include <algorithm>
#include <cmath>

std::int64_t ThresholdTable::operator[](std::int64_t unit_length) const {
  const long double linear = std::ceil(static_cast<long double>(offset_) +
                                       static_cast<long double>(unit_length) * static_cast<long double>(slope_));
  if (!(linear > static_cast<long double>(minimum_))) return minimum_;
  return static_cast<std::int64_t>(std::min(linear, static_cast<long double>(INT32_MAX)));
}
