#pragma once

#include <string>

#include "report_settings.h"

namespace checker {

std::string smallest_rotation(const std::string& unit);
std::string reverse_complement(const std::string& unit);

// True for a unit that repeats a shorter one, such as ATAT.
bool is_periodic(const std::string& unit);

// The form that a unit with this stretch of bases takes in the report. Where units are reported as found, any rotation
// may have been found, and the smallest stands for all of them.
std::string comparable_form(const std::string& unit, UnitMode mode);

}  // namespace checker
