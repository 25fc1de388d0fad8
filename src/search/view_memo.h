#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <vector>

#include "search/step_choice.h"
#include "search/unit_runs.h"

/// The bases that a walk sees from where it has stopped: the nearest of a view, which are enough for most steps.
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

/// All of a view, and as many unit bases behind it as can be left out within the lookahead.
template <bool forward>
class FarView {
 public:
  FarView() = default;
  FarView(const UnitRuns::View& view, const UnitRuns::Bases& unit_bases_behind)
      : sequence_(view.sequence),
        unit_(view.unit),
        behind_(nearest(unit_bases_behind.low) << bases_behind | nearest(unit_bases_behind.high)) {}

  /// Where the sequence ends within the view: `position` tells of its bases.
  FarView(std::uint64_t position, const UnitRuns::View& view, const UnitRuns::Bases& unit_bases_behind)
      : FarView({{position, 0}, view.unit}, unit_bases_behind) {}

  static bool tells(const StepChoice& step) { return step.unit_bases_seen <= 64 + bases_behind; }

  bool operator==(const FarView& other) const {
    return sequence_ == other.sequence_ && unit_ == other.unit_ && behind_ == other.behind_;
  }
  std::size_t hash() const { return UnitRuns::hash(sequence_, unit_) ^ behind_; }

 private:
  static constexpr int bases_behind = 8;

  static std::uint32_t nearest(std::uint64_t bits) {
    return static_cast<std::uint32_t>(forward ? bits & ((1U << bases_behind) - 1) : bits >> (64 - bases_behind));
  }

  UnitRuns::Bases sequence_;
  UnitRuns::Bases unit_;
  std::uint32_t behind_ = 0;
};

/// Steps by what was seen when they were chosen.
///
/// The table is a cache: a place holds one step, and a later one takes its place. It owns its memory, which it takes
/// with the first note.
template <typename View, std::size_t slots = std::size_t{1} << 14>
class StepTable {
 public:
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

 private:
  /// In one line of the memory cache: most of the time of a question is spent on waiting for it.
  struct alignas(sizeof(View) <= 24 ? 32 : 64) Entry {
    View view;
    std::int16_t lowest = 0;
    std::uint8_t unit_bases_seen = 0;
    char kind = '?';
  };

  std::vector<Entry> entries_;
};

/// The steps that earlier walks found best, by the bases that they saw from where they had stopped.
///
/// Nothing else matters to a step but what the score permits. The copies of a satellite are alike, and so are the units
/// taken from them: walks of different units come to the same view again and again, and so does one walk.
///
/// It belongs to one direction, one limit of the walks and one set of rules.
template <bool forward>
class ViewMemo {
 public:
  StepTable<NearView<forward>> near;
  StepTable<FarView<forward>> far;
  StepTable<FarView<forward>, 4096> at_end;  ///< of less than 64 bases

  void forget() {
    near.forget();
    far.forget();
    at_end.forget();
  }

  /// Whether the views of a walk come again so often, as it is in satellites, that even its first steps should be asked
  /// for and noted. To be told of what was asked.
  bool pays() const { return found_ > 0; }
  void count(bool was_found) {
    found_ = was_found ? std::min(found_ + 1, most_counted) : std::max(found_ - 5, -most_counted);
  }

 private:
  static constexpr int most_counted = 500;
  int found_ = -most_counted;
};
