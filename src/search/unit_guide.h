#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <vector>

#include "search/front.h"

/// The ways of long walks with one unit, in any of its rotations, through one sequence in one direction.
///
/// Which step is best where a walk has stopped depends only on the position, on the unit and the phase there, and on
/// what the score permits. In a satellite array many seeds have the same unit, in some rotation, and walk the whole
/// array: once such a walk stops where an earlier one did, in the same phase, it goes on like that one as long as the
/// score permits all that the lookahead tries. So it need not go at all: where the score would first be too low, and
/// where it is highest until then, is looked up.
///
/// The ways are kept in legs that lead from one checkpoint to the next, so ways that meet are kept once from there on.
/// Legs are only added, one after the other; a leg's number stays. Positions are 0-based offsets in the sequence as
/// Front counts them, phases those of UnitClass. A sequence of up to 2^30 bases.
class UnitGuide {
 public:
  struct Place {
    std::uint32_t position;
    std::uint32_t phase;
  };

  struct Counts {
    std::uint32_t mismatches = 0;
    std::uint32_t insertions = 0;
    std::uint32_t deletions = 0;

    void add(char kind) { ++(kind == 'M' ? mismatches : kind == 'I' ? insertions : deletions); }
    void add(const Counts& more) {
      mismatches += more.mismatches;
      insertions += more.insertions;
      deletions += more.deletions;
    }
    std::size_t all() const { return std::size_t{mismatches} + insertions + deletions; }
  };

  /// A stop, seen from the checkpoint where a walk began to be led.
  struct Point {
    std::uint32_t position = 0;
    std::int32_t gain = 0;  ///< of score on the way
    Counts steps;           ///< taken on the way
  };

  /// How far a walk was led.
  struct Way {
    std::uint32_t first_leg;
    Point highest;             ///< the first stop of the highest score behind the beginning
    Point last;                ///< where it ends
    std::uint32_t last_phase;  ///< if a leg ends there, otherwise `unknown`
  };

  static constexpr std::uint32_t unknown = UINT32_MAX;

  UnitGuide(bool forward, const ExtensionRules& rules);

  /// The number of the leg that begins there, or `unknown`.
  std::uint32_t leg_at(const Place& place) const;

  /// Leads a walk along a leg and those that follow it, up to the first stop at which it has gained `too_little` or
  /// less.
  Way follow(std::uint32_t first_leg, std::int64_t too_little);

  /// Adds a leg: `begin_leg`, each step, `end_leg`. No leg that begins there may be known. `bases` were taken behind
  /// the step up to the next stop, and `matches` of them are no N.
  void begin_leg(const Place& place);
  void add_step(char kind, std::uint32_t bases, std::uint32_t matches);
  void end_leg(const Place& place);
  /// Lets go of a leg that has not ended.
  void drop_leg();
  bool is_in_leg() const { return is_in_leg_; }

  /// Calls `visit` with the position of the event and the kind of each of the first `steps` steps from a leg's
  /// beginning on, in their order. Of those noted at positions outside [first, end) some are left out.
  template <typename Visit>
  void for_each_event(std::uint32_t first_leg, std::size_t steps, std::uint32_t first, std::uint32_t end,
                      Visit visit) const {
    for (std::uint32_t number = first_leg; steps > 0; number = next_leg(number)) {
      const Leg& leg = legs_[number];
      const std::size_t all = leg.steps.all();
      if (steps < all || touches(leg, first, end)) {
        Point at;
        at.position = leg.begin.position;
        for (const std::uint8_t* byte = first_step(number); steps > 0 && at.steps.all() < all; --steps) {
          const std::uint32_t position = at.position;
          const char kind = take_step(byte, at);
          visit(event_position(position, kind), kind);
        }
      } else {
        steps -= all;
      }
    }
  }

  /// Bytes of memory that it takes, or nearly so.
  std::size_t size() const;

 private:
  struct Leg {
    Place begin;
    Place end;
    std::int32_t gain = 0;             ///< of score, from its beginning to its end
    std::int32_t lowest = INT32_MAX;   ///< gain at a stop behind its beginning
    std::int32_t highest = INT32_MIN;  ///< gain at a stop behind its beginning
    Counts steps;
    std::uint32_t first_byte = 0;
    mutable std::uint32_t next = unknown;  ///< the leg that begins where it ends, once that has been looked up
  };

  std::uint32_t next_leg(std::uint32_t number) const;
  const std::uint8_t* first_step(std::uint32_t number) const { return bytes_.data() + legs_[number].first_byte; }
  /// Takes the step that the byte tells of, and goes to the next byte. Returns its kind.
  char take_step(const std::uint8_t*& byte, Point& at) const;
  /// Where the event of a step is noted that is taken at a stop.
  std::uint32_t event_position(std::uint32_t stop, char kind) const {
    return forward_ || kind == 'D' ? stop : stop - 1;
  }
  /// Whether events of the leg may be noted in the range.
  bool touches(const Leg& leg, std::uint32_t first, std::uint32_t end) const;
  /// The first stop behind the leg's beginning at which so much has been gained, `from` being that beginning.
  Point first_with(std::uint32_t number, const Point& from, std::int32_t gain) const;

  std::size_t slot_of(const Place& place) const;
  void enlarge_index();

  bool forward_;
  std::int32_t mismatch_score_;
  std::int32_t indel_score_;
  std::vector<Leg> legs_;
  std::vector<std::uint8_t> bytes_;   ///< the steps of all legs
  std::vector<std::uint32_t> index_;  ///< open addressing; leg numbers plus one, 0 where there is none
  bool is_in_leg_ = false;
  Leg leg_;
};

/// A stretch that a walk was led along.
struct GuidedStretch {
  std::shared_ptr<const UnitGuide> guide;
  std::uint32_t first_leg = 0;
  std::size_t steps = 0;    ///< from the leg's beginning on
  std::uint32_t begin = 0;  ///< positions of the front, as the guide counts them: before the first step
  std::uint32_t end = 0;    ///< and behind the last step and its run

  /// Calls `visit` with the position of the event and the kind of each step, in their order.
  template <typename Visit>
  void for_each_event(Visit visit) const {
    guide->for_each_event(first_leg, steps, 0, UINT32_MAX, visit);
  }
};
