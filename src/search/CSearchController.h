#pragma once

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <functional>
#include <list>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "satellite/Csat.h"
#include "search/CAnchorSeq.h"
#include "search/base_planes.h"
#include "search/candidate_words.h"
#include "search/front.h"
#include "search/growing_repeat.h"
#include "search/stretches.h"
#include "search/thresholds.h"
#include "search/walk_aids.h"
#include "search/workers.h"
#include "sequence/CSequence_Mol.h"

/// A result list. Its records go back to the pool when it is destroyed.
struct CsatContainer {
  std::list<Csat*> sats;

  CsatContainer() = default;
  CsatContainer(const CsatContainer&) = delete;
  CsatContainer& operator=(const CsatContainer&) = delete;
  ~CsatContainer() { sat_alloc.give_back_all(sats); }
};

/// The seeds of one unit length that must be tried, by their starts. What it points to is not owned.
struct CandidateSet {
  std::int64_t seeds = 0;  ///< every start is below; 0-based
  /// Bit p % 64 of word p / 64 for the start p.
  const std::vector<std::uint64_t>* bits = nullptr;
  const CandidateWords* marked = nullptr;  ///< in place of bits; if both are null, all seeds must be tried

  std::size_t words() const { return static_cast<std::size_t>((seeds + 63) / 64); }

  /// Calls `visit` with the number and the bits of each of the words [first, end) that is not empty, in ascending
  /// order.
  template <typename Visit>
  void for_each_word(std::size_t first, std::size_t end, Visit visit) const {
    if (marked != nullptr) {
      marked->for_each(first, std::min(end, words()), visit);
      return;
    }
    for (std::size_t number = first; number < std::min(end, words()); ++number) {
      const std::uint64_t word = inside(number) & (bits == nullptr ? ~std::uint64_t{0} : (*bits)[number]);
      if (word != 0) visit(number, word);
    }
  }

 private:
  /// Which bits of the word stand for seeds.
  std::uint64_t inside(std::size_t number) const {
    const std::int64_t rest = seeds - 64 * static_cast<std::int64_t>(number);
    return rest >= 64 ? ~std::uint64_t{0} : (std::uint64_t{1} << rest) - 1;
  }
};

/// A repeat that grows, or grew, out of an exact one, which was [left, right_end). Null if it failed.
struct GrownRepeat {
  Csat* sat;
  const char* left;
  const char* right_end;
};

/// How far a seed has grown.
enum class Growth : std::uint8_t {
  finished,
  paused_forward,   ///< the left end has not begun to grow
  paused_backward,  ///< the right end has done, and the left one not yet
};

/// Where a walk may pause: farther than so many bases from where it begins, at such a score or a higher one.
struct PausePoint {
  std::int64_t bases;
  std::int64_t score;

  static PausePoint never() { return {INT64_MAX, 0}; }
};

class HiddenRepeats;

/// The search of one sequence: built over a record, searched once in one mode, reported, destroyed before the next
/// record is read. Every position in a record found here points into `seq`.
class CSearchController {
 public:
  unsigned sequence_number;      ///< 1-based number of the record in the input
  CSequence_Mol& seq;            ///< the record searched; not owned
  CsatContainer exact_sats;      ///< result of the exact search
  CsatContainer imperfect_sats;  ///< result of the two imperfect searches

  /// `threads` is how many the search may use, at least one. The result is the same with any number.
  CSearchController(unsigned number, CSequence_Mol& sequence, unsigned threads = 1);
  CSearchController(const CSearchController&) = delete;
  CSearchController& operator=(const CSearchController&) = delete;

  /// Mode "exact": every perfect repeat, into `exact_sats`, sorted with lessThan_sat.
  void exact_search_2();

  /// Mode "extendExact": exact repeats of low thresholds, each grown into an imperfect one, into `imperfect_sats`,
  /// sorted with lessThan_sat. Two progress lines go to standard error.
  void search_exact_and_extend_to_imperfect_repeats();

  /// Mode "imperfect": every position as a seed of every unit length, into `imperfect_sats`, sorted with lessThan_sat.
  void complete_imperfect_search();

  /// Nothing goes to standard error from here on: the search runs beside others. What it has to say waits in `unsaid`.
  void be_quiet() { is_quiet = true; }
  std::string unsaid;

  /// Frees what only the search itself needed.
  void forget_working_data();

  /// Removes, from a list sorted with lessThan_sat, the lower-scoring one of any two mostly overlapping repeats. Two
  /// repeats mostly overlap when one of them has less than a unit outside the shared stretch. The earlier one wins a
  /// tie.
  static void remove_hidden(CsatContainer& container);

  /// Writes the record's header lines and its repeats. Events of long repeats that were dropped are found again for it.
  /// `also` is called with each repeat while it has its events, the periodic ones that the report leaves out as well.
  void report_SATList(std::FILE* out, const std::list<Csat*>& sats,
                      const std::function<void(const Csat&)>& also = nullptr) const;

  /// Grows the right end up to `stop`, exclusive. False when an over-long run of N lies directly ahead.
  bool extend_exact_forward(Csat& sat, const char* stop) const;
  /// Grows the left end; `stop` is the position before the first base that may be taken.
  bool extend_exact_backward(Csat& sat, const char* stop) const;

  /// Grows the right end into an imperfect repeat, up to `seq_end`, exclusive. Events are appended in the order of the
  /// walk.
  void extend_imperfect_forward(Csat& sat, const char* seq_end) const;
  /// Grows the left end; `left_limit` is the position before the first base that may be taken.
  void extend_imperfect_backward(Csat& sat, const char* left_limit) const;

  /// The score to which the imperfect extension will bring the seed, if that can be told without extending it. The
  /// spare height of its forward walk is known then, too.
  std::optional<std::int64_t> foresee_score(const Csat& seed, GrowthAids& aids) const;

  /// Grows the seed both ways and trims it. Long stretches of events may be left untold. In either direction it may
  /// pause.
  Growth grow_imperfect(Csat& seed, GrowthAids& aids, const PausePoint& pause) const;

  /// Whether the repeat, which lies in the stretch, certainly does so when it has grown to its ends. False also if that
  /// cannot be told.
  bool stays_within(const GrowingRepeat& grown, Growth growth, std::int64_t unit_length, const Stretch& stretch) const;

  /// Whether the window [begin, end) may be a unit: no N, and not a single base repeated unless it is one base long.
  /// `next_N` is the first N at or after `begin`, or the sequence end.
  static bool valid_starting_pattern(const char* begin, const char* end, const char* next_N);

  /// The exact repeats under `global_perfection_minimum`: a repeat that falls short, because of its N, is broken up
  /// into the longest pieces from left to right that reach it. No mode selects this path yet.
  void report_exact_sat_with_minimum_perfection(std::FILE* out) const;
  void find_and_report_all_sat_with_minimum_perfection_in_previously_determined_exact_sat(std::FILE* out,
                                                                                          const Csat& rep) const;
  /// The best piece of `rep`, which must be exact, that begins at `start`. `best`.pos_left stays null if there is none.
  static void find_one_exact_sat_with_minimum_perfection_in_previously_determined_exact_repeat(const Csat& rep,
                                                                                               const char* start,
                                                                                               Csat& best);

  /// So many hidden repeats may always wait for the end of the direct search.
  std::size_t least_hidden = std::size_t{1} << 16;

  /// The active thresholds, the user's outside the seed stage of mode "extendExact".
  const ThresholdTable* minScores;
  const ThresholdTable* minLengths;

 private:
  friend class HiddenRepeats;
  friend class ImperfectPass;
  friend class PostponedRepeats;

  /// By the active thresholds.
  Minimum minimum_of(std::int64_t unit_length) const { return {*minScores, *minLengths, unit_length}; }

  /// A line for the user, with its line end.
  void say(const char* line);

  /// Every 256 positions: lets the run status write a progress line, once a minute at most, and draws the line of
  /// --progress.
  void report_progress(const char* p, std::int64_t unit_length) const;

  /// Draws the line of --progress, if it is on, when so many steps of the search are done. Every unit length is a step,
  /// and so is the extension in mode "extendExact".
  void draw_progress(double steps_done) const;
  /// The position as a share of the sequence, 0 to 1.
  double share_before(const char* p) const;

  /// The longest unit length that can be seeded at all: a window must end before the last base.
  std::int64_t longest_unit() const;
  /// How many unit lengths are searched; 0 in a record that is too short for any.
  std::int64_t unit_lengths() const;

  /// Takes an exact repeat over or, returning false, leaves it to be used anew. It may change the repeat.
  using KeepRepeat = std::function<bool(Csat*)>;
  /// Calls `keep` with every exact repeat that passes the active thresholds, by ascending unit length and start.
  void find_exact_repeats(const KeepRepeat& keep);
  void search_exact_mononucleotides(CAnchorSeq& cover, const KeepRepeat& keep);
  void search_exact_units(std::int64_t unit_length, CAnchorSeq& cover, const KeepRepeat& keep);
  void extend_exact_both_ways(Csat& sat) const;

  /// The direct search, but for the order of the list. False if `hidden` has forgotten too much.
  bool search_all_units(HiddenRepeats& hidden);
  /// Repeats of which only a stretch is known are added to `hidden`.
  void unit_len_1_complete_imperfect_search(CAnchorSeq& anchors, std::list<Csat*>& found, HiddenRepeats& hidden);
  void one_unit_len_complete_imperfect_search(std::int64_t unit_length, CAnchorSeq& anchors, std::list<Csat*>& found,
                                              HiddenRepeats& hidden);
  Growth grow_imperfect(Csat& seed, GrowthAids& aids) const { return grow_imperfect(seed, aids, PausePoint::never()); }
  /// Grows a right end that has paused, and trims it if that is done. Returns whether it pauses again.
  bool grow_on(Csat& sat, GrowthAids& aids, const PausePoint& pause) const;
  /// Notes the deletion that a seed whose right end has paused will have at its first base, if it will have one. False
  /// if that is not known.
  bool note_event_at_left_end(Csat& seed, GrowthAids& aids) const;
  using GrowingRepeats = std::vector<GrowingRepeat*>;
  /// Grows the right ends of the ones to where they stop, and then the left ends of the others, which it trims. All are
  /// of one unit length. Each end stops after so many bases or some more, where its score was highest; returned are
  /// those that it did not come to the end of, sorted.
  GrowingRepeats finish_growth(const GrowingRepeats& forward, const GrowingRepeats& backward, std::int64_t unit_length,
                               std::int64_t most_bases = any_bases) const;
  using GrowShare = std::function<GrowingRepeats(const GrowingRepeats& share, GrowthAids& aids)>;
  /// Among the workers; those with rotations of one unit stay together. Returns what they return.
  GrowingRepeats share_out(const GrowingRepeats& repeats, std::int64_t unit_length, const GrowShare& grow) const;
  /// What the growth of one worker remembers.
  GrowthAids& aids_of(unsigned worker) const;

  /// Lets go of the events of a kept repeat that has many: in a satellite array thousands of repeats, most of which the
  /// overlap removal will drop, may each hold the events of the whole array. Those of others keep no more memory than
  /// they need: the buffer may have grown for another seed.
  static void drop_many_events(Csat& sat);
  /// Grows the repeat anew from its unit, if events were dropped.
  void find_dropped_events(Csat& sat) const;

  void grow_exact_repeats(std::vector<GrownRepeat>& repeats) const;

  void prepare_candidates(std::int64_t unit_length);

  /// Whether the sequence is so long that the memory matters that the aids of walks take.
  bool is_long() const;
  /// Gives the memory that the walks so far have left to later ones back.
  void let_go_of_walks();

  /// The seeds of this unit length that may reach the active minimum score with at most `depth` steps of lookahead.
  CandidateSet find_candidates(std::int64_t unit_length, std::int64_t depth);
  /// Calls `try_seed` with the start of each of them that the anchors admit by then, in ascending order, and lets the
  /// run status report. `try_seed` returns a start behind that; those before it are left out. `settle` is called with a
  /// position and a count before the anchors there are asked.
  template <typename Settle, typename TrySeed>
  void for_each_candidate(std::int64_t unit_length, std::int64_t depth, const CAnchorSeq& anchors, Settle settle,
                          TrySeed try_seed);
  /// Takes out of `candidates` what the imperfect extension cannot bring to the user's minimum score. Such a seed would
  /// be found and given back; it could not block another one either.
  void drop_seeds_that_cannot_grow(std::int64_t unit_length);

  ThresholdTable minScores_user;
  ThresholdTable minLengths_user;
  ThresholdTable minScores_intern;
  ThresholdTable minLengths_intern;
  ExtensionRules rules;
  BasePlanes planes;
  Workers workers;
  mutable std::vector<std::unique_ptr<GrowthAids>> growth_aids;  ///< one for each worker, made when it is needed
  bool is_quiet = false;
  bool exact_first = false;  ///< records were extended exactly before the imperfect extension
  std::vector<std::uint64_t> candidates;
  /// Candidates of the unit lengths that the lag filter has decided, an inclusive range; none if last < first.
  std::int64_t lag_range_first = 1;
  std::int64_t lag_range_last = 0;
  std::vector<CandidateWords> lag_candidates;
};
