#pragma once

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <utility>

#include "search/base_planes.h"
#include "search/front.h"
#include "search/unit_runs.h"

/// 128 bits in one value; a compiler extension that g++ and clang have on every 64-bit machine.
__extension__ using Bits128 = unsigned __int128;

/// Decides the steps of an imperfect walk on one bit for each comparison, for 64 sequence positions and all lags within
/// reach, instead of base by base.
///
/// A further step can only pay off where, after it, more bases match in a row than the mildest penalty costs: a long
/// run. Where none is within reach of the lookahead, the value of a first step is its own score, and the best of the
/// three is found by comparing three runs of matches. Otherwise the lookahead is done, cut off wherever no long run is
/// in reach.
///
/// The window stays valid for the walk that it was made for: one unit, one direction. It says nothing near N and the
/// sequence's ends, where matches run out of it, and for depths or penalties beyond its width.
template <bool forward>
class LookaheadWindow {
 public:
  /// `first_base` is the sequence that `planes` was made of. `circle` is the unit of the walk, `runs` its matches.
  LookaheadWindow(const BasePlanes& planes, const UnitRuns& runs, const char* first_base, const UnitCircle& circle,
                  const ExtensionRules& rules)
      : planes_(planes),
        runs_(runs),
        first_base_(first_base),
        circle_(circle),
        rules_(rules),
        long_run_(std::min(-rules.mismatch_score, -rules.indel_score) + 1),
        usable_(rules.maximum_depth >= 1 && rules.maximum_depth <= most_depth && long_run_ <= 16 &&
                reach(rules.maximum_depth) <= width) {}

  /// The best first step of a walk that has stopped at `front`, of those permitted: 'M', 'I' or 'D'; '?' if the window
  /// cannot tell. `limit` is where the sequence ends for this direction.
  char choose(const Front<forward>& front, const char* limit, bool mismatch_permitted, bool indel_permitted) {
    if (!usable_ || !locate(front, limit)) return '?';
    Node here{position_, drift_, front.score};
    const bool plain = no_long_run_in_reach(here, rules_.maximum_depth);
    if (!plain && position_ > 0) {  // the lookahead needs all the room there is
      made_ = make(front, limit);
      if (!made_ || !place(front)) return '?';
      here = {position_, drift_, front.score};
    }
    Choice choice;
    if (mismatch_permitted) offer(choice, 'M', after_mismatch(here), plain);
    if (indel_permitted) {
      offer(choice, 'I', after_insertion(here), plain);
      offer(choice, 'D', after_deletion(here), plain);
    }
    return choice.unknown ? '?' : choice.kind;
  }

 private:
  static constexpr std::int64_t width = 64;       ///< positions
  static constexpr std::int64_t most_drift = 12;  ///< lags on either side
  static constexpr std::int64_t most_depth = 8;
  static constexpr std::size_t most_nodes = 96;  ///< of one level of the lookahead

  /// A state of the walk: bases taken and lag changed since the anchor.
  struct Node {
    std::int64_t position;
    std::int64_t drift;
    std::int64_t score;
  };

  struct Level {
    Node nodes[most_nodes];
    std::size_t size = 0;
  };

  struct Choice {
    char kind = '?';
    std::int64_t value = INT64_MIN;
    bool unknown = false;
  };

  Node after_mismatch(const Node& n) const { return {n.position + 1, n.drift, n.score + rules_.mismatch_score}; }
  Node after_insertion(const Node& n) const { return {n.position + 1, n.drift + 1, n.score + rules_.indel_score}; }
  Node after_deletion(const Node& n) const { return {n.position, n.drift - 1, n.score + rules_.indel_score}; }

  /// On equal values the kind offered first stays.
  void offer(Choice& choice, char kind, const Node& first, bool plain) {
    std::int64_t value = 0;
    if (plain) {
      value = first.score + run(first);
    } else if (!look_ahead(first, value)) {
      choice.unknown = true;
    }
    if (value <= choice.value) return;
    choice.value = value;
    choice.kind = kind;
  }

  /// The highest score within the lookahead after a first step; false if it leaves the window.
  bool look_ahead(const Node& first, std::int64_t& best) {
    best = first.score;
    Level* level = &levels_[0];
    Level* next = &levels_[1];
    level->size = 1;
    level->nodes[0] = first;
    for (std::int64_t left = rules_.maximum_depth - 1; level->size > 0; --left) {
      next->size = 0;
      for (std::size_t i = 0; i < level->size; ++i) {
        Node node = level->nodes[i];
        const std::int64_t matches = run(node);
        node.position += matches;
        node.score += matches;
        best = std::max(best, node.score);
        if (node.position >= width) return false;  // the run may go on outside
        if (left == 0) continue;
        if (node.position + reach(left) > width) return false;
        if (!no_long_run_in_reach(node, left) && !push_steps(node, *next)) return false;
      }
      std::swap(level, next);
    }
    return true;
  }

  bool push_steps(const Node& node, Level& next) {
    const std::int64_t bound = -circle_.length();
    if (node.score + rules_.mismatch_score > bound && !push(after_mismatch(node), next)) return false;
    if (node.score + rules_.indel_score <= bound) return true;
    return push(after_insertion(node), next) && push(after_deletion(node), next);
  }

  /// Of two ways into one state the higher-scoring one is enough.
  bool push(const Node& node, Level& next) {
    for (std::size_t i = 0; i < next.size; ++i) {
      Node& other = next.nodes[i];
      if (other.position != node.position || other.drift != node.drift) continue;
      other.score = std::max(other.score, node.score);
      return true;
    }
    if (next.size == most_nodes) return false;
    next.nodes[next.size++] = node;
    return true;
  }

  /// Positions of the window that matter for a state with `steps` steps left: those at which a run may begin, each run
  /// on the way being shorter than a long one, and the long run that may begin at the last.
  std::int64_t reach(std::int64_t steps) const { return starts(steps) + long_run_; }
  std::int64_t starts(std::int64_t steps) const { return (steps - 1) * long_run_ + 2; }

  /// Whether no run that pays for its step begins where `steps` steps can lead from a state that has stopped.
  bool no_long_run_in_reach(const Node& node, std::int64_t steps) const {
    const std::int64_t count = starts(steps);
    return forward ? (long_runs_ >> node.position & low_bits(count)) == 0
                   : long_runs_ << node.position >> (width - count) == 0;
  }

  /// The matches in a row from a state on.
  std::int64_t run(const Node& node) const {
    const std::uint64_t matches = matches_[node.drift + most_drift];
    if (node.position >= width) return 0;
    const std::uint64_t misses = forward ? ~matches >> node.position : ~matches << node.position;
    if (misses == 0) return width - node.position;
    return forward ? __builtin_ctzll(misses) : __builtin_clzll(misses);
  }

  static std::uint64_t low_bits(std::int64_t n) { return n >= 64 ? ~std::uint64_t{0} : (std::uint64_t{1} << n) - 1; }

  /// Finds the place of `front` in the window, making a new one if need be. False where no window can be made.
  bool locate(const Front<forward>& front, const char* limit) {
    if (made_ && place(front)) return true;
    made_ = make(front, limit);
    return made_ && place(front);
  }

  bool place(const Front<forward>& front) {
    position_ = forward ? front.position - anchor_position_ : anchor_position_ - front.position;
    if (position_ < 0 || position_ + reach(rules_.maximum_depth) > width) return false;
    const std::int64_t unit_steps = forward ? front.unit - anchor_unit_ : anchor_unit_ - front.unit;
    const auto length = static_cast<std::int32_t>(circle_.length());
    auto drift = static_cast<std::int32_t>(position_ - unit_steps) % length;  // the unit is a circle
    if (2 * drift > length) drift -= length;
    if (2 * drift < -length) drift += length;
    drift_ = drift;
    return std::abs(drift_) + rules_.maximum_depth <= most_drift;
  }

  bool make(const Front<forward>& front, const char* limit) {
    const std::int64_t room = forward ? limit - front.position : front.position - limit;
    if (room < width || circle_.length() > INT32_MAX / 2) return false;
    anchor_position_ = front.position;
    anchor_unit_ = front.unit;
    const std::int64_t first = front.position - first_base_ - (forward ? 0 : width);
    if (planes_.unknown_bits(first) != 0) return false;
    const std::uint64_t low = planes_.low_bits(first);
    const std::uint64_t high = planes_.high_bits(first);

    // Bit j of the repeated unit is the unit base j steps after this one.
    const std::int64_t start = front.unit - circle_.begin - most_drift - (forward ? 0 : width - 1);
    const std::int64_t phase = runs_.wrapped(start);
    const std::int64_t later = runs_.wrapped(phase + width);
    const Bits128 unit_low = joined(runs_.low_bits(phase), runs_.low_bits(later));
    const Bits128 unit_high = joined(runs_.high_bits(phase), runs_.high_bits(later));
    long_runs_ = 0;
    for (std::int64_t drift = -most_drift; drift <= most_drift; ++drift) {
      const auto shift = static_cast<unsigned>(most_drift + (forward ? -drift : drift));
      const std::uint64_t differ = (low ^ static_cast<std::uint64_t>(unit_low >> shift)) |
                                   (high ^ static_cast<std::uint64_t>(unit_high >> shift));
      matches_[drift + most_drift] = ~differ;
      long_runs_ |= starts_of_long_runs(~differ);
    }
    return true;
  }

  static Bits128 joined(std::uint64_t low, std::uint64_t high) { return (Bits128{high} << 64) | low; }

  /// The positions, in the direction of the walk, at which at least `long_run_` matches begin.
  std::uint64_t starts_of_long_runs(std::uint64_t matches) const {
    std::uint64_t starts = matches;
    std::int64_t length = 1;
    while (length < long_run_) {
      const std::int64_t step = std::min(length, long_run_ - length);
      starts &= forward ? starts >> step : starts << step;
      length += step;
    }
    return starts;
  }

  const BasePlanes& planes_;
  const UnitRuns& runs_;
  const char* const first_base_;
  const UnitCircle circle_;
  const ExtensionRules& rules_;
  const std::int64_t long_run_;  ///< matches in a row that pay for a step
  const bool usable_;

  bool made_ = false;
  const char* anchor_position_ = nullptr;
  const char* anchor_unit_ = nullptr;
  std::int64_t position_ = 0;  ///< of the front, in bases taken since the anchor
  std::int64_t drift_ = 0;     ///< of the front: sequence bases less unit bases taken since the anchor
  std::uint64_t long_runs_ = 0;
  std::uint64_t matches_[2 * most_drift + 1];
  Level levels_[2];
};
