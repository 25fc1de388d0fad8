#include "record_checks.h"

#include <algorithm>
#include <array>
#include <cstdio>

#include "alignment.h"
#include "repeat_unit.h"

namespace checker {
namespace {

// The counts from which perfection and score follow.
struct Counts {
  long long mismatches = 0;
  long long insertions = 0;
  long long deletions = 0;
  long long n_count = 0;
};

std::string perfection_text(const Counts& counts, long long normalised, const ReportSettings& settings) {
  const bool n_is_match = settings.perfection_mode == PerfectionMode::n_as_match;
  const bool n_is_neutral = settings.perfection_mode == PerfectionMode::n_as_neutral;
  const long long perfect = normalised - counts.mismatches - counts.insertions - counts.deletions;
  // A neutral N leaves the denominator, yet is subtracted from the numerator as well.
  const long long above = n_is_match ? perfect : perfect - counts.n_count;
  const long long below = n_is_neutral ? normalised - counts.n_count : normalised;
  if (below <= 0) return "(no perfection)";
  const auto percent = static_cast<double>(static_cast<long double>(above) / static_cast<long double>(below) * 100.0L);
  if (settings.output_format == OutputFormat::sputnik) return std::to_string(static_cast<int>(percent + 0.5));
  std::array<char, 64> text{};
  std::snprintf(text.data(), text.size(), "%.3f", percent);
  return text.data();
}

std::size_t longest_n_run(const std::string& bases) {
  std::size_t longest = 0;
  std::size_t run = 0;
  for (const char base : bases) {
    run = base == 'N' ? run + 1 : 0;
    longest = std::max(longest, run);
  }
  return longest;
}

// One check after the other; each adds its reasons to the list.
class RecordCheck {
 public:
  RecordCheck(const ReportRecord& record, const std::string& sequence, const ReportSettings& settings)
      : record_(record), sequence_(sequence), settings_(settings) {}

  std::vector<std::string> run() {
    if (!check_positions()) return faults_;
    bases_ = sequence_.substr(static_cast<std::size_t>(record_.start - 1), static_cast<std::size_t>(record_.bp));
    check_unit();
    check_thresholds();
    check_n_runs();
    if (settings_.print_mode == PrintMode::bases) check_bases_line();
    // With a wrong unit the alignment cannot be judged.
    if (faults_.empty()) check_alignment_or_totals();
    return faults_;
  }

 private:
  void require(bool holds, const std::string& fault) {
    if (!holds) faults_.push_back(fault);
  }

  void require_equal(long long found, long long expected, const char* what) {
    if (found != expected) {
      faults_.push_back(std::string(what) + " is " + std::to_string(found) + ", expected " + std::to_string(expected));
    }
  }

  bool check_positions() {
    const auto length = static_cast<long long>(sequence_.size());
    require(1 <= record_.start && record_.start <= record_.end && record_.end <= length, "positions out of range");
    if (faults_.empty()) require_equal(record_.bp, record_.end - record_.start + 1, "bp");
    return faults_.empty();
  }

  void check_unit() {
    const std::string& unit = record_.unit;
    require_equal(static_cast<long long>(unit.size()), record_.unit_length, "length of the unit");
    require(record_.unit_length >= settings_.min_unit && record_.unit_length <= settings_.max_unit,
            "unit length out of range");
    require(unit.find_first_not_of("ACGT") == std::string::npos, "the unit holds another letter than A, C, G and T");
    require(!is_periodic(unit), "the unit is periodic");
    if (settings_.unit_mode != UnitMode::as_found) {
      require(comparable_form(unit, settings_.unit_mode) == unit, "the unit is not in its normal form");
    }
  }

  void check_thresholds() {
    require(record_.score >= settings_.score.for_unit(record_.unit_length), "score below the minimum");
    require(record_.normalised >= settings_.length.for_unit(record_.unit_length),
            "normalised length below the minimum");
  }

  void check_n_runs() {
    require(bases_.front() != 'N' && bases_.back() != 'N', "an N at an end");
    // With a limit of 0 each N is an ordinary mismatch and runs are not looked at.
    if (settings_.n_limit > 0) {
      require(static_cast<long long>(longest_n_run(bases_)) <= settings_.n_limit, "a run of N above the limit");
    }
  }

  std::string left_flank() const {
    const auto from = static_cast<std::size_t>(std::max(0LL, record_.start - 1 - settings_.flanking));
    return sequence_.substr(from, static_cast<std::size_t>(record_.start - 1) - from);
  }

  std::string right_flank() const {
    return sequence_.substr(static_cast<std::size_t>(record_.end), static_cast<std::size_t>(settings_.flanking));
  }

  void check_bases_line() {
    const bool flanked = settings_.flanking > 0;
    const std::string expected = flanked ? left_flank() + ":" + bases_ + ":" + right_flank() : bases_;
    require(record_.sequence_lines[0] == expected, "the line of bases differs from the sequence");
  }

  void check_alignment_or_totals() {
    Alignment alignment;
    if (settings_.print_mode == PrintMode::alignment) {
      if (!read_printed_alignment(alignment)) return;
    } else if (settings_.output_format == OutputFormat::extended) {
      if (!rebuild_alignment(alignment)) return;
    } else {
      check_totals();
      return;
    }
    check_columns(alignment);
    check_values({alignment.mismatches, alignment.insertions, alignment.deletions, alignment.n_columns},
                 alignment.matches);
  }

  // Takes the flanks off the three lines and reads what is between them.
  bool read_printed_alignment(Alignment& alignment) {
    std::array<std::string, 3> rows;
    std::copy(record_.sequence_lines.begin(), record_.sequence_lines.end(), rows.begin());
    require(rows[0].size() == rows[1].size() && rows[0].size() == rows[2].size(), "alignment lines of unequal length");
    if (!faults_.empty()) return false;
    if (settings_.flanking > 0) {
      const std::string left = left_flank() + ":";
      const std::string right = ":" + right_flank();
      take_flanks(rows[0], left, right);
      for (std::size_t row = 1; row < 3; ++row) {
        take_flanks(rows[row], std::string(left.size(), ' '), std::string(right.size(), ' '));
      }
    }
    if (!faults_.empty()) return false;
    alignment = read_alignment(rows[0], rows[1], rows[2], settings_.n_can_be_neutral(), faults_);
    rows[0].erase(std::remove(rows[0].begin(), rows[0].end(), '-'), rows[0].end());
    require(rows[0] == bases_, "the sequence line differs from the sequence");
    check_unit_line(alignment.unit_bases);
    return faults_.empty();
  }

  void take_flanks(std::string& row, const std::string& left, const std::string& right) {
    const bool good = row.size() >= left.size() + right.size() && row.compare(0, left.size(), left) == 0 &&
                      row.compare(row.size() - right.size(), right.size(), right) == 0;
    require(good, "wrong flanks");
    if (good) row = row.substr(left.size(), row.size() - left.size() - right.size());
  }

  void check_unit_line(const std::string& unit_bases) {
    const std::size_t unit_length = record_.unit.size();
    require(unit_bases.size() >= unit_length, "the unit line is shorter than the unit");
    if (unit_bases.size() < unit_length) return;
    require(
        std::equal(unit_bases.begin() + static_cast<std::ptrdiff_t>(unit_length), unit_bases.end(), unit_bases.begin()),
        "the unit line does not repeat one unit");
    require(comparable_form(unit_bases.substr(0, unit_length), settings_.unit_mode) ==
                comparable_form(record_.unit, settings_.unit_mode),
            "the unit line repeats another unit than the reported one");
  }

  // Without a printed alignment the events tell how the bases lie beside the unit; only its phase, and its strand
  // where units may be turned over, is unknown.
  bool rebuild_alignment(Alignment& alignment) {
    std::vector<std::string> units = {record_.unit};
    if (settings_.unit_mode == UnitMode::smallest_of_both_strands) units.push_back(reverse_complement(record_.unit));
    for (const std::string& unit : units) {
      for (std::size_t phase = 0; phase < unit.size(); ++phase) {
        if (align_with_events(bases_, unit, phase, record_.events, settings_.n_can_be_neutral(), alignment))
          return true;
      }
    }
    faults_.emplace_back("unit and events do not produce the bases of the repeat");
    return false;
  }

  void check_columns(const Alignment& alignment) {
    require(alignment.match_at_both_ends, "no match at an end");
    require(alignment.longest_match_run >= record_.unit_length, "no complete copy of the unit");
    require(!settings_.perfect_only() || alignment.events.empty(), "events in a search for perfect repeats");
    if (settings_.output_format != OutputFormat::extended) return;
    require(record_.events == alignment.events, "events and alignment differ");
    require_equal(record_.mismatches, alignment.mismatches, "number of mismatches");
    require_equal(record_.insertions, alignment.insertions, "number of insertions");
    require_equal(record_.deletions, alignment.deletions, "number of deletions");
    require_equal(record_.n_count, alignment.n_columns, "number of N's");
  }

  void check_values(const Counts& counts, long long matches) {
    require_equal(record_.normalised, record_.bp - counts.insertions + counts.deletions, "BP");
    // The copy of the unit from which the search started counts nothing.
    const long long score = matches - record_.unit_length + counts.mismatches * settings_.mismatch_score +
                            (counts.insertions + counts.deletions) * settings_.indel_score;
    require_equal(record_.score, score, "score");
    const std::string perfection = perfection_text(counts, record_.normalised, settings_);
    require(record_.perfection == perfection, "perfection is " + record_.perfection + ", expected " + perfection);
  }

  // Only length, normalised length, score and perfection are known: there must be counts that explain them all.
  void check_totals() {
    require(seed_is_possible(), "no copy of the unit in the bases of the repeat");
    require(score_is_possible(), "no alignment of the bases with the unit has that score");
    Counts counts;
    if (settings_.n_can_be_neutral()) counts.n_count = std::count(bases_.begin(), bases_.end(), 'N');
    counts.insertions = std::max(0LL, record_.bp - record_.normalised);
    counts.deletions = std::max(0LL, record_.normalised - record_.bp);
    while (mismatches_left(counts) >= 0) {
      if (explains_totals(counts)) return;
      ++counts.insertions;
      ++counts.deletions;
    }
    faults_.emplace_back("no numbers of mismatches and indels explain length, score and perfection");
  }

  // What the score still lacks, in units of the score that one mismatch in the place of a match costs.
  long long mismatches_left(const Counts& counts) const {
    return missing_score(counts) < 0 ? -1 : missing_score(counts) / (1 - settings_.mismatch_score);
  }

  long long missing_score(const Counts& counts) const {
    const long long without_mismatches = record_.bp - counts.insertions - counts.n_count - record_.unit_length +
                                         (counts.insertions + counts.deletions) * settings_.indel_score;
    return without_mismatches - record_.score;
  }

  bool explains_totals(Counts counts) const {
    if (missing_score(counts) % (1 - settings_.mismatch_score) != 0) return false;
    counts.mismatches = mismatches_left(counts);
    if (settings_.perfect_only() && counts.mismatches + counts.insertions + counts.deletions > 0) return false;
    return perfection_text(counts, record_.normalised, settings_) == record_.perfection;
  }

  bool score_is_possible() const {
    long long best = best_score(bases_, record_.unit, settings_);
    if (settings_.unit_mode == UnitMode::smallest_of_both_strands) {
      best = std::max(best, best_score(bases_, reverse_complement(record_.unit), settings_));
    }
    return best - record_.unit_length >= record_.score;
  }

  bool seed_is_possible() const {
    const std::string twice = record_.unit + record_.unit;
    const std::string other = reverse_complement(twice);
    const bool both = settings_.unit_mode == UnitMode::smallest_of_both_strands;
    for (std::size_t at = 0; at + record_.unit.size() <= bases_.size(); ++at) {
      const std::string window = bases_.substr(at, record_.unit.size());
      if (twice.find(window) != std::string::npos) return true;
      if (both && other.find(window) != std::string::npos) return true;
    }
    return false;
  }

  const ReportRecord& record_;
  const std::string& sequence_;
  const ReportSettings& settings_;
  std::string bases_;
  std::vector<std::string> faults_;
};

}  // namespace

std::vector<std::string> check_record(const ReportRecord& record, const std::string& sequence,
                                      const ReportSettings& settings) {
  return RecordCheck(record, sequence, settings).run();
}

}  // namespace checker
