#pragma once

#include <cstddef>
#include <exception>
#include <list>
#include <memory>

#include "search/CSearchController.h"
#include "search/progress_line.h"
#include "sequence/CSequence_Mol.h"

/// A record and what was found in it. Where the sequence is not its own, that must outlive it.
struct RecordSearch {
  unsigned number = 0;  ///< 1-based number of the record in the input
  RecordPlace place;    ///< where in the input it stands
  CSequence_Mol* sequence = nullptr;
  std::unique_ptr<CSequence_Mol> own_sequence;  ///< of a record that waits
  std::unique_ptr<CSearchController> controller;
  CsatContainer* result = nullptr;  ///< the controller's; null until it was searched
  std::exception_ptr failure;       ///< why the search of a waiting record ended

  /// Searches the record in the mode of the run and removes mostly overlapping repeats. `quietly`: on a thread of its
  /// own, so that what there is to say has to wait.
  void search(unsigned threads, bool quietly);
};

/// Records that are too short to be shared by several threads wait here until there are enough of them for all. They
/// keep their order.
class WaitingRecords {
 public:
  /// Whether a record of this many bases has to wait.
  static bool has_to_wait(std::size_t bases, unsigned threads) { return threads > 1 && bases <= longest; }

  /// Copies the record.
  void add(const CSequence_Mol& sequence, unsigned number, const RecordPlace& place);

  bool are_enough() const { return bases_ >= enough_bases || records_.size() >= enough_records; }

  /// Searches those that leave enough for the other threads to do, each on one thread, and hands all out. The others
  /// have no result yet.
  std::list<RecordSearch> take_searched(unsigned threads);

 private:
  static constexpr std::size_t longest = 1000000;
  static constexpr std::size_t enough_bases = 8000000;
  static constexpr std::size_t enough_records = 4096;

  std::list<RecordSearch> records_;
  std::size_t bases_ = 0;
};
