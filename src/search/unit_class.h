#pragma once

#include <cstdint>
#include <string>

#include "search/front.h"

/// A repeat unit without regard to where one begins to read it: the units ACGG, CGGA, GGAC and GACG are one class.
class UnitClass {
 public:
  explicit UnitClass(const UnitCircle& circle)
      : start_(least_rotation(circle)),
        text_(std::string(circle.begin + start_, circle.end) + std::string(circle.begin, circle.begin + start_)),
        period_(smallest_period(text_)) {}

  /// The unit read from where the text comes first in the alphabet.
  const std::string& text() const { return text_; }

  /// The text is so many bases over and over; its length if it is not periodic.
  std::int64_t period() const { return period_; }

  /// Where the base number `offset` of the circle stands in `text`; one of several places if that is itself periodic,
  /// always the first.
  std::int64_t phase_of(std::int64_t offset) const {
    const std::int64_t at = offset - start_;
    return (at < 0 ? at + static_cast<std::int64_t>(text_.size()) : at) % period_;
  }

 private:
  /// The offset at which the least rotation begins (Booth 1980, in the form with two candidates).
  static std::int64_t least_rotation(const UnitCircle& circle) {
    const std::int64_t length = circle.length();
    std::int64_t a = 0;
    std::int64_t b = 1;
    std::int64_t same = 0;
    while (a < length && b < length && same < length) {
      const char from_a = circle.begin[(a + same) % length];
      const char from_b = circle.begin[(b + same) % length];
      if (from_a == from_b) {
        ++same;
        continue;
      }
      (from_a > from_b ? a : b) += same + 1;
      if (a == b) ++b;
      same = 0;
    }
    return a < b ? a : b;
  }

  /// The least rotation of a periodic unit is its first period over and over.
  static std::int64_t smallest_period(const std::string& text) {
    const auto length = static_cast<std::int64_t>(text.size());
    for (std::int64_t period = 1; 2 * period <= length; ++period) {
      if (length % period == 0 && text.compare(0, text.size() - static_cast<std::size_t>(period), text,
                                               static_cast<std::size_t>(period), std::string::npos) == 0) {
        return period;
      }
    }
    return length;
  }

  std::int64_t start_;
  std::string text_;
  std::int64_t period_;
};
