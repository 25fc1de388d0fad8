// The removal of mostly overlapping repeats.

#include <algorithm>
#include <iterator>

#include "satellite/records_ahead.h"
#include "search/CSearchController.h"
#include "sequence/global-types-and-parameters.h"

namespace {

/// `b` does not start before `a`, and starts before `a` ends.
bool mostly_overlap(const Csat& a, const Csat& b) {
  const std::int64_t overlap = std::min(a.pos_right_end, b.pos_right_end) - b.pos_left;
  return a.unit_length() + overlap > a.length() || b.unit_length() + overlap > b.length();
}

}  // namespace

void CSearchController::remove_hidden(CsatContainer& container) {
  if (!global_remove_mostly_hidden) return;
  std::list<Csat*>& sats = container.sats;
  RecordsAhead ahead(sats);
  const auto remove = [&](std::list<Csat*>::iterator at) {
    ahead.leave_out(at);
    sat_alloc.give_back(*at);
    return sats.erase(at);
  };

  auto first = sats.begin();
  while (first != sats.end()) {
    bool first_removed = false;
    auto second = std::next(first);
    // The list is sorted by start: the first record that starts behind `first` ends its comparisons.
    while (second != sats.end() && (*first)->pos_right_end > (*second)->pos_left) {
      if (!mostly_overlap(**first, **second)) {
        ++second;
      } else if ((*first)->score < (*second)->score) {
        first = remove(first);
        first_removed = true;
        break;
      } else {
        second = remove(second);
      }
    }
    if (!first_removed) ++first;
    ahead.step();
  }
}
