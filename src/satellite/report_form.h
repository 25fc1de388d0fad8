#pragma once

#include "satellite/Csat.h"
#include "sequence/CDnaString.h"

/// The unit as the report shows it, and whether it is itself periodic, which keeps the repeat out of the report.
struct ReportedUnit {
  CDnaString unit;
  bool periodic = false;
};

/// By `global_report_unit_mode`. Short units come again and again, so what is shown for them is remembered. The
/// reference is good until the thread's next call.
const ReportedUnit& reported_unit(const Csat& sat);

/// Calls `column(sequence_base, mark, unit_base)` for every column of the alignment of the repeat with the perfect
/// repetition of its unit, from left to right. "-" fills a gap; the mark is "|" for a base that agrees, "*" for a
/// neutral N, a blank for a departure. The events must be in the order of `sort_missense`.
template <typename Column>
void for_each_column(const Csat& sat, Column column) {
  const Csat::Event* event = sat.missense.begin();
  const char* unit = sat.next_unit_base(sat.unit_left);
  const char* base = sat.pos_left;
  while (base != sat.pos_right_end) {
    if (event == sat.missense.end() || event->first != base) {
      column(*base, *base == 'N' ? '*' : '|', *unit);
      ++base;
      unit = sat.next_unit_base(unit);
      continue;
    }
    const char kind = event->second;
    column(kind == 'D' ? '-' : *base, ' ', kind == 'I' ? '-' : *unit);
    if (kind != 'D') ++base;
    if (kind != 'I') unit = sat.next_unit_base(unit);
    ++event;
  }
}
