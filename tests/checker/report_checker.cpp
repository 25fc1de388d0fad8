#include "report_checker.h"

#include <algorithm>
#include <stdexcept>
#include <string>
#include <vector>

#include "fasta_records.h"
#include "record_checks.h"
#include "report_record.h"

namespace checker {
namespace {

constexpr const char* last_line = "## Finished successfully. ##";
constexpr long long most_messages = 100;

// The end of a sequence block: thrown where going on makes no sense.
struct Hopeless : std::runtime_error {
  using std::runtime_error::runtime_error;
};

class ReportChecker {
 public:
  ReportChecker(std::istream& fasta, std::istream& report, std::ostream& messages)
      : fasta_(fasta), report_(report), messages_(messages) {}

  CheckResult run(std::optional<OutputFormat> format) {
    try {
      read_header(format);
      check_sequences();
      if (line_ != last_line) throw Hopeless("expected the closing line, found: " + line_);
      if (next_line()) throw Hopeless("text after the closing line");
    } catch (const std::runtime_error& error) {
      fail(error.what());
    }
    return result_;
  }

 private:
  bool next_line() {
    line_.clear();
    if (!std::getline(report_, line_)) return false;
    // A last line without its end is a report that was cut off.
    if (report_.eof()) throw Hopeless("the last line has no end");
    ++line_number_;
    return true;
  }

  void fail(const std::string& reason) {
    ++result_.failed;
    say(reason);
  }

  void say(const std::string& reason) {
    if (++written_messages_ > most_messages) return;
    messages_ << "line " << line_number_ << ": " << reason << "\n";
    if (written_messages_ == most_messages) messages_ << "(further messages are left out)\n";
  }

  void read_header(std::optional<OutputFormat> format) {
    std::vector<std::string> header;
    while (next_line() && line_.rfind("# ", 0) == 0) header.push_back(line_);
    settings_ = parse_settings(header);
    if (format && *format != settings_.output_format) fail("the report has another output format");
  }

  void check_sequences() {
    for (std::uint32_t number = 1; fasta_.next(); ++number) {
      if (number >= settings_.first_sequence && number <= settings_.last_sequence) check_sequence();
    }
  }

  void check_sequence() {
    if (line_ != ">" + fasta_.name()) throw Hopeless("expected sequence >" + fasta_.name() + ", found: " + line_);
    const std::string length = "sequence length: " + std::to_string(fasta_.bases().size());
    if (!next_line() || line_ != length) throw Hopeless("expected \"" + length + "\", found: " + line_);
    near_.clear();
    bool more = next_line();
    while (more && line_ != last_line && line_[0] != '>') {
      check_one_record();
      more = next_line();
    }
  }

  void check_one_record() {
    std::vector<std::string> lines = {line_};
    for (std::size_t i = following_lines(settings_); i > 0 && next_line(); --i) lines.push_back(line_);
    std::vector<std::string> faults;
    try {
      const ReportRecord record = parse_record(lines, settings_);
      faults = check_record(record, fasta_.bases(), settings_);
      if (faults.empty()) check_neighbours(record, faults);
    } catch (const std::runtime_error& error) {
      faults.emplace_back(error.what());
    }
    ++(faults.empty() ? result_.passed : result_.failed);
    for (const std::string& fault : faults) say(">" + fasta_.name() + ": " + lines[0] + ": " + fault);
  }

  // Order, and the overlap that the removal of mostly overlapping repeats leaves: both of two overlapping repeats have
  // at least one unit outside of what they share.
  void check_neighbours(const ReportRecord& record, std::vector<std::string>& faults) {
    if (!near_.empty()) {
      const ReportRecord& last = near_.back();
      if (record.start < last.start || (record.start == last.start && record.end < last.end)) {
        faults.emplace_back("out of order");
      }
    }
    if (settings_.remove_overlapping) {
      near_.erase(std::remove_if(near_.begin(), near_.end(),
                                 [&](const ReportRecord& other) { return other.end < record.start; }),
                  near_.end());
      for (const ReportRecord& other : near_) check_overlap(other, record, faults);
    } else {
      near_.clear();
    }
    ReportRecord place;
    place.start = record.start;
    place.end = record.end;
    place.bp = record.bp;
    place.unit_length = record.unit_length;
    near_.push_back(place);
  }

  static void check_overlap(const ReportRecord& a, const ReportRecord& b, std::vector<std::string>& faults) {
    const long long overlap = std::min(a.end, b.end) - b.start + 1;
    if (a.unit_length + overlap > a.bp || b.unit_length + overlap > b.bp) {
      faults.push_back("mostly overlaps the repeat at " + std::to_string(a.start) + " : " + std::to_string(a.end));
    }
  }

  FastaRecords fasta_;
  std::istream& report_;
  std::ostream& messages_;
  ReportSettings settings_;
  CheckResult result_;
  std::string line_;
  long long line_number_ = 0;
  long long written_messages_ = 0;
  // Earlier repeats of this sequence that later ones may overlap, and always the last one; positions only.
  std::vector<ReportRecord> near_;
};

}  // namespace

CheckResult check_report(std::istream& fasta, std::istream& report, std::ostream& messages,
                         std::optional<OutputFormat> format) {
  return ReportChecker(fasta, report, messages).run(format);
}

}  // namespace checker
