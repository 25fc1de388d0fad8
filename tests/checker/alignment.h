#pragma once

#include <string>
#include <vector>

#include "report_record.h"
#include "report_settings.h"

namespace checker {

// What the columns of an alignment of a repeat with its perfect form say.
struct Alignment {
  long long matches = 0;
  long long n_columns = 0;
  long long mismatches = 0;
  long long insertions = 0;
  long long deletions = 0;
  long long longest_match_run = 0;
  bool match_at_both_ends = false;
  std::vector<Event> events;  // in the order of the columns
  std::string unit_bases;     // the unit line without gaps
};

// Reads the three lines of an alignment without its flanks. Adds to `faults` what is wrong with single columns.
Alignment read_alignment(const std::string& sequence_line, const std::string& match_line, const std::string& unit_line,
                         bool n_can_be_neutral, std::vector<std::string>& faults);

// Lays the bases of the repeat beside the endless repetition of the unit, starting at unit base `phase`, with the given
// events. False when they do not fit: a plain base that differs from the unit, a mismatch that matches, an event that
// is never reached.
bool align_with_events(const std::string& bases, const std::string& unit, std::size_t phase,
                       const std::vector<Event>& events, bool n_can_be_neutral, Alignment& result);

// The highest score that any alignment of the bases with the endless repetition of the unit can have, starting at any
// unit base and counting every match.
long long best_score(const std::string& bases, const std::string& unit, const ReportSettings& settings);

}  // namespace checker
