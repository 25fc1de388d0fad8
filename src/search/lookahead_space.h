#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <iterator>

#include "search/lookahead_way.h"

/// Working space of the lookahead, to be shared by the windows of one thread: too large to be cleared for each walk.
class LookaheadSpace {
 public:
  static constexpr std::int64_t width = 64;       ///< positions
  static constexpr std::int64_t most_drift = 12;  ///< lags on either side

  /// Bases taken, and lag changed, since the anchor.
  struct Place {
    std::int64_t position;
    std::int64_t drift;
  };

  struct Node {
    Place place;
    LookaheadWay way;
  };

  /// The places to which equally many steps lead, each once.
  struct Level {
    static constexpr std::size_t most_nodes = 256;
    Node nodes[most_nodes];
    std::size_t size = 0;

    const Node* begin() const { return nodes; }
    const Node* end() const { return nodes + size; }
  };

  /// Empties the level, the one that is filled from now on.
  void begin(Level& level) {
    level.size = 0;
    ++level_number_;
    if (level_number_ >> (32 - index_bits) == 0) return;
    std::fill(std::begin(nodes_at_), std::end(nodes_at_), 0U);
    level_number_ = 1;
  }

  /// Adds a place to the level begun last. Of two ways into one place the better one is enough. False if the level is
  /// full.
  bool push(const Place& place, const LookaheadWay& way, Level& level) {
    std::uint32_t& entry = nodes_at_[static_cast<std::size_t>(place.position * drifts + place.drift + most_drift)];
    if (entry >> index_bits == level_number_) {
      level.nodes[entry & (Level::most_nodes - 1)].way.raise_to(way);
      return true;
    }
    if (level.size == Level::most_nodes) return false;
    entry = level_number_ << index_bits | static_cast<std::uint32_t>(level.size);
    level.nodes[level.size++] = {place, way};
    return true;
  }

  /// To be called before the stops of a lookahead.
  void begin_stops() {
    if (++lookahead_number_ != 0) return;
    std::fill(std::begin(stopped_in_), std::end(stopped_in_), 0U);
    lookahead_number_ = 1;
  }

  /// Notes a way that has stopped at a place, those of fewer steps first. False if one beats it that has stopped there
  /// before.
  bool note_stop(const Place& place, const LookaheadWay& way) {
    const auto at = static_cast<std::size_t>(place.position * drifts + place.drift + most_drift);
    if (stopped_in_[at] == lookahead_number_ && stops_[at].beats(way)) return false;
    stopped_in_[at] = lookahead_number_;
    stops_[at] = way;
    return true;
  }

  Level levels[2];

 private:
  static constexpr int index_bits = 8;
  static constexpr std::int64_t drifts = 2 * most_drift + 1;
  std::uint32_t level_number_ = 0;
  std::uint32_t nodes_at_[(width + 1) * drifts] = {};  ///< number of a level, and of its node that has the place
  std::uint32_t lookahead_number_ = 0;
  std::uint32_t stopped_in_[(width + 1) * drifts] = {};  ///< number of the last lookahead that has stopped at the place
  LookaheadWay stops_[(width + 1) * drifts];             ///< valid for those of the present one
};
