#include "search/CSearchController.h"

#include <algorithm>

#include "satellite/records_ahead.h"
#include "search/progress_line.h"
#include "search/run_status.h"
#include "search/seed_filter.h"
#include "sequence/global-types-and-parameters.h"

CSearchController::CSearchController(unsigned number, CSequence_Mol& sequence, unsigned threads)
    : sequence_number(number),
      seq(sequence),
      minScores(&minScores_user),
      minLengths(&minLengths_user),
      minScores_user(global_min_score, global_min_score_a, global_min_score_bx),
      minLengths_user(global_min_length, global_min_length_a, global_min_length_bx),
      minScores_intern(4, 0, 1.0F),
      minLengths_intern(0, 0, 0.0F),
      rules{global_mismatch_score, global_indel_score, global_maximum_recursion_depth, global_Ns_allowed_in_a_row,
            global_treat_Ns_as_missense},
      planes(sequence.begin(), sequence.end()),
      workers(threads),
      growth_aids(workers.count()) {}

GrowthAids& CSearchController::aids_of(unsigned worker) const {
  std::unique_ptr<GrowthAids>& aids = growth_aids[worker];
  if (!aids) aids = std::make_unique<GrowthAids>(seq.begin(), seq.end(), planes, rules);
  return *aids;
}

void CSearchController::say(const char* line) {
  if (is_quiet) {
    unsaid += line;
  } else {
    write_status(line);
  }
}

void CSearchController::forget_working_data() {
  for (std::unique_ptr<GrowthAids>& aids : growth_aids) aids.reset();
  candidates = {};
  lag_candidates = {};
  lag_range_last = lag_range_first - 1;
}

void CSearchController::report_progress(const char* p, std::int64_t unit_length) const {
  if (is_quiet || (p - seq.begin()) % 256 != 0) return;
  if (progress_line_is_on) {
    draw_progress(static_cast<double>(unit_length - global_min_unit_length) + share_before(p));
  }
  if (check_report_status()) report_status(sequence_number, seq.name.c_str(), static_cast<unsigned>(unit_length), 'r');
}

void CSearchController::draw_progress(double steps_done) const {
  if (is_quiet || !progress_line_is_on) return;
  const std::int64_t steps = unit_lengths() + (global_search_mode == 1 ? 1 : 0);
  show_progress(steps_done / static_cast<double>(steps));
}

double CSearchController::share_before(const char* p) const {
  return static_cast<double>(p - seq.begin()) / static_cast<double>(seq.end() - seq.begin());
}

std::int64_t CSearchController::longest_unit() const {
  return std::min<std::int64_t>(global_max_unit_length, seq.end() - seq.begin() - 1);
}

std::int64_t CSearchController::unit_lengths() const {
  return std::max<std::int64_t>(0, longest_unit() - global_min_unit_length + 1);
}

CandidateSet CSearchController::find_candidates(std::int64_t unit_length, std::int64_t depth) {
  const std::int64_t minimum_score = (*minScores)[unit_length];
  const std::int64_t seeds = seq.end() - seq.begin() - unit_length;
  // No more bases than these lie outside the unit, each worth +1 at most.
  if (seeds <= 0 || seeds < minimum_score) return {};
  if (unit_length >= lag_range_first && unit_length <= lag_range_last) {
    return {seeds, nullptr, &lag_candidates[static_cast<std::size_t>(unit_length - lag_range_first)]};
  }
  ExtensionRules scan_rules = rules;
  scan_rules.maximum_depth = depth;
  if (!SeedFilter::is_useful(unit_length, minimum_score, scan_rules)) return {seeds};
  SeedFilter(planes, seq.begin(), seq.end())
      .mark_candidates(unit_length, minimum_score, scan_rules, candidates, workers);
  if (minScores == &minScores_intern) drop_seeds_that_cannot_grow(unit_length);
  return {seeds, &candidates, nullptr};
}

bool CSearchController::valid_starting_pattern(const char* begin, const char* end, const char* next_N) {
  if (next_N >= begin && next_N < end) return false;
  if (end - begin == 1) return true;
  return std::adjacent_find(begin, end, [](char a, char b) { return a != b; }) != end;
}

void CSearchController::report_SATList(std::FILE* out, const std::list<Csat*>& sats,
                                       const std::function<void(const Csat&)>& also) const {
  std::fprintf(out, ">%s\nsequence length: %zu\n", seq.name.c_str(), seq.sequence.length);
  RecordsAhead ahead(sats);
  for (Csat* sat : sats) {
    ahead.step();
    find_dropped_events(*sat);
    sat->report_sat(out, seq);
    if (also) also(*sat);
    drop_many_events(*sat);
  }
}

void CSearchController::drop_many_events(Csat& sat) {
  constexpr std::size_t many = 64;
  if (sat.missense.size > many || !sat.has_all_events()) sat.drop_events();
  sat.missense.shrink();
}

void CSearchController::find_dropped_events(Csat& sat) const {
  if (sat.has_all_events()) return;
  sat.seed(sat.unit_begin, sat.unit_end);
  if (exact_first) extend_exact_both_ways(sat);
  extend_imperfect_forward(sat, seq.end());
  extend_imperfect_backward(sat, seq.begin() - 1);
  sat.remove_Ns_at_ends();
  sat.sort_missense();
}
