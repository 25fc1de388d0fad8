#include "search/lookahead_sets.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstring>

#include "search/wide_vectors.h"

namespace {

constexpr int depth = LookaheadSets::depth;

/// Ways with different first steps stand side by side. Each lane is compared at a lag of its own, one more than the
/// lane before. The fourth is empty.
enum Lane : std::size_t { insertion_lane, mismatch_lane, deletion_lane };
constexpr std::size_t first_steps = 3;
using Lanes __attribute__((vector_size(32))) = std::uint64_t;

constexpr StepKind kinds[first_steps] = {StepKind::insertion, StepKind::mismatch, StepKind::deletion};

/// How many of each kind, in any order.
struct Steps {
  int mismatches = 0;
  int insertions = 0;
  int deletions = 0;

  constexpr int all() const { return mismatches + insertions + deletions; }
  constexpr int drift() const { return insertions - deletions; }
  constexpr bool operator==(const Steps& other) const {
    return mismatches == other.mismatches && insertions == other.insertions && deletions == other.deletions;
  }
};

constexpr std::size_t number_of_ways = 55;

/// All numbers of steps that a lookahead may come to. Those of the same drift stand together, the best first: at the
/// same place fewer steps have the higher score, and of equally many those with more deletions, for these take no base.
constexpr std::array<Steps, number_of_ways> make_ways() {
  std::array<Steps, number_of_ways> ways{};
  std::size_t rank = 0;
  for (int drift = -depth; drift <= depth; ++drift) {
    for (int steps = 1; steps <= depth; ++steps) {
      for (int deletions = steps; deletions >= 0; --deletions) {
        const int insertions = deletions + drift;
        const int mismatches = steps - insertions - deletions;
        if (insertions >= 0 && mismatches >= 0) ways[rank++] = {mismatches, insertions, deletions};
      }
    }
  }
  return ways;
}
constexpr std::array<Steps, number_of_ways> ways = make_ways();

constexpr std::uint64_t rank_of(const Steps& steps) {
  std::uint64_t rank = 0;
  while (!(ways[rank] == steps)) ++rank;
  return rank;
}

constexpr std::uint64_t bit(std::uint64_t number) {
  return std::uint64_t{1} << number;
}

/// The ranks at which another drift begins.
constexpr std::uint64_t find_drift_begins() {
  std::uint64_t begins = 1;
  for (std::size_t rank = 1; rank < number_of_ways; ++rank) {
    if (ways[rank].drift() != ways[rank - 1].drift()) begins |= bit(rank);
  }
  return begins;
}
constexpr std::uint64_t drift_begins = find_drift_begins();

constexpr std::size_t number_of_sets = 35;
constexpr std::size_t no_set = number_of_sets;
constexpr std::size_t number_of_groups = 15;

/// A set: the places to which these steps lead behind the first one.
struct SetPlan {
  Steps steps;
  std::size_t before_mismatch = no_set;  ///< of which steps lead here
  std::size_t before_insertion = no_set;
  std::size_t before_deletion = no_set;
  std::size_t group = 0;  ///< of the sets with as many steps and as many deletions
  std::uint64_t ranks[first_steps] = {};
};

constexpr std::size_t group_of(int steps, int deletions) {
  const auto first = static_cast<std::size_t>(steps);
  return first * (first + 1) / 2 + static_cast<std::size_t>(deletions);
}

/// In an order in which each comes behind those that lead to it.
constexpr std::array<SetPlan, number_of_sets> make_plan() {
  std::array<SetPlan, number_of_sets> plan{};
  std::size_t number = 0;
  for (int steps = 0; steps < depth; ++steps) {
    for (int deletions = 0; deletions <= steps; ++deletions) {
      for (int insertions = 0; insertions + deletions <= steps; ++insertions) {
        plan[number++].steps = {steps - insertions - deletions, insertions, deletions};
      }
    }
  }
  const auto find = [&plan](const Steps& steps) {
    std::size_t set = 0;
    while (set < number_of_sets && !(plan[set].steps == steps)) ++set;
    return set;
  };
  for (SetPlan& set : plan) {
    const auto [mismatches, insertions, deletions] = set.steps;
    set.before_mismatch = find({mismatches - 1, insertions, deletions});
    set.before_insertion = find({mismatches, insertions - 1, deletions});
    set.before_deletion = find({mismatches, insertions, deletions - 1});
    set.group = group_of(set.steps.all(), deletions);
    set.ranks[insertion_lane] = rank_of({mismatches, insertions + 1, deletions});
    set.ranks[mismatch_lane] = rank_of({mismatches + 1, insertions, deletions});
    set.ranks[deletion_lane] = rank_of({mismatches, insertions, deletions + 1});
  }
  return plan;
}
constexpr std::array<SetPlan, number_of_sets> plan = make_plan();

/// Bit i is the place behind i bases.
struct PlaceSets {
  Lanes of_set[number_of_sets];
  Lanes of_group[number_of_groups] = {};
};

/// Word 5 - d tells where the bases match with a drift of d.
constexpr std::size_t lags = 2 * depth + 2;

inline void find_places(const std::uint64_t* matches, PlaceSets& places) {
  Lanes stops[number_of_sets + 1];
  stops[no_set] = Lanes{};
#pragma GCC unroll 35
  for (std::size_t number = 0; number < number_of_sets; ++number) {
    const SetPlan& set = plan[number];
    Lanes match;
    std::memcpy(&match, matches + (depth - 1 - set.steps.drift()), sizeof match);
    Lanes begin = ((stops[set.before_mismatch] | stops[set.before_insertion]) << 1) | stops[set.before_deletion];
    if (number == 0) begin = Lanes{2, 2, 1, 0};
    // A carry runs from each place through the matches behind it to the first base that does not match.
    places.of_set[number] = (((begin & match) + match) ^ match) | begin;
    stops[number] = places.of_set[number] & ~match;
    places.of_group[set.group] |= places.of_set[number];
  }
}

/// The highest score of each lane, after how many steps it comes first, and whose is the best.
struct Values {
  std::int64_t scores[first_steps] = {INT64_MIN, INT64_MIN, INT64_MIN};
  int steps[first_steps] = {};

  /// At the places up to this one. Scores are those since the stop, but for the first step.
  Values(const PlaceSets& places, std::int64_t last, std::int64_t penalty) {
    const std::uint64_t mask = lowest_bits(last + 1);
#pragma GCC unroll 5
    for (int more_steps = 0; more_steps < depth; ++more_steps) {
      // A base that is taken scores 1, unless the step takes it: moved up by the deletions, bit i has i - `more_steps`.
      Lanes all{};
#pragma GCC unroll 5
      for (int deletions = 0; deletions <= more_steps; ++deletions) {
        all |= (places.of_group[group_of(more_steps, deletions)] & mask) << deletions;
      }
#pragma GCC unroll 3
      for (std::size_t lane = 0; lane < first_steps; ++lane) {
        if (all[lane] == 0) continue;
        const std::int64_t highest = 63 - __builtin_clzll(all[lane]) + (lane == deletion_lane ? 1 : 0);
        const std::int64_t score = highest - more_steps * (penalty + 1);
        if (score <= scores[lane]) continue;
        scores[lane] = score;
        steps[lane] = more_steps + 1;
      }
    }
  }

  std::size_t best_lane() const {
    std::size_t best = mismatch_lane;
    if (scores[insertion_lane] > scores[best]) best = insertion_lane;
    if (scores[deletion_lane] > scores[best]) best = deletion_lane;
    return best;
  }
};

/// All ranks behind these of the same drift.
inline std::uint64_t behind(std::uint64_t ranks) {
  std::uint64_t inside = ~drift_begins;
  std::uint64_t all = ranks << 1 & inside;
  for (int distance = 1; distance < 16; distance *= 2) {
    all |= all << distance & inside;
    inside &= inside << distance;
  }
  return all;
}

/// Of these ways that come to a place, with the steps named by their ranks, those that matter for others to be no
/// better: how many steps they have at most.
inline int most_steps(std::uint64_t ranks, std::uint64_t others) {
  int most = 0;
  for (std::uint64_t rest = ranks & ~behind(ranks); rest != 0; rest &= rest - 1) {
    const std::uint64_t first = rest & -rest;
    if (((first | behind(first)) & others) == 0) continue;
    most = std::max(most, ways[static_cast<std::size_t>(__builtin_ctzll(first))].all());
  }
  return most;
}

/// The choice by what lies before a place. Ways of other first steps that come to it must have no better prospects than
/// one of the best first step, unless the sequence ends there.
inline bool choose_before(std::int64_t last, bool at_end, const PlaceSets& places, std::int64_t penalty,
                          SetsChoice& choice) {
  const Values values(places, last, penalty);
  const std::size_t best = values.best_lane();
  choice = {kinds[best], last + 1, values.steps[best]};
  if (at_end) return true;
  Lanes there{};
#pragma GCC unroll 35
  for (std::size_t number = 0; number < number_of_sets; ++number) {
    const auto& ranks = plan[number].ranks;
    there |= (places.of_set[number] >> last & 1) << Lanes{ranks[0], ranks[1], ranks[2], 0};
  }
  std::uint64_t beaten_if_equal = 0;
  std::uint64_t beaten_if_worse = 0;
  for (std::size_t lane = 0; lane < first_steps; ++lane) {
    if (lane == best) continue;
    (kinds[best] < kinds[lane] ? beaten_if_equal : beaten_if_worse) |= there[lane];
  }
  const std::uint64_t mine = there[best];
  const std::uint64_t worse = behind(mine);
  if ((beaten_if_equal & ~(mine | worse)) != 0 || (beaten_if_worse & ~worse) != 0) return false;
  const int needed = most_steps(mine, beaten_if_equal | beaten_if_worse);
  choice.steps_needed = std::max<std::int64_t>(choice.steps_needed, needed);
  return true;
}

/// What depends on so little is remembered by it.
constexpr std::int64_t near_place = 38;
/// Moved up by the deletions it is still within a word.
constexpr std::int64_t far_place = 58;

}  // namespace

WITH_WIDE_VECTORS
bool LookaheadSets::choose(const TwoPlanes<std::uint64_t>& sequence, const TwoPlanes<Bits128>& unit, std::int64_t room,
                           std::int64_t penalty, SetsChoice& choice) {
  std::uint64_t matches[lags];
  compare_bases(sequence, unit, lags, matches);
  PlaceSets places;
  find_places(matches, places);
  if (room <= near_place) return choose_before(room, true, places, penalty, choice);
  return choose_before(near_place, false, places, penalty, choice) ||
         choose_before(std::min(room, far_place), room <= far_place, places, penalty, choice);
}
