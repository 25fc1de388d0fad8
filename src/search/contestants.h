#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <list>
#include <tuple>
#include <vector>

#include "satellite/Csat.h"
#include "search/stretches.h"

/// A repeat with its ends and its score, before the overlap removal.
struct Contestant {
  Stretch stretch;
  std::int64_t unit_length;
  std::int64_t score;

  std::int64_t outside(const Stretch& other) const { return std::int64_t{stretch.length()} - shared(other); }
  std::int64_t shared(const Stretch& other) const {
    const std::int64_t end = std::min(stretch.end, other.end);
    return std::max<std::int64_t>(0, end - std::max(stretch.begin, other.begin));
  }
  /// Whether one of the two would be removed.
  bool competes_with(const Contestant& other) const {
    return shared(other.stretch) > 0 &&
           (outside(other.stretch) < unit_length || other.outside(stretch) < other.unit_length);
  }
};

inline bool comes_before(const Contestant& a, const Contestant& b) {
  return std::tie(a.stretch.begin, a.stretch.end, a.unit_length) <
         std::tie(b.stretch.begin, b.stretch.end, b.unit_length);
}

/// All records found, by their ends, as they will stand in the sorted list.
class Contestants {
 public:
  Contestants(const std::list<Csat*>& found, const char* first_base) {
    contestants_.reserve(found.size());
    for (const Csat* sat : found) {
      contestants_.push_back({{static_cast<std::uint32_t>(sat->pos_left - first_base),
                               static_cast<std::uint32_t>(sat->pos_right_end - first_base)},
                              sat->unit_length(),
                              sat->score});
    }
    std::stable_sort(contestants_.begin(), contestants_.end(), comes_before);
    std::uint32_t end = 0;
    for (const Contestant& contestant : contestants_) {
      end = std::max(end, contestant.stretch.end);
      ends_so_far_.push_back(end);
    }
  }

  /// Calls `visit` with those that overlap with the stretch, in their order.
  template <typename Visit>
  void for_each_in(const Stretch& stretch, Visit visit) const {
    const auto end = std::partition_point(contestants_.begin(), contestants_.end(), [&](const Contestant& contestant) {
      return contestant.stretch.begin < stretch.end;
    });
    const auto first = std::upper_bound(ends_so_far_.begin(), ends_so_far_.end(), stretch.begin);
    for (auto at = contestants_.begin() + (first - ends_so_far_.begin()); at < end; ++at) {
      if (at->stretch.end > stretch.begin) visit(*at);
    }
  }

 private:
  std::vector<Contestant> contestants_;
  std::vector<std::uint32_t> ends_so_far_;  ///< the greatest end up to each of them
};
