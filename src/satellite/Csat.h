#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <list>
#include <memory>
#include <mutex>
#include <string>
#include <utility>

#include "satellite/fastvector.h"
#include "sequence/CSequence_Mol.h"

/// One tandem repeat of one sequence.
///
/// Positions are pointers into the base buffer of the `CSequence_Mol` that is searched; they are valid while it holds
/// that record. Ranges are half-open, [begin, end). The unit is not a copy but the stretch of the sequence where the
/// repeat was seeded.
///
/// Invariant: `unit_right` and `unit_left` lie in [`unit_begin`, `unit_end`). A record is owned by the pool `sat_alloc`
/// unless it stands in a container of a search.
class Csat {
 public:
  /// One departure from the perfect repeat: where, and "M" mismatch, "I" insertion or "D" deletion. A deletion lies at
  /// the base before which the unit base is missing.
  using Event = std::pair<const char*, char>;

  const char* pos_left = nullptr;       ///< first base of the repeat
  const char* pos_right_end = nullptr;  ///< one past its last base
  const char* unit_right = nullptr;     ///< unit base expected at `pos_right_end`
  const char* unit_left = nullptr;      ///< unit base expected at `pos_left` - 1
  const char* unit_begin = nullptr;     ///< first base of the unit
  const char* unit_end = nullptr;       ///< one past the unit's last base
  std::int64_t score = 0;               ///< +1 a match, negative for mismatches and indels; the seed's copy counts 0
  std::uint32_t mismatches = 0;
  std::uint32_t insertions = 0;  ///< bases of the sequence that the perfect repeat does not have
  std::uint32_t deletions = 0;   ///< bases of the perfect repeat that the sequence does not have
  std::uint32_t num_Ns = 0;      ///< N inside the repeat that were taken as N, not as mismatches
  fastvector<Event> missense;    ///< the departures

  /// The record becomes the seed whose unit is [begin, end): one copy, no score.
  void seed(const char* begin, const char* end);

  std::int64_t unit_length() const { return unit_end - unit_begin; }
  /// Bases in the sequence.
  std::int64_t length() const { return pos_right_end - pos_left; }
  /// Bases of the perfect repeat that the alignment covers.
  std::int64_t normalized_length() const { return length() - insertions + deletions; }

  /// Percent, computed in extended precision by `global_N_and_perfection_mode`; an unknown mode ends the program with
  /// exit status 2.
  double percentagePerfection() const;

  /// Takes the N bases off both ends, the right end first. The record must hold a base that is not N.
  void remove_Ns_at_ends();

  /// Writes one repeat in the form that the run parameters choose; nothing for a unit that is itself periodic. The
  /// events must be in the order of `sort_missense`, and `seq` NUL-terminated.
  void report_sat(std::FILE* out, const CSequence_Mol& seq) const;

  /// "dinucleotide", "7-nucleotide". For unit lengths above 6 the text lies in a static buffer that the next call
  /// overwrites.
  const char* get_repeat_name() const;

  /// The order of events that the alignment needs: by position, and at one position a deletion before a mismatch. It
  /// holds both ways for two events of one kind, so it must not be given to a sorting algorithm; `sort_missense` sorts.
  struct lessThan_missense {
    bool operator()(const Event& a, const Event& b) const;
  };

  /// Sorts `missense` by position, deletions before the mismatch or the insertion at the same position, as a strict
  /// weak ordering. A base is taken in once, so only deletions can share a position with another event.
  void sort_missense();

  /// Frees the event list. The counts stay, so the repeat can be told from one without events.
  void drop_events() { missense.release(); }
  bool has_all_events() const { return missense.size == std::size_t{mismatches} + insertions + deletions; }

  /// Steps to the next or previous unit base, round the unit's ends.
  const char* next_unit_base(const char* base) const { return base + 1 == unit_end ? unit_begin : base + 1; }
  const char* previous_unit_base(const char* base) const { return (base == unit_begin ? unit_end : base) - 1; }
};

/// The names of the repeat classes by unit length, 0 to 6.
extern const char* const REPEAT_NAMES[7];

/// The order of a result list: by start, then by end. Sort with it stably.
bool lessThan_sat(const Csat* a, const Csat* b);

/// Sorts with lessThan_sat, stably, by merging the stretches that are in order already: a search finds the repeats of
/// each unit length from left to right, or nearly so.
void sort_sats(std::list<Csat*>& sats);

/// The pool of spare records, last in, first out, so that the record with the warmest event buffer is used first.
/// Owns the records that lie in it. Threads may share it.
class Csat_garbagecollector {
 public:
  Csat_garbagecollector() = default;
  Csat_garbagecollector(const Csat_garbagecollector&) = delete;
  Csat_garbagecollector& operator=(const Csat_garbagecollector&) = delete;
  ~Csat_garbagecollector();

  /// A record for the seed [begin, end), from the pool or new.
  Csat* take(const char* begin, const char* end);

  /// Puts a record at the end of the pool, or frees it if there is no memory for its place there.
  void give_back(Csat* sat) noexcept;

  /// Moves all records of `sats` to the end of the pool, in their order.
  void give_back_all(std::list<Csat*>& sats);

  std::size_t size() const;

 private:
  mutable std::mutex mutex;
  std::list<Csat*> spare;
};

/// Never destroyed: at the end of the program its many records go with the process.
extern Csat_garbagecollector& sat_alloc;

/// A record that goes back to the pool unless it is released.
struct GiveBackSat {
  void operator()(Csat* sat) const noexcept { sat_alloc.give_back(sat); }
};
using OwnedSat = std::unique_ptr<Csat, GiveBackSat>;
