#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <vector>

#include "search/step_choice.h"
#include "search/unit_runs.h"

/// The bases that a walk sees from where it has stopped: the nearest of a view, which are enough for nearly all steps.
template <bool forward>
class NearView {
 public:
  NearView() = default;
  explicit NearView(const UnitRuns::View& view)
      : low_(nearest(view.sequence.low) | nearest(view.unit.low) << bases),
        high_(nearest(view.sequence.high) | nearest(view.unit.high) << bases),
        rest_(nearest(view.unit.low) >> (64 - bases) | nearest(view.unit.high) >> (64 - bases) << 32) {}

  /// Whether a step that was chosen here depends on nothing else.
  static bool tells(const StepChoice& step) { return step.unit_bases_seen <= bases; }

  bool operator==(const NearView& other) const {
    return low_ == other.low_ && high_ == other.high_ && rest_ == other.rest_;
  }
  std::size_t hash() const { return UnitRuns::hash({low_, high_}, {rest_, 0}); }

 private:
  /// Those of a lookahead of five steps with the usual scores, and two more.
  static constexpr int bases = 44;

  static std::uint64_t nearest(std::uint64_t bits) {
    return forward ? bits & ((std::uint64_t{1} << bases) - 1) : bits >> (64 - bases);
  }

  std::uint64_t low_ = 0;  ///< of the sequence, and the first bits of the unit
  std::uint64_t high_ = 0;
  std::uint64_t rest_ = 0;  ///< of the unit
};

/// The steps that earlier walks found best, by the bases that they saw from where they had stopped.
///
/// Nothing else matters to a step but what the score permits. The copies of a satellite are alike, and so are the units
/// taken from them: walks of different units may come to the same view again and again, and so may one walk.
///
/// The table is a cache: a place holds one step, and a later one takes its place. It owns its memory, which it takes
/// with the first note. It belongs to one direction, one limit of the walks and one set of rules.
template <bool forward>
class ViewMemo {
 public:
  using View = NearView<forward>;

  void forget() { entries_.clear(); }

  /// The step noted for a walk that sees this at this height above the bound; '?' if there is none.
  StepChoice step_at(const View& view, std::int64_t height) const {
    if (entries_.empty()) return {};
    const Entry& entry = entries_[view.hash() % slots];
    if (!(entry.view == view) || entry.lowest > height) return {};
    return {entry.kind, entry.unit_bases_seen, entry.lowest, StepChoice::any_height};
  }

  /// Notes a step, if the same is chosen with any greater height and the view tells it.
  void note(const View& view, const StepChoice& step) {
    if (!view.tells(step) || step.highest != StepChoice::any_height || step.lowest > INT16_MAX) return;
    if (entries_.empty()) entries_.resize(slots);
    entries_[view.hash() % slots] = {view, static_cast<std::int16_t>(step.lowest),
                                     static_cast<std::uint8_t>(step.unit_bases_seen), step.kind};
  }

  /// Whether views come again so often that it is faster to ask for a step than to find it: a question takes a third of
  /// that time, and a note as much again. To be told of what was asked.
  bool pays() const { return found_ > 0; }
  void count(bool was_found) { found_ = std::clamp(found_ + (was_found ? 1 : -1), -most_counted, most_counted); }
  /// Those that should be asked for even where it does not pay, so that it is known when it does: always the same ones.
  static bool is_sample(const View& view) { return view.hash() / slots % 32 == 0; }

 private:
  static constexpr std::size_t slots = std::size_t{1} << 14;
  static constexpr int most_counted = 500;

  /// In one line of the memory cache: most of the time of a question is spent on waiting for it.
  struct alignas(32) Entry {
    View view;
    std::int16_t lowest = 0;
    std::uint8_t unit_bases_seen = 0;
    char kind = '?';
  };

  std::vector<Entry> entries_;
  int found_ = -most_counted;
};
