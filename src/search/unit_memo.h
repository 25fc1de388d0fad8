#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "search/front.h"
#include "search/step_choice.h"
#include "search/unit_runs.h"

/// The steps that earlier walks with the same unit, or a rotation of it, found best, by the place in the sequence and
/// the unit bases that come next: so many that a unit of up to 64 bases is known as a whole. Longer ones are not noted.
///
/// The memo is a cache: a place holds one step, and a later one takes its place. It owns its table, which is made at
/// the first note. It belongs to one sequence, one direction, one limit and one set of rules.
template <bool forward>
class UnitMemo {
 public:
  /// The sequence, half-open range.
  UnitMemo(const char* begin, const char* end) : first_base_(begin), is_usable_(end - begin <= longest_sequence) {}

  bool takes(std::int64_t unit_length) const { return is_usable_ && unit_length <= longest_unit; }

  /// Empties the memo.
  void forget() { table_.clear(); }

  /// Where a walk has stopped, with a unit that the memo takes.
  struct Place {
    UnitRuns::Bases next;  ///< of the unit
    std::uint32_t position = 0;
    std::uint32_t length = 0;  ///< of the unit

    bool operator==(const Place& other) const {
      return position == other.position && length == other.length && next.low == other.next.low &&
             next.high == other.next.high;
    }
  };

  Place place_of(const Front<forward>& front, const UnitRuns& runs, std::int64_t unit_length) const {
    return {runs.next_bases(front), static_cast<std::uint32_t>(front.position - first_base_),
            static_cast<std::uint32_t>(unit_length)};
  }

  /// The step noted for a walk that stands there at this height above the bound; '?' if there is none.
  StepChoice step_at(const Place& place, std::int64_t height) const {
    if (table_.empty()) return {};
    const Entry& entry = table_[slot_of(place)];
    if (!(entry.place == place) || entry.lowest > height) return {};
    return {entry.kind, StepChoice::whole_unit, entry.lowest, StepChoice::any_height};
  }

  /// Notes a step, if the same is chosen with any greater height.
  void note(const Place& place, const StepChoice& step) {
    if (step.highest != StepChoice::any_height || step.lowest > INT16_MAX) return;
    if (table_.empty()) table_.resize(slots);
    table_[slot_of(place)] = {place, static_cast<std::int16_t>(step.lowest), step.kind};
  }

 private:
  struct Entry {
    Place place;  ///< of no unit if nothing is noted
    std::int16_t lowest = 0;
    char kind = '?';
  };

  static constexpr std::int64_t longest_unit = 64;
  static constexpr std::ptrdiff_t longest_sequence = std::ptrdiff_t{1} << 32;
  static constexpr int slot_bits = 15;
  static constexpr std::size_t slots = std::size_t{1} << slot_bits;

  static std::size_t slot_of(const Place& place) {
    std::uint64_t key = (place.next.low ^ place.position) * 0x9E3779B97F4A7C15U;
    key = (key ^ key >> 32 ^ place.next.high) * 0xD6E8FEB86659FD93U;
    return key >> (64 - slot_bits);
  }

  const char* const first_base_;
  const bool is_usable_;
  std::vector<Entry> table_;
};
