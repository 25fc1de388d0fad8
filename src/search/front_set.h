#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "search/front.h"
#include "search/lookahead_way.h"

/// The states to which equally many steps of a lookahead lead, each once. Two states are one if position and unit base
/// are; the scores of the fronts do not matter.
template <bool forward>
class FrontSet {
 public:
  struct Node {
    Front<forward> front;
    LookaheadWay way;
  };

  std::vector<Node>& nodes() { return nodes_; }

  void clear() {
    nodes_.clear();
    if (++generation_ != 0) return;
    slots_.assign(slots_.size(), Slot());
    generation_ = 1;
  }

  /// Of two ways into one state the better one is enough.
  void add(const Front<forward>& front, const LookaheadWay& way) {
    LookaheadWay* const other = insert(front, way);
    if (other != nullptr) other->raise_to(way);
  }

  /// Notes a way that has stopped at a state, those of fewer steps first. False if one beats it that has stopped there
  /// before.
  bool note_stop(const Front<forward>& front, const LookaheadWay& way) {
    LookaheadWay* const other = insert(front, way);
    if (other == nullptr) return true;
    if (other->beats(way)) return false;
    *other = way;
    return true;
  }

 private:
  struct Slot {
    std::uint32_t generation = 0;  ///< the slot is taken if it is the present one
    std::uint32_t node = 0;
  };

  /// The way to the state if it is there already, else null: it is there from now on, with this one.
  LookaheadWay* insert(const Front<forward>& front, const LookaheadWay& way) {
    if (2 * (nodes_.size() + 1) > slots_.size()) grow();
    Slot& slot = slot_of(front);
    if (slot.generation == generation_) return &nodes_[slot.node].way;
    slot = {generation_, static_cast<std::uint32_t>(nodes_.size())};
    nodes_.push_back({front, way});
    return nullptr;
  }

  Slot& slot_of(const Front<forward>& front) {
    const auto position = reinterpret_cast<std::uintptr_t>(front.position);
    const auto unit = reinterpret_cast<std::uintptr_t>(front.unit);
    std::size_t at = (position * 0x9E3779B97F4A7C15U ^ unit * 0xC2B2AE3D27D4EB4FU) >> 20;
    while (true) {
      Slot& slot = slots_[at++ & (slots_.size() - 1)];
      if (slot.generation != generation_) return slot;
      const Front<forward>& other = nodes_[slot.node].front;
      if (other.position == front.position && other.unit == front.unit) return slot;
    }
  }

  void grow() {
    slots_.assign(slots_.empty() ? 64 : 2 * slots_.size(), Slot());
    generation_ = 1;
    for (std::size_t i = 0; i < nodes_.size(); ++i) {
      slot_of(nodes_[i].front) = {generation_, static_cast<std::uint32_t>(i)};
    }
  }

  std::vector<Node> nodes_;
  std::vector<Slot> slots_;  ///< a power of two, at most half of them taken
  std::uint32_t generation_ = 1;
};
