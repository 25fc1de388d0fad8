#pragma once

#include <istream>
#include <optional>
#include <ostream>

#include "report_settings.h"

namespace checker {

struct CheckResult {
  long long passed = 0;
  // Records that are wrong, plus one for each fault outside the records: header, sequence block, end of the report.
  long long failed = 0;
};

// Checks a whole report against the FASTA file that it was made from, and writes each fault to `messages`. One sequence
// is held in memory at a time. With `format`, the report must state that output format.
CheckResult check_report(std::istream& fasta, std::istream& report, std::ostream& messages,
                         std::optional<OutputFormat> format = std::nullopt);

}  // namespace checker
