#pragma once

#include <string>
#include <vector>

#include "report_record.h"
#include "report_settings.h"

namespace checker {

// Checks one record against the bases of its sequence: every value against the others, against the bases and against
// the settings. Returns the reasons why it is wrong, none when all is well.
std::vector<std::string> check_record(const ReportRecord& record, const std::string& sequence,
                                      const ReportSettings& settings);

}  // namespace checker
