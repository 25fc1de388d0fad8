#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "search/front.h"
#include "search/unit_class.h"

/// A stretch of a long walk: the stops on it, each with the step that was found best there, everything being permitted.
///
/// Which step is best where a walk has stopped depends only on the position, on the unit and the phase there, and on
/// what the score permits. In a satellite array many seeds have the same unit, in some rotation, and walk the whole
/// array: once such a walk stops where a guide does, in the same phase, it goes on like the guide as long as the score
/// permits all that the lookahead tries. So it need not go at all: where the score would first be too low, and where
/// it is highest until then, is looked up.
///
/// Immutable, not empty. Positions are offsets in the sequence as Front counts them; scores are relative to one
/// another.
template <bool forward>
class WalkGuide {
 public:
  struct Stop {
    std::uint32_t position;
    std::uint32_t phase_and_kind;
    std::int32_t score;

    static constexpr std::int64_t phases = std::int64_t{1} << 30;
    Stop(std::int64_t at, std::int64_t phase, char kind, std::int64_t score_there)
        : position(static_cast<std::uint32_t>(at)),
          phase_and_kind(static_cast<std::uint32_t>(phase) << 2 | (kind == 'M'   ? 0U
                                                                   : kind == 'I' ? 1U
                                                                                 : 2U)),
          score(static_cast<std::int32_t>(score_there)) {}
    std::int64_t phase() const { return phase_and_kind >> 2; }
    char kind() const { return "MID"[phase_and_kind & 3]; }
    /// The position that its event is noted at.
    std::int64_t event_position() const {
      return position - (!forward && kind() != 'D' ? std::int64_t{1} : std::int64_t{0});
    }
  };

  struct Counts {
    std::uint32_t mismatches = 0;
    std::uint32_t insertions = 0;
    std::uint32_t deletions = 0;

    void add(char kind) { ++(kind == 'M' ? mismatches : kind == 'I' ? insertions : deletions); }
  };

  WalkGuide(std::string unit, std::vector<Stop> stops) : unit_(std::move(unit)), stops_(std::move(stops)) {
    stops_.shrink_to_fit();
    Counts before;
    for (std::size_t first = 0; first < stops_.size(); first += block) {
      Block summary{stops_[first].score, stops_[first].score, before};
      for (std::size_t i = first; i < std::min(first + block, stops_.size()); ++i) {
        summary.lowest = std::min(summary.lowest, stops_[i].score);
        summary.highest = std::max(summary.highest, stops_[i].score);
        before.add(stops_[i].kind());
      }
      blocks_.push_back(summary);
    }
  }

  const std::string& unit() const { return unit_; }
  const std::vector<Stop>& stops() const { return stops_; }

  /// The steps taken at the stops [first, end).
  Counts steps(std::size_t first, std::size_t end) const {
    const Counts a = steps_before(first);
    const Counts b = steps_before(end);
    return {b.mismatches - a.mismatches, b.insertions - a.insertions, b.deletions - a.deletions};
  }

  /// The first stop behind stop `from` with a score of at most `score`, or the last stop.
  std::size_t first_at_most(std::size_t from, std::int64_t score) const {
    const std::size_t last = stops_.size() - 1;
    std::size_t i = from + 1;
    while (i < last) {
      if (i % block == 0 && blocks_[i / block].lowest > score) {
        i += block;
        continue;
      }
      if (stops_[i].score <= score) return i;
      ++i;
    }
    return last;
  }

  /// The first stop of the highest score of those behind `from` up to `last`.
  std::size_t highest(std::size_t from, std::size_t last) const {
    std::size_t best = from + 1;
    std::size_t i = from + 1;
    while (i <= last) {
      if (i % block == 0 && i + block <= last && blocks_[i / block].highest <= stops_[best].score) {
        i += block;
        continue;
      }
      if (stops_[i].score > stops_[best].score) best = i;
      ++i;
    }
    return best;
  }

 private:
  static constexpr std::size_t block = 64;
  struct Block {
    std::int32_t lowest;
    std::int32_t highest;
    Counts before;  ///< steps at the stops of earlier blocks
  };

  Counts steps_before(std::size_t end) const {
    if (end == 0) return {};
    const std::size_t last_block = (end - 1) / block;
    Counts counts = blocks_[last_block].before;
    for (std::size_t i = last_block * block; i < end; ++i) counts.add(stops_[i].kind());
    return counts;
  }

  std::string unit_;  ///< the text of its class
  std::vector<Stop> stops_;
  std::vector<Block> blocks_;
};

/// A stretch of a guide that a walk was led along: the stops [first, end).
template <bool forward>
struct GuidedStretch {
  std::shared_ptr<const WalkGuide<forward>> guide;
  std::size_t first = 0;
  std::size_t end = 0;
};

/// The guides of one sequence and one direction, and the way of the present walk along them. Of the guides those used
/// last are kept, as many as a limit of memory allows.
template <bool forward>
class WalkGuides {
 public:
  using Guide = WalkGuide<forward>;
  using Stop = typename Guide::Stop;

  struct Hit {
    std::shared_ptr<const Guide> guide;
    std::size_t stop;
  };

  /// The sequence, half-open range.
  WalkGuides(const char* begin, const char* end)
      : first_base_(begin),
        most_stops_(((std::size_t{8} << 20) + static_cast<std::size_t>(end - begin) / 8) / sizeof(Stop)),
        is_usable_(end - begin <= INT32_MAX) {}

  /// Lets go of all guides.
  void forget() {
    guides_.clear();
    stops_ = 0;
  }

  /// To be called before the steps of a walk.
  void begin_walk(const UnitCircle& circle) {
    circle_ = circle;
    way_.clear();
    fitting_.clear();
    unit_.reset();
    steps_ = 0;
  }

  /// The guide's stop at which a walk, permitted everything, has stopped; nothing if there is none.
  std::optional<Hit> at(const Front<forward>& front) {
    if (++steps_ < first_guided_step || !is_usable_) return {};
    if (!unit_) find_guides();
    for (Candidate& candidate : fitting_) {
      if (place(candidate, front)) return Hit{candidate.guide, candidate.next};
    }
    return {};
  }

  /// Notes a step that was taken where everything was permitted and no guide stood.
  void note(const Front<forward>& front, char kind) {
    if (unit_ && is_usable_) way_.emplace_back(front.position - first_base_, phase(front), kind, front.score);
  }

  /// To be called where the steps noted so far and those to come do not follow each other, and behind the last step.
  void end_stretch() {
    if (way_.size() >= shortest_guide) keep(std::make_shared<const Guide>(unit_->text(), way_));
    way_.clear();
  }

 private:
  struct Kept {
    std::shared_ptr<const Guide> guide;
    std::uint64_t last_used;
  };
  struct Candidate {
    std::shared_ptr<const Guide> guide;
    std::size_t next;
    bool is_placed;
  };

  /// Shorter walks go their own way: to look for guides would cost more.
  static constexpr std::size_t first_guided_step = 64;
  static constexpr std::size_t shortest_guide = 256;

  static bool comes_before(std::int64_t a, std::int64_t b) { return forward ? a < b : a > b; }
  std::int64_t phase(const Front<forward>& front) const { return unit_->phase_of(front.unit - circle_.begin); }

  void find_guides() {
    unit_.emplace(circle_);
    if (circle_.length() >= Stop::phases) is_usable_ = false;
    ++walks_;
    for (Kept& kept : guides_) {
      if (kept.guide->unit() != unit_->text()) continue;
      kept.last_used = walks_;
      fitting_.push_back({kept.guide, 0, false});
    }
  }

  /// Moves `next` to the stop at which the front stands, or to the first that does not come before it. Whether it
  /// stands there.
  bool place(Candidate& candidate, const Front<forward>& front) const {
    const std::vector<Stop>& stops = candidate.guide->stops();
    const std::int64_t position = front.position - first_base_;
    std::size_t& next = candidate.next;
    if (!candidate.is_placed) {
      const auto earlier = [](const Stop& stop, std::int64_t at) { return comes_before(stop.position, at); };
      next = static_cast<std::size_t>(std::lower_bound(stops.begin(), stops.end(), position, earlier) - stops.begin());
      candidate.is_placed = true;
    }
    while (next < stops.size() && comes_before(stops[next].position, position)) ++next;
    for (std::size_t i = next; i < stops.size() && stops[i].position == position; ++i) {
      if (stops[i].phase() != phase(front)) continue;
      next = i;
      return true;
    }
    return false;
  }

  void keep(std::shared_ptr<const Guide> guide) {
    stops_ += guide->stops().size();
    guides_.push_back({std::move(guide), walks_});
    const auto used_earlier = [](const Kept& a, const Kept& b) { return a.last_used < b.last_used; };
    while (guides_.size() > 1 && (stops_ > most_stops_ || guides_.size() > most_guides)) {
      const auto oldest = std::min_element(guides_.begin(), guides_.end() - 1, used_earlier);
      stops_ -= oldest->guide->stops().size();
      guides_.erase(oldest);
    }
  }

  static constexpr std::size_t most_guides = 1024;

  const char* const first_base_;
  const std::size_t most_stops_;
  bool is_usable_;
  std::vector<Kept> guides_;
  std::size_t stops_ = 0;  ///< of all guides
  std::uint64_t walks_ = 0;

  UnitCircle circle_{nullptr, nullptr};  ///< of the present walk, and so below
  std::optional<UnitClass> unit_;        ///< once the walk is long enough
  std::vector<Candidate> fitting_;
  std::vector<Stop> way_;  ///< steps in a row that no guide knew
  std::size_t steps_ = 0;
};
