#include "satellite/report_form.h"

#include <array>
#include <cstdint>
#include <cstring>

#include "sequence/global-types-and-parameters.h"

namespace {

ReportedUnit find_reported_unit(const char* begin, const char* end) {
  const CDnaString unit(begin, end);
  if (global_report_unit_mode == 0) return {unit, isReducibleUnit_global(begin, end)};

  CDnaString forward;
  const bool periodic = forward.setToMinAlphaRepModCyclicPermOf(unit);
  if (global_report_unit_mode == 1) return {forward, periodic};

  CDnaString complement;
  complement.setToReverseComplementOf(unit);
  CDnaString reverse;
  const bool reverse_periodic = reverse.setToMinAlphaRepModCyclicPermOf(complement);
  return {reverse.str() > forward.str() ? forward : reverse, reverse_periodic};
}

}  // namespace

const ReportedUnit& reported_unit(const Csat& sat) {
  struct Entry {
    std::uint64_t text;
    int mode;
    ReportedUnit reported;
  };
  thread_local std::array<Entry, 1024> short_units{};
  thread_local ReportedUnit long_unit;
  const auto length = static_cast<std::size_t>(sat.unit_length());
  if (length > sizeof(std::uint64_t)) {
    long_unit = find_reported_unit(sat.unit_begin, sat.unit_end);
    return long_unit;
  }
  std::uint64_t text = 0;
  std::memcpy(&text, sat.unit_begin, length);
  Entry& entry = short_units[text * 0x9E3779B97F4A7C15U >> 54];
  if (entry.text != text || entry.mode != global_report_unit_mode) {
    entry = {text, global_report_unit_mode, find_reported_unit(sat.unit_begin, sat.unit_end)};
  }
  return entry.reported;
}
