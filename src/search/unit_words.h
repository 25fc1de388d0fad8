#pragma once

#include <cstdint>
#include <vector>

#include "search/base_planes.h"
#include "search/front.h"
#include "search/words.h"

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

  /// What a walk gains on any way from a place on, at most.
  struct Gains {
    std::int64_t highest;  ///< at any place before the limit, or a higher one than was asked for
    std::int64_t last;     ///< at the end of the last word
  };

  /// Of a walk from `position` on, up to `limit`. The question ends where more than `enough` may be gained, or where
  /// so much is lost.
  template <bool forward>
  Gains gains(const char* position, const char* limit, const UnitCircle& circle, std::int64_t enough,
              std::int64_t loss);

  /// Bases of a word: of so many bases, or a multiple, the last gain is for all of them.
  static constexpr unsigned bases = 9;

  /// From the best score of a walk, before the question pays: few walks that gain anything more fall so far.
  static constexpr std::int64_t least_fall = 128;
  /// Walks of lower scores are over as soon as the question would be answered.
  static std::int64_t least_score(std::int64_t unit_length) { return 8 * unit_length + 512; }

 private:
  using Set = std::vector<std::uint64_t>;  ///< of words, a bit each

  static constexpr Words words{bases};
  static constexpr std::uint32_t mask = (1U << bases) - 1;

  /// 1 or 0.
  static std::int64_t contains(const Set& set, std::uint32_t word) {
    return static_cast<std::int64_t>(set[word / 64] >> (word % 64) & 1);
  }
  static void add(Set& set, std::uint32_t word) { set[word / 64] |= std::uint64_t{1} << (word % 64); }

  void take_unit(const UnitCircle& circle);

  std::int64_t most_gain(std::uint32_t word) const {
    return gain_of_others_ + contains(near_, word) * (gain_of_near_ - gain_of_others_) +
           contains(exact_, word) * (std::int64_t{bases} - gain_of_near_);
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
