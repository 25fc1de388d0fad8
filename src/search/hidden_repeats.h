#pragma once

#include <cstdint>
#include <deque>
#include <list>

#include "satellite/Csat.h"
#include "search/CSearchController.h"
#include "search/growing_repeat.h"
#include "search/stretches.h"

/// Kept repeats that leave no anchors to be seen and have not grown to their ends: all that is known of each is a
/// stretch in which it will lie.
///
/// In a satellite array there are thousands of them, of many unit lengths, and nearly all are worse than the best one
/// there, however they grow: the overlap removal would drop them whether they are in the list or not. So it is asked
/// for each of them what it can score at most, and only those that may be better than the best one grow.
///
/// The controller must outlive the object.
class HiddenRepeats {
 public:
  explicit HiddenRepeats(const CSearchController& controller) : controller_(controller) {}

  /// One that will lie in `stretch`, and is as long as its unit already.
  void add(const GrowingRepeat& grown, Growth growth, std::int64_t unit_length, const Stretch& stretch) {
    repeats_.push_back({grown, stretch, static_cast<std::uint32_t>(unit_length), growth});
  }

  /// Adds those on which the overlap removal may depend to the records found, which are in the order of their unit
  /// lengths. Lets go of all.
  void settle(std::list<Csat*>& found);

 private:
  struct Repeat {
    GrowingRepeat grown;
    Stretch stretch;
    std::uint32_t unit_length;
    Growth growth;

    Stretch known() const { return {grown.left, grown.right_end}; }
  };

  class Array;
  class Field;

  void settle_arrays(const Field& field);
  void add_grown_ones(std::list<Csat*>& found) const;

  const CSearchController& controller_;
  std::deque<Repeat> repeats_;  ///< which takes no more memory while it grows
};
