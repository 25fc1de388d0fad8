#include "driver/record_search.h"

#include <utility>
#include <vector>

#include "search/workers.h"
#include "sequence/global-types-and-parameters.h"

void RecordSearch::search(unsigned threads, bool quietly) {
  controller = std::make_unique<CSearchController>(number, *sequence, threads);
  if (quietly) controller->be_quiet();
  CsatContainer* found = &controller->imperfect_sats;
  switch (global_search_mode) {
    case 0:
      controller->exact_search_2();
      found = &controller->exact_sats;
      break;
    case 1:
      controller->search_exact_and_extend_to_imperfect_repeats();
      break;
    default:
      controller->complete_imperfect_search();
  }
  CSearchController::remove_hidden(*found);
  controller->forget_working_data();
  result = found;
}

void WaitingRecords::add(const CSequence_Mol& sequence, unsigned number, const RecordPlace& place) {
  RecordSearch record;
  record.number = number;
  record.place = place;
  record.own_sequence = std::make_unique<CSequence_Mol>();
  record.own_sequence->copy(sequence);
  record.sequence = record.own_sequence.get();
  bases_ += sequence.sequence.length;
  records_.push_back(std::move(record));
}

std::list<RecordSearch> WaitingRecords::take_searched(unsigned threads) {
  std::vector<RecordSearch*> shared_out;
  for (RecordSearch& record : records_) {
    if (record.sequence->sequence.length * threads <= bases_) shared_out.push_back(&record);
  }
  Workers(threads).run(shared_out.size(), [&shared_out](std::size_t task, unsigned) {
    RecordSearch& record = *shared_out[task];
    try {
      record.search(1, true);
    } catch (...) {
      record.failure = std::current_exception();
    }
  });
  bases_ = 0;
  return std::exchange(records_, {});
}
