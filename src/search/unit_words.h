#pragma once

#include <cstdint>
#include <vector>

#include "search/base_planes.h"
#include "search/front.h"

/// How much walks with one unit can gain from a place on, at most, found without walking.
///
/// The bases ahead are cut into words. One that is no word of the endlessly repeated unit costs a walk through it a
/// step at least, and one that no single step makes of such a word costs two (words that do not overlap: Ukkonen 1992).
/// So a walk that has fallen from its best score in bases that are unlike its unit can be told not to come back.
class UnitWords {
 public:
  /// The sequence, half-open range, and its planes; planes and rules must outlive the object.
  UnitWords(const char* begin, const char* end, const BasePlanes& planes, const ExtensionRules& rules);

  /// Whether a walk that stands at `front` certainly never comes to the score `enough`, one that it does not have.
  /// False also if that cannot be told. It takes as long as a walk of 8 bases for each base of the unit, or less if the
  /// unit is that of the question before, and a small part of the walk in question.
  template <bool forward>
  bool keeps_from(std::int64_t enough, const Front<forward>& front, const UnitCircle& circle);

  /// From the best score of a walk, before the question pays: few walks that gain anything more fall so far.
  static constexpr std::int64_t least_fall = 128;
  /// Walks of lower scores are over as soon as the question would be answered.
  static std::int64_t least_score(std::int64_t unit_length) { return 8 * unit_length + 512; }

 private:
  using Set = std::vector<std::uint64_t>;  ///< of words, a bit each

  static constexpr unsigned bases = 9;  ///< of a word
  static constexpr std::uint32_t mask = (1U << bases) - 1;

  /// The number of a word: a bit of each base in the lower half, the other ones in the upper half.
  static std::uint32_t number_of(std::uint32_t low, std::uint32_t high) {
    return (low & mask) | (high & mask) << bases;
  }
  static bool contains(const Set& set, std::uint32_t word) { return (set[word / 64] >> (word % 64) & 1) != 0; }
  static void add(Set& set, std::uint32_t word) { set[word / 64] |= std::uint64_t{1} << (word % 64); }

  void take_unit(const UnitCircle& circle);
  /// Those that a step makes of the word at the beginning of ten unit bases.
  void add_near(std::uint32_t low, std::uint32_t high);

  std::int64_t most_gain(std::uint32_t word) const {
    if (!contains(near_, word)) return gain_of_others_;
    return contains(exact_, word) ? std::int64_t{bases} : gain_of_near_;
  }

  const char* const begin_;
  const char* const end_;
  const BasePlanes& planes_;
  const std::int64_t gain_of_near_;
  const std::int64_t gain_of_others_;
  UnitCircle unit_{nullptr, nullptr};  ///< to which the sets belong
  Set exact_;                          ///< words of the repeated unit
  Set near_;                           ///< and those that one step makes of them
};
