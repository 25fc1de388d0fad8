#include "satellite/repeat_row.h"

#include <utility>

#include "satellite/report_form.h"

namespace {

/// Columns of an alignment, counted in runs of one kind.
class ColumnRuns {
 public:
  void add(char kind) {
    if (kind != kind_) finish_run();
    kind_ = kind;
    ++count_;
  }

  std::string finished() {
    finish_run();
    return std::move(text_);
  }

 private:
  void finish_run() {
    if (count_ > 0) text_ += std::to_string(count_) + kind_;
    count_ = 0;
  }

  std::string text_;
  char kind_ = '=';
  std::uint64_t count_ = 0;
};

char column_kind(char sequence_base, char mark, char unit_base) {
  if (mark == '|') return '=';
  if (mark == '*') return 'M';
  if (sequence_base == '-') return 'D';
  return unit_base == '-' ? 'I' : 'X';
}

std::string alignment_of(const Csat& sat) {
  ColumnRuns runs;
  for_each_column(sat, [&runs](char base, char mark, char unit) { runs.add(column_kind(base, mark, unit)); });
  return runs.finished();
}

std::string matched_unit_of(const Csat& sat) {
  const char* const first = sat.next_unit_base(sat.unit_left);
  return std::string(first, sat.unit_end).append(sat.unit_begin, first);
}

}  // namespace

std::optional<RepeatRow> repeat_row(const Csat& sat, const CSequence_Mol& seq) {
  const ReportedUnit& shown = reported_unit(sat);
  if (shown.periodic) return std::nullopt;
  RepeatRow row{};
  row.start = sat.pos_left - seq.begin() + 1;
  row.end = sat.pos_right_end - seq.begin();
  row.unit_length = sat.unit_length();
  row.length = sat.length();
  row.normalized_length = sat.normalized_length();
  row.score = sat.score;
  row.perfection = sat.percentagePerfection();
  row.copies = static_cast<double>(row.normalized_length) / static_cast<double>(row.unit_length);
  row.mismatches = sat.mismatches;
  row.insertions = sat.insertions;
  row.deletions = sat.deletions;
  row.neutral_Ns = sat.num_Ns;
  row.unit = shown.unit.str();
  row.matched_unit = matched_unit_of(sat);
  row.alignment = alignment_of(sat);
  return row;
}
