#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <vector>

#include "search/front.h"
#include "search/step_choice.h"

/// The steps that earlier walks found best, by the place in the sequence and the unit base expected there.
///
/// As long as the lookahead does not come to the end of the unit, what it finds does not depend on where the unit
/// begins or ends: the unit's bases are read from the sequence too. So all seeds of one neighbourhood share their
/// steps, where their lags are the same.
///
/// The memo is a cache: a place holds one step, and a later one takes its place. It owns its table, which is made at
/// the first note. It belongs to one sequence, one direction and one set of rules.
template <bool forward>
class StepMemo {
 public:
  /// `first_base` is the first base of the sequence.
  explicit StepMemo(const char* first_base) : first_base_(first_base) {}

  /// Empties the memo.
  void forget() { table_.clear(); }

  /// The step noted for a walk that has stopped at `front` at this height above the bound; '?' if there is none. `rest`
  /// unit bases are left until the unit begins anew.
  StepChoice step_at(const Front<forward>& front, std::int64_t rest, std::int64_t height) const {
    if (table_.empty() || !has_key(front)) return {};
    const std::uint64_t entry = table_[slot_of(key_of(front))];
    if (entry >> value_bits != key_of(front)) return {};
    const auto seen = static_cast<std::int64_t>(entry >> (kind_bits + lowest_bits) & most_seen);
    const auto lowest = static_cast<std::int64_t>(entry >> kind_bits & most_lowest);
    if (seen > rest || lowest > height) return {};
    return {kinds[entry & kind_mask], seen, lowest, StepChoice::any_height};
  }

  /// Notes a step, if the same is chosen with any greater height and it does not depend on the end of the unit.
  void note(const Front<forward>& front, const StepChoice& step, std::int64_t rest) {
    if (step.unit_bases_seen > std::min(rest, static_cast<std::int64_t>(most_seen)) || !has_key(front)) return;
    if (step.highest != StepChoice::any_height || step.lowest > static_cast<std::int64_t>(most_lowest)) return;
    if (table_.empty()) table_.assign(slots, 0);
    const std::uint64_t number = step.kind == 'M' ? 1 : step.kind == 'I' ? 2 : 3;
    const std::uint64_t value =
        (static_cast<std::uint64_t>(step.unit_bases_seen) << lowest_bits | static_cast<std::uint64_t>(step.lowest))
            << kind_bits |
        number;
    table_[slot_of(key_of(front))] = key_of(front) << value_bits | value;
  }

 private:
  static constexpr int kind_bits = 2;
  static constexpr std::uint64_t kind_mask = 3;
  static constexpr char kinds[] = {'?', 'M', 'I', 'D'};
  static constexpr std::uint64_t most_seen = 127;
  static constexpr int lowest_bits = 7;
  static constexpr std::uint64_t most_lowest = 127;
  static constexpr int value_bits = 16;
  static constexpr int lag_bits = 16;
  static constexpr int position_bits = 32;
  static constexpr int slot_bits = 16;
  static constexpr std::size_t slots = std::size_t{1} << slot_bits;

  std::int64_t position_of(const Front<forward>& front) const { return front.position - first_base_; }
  static std::int64_t lag_of(const Front<forward>& front) {
    return forward ? front.position - front.unit : front.unit - front.position;
  }

  /// Whether position and lag fit into a key. No key is 0: the first base is never a walk's next one.
  bool has_key(const Front<forward>& front) const {
    return position_of(front) >> position_bits == 0 && lag_of(front) >> lag_bits == 0;
  }
  std::uint64_t key_of(const Front<forward>& front) const {
    return static_cast<std::uint64_t>(position_of(front)) << lag_bits | static_cast<std::uint64_t>(lag_of(front));
  }
  static std::size_t slot_of(std::uint64_t key) { return (key * 0x9E3779B97F4A7C15U) >> (64 - slot_bits); }

  const char* first_base_;
  std::vector<std::uint64_t> table_;
};
