// Reporting of exact repeats above a minimum perfection.

#include "search/CSearchController.h"
#include "sequence/global-types-and-parameters.h"

void CSearchController::report_exact_sat_with_minimum_perfection(std::FILE* out) const {
  std::fprintf(out, ">%s\nsequence length: %zu\n", seq.name.c_str(), seq.sequence.length);
  for (const Csat* sat : exact_sats.sats) {
    if (sat->percentagePerfection() >= static_cast<double>(global_perfection_minimum)) {
      sat->report_sat(out, seq);
    } else {
      find_and_report_all_sat_with_minimum_perfection_in_previously_determined_exact_sat(out, *sat);
    }
  }
}

void CSearchController::find_and_report_all_sat_with_minimum_perfection_in_previously_determined_exact_sat(
    std::FILE* out, const Csat& rep) const {
  // Only as mismatches do the N lower the perfection of an exact repeat.
  if (global_N_and_perfection_mode != 0) {
    rep.report_sat(out, seq);
    return;
  }
  Csat piece;
  const char* p = rep.pos_left;
  while (p != rep.pos_right_end) {
    find_one_exact_sat_with_minimum_perfection_in_previously_determined_exact_repeat(rep, p, piece);
    if (piece.pos_left != nullptr && minimum_of(piece.unit_length()).is_reached_by(piece)) {
      piece.report_sat(out, seq);
      p = piece.pos_right_end;
    } else {
      ++p;
    }
  }
}

void CSearchController::find_one_exact_sat_with_minimum_perfection_in_previously_determined_exact_repeat(
    const Csat& rep, const char* start, Csat& best) {
  const std::int64_t k = rep.unit_length();
  const std::int64_t phase = (rep.unit_left + 1 - rep.unit_begin + (start - rep.pos_left)) % k;

  Csat work;
  work.seed(rep.unit_begin, rep.unit_end);
  work.pos_left = work.pos_right_end = start;
  work.unit_right = rep.unit_begin + phase;
  work.unit_left = work.previous_unit_base(work.unit_right);
  work.score = -k;  // the first copy of the unit earns nothing

  best = Csat();
  best.score = -k;
  while (work.pos_right_end != rep.pos_right_end) {
    const char base = *work.pos_right_end;
    if (base == *work.unit_right) ++work.score;
    if (base == 'N') ++work.num_Ns;
    ++work.pos_right_end;
    work.unit_right = work.next_unit_base(work.unit_right);
    const bool perfect_enough = work.percentagePerfection() >= static_cast<double>(global_perfection_minimum);
    if (perfect_enough && work.score >= best.score) best = work;
  }
}
