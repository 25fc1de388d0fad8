// The formats in which a repeat is written.

#include <algorithm>
#include <cinttypes>
#include <string>

#include "satellite/Csat.h"
#include "satellite/report_form.h"
#include "sequence/global-types-and-parameters.h"

namespace {

/// The bases shown on either side of a repeat, each a half-open range that ends at the sequence's ends at the latest.
struct Flanks {
  const char* left_begin;
  const char* right_end;
};

Flanks flanks_of(const Csat& sat, const CSequence_Mol& seq) {
  const std::ptrdiff_t wanted = global_flanking;
  return {sat.pos_left - std::min(wanted, sat.pos_left - seq.begin()),
          sat.pos_right_end + std::min(wanted, seq.end() - sat.pos_right_end)};
}

void write_bytes(std::FILE* out, const char* begin, const char* end, char closing) {
  std::fwrite(begin, 1, static_cast<std::size_t>(end - begin), out);
  std::fputc(closing, out);
}

/// Three lines of equal length that grow column by column.
class Alignment {
 public:
  explicit Alignment(std::size_t columns) {
    sequence.reserve(columns);
    match.reserve(columns);
    unit.reserve(columns);
  }

  void column(char sequence_base, char mark, char unit_base) {
    sequence.push_back(sequence_base);
    match.push_back(mark);
    unit.push_back(unit_base);
  }

  void context(const char* begin, const char* end) {
    for (const char* base = begin; base != end; ++base) column(*base, ' ', ' ');
  }

  void write(std::FILE* out) const {
    for (const std::string* line : {&sequence, &match, &unit}) {
      write_bytes(out, line->data(), line->data() + line->size(), '\n');
    }
  }

 private:
  std::string sequence;
  std::string match;
  std::string unit;
};

}  // namespace

void Csat::report_sat(std::FILE* out, const CSequence_Mol& seq) const {
  const ReportedUnit shown = reported_unit(*this);
  if (shown.periodic) return;
  report_line(out, seq, shown.unit.c_str());
  if (global_print_sat_seq_mode == 1) report_bases(out, seq);
  if (global_print_sat_seq_mode == 2) report_alignment(out, seq);
}

void Csat::report_line(std::FILE* out, const CSequence_Mol& seq, const char* unit) const {
  const std::int64_t start = pos_left - seq.begin() + 1;
  const std::int64_t end = pos_right_end - seq.begin();
  const double perfection = percentagePerfection();

  if (global_print_sat_mode == 2) {
    std::fprintf(out, "%s %" PRId64 " : %" PRId64 " -- length %" PRId64 " score %" PRId64 " perfection %d unit %s\n",
                 get_repeat_name(), start, end, normalized_length(), score, static_cast<int>(perfection + 0.5), unit);
    std::fflush(out);
    return;
  }

  if (unit_length() <= 6) {
    std::fprintf(out, "%16s", REPEAT_NAMES[unit_length()]);
  } else {
    std::fprintf(out, "%5" PRId64 "-nucleotide", unit_length());
  }
  std::fprintf(out, " %9" PRId64 " : %9" PRId64 " | %6" PRId64 " bp | %6" PRId64 " BP | %6" PRId64 " pt | %7.3f %% | ",
               start, end, length(), normalized_length(), score, perfection);
  if (global_print_sat_mode == 0) {
    std::fprintf(out, "unit %s\n", unit);
    return;
  }

  std::fprintf(out, "%3u mis | %3u ins | %3u del | ", mismatches, insertions, deletions);
  if (!global_treat_Ns_as_missense) std::fprintf(out, "%3u N | ", num_Ns);
  std::fprintf(out, " unit %s\nMissense: ", unit);
  for (const Event& event : missense) {
    std::fprintf(out, "(%" PRId64 ",%c),", static_cast<std::int64_t>(event.first - pos_left + 1), event.second);
  }
  std::fputc('\n', out);
}

void Csat::report_bases(std::FILE* out, const CSequence_Mol& seq) const {
  const Flanks flanks = flanks_of(*this, seq);
  if (global_flanking > 0) write_bytes(out, flanks.left_begin, pos_left, ':');
  write_bytes(out, pos_left, pos_right_end, global_flanking > 0 ? ':' : '\n');
  if (global_flanking > 0) write_bytes(out, pos_right_end, flanks.right_end, '\n');
}

void Csat::report_alignment(std::FILE* out, const CSequence_Mol& seq) const {
  const Flanks flanks = flanks_of(*this, seq);
  const bool with_flanks = global_flanking > 0;
  // An insertion is a base of the sequence, so only the deletions need columns of their own.
  Alignment lines(static_cast<std::size_t>(flanks.right_end - flanks.left_begin) + deletions + 2);
  if (with_flanks) {
    lines.context(flanks.left_begin, pos_left);
    lines.column(':', ' ', ' ');
  }
  for_each_column(*this, [&lines](char base, char mark, char unit) { lines.column(base, mark, unit); });
  if (with_flanks) {
    lines.column(':', ' ', ' ');
    lines.context(pos_right_end, flanks.right_end);
  }
  lines.write(out);
}
