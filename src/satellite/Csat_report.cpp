// The formats in which a repeat is written.

#include <algorithm>
#include <string>
#include <string_view>

#include "satellite/Csat.h"
#include "satellite/report_form.h"
#include "satellite/report_text.h"
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

std::string_view bases(const char* begin, const char* end) {
  return {begin, static_cast<std::size_t>(end - begin)};
}

/// Three lines of equal length that grow column by column.
class Alignment {
 public:
  /// `columns` is the most that will be added.
  explicit Alignment(std::size_t columns)
      : bytes(3 * columns, ' '), sequence(bytes.data()), match(sequence + columns), unit(match + columns) {}

  void column(char sequence_base, char mark, char unit_base) {
    sequence[used] = sequence_base;
    match[used] = mark;
    unit[used] = unit_base;
    ++used;
  }

  void context(const char* begin, const char* end) {
    for (const char* base = begin; base != end; ++base) column(*base, ' ', ' ');
  }

  void put_into(ReportText& text) const {
    for (const char* line : {sequence, match, unit}) {
      text.put({line, used});
      text.put('\n');
    }
  }

 private:
  std::string bytes;  // the three lines behind one another
  char* sequence;
  char* match;
  char* unit;
  std::size_t used = 0;
};

/// The unit length in words, as wide as the longest of them.
void put_name(ReportText& text, std::int64_t unit_length) {
  if (unit_length <= 6) {
    text.put_aligned(REPEAT_NAMES[unit_length], 16);
    return;
  }
  text.put_number(unit_length, 5);
  text.put("-nucleotide");
}

/// The columns that formats 0 and 1 share.
void put_columns(ReportText& text, const Csat& sat, const CSequence_Mol& seq) {
  put_name(text, sat.unit_length());
  text.put(" ");
  text.put_number(sat.pos_left - seq.begin() + 1, 9);
  text.put(" : ");
  text.put_number(sat.pos_right_end - seq.begin(), 9);
  text.put(" | ");
  text.put_number(sat.length(), 6);
  text.put(" bp | ");
  text.put_number(sat.normalized_length(), 6);
  text.put(" BP | ");
  text.put_number(sat.score, 6);
  text.put(" pt | ");
  text.put_fixed_3(sat.percentagePerfection(), 7);
  text.put(" % | ");
}

void put_departures(ReportText& text, const Csat& sat) {
  text.put_number(sat.mismatches, 3);
  text.put(" mis | ");
  text.put_number(sat.insertions, 3);
  text.put(" ins | ");
  text.put_number(sat.deletions, 3);
  text.put(" del | ");
  if (global_treat_Ns_as_missense) return;
  text.put_number(sat.num_Ns, 3);
  text.put(" N | ");
}

void put_events(ReportText& text, const Csat& sat) {
  text.put("Missense: ");
  for (const Csat::Event& event : sat.missense) {
    text.put('(');
    text.put_number(event.first - sat.pos_left + 1);
    text.put(',');
    text.put(event.second);
    text.put("),");
  }
  text.put('\n');
}

void put_sputnik_line(ReportText& text, const Csat& sat, const CSequence_Mol& seq, std::string_view unit) {
  text.put(sat.get_repeat_name());
  text.put(" ");
  text.put_number(sat.pos_left - seq.begin() + 1);
  text.put(" : ");
  text.put_number(sat.pos_right_end - seq.begin());
  text.put(" -- length ");
  text.put_number(sat.normalized_length());
  text.put(" score ");
  text.put_number(sat.score);
  text.put(" perfection ");
  text.put_number(static_cast<int>(sat.percentagePerfection() + 0.5));
  text.put(" unit ");
  text.put(unit);
  text.put('\n');
}

void put_line(ReportText& text, const Csat& sat, const CSequence_Mol& seq, std::string_view unit) {
  if (global_print_sat_mode == 2) {
    put_sputnik_line(text, sat, seq, unit);
    text.flush_stream();
    return;
  }
  const bool is_short = global_print_sat_mode == 0;
  put_columns(text, sat, seq);
  if (!is_short) put_departures(text, sat);
  text.put(is_short ? "unit " : " unit ");
  text.put(unit);
  text.put('\n');
  if (!is_short) put_events(text, sat);
}

void put_bases(ReportText& text, const Csat& sat, const CSequence_Mol& seq) {
  const Flanks flanks = flanks_of(sat, seq);
  const bool with_flanks = global_flanking > 0;
  if (with_flanks) {
    text.put(bases(flanks.left_begin, sat.pos_left));
    text.put(':');
  }
  text.put(bases(sat.pos_left, sat.pos_right_end));
  if (with_flanks) {
    text.put(':');
    text.put(bases(sat.pos_right_end, flanks.right_end));
  }
  text.put('\n');
}

/// A perfect repeat without N is aligned with itself.
void put_perfect_alignment(ReportText& text, std::string_view repeat) {
  text.put(repeat);
  text.put('\n');
  text.put_repeated('|', repeat.size());
  text.put('\n');
  text.put(repeat);
  text.put('\n');
}

void put_alignment(ReportText& text, const Csat& sat, const CSequence_Mol& seq) {
  const bool with_flanks = global_flanking > 0;
  const std::string_view repeat = bases(sat.pos_left, sat.pos_right_end);
  if (!with_flanks && sat.missense.empty() && repeat.find('N') == repeat.npos) {
    put_perfect_alignment(text, repeat);
    return;
  }
  const Flanks flanks = flanks_of(sat, seq);
  // An insertion is a base of the sequence, so only the deletions need columns of their own.
  const auto deletions = std::count_if(sat.missense.begin(), sat.missense.end(),
                                       [](const Csat::Event& event) { return event.second == 'D'; });
  Alignment lines(static_cast<std::size_t>(flanks.right_end - flanks.left_begin + deletions + 2));
  if (with_flanks) {
    lines.context(flanks.left_begin, sat.pos_left);
    lines.column(':', ' ', ' ');
  }
  for_each_column(sat, [&lines](char base, char mark, char unit) { lines.column(base, mark, unit); });
  if (with_flanks) {
    lines.column(':', ' ', ' ');
    lines.context(sat.pos_right_end, flanks.right_end);
  }
  lines.put_into(text);
}

}  // namespace

void Csat::report_sat(std::FILE* out, const CSequence_Mol& seq) const {
  const ReportedUnit& shown = reported_unit(*this);
  if (shown.periodic) return;
  ReportText text(out);
  put_line(text, *this, seq, shown.unit.str());
  if (global_print_sat_seq_mode == 1) put_bases(text, *this, seq);
  if (global_print_sat_seq_mode == 2) put_alignment(text, *this, seq);
  text.flush();
}
