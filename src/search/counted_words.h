#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <vector>

#include "search/base_planes.h"
#include "search/front.h"
#include "search/stretches.h"
#include "search/words.h"

/// The words of a part of a sequence, and how much walks with one unit can score in them at most. For most units that
/// are unlike those of the part it takes the same time for a part of any length, as it is seen by how often each word
/// stands there.
///
/// A way through a word leads from one phase of the unit to another. Where the words of the array all are words of the
/// unit, but do not follow each other as they do there, a walk has to step now and then all the same: once in each turn
/// of the unit if that has a base more than some copies of the array's period, or one that is another base there. So
/// each phase is given a potential: what a walk gains from there on, beyond the average, if only words come that are
/// frequent. A way counts for what it gains and by what it raises the potential; in sum over a walk the latter comes to
/// nothing, but for what its ends differ by (as the potentials of a shortest path: Johnson 1977).
class CountedWords {
 public:
  /// Words of `bases` bases, 7 to 9, of a part of the sequence that the planes were made of and that begins at
  /// `first_base`. Planes must outlive the object.
  CountedWords(std::int64_t bases, const BasePlanes& planes, const char* first_base, const Stretch& part,
               const ExtensionRules& rules);

  /// What is known of a walk. It may go on beyond either end of the stretch, within the part.
  struct Known {
    Stretch stretch;
    std::int64_t score;
  };

  /// The highest score that a walk with this unit may come to, or a higher one. As long as it cannot be seen to be less
  /// than `enough` it is looked at more closely.
  std::int64_t highest_score(const UnitCircle& circle, const Known& known, std::int64_t enough);

 private:
  /// Through a word with a step at most.
  struct Way {
    std::uint32_t word;
    std::uint32_t begin;  ///< phases
    std::uint32_t end;
    std::int32_t gain;
  };

  /// For each phase of a unit; a way counts `scale` times what it gains.
  struct Potentials {
    std::vector<std::int32_t> of_phases;
    std::int64_t scale;
  };

  std::uint32_t unknown() const { return static_cast<std::uint32_t>(counts_.size() - 1); }
  void find_ways(const UnitCircle& circle);
  void add_way(std::uint32_t word, std::int64_t begin, Words::Step step);
  Potentials potentials_of(std::int64_t unit_length) const;
  /// Of the words, with these potentials; `range` of the latter.
  struct Values {
    std::int64_t scale;
    std::int64_t range;
    std::int64_t of_unknown;
    std::int64_t of_others;

    std::int64_t of_others_or_none() const { return std::max<std::int64_t>(of_others, 0); }
  };
  /// Words that a walk may come to: the first ones and the last ones.
  struct Beyond {
    std::size_t left_end;
    std::size_t right_begin;
  };
  Values take_values(const Potentials& potentials);
  void forget_values();
  std::int64_t value_of(std::uint32_t word, const Values& values) const { return values.of_others + surplus_[word]; }
  /// What a walk gains on both sides in words of this value.
  std::int64_t gain_of(std::int64_t value_of_words, const Values& values) const;
  std::int64_t gain_of_all(const Beyond& beyond, const Values& values) const;
  std::int64_t gain_by_counts(const Beyond& beyond, const Values& values) const;
  std::int64_t gain_by_order(const Beyond& beyond, const Values& values) const;

  const Stretch part_;
  const std::int64_t bases_;
  const Words numbers_;
  const BasePlanes& planes_;
  const char* const first_base_;
  const std::int64_t mismatch_loss_;  ///< of a step, next to taking the same bases as matches
  const std::int64_t insertion_loss_;
  const std::int64_t deletion_loss_;
  std::vector<std::uint32_t> words_;   ///< in their order
  std::vector<std::uint32_t> counts_;  ///< by the numbers of the words; behind them that of those with N

  std::vector<Way> ways_;              ///< of the unit in question, through words that stand there
  std::vector<std::uint32_t> exact_;   ///< the unit's word that begins at each phase
  std::vector<std::int32_t> surplus_;  ///< of the words that ways lead through over others; 0 between the questions
  std::vector<std::uint32_t> led_through_;  ///< the words that have some
};
