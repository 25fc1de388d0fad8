#pragma once

#include <string>
#include <vector>

#include "report_settings.h"

namespace checker {

// A departure from the perfect repeat: its position in the repeat, counted from 1, and 'M', 'I' or 'D'.
struct Event {
  long long position = 0;
  char kind = 0;
};

inline bool operator==(const Event& a, const Event& b) {
  return a.position == b.position && a.kind == b.kind;
}

// One repeat as the report writes it.
struct ReportRecord {
  long long unit_length = 0;
  long long start = 0;  // 1-based
  long long end = 0;    // 1-based, inclusive
  long long bp = 0;
  long long normalised = 0;
  long long score = 0;
  std::string perfection;  // as written
  std::string unit;
  // The following are known in the extended format only.
  long long mismatches = 0;
  long long insertions = 0;
  long long deletions = 0;
  long long n_count = 0;
  std::vector<Event> events;
  // The lines of bases or of the alignment, as many as the print mode asks for.
  std::vector<std::string> sequence_lines;
};

// Lines that follow the repeat line: the events of the extended format, then bases or alignment.
std::size_t following_lines(const ReportSettings& settings);

// Reads a repeat line and the lines that follow it. Throws std::runtime_error when the text is not exactly what the
// values read from it look like when they are written.
ReportRecord parse_record(const std::vector<std::string>& lines, const ReportSettings& settings);

}  // namespace checker
