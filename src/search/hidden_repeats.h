#pragma once

#include <cstddef>
#include <cstdint>
#include <deque>
#include <functional>
#include <list>
#include <vector>

#include "satellite/Csat.h"
#include "search/CSearchController.h"
#include "search/growing_repeat.h"
#include "search/stretches.h"

class Contestants;

/// Kept repeats that leave no anchors to be seen and have not grown to their ends: all that is known of each is a
/// stretch in which it will lie.
///
/// In a satellite array there are thousands of them, of many unit lengths, and nearly all are worse than the best one
/// there, however they grow: the overlap removal would drop them whether they are in the list or not. So it is asked
/// for each of them what it can score at most, and only those that may be better than the best one grow.
///
/// In an array of short units there are several for each base. So when there are many those that are worse than the
/// best one found so far are forgotten; in the end it is looked whether that was right.
///
/// The controller must outlive the object.
class HiddenRepeats {
 public:
  /// Of more than `most_repeats` some are forgotten.
  HiddenRepeats(const CSearchController& controller, std::size_t most_repeats)
      : controller_(controller), most_repeats_(most_repeats) {}
  static constexpr std::size_t any_number = SIZE_MAX;

  /// One that will lie in `stretch`, and is as long as its unit already.
  void add(const GrowingRepeat& grown, Growth growth, std::int64_t unit_length, const Stretch& stretch) {
    repeats_.push_back({grown, stretch, static_cast<std::uint32_t>(unit_length), growth});
  }

  /// To be called now and then, with the records found so far.
  void forget_some(const std::list<Csat*>& found) {
    if (repeats_.size() > most_repeats_) forget_losers(found);
  }

  /// Adds those on which the overlap removal may depend to the records found, which are in the order of their unit
  /// lengths. Lets go of all. False, with an incomplete list, if it may depend on some that were forgotten.
  bool settle(std::list<Csat*>& found);

 private:
  struct Repeat {
    GrowingRepeat grown;
    Stretch stretch;
    std::uint32_t unit_length;
    Growth growth;
    bool is_forgotten = false;

    Stretch known() const { return {grown.left, grown.right_end}; }
  };

  /// All that is known of those that were forgotten.
  struct Forgotten {
    Stretch stretch;  ///< in which they would lie
    std::int64_t most_score;
    std::int64_t least_unit_length;
    std::int64_t least_beyond_unit;  ///< known bases but for a unit

    void add(const Forgotten& more);
  };

  class Array;
  using VisitArray = std::function<bool(Array& array)>;

  bool for_each_array(const Contestants& field, const VisitArray& visit);
  void forget_losers(const std::list<Csat*>& found);
  void add_grown_ones(std::list<Csat*>& found) const;

  const CSearchController& controller_;
  std::size_t most_repeats_;
  std::deque<Repeat> repeats_;  ///< which takes no more memory while it grows
  std::vector<Forgotten> forgotten_;
};
