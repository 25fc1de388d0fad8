#include "satellite/report_form.h"

#include "sequence/global-types-and-parameters.h"

ReportedUnit reported_unit(const Csat& sat) {
  const CDnaString unit(sat.unit_begin, sat.unit_end);
  if (global_report_unit_mode == 0) return {unit, isReducibleUnit_global(sat.unit_begin, sat.unit_end)};

  CDnaString forward;
  const bool periodic = forward.setToMinAlphaRepModCyclicPermOf(unit);
  if (global_report_unit_mode == 1) return {forward, periodic};

  CDnaString complement;
  complement.setToReverseComplementOf(unit);
  CDnaString reverse;
  const bool reverse_periodic = reverse.setToMinAlphaRepModCyclicPermOf(complement);
  return {reverse.str() > forward.str() ? forward : reverse, reverse_periodic};
}
