#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace checker {

// max(minimum, ceil(offset + unit * factor)), the rule of both thresholds.
struct Threshold {
  long long minimum = 0;
  long long offset = 0;
  float factor = 0;

  long long for_unit(long long unit) const;
};

enum class SearchMode { exact, extend_exact, imperfect };
enum class PerfectionMode { n_as_mismatch, n_as_neutral, n_as_match };
enum class UnitMode { as_found, smallest_rotation, smallest_of_both_strands };
enum class OutputFormat { plain, extended, sputnik };
enum class PrintMode { nothing, bases, alignment };

// The settings that a report states in its header.
struct ReportSettings {
  std::uint32_t first_sequence = 1;
  std::uint32_t last_sequence = UINT32_MAX;
  SearchMode search_mode = SearchMode::imperfect;
  long long recursion = 0;
  long long min_unit = 1;
  long long max_unit = 6;
  Threshold score;
  Threshold length;
  bool n_as_missense = false;
  long long n_limit = 0;
  long long mismatch_score = -6;
  long long indel_score = -6;
  long long flanking = 0;
  bool remove_overlapping = true;
  PerfectionMode perfection_mode = PerfectionMode::n_as_mismatch;
  UnitMode unit_mode = UnitMode::as_found;
  OutputFormat output_format = OutputFormat::plain;
  PrintMode print_mode = PrintMode::nothing;

  // A neutral N takes part in a repeat only if a run of N may have any length at all; otherwise an N is a mismatch.
  bool n_can_be_neutral() const { return !n_as_missense && n_limit > 0; }
  bool perfect_only() const { return search_mode == SearchMode::exact || recursion == 0; }
};

// Reads the header: the lines that start with "# ", in their fixed order. Throws std::runtime_error with the reason
// when a line is missing, out of order or holds an unknown value.
ReportSettings parse_settings(const std::vector<std::string>& header);

}  // namespace checker
