#pragma once

#include <algorithm>
#include <cstdint>

#include "satellite/Csat.h"

/// What an extension has to know of the run and of the sequence, fixed for one controller.
struct ExtensionRules {
  std::int64_t mismatch_score;  ///< < -1
  std::int64_t indel_score;     ///< < -1, for each inserted or deleted base
  std::int64_t maximum_depth;   ///< imperfect steps that the lookahead tries in a row
  std::int64_t Ns_allowed;      ///< longest run of N that is crossed
  bool Ns_as_missense;          ///< N is a mismatch instead of neutral

  /// What the milder kind of step adds to the score.
  std::int64_t mildest_step() const { return std::max(mismatch_score, indel_score); }
  /// What the steps of the deepest lookahead add to the score at least, without matches.
  std::int64_t deepest_lookahead() const { return maximum_depth * std::min(mismatch_score, indel_score); }
};

/// A repeat unit, the half-open range [begin, end) of the sequence, read as a circle.
struct UnitCircle {
  const char* begin;
  const char* end;

  std::int64_t length() const { return end - begin; }
  const char* next(const char* base) const { return base + 1 == end ? begin : base + 1; }
  const char* previous(const char* base) const { return (base == begin ? end : base) - 1; }
};

/// One growing end of a repeat. Growing forward, `position` is one past the last base taken; growing backward it is
/// the first base taken. `unit` is the unit base expected for the next base to be taken.
template <bool forward>
struct Front {
  const char* position;
  const char* unit;
  std::int64_t score;
  std::uint32_t num_Ns;

  /// The base that would be taken next.
  char next_base() const { return forward ? *position : position[-1]; }
  void take_base() { position += forward ? 1 : -1; }
  void step_unit(const UnitCircle& circle) { unit = forward ? circle.next(unit) : circle.previous(unit); }

  static Front of(const Csat& sat) {
    return forward ? Front{sat.pos_right_end, sat.unit_right, sat.score, sat.num_Ns}
                   : Front{sat.pos_left, sat.unit_left, sat.score, sat.num_Ns};
  }

  void store(Csat& sat) const {
    (forward ? sat.pos_right_end : sat.pos_left) = position;
    (forward ? sat.unit_right : sat.unit_left) = unit;
    sat.score = score;
    sat.num_Ns = num_Ns;
  }
};

/// Takes the run of N that begins at the front, if the rules let it. `run` is its length, up to where nothing is left
/// to take. Returns false, with the front unchanged, when it is longer than `rules.Ns_allowed`. `took` tells whether
/// bases were taken.
template <bool forward>
bool cross_Ns(Front<forward>& front, const UnitCircle& circle, std::int64_t run, const ExtensionRules& rules,
              bool& took) {
  took = false;
  if (rules.Ns_allowed == 0) return true;
  if (run > rules.Ns_allowed) return false;
  if (rules.Ns_as_missense) return true;
  front.position += forward ? run : -run;
  front.num_Ns += static_cast<std::uint32_t>(run);
  for (std::int64_t i = 0; i < run % circle.length(); ++i) front.step_unit(circle);
  took = true;
  return true;
}

/// The length of the run of N at the front, up to `limit`.
template <bool forward>
std::int64_t length_of_Ns(const Front<forward>& front, const char* limit) {
  Front<forward> ahead = front;
  while (ahead.position != limit && ahead.next_base() == 'N') ahead.take_base();
  return forward ? ahead.position - front.position : front.position - ahead.position;
}

/// Grows the front base by base while the sequence agrees with the unit, +1 a base, and over admissible runs of N.
/// `limit` is the value of `position` at which nothing is left to take. Returns false when an over-long run of N lies
/// directly ahead, true when a base that does not agree or the limit does.
template <bool forward>
bool extend_exact(Front<forward>& front, const UnitCircle& circle, const char* limit, const ExtensionRules& rules) {
  while (front.position != limit) {
    const char base = front.next_base();
    if (base == *front.unit) {
      ++front.score;
      front.take_base();
      front.step_unit(circle);
      continue;
    }
    if (base != 'N') return true;
    bool took = false;
    if (!cross_Ns(front, circle, length_of_Ns(front, limit), rules, took)) return false;
    if (!took) return true;
  }
  return true;
}
