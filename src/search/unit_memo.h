#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "search/front.h"
#include "search/step_choice.h"
#include "search/unit_runs.h"

/// The steps that earlier long walks found best, by the place in the sequence and the unit bases that come next.
///
/// What the lookahead finds depends on no more of the unit than it looks at. So walks with different units share their
/// steps where the next 64 bases are the same: those of units that are one the rotation of the other, and in a
/// satellite array, whose copies differ little, most of them. Shorter units are known as a whole by then.
///
/// The memo is a cache: a place holds one step, and a later one takes its place. It owns its table, which is made at
/// the first note. It belongs to one sequence, one direction, one limit and one set of rules.
template <bool forward>
class UnitMemo {
 public:
  /// `first_base` is the first base of the sequence.
  explicit UnitMemo(const char* first_base) : first_base_(first_base) {}

  /// Empties the memo.
  void forget() { table_.clear(); }

  /// A walk that has stopped.
  struct Place {
    std::uint32_t position;
    std::uint16_t length;  ///< of the unit; 0 for no place that can be noted
    UnitRuns::Bases next;  ///< of the unit
  };

  Place place_of(const Front<forward>& front, const UnitRuns& runs, std::int64_t unit_length) const {
    const std::int64_t position = front.position - first_base_;
    if (position >> 32 != 0 || unit_length >> 16 != 0) return {0, 0, {}};
    return {static_cast<std::uint32_t>(position), static_cast<std::uint16_t>(unit_length), runs.next_bases(front)};
  }

  /// The step noted for a walk that stands there at this height above the bound; '?' if there is none.
  StepChoice step_at(const Place& place, std::int64_t height) const {
    if (table_.empty()) return {};
    const Entry& entry = table_[slot_of(place)];
    if (entry.position != place.position || entry.length != place.length || entry.length == 0) return {};
    if (entry.next.low != place.next.low || entry.next.high != place.next.high) return {};
    const std::int64_t lowest = entry.lowest_and_kind >> kind_bits;
    if (lowest > height) return {};
    return {"MID"[entry.lowest_and_kind & kind_mask], StepChoice::whole_unit, lowest, StepChoice::any_height};
  }

  /// Notes a step, if the same is chosen with any greater height and it depends on no more of the unit.
  void note(const Place& place, const StepChoice& step) {
    if (place.length == 0 || (step.unit_bases_seen > bases && place.length > bases)) return;
    if (step.highest != StepChoice::any_height || step.lowest > most_lowest) return;
    if (table_.empty()) table_.resize(slots);
    const unsigned number = step.kind == 'M' ? 0 : step.kind == 'I' ? 1 : 2;
    table_[slot_of(place)] = {place.next, place.position, place.length,
                              static_cast<std::uint16_t>(static_cast<unsigned>(step.lowest) << kind_bits | number)};
  }

 private:
  struct Entry {
    UnitRuns::Bases next;
    std::uint32_t position = 0;
    std::uint16_t length = 0;
    std::uint16_t lowest_and_kind = 0;
  };

  static constexpr std::int64_t bases = 64;
  static constexpr int kind_bits = 2;
  static constexpr unsigned kind_mask = 3;
  static constexpr std::int64_t most_lowest = UINT16_MAX >> kind_bits;
  static constexpr int slot_bits = 16;
  static constexpr std::size_t slots = std::size_t{1} << slot_bits;

  static std::size_t slot_of(const Place& place) {
    std::uint64_t key = (place.next.low ^ place.position) * 0x9E3779B97F4A7C15U;
    key = (key ^ key >> 32 ^ place.next.high) * 0xD6E8FEB86659FD93U;
    return key >> (64 - slot_bits);
  }

  const char* first_base_;
  std::vector<Entry> table_;
};
