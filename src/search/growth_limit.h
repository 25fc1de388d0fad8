#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

#include "satellite/Csat.h"
#include "search/base_planes.h"
#include "search/front.h"

/// An upper limit to the score that a seed can grow to, found without growing it: that of the best of all ways on which
/// every step is permitted, whatever a lookahead would choose.
///
/// The best way is found by dynamic programming over the alignment of the sequence with the endlessly repeated unit
/// (Smith and Waterman 1981, without gap opening), antidiagonal by antidiagonal, in 16 lanes of 8 bits for 32
/// diagonals. It is done outwards from where the exact extension stops, until no way is left.
class GrowthLimit {
 public:
  /// The sequence, half-open range, with the readable bytes around it that `faststring` gives, and its planes.
  GrowthLimit(const char* begin, const char* end, const BasePlanes& planes, const ExtensionRules& rules);

  /// Whether the seed, which may have been extended exactly, certainly stays below `minimum_score` in the imperfect
  /// extension. False also if that cannot be told: for units that are too long, or where ways lead too far.
  bool keeps_below(const Csat& seed, std::int64_t minimum_score);

  /// Whether a walk that has stopped at `front` certainly never comes to the score `enough`, one that it does not have.
  /// False also if that cannot be told.
  template <bool forward>
  bool keeps_from(std::int64_t enough, const Front<forward>& front, const UnitCircle& circle);

  /// From here on `highest_gain_ahead` can tell most: ways that only insert or delete bases stay on the diagonals.
  std::int64_t most_height_ahead() const { return std::min<std::int64_t>(most_height, 13 * std::int64_t{indel_cost_}); }

  /// The most that any walk gains from `front` on, where it has stopped at a height above the bound of permitted steps
  /// of `height` or less. `unknown` if that cannot be told from the next `unit_bases` of its unit, which must not reach
  /// beyond where it begins anew; of more than `most_bases_ahead` the nearest are looked at.
  template <bool forward>
  std::int64_t highest_gain_ahead(const Front<forward>& front, std::int64_t height, std::int64_t unit_bases);

  static constexpr std::int64_t most_bases_ahead = 250;
  static constexpr std::int64_t unknown = INT64_MAX / 4;

 private:
  using Height = std::uint8_t;  ///< of a score above the bound of permitted steps; 0 where no way leads
  static constexpr std::int64_t lanes = 16;
  static constexpr std::int64_t most_height = 250;  ///< four matches more still fit
  /// Reversing longer ones would cost as much as the walks.
  static constexpr std::int64_t longest_unit = most_bases_ahead;

  /// Whether all heights up to that of `highest_score` can be told apart, and ways that do little but insert or delete
  /// bases stay on the diagonals.
  bool is_useful(const UnitCircle& circle, std::int64_t highest_score) const {
    return rules_.maximum_depth > 0 && circle.length() <= longest_unit &&
           circle.length() + highest_score <= most_height_;
  }

  /// How far the ways with a whole unit are followed.
  static std::int64_t most_bases_of(const UnitCircle& circle) { return 4 * circle.length() + 256; }

  void reverse_unit(const UnitCircle& circle);

  /// The highest score on any way from a front that has stopped; `unknown` if it is `enough` or more, or cannot be
  /// told, as when a way takes more than `most_bases`.
  template <bool forward>
  std::int64_t highest_score(const Front<forward>& front, const UnitCircle& circle, std::int64_t enough,
                             std::int64_t most_bases) const;

  const char* const begin_;
  const char* const end_;
  const BasePlanes& planes_;
  const ExtensionRules& rules_;
  const Height mismatch_cost_;
  const Height indel_cost_;
  const std::int64_t most_height_;
  /// A unit from its last base to its first, and then again, so that a vector can be loaded from each of its bases.
  std::array<std::uint8_t, longest_unit + lanes + 1> reversed_unit_;
  UnitCircle reversed_{nullptr, nullptr};  ///< that unit
};
