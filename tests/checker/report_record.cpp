#include "report_record.h"

#include <algorithm>
#include <array>
#include <cstdarg>
#include <cstdio>
#include <stdexcept>

namespace checker {
namespace {

const std::array<const char*, 7> class_names = {"***  ERROR  ***", "mononucleotide",  "dinucleotide",  "trinucleotide",
                                                "tetranucleotide", "pentanucleotide", "hexanucleotide"};

std::string formatted(const char* form, ...) __attribute__((format(printf, 1, 2)));

std::string formatted(const char* form, ...) {
  std::array<char, 512> buffer{};
  va_list arguments;
  va_start(arguments, form);
  std::vsnprintf(buffer.data(), buffer.size(), form, arguments);
  va_end(arguments);
  return buffer.data();
}

// Words of a line from left to right. Blanks between them are not looked at here: the written form is compared later.
class WordReader {
 public:
  explicit WordReader(const std::string& line) : line_(line) {}

  std::string word() {
    const std::size_t from = line_.find_first_not_of(' ', at_);
    if (from == std::string::npos) throw std::runtime_error("the line ends too early");
    at_ = std::min(line_.find(' ', from), line_.size());
    return line_.substr(from, at_ - from);
  }

  void expect(const char* text) {
    const std::string found = word();
    if (found != text) throw std::runtime_error("expected \"" + std::string(text) + "\", found \"" + found + "\"");
  }

  long long number() {
    const std::string text = word();
    std::size_t used = 0;
    long long value = 0;
    try {
      value = std::stoll(text, &used);
    } catch (const std::exception&) {
      used = 0;
    }
    if (used == 0 || used != text.size()) throw std::runtime_error("not a number: \"" + text + "\"");
    return value;
  }

  long long number_before(const char* text) {
    const long long value = number();
    expect(text);
    return value;
  }

 private:
  const std::string& line_;
  std::size_t at_ = 0;
};

long long unit_length_of(const std::string& name) {
  const auto known = std::find(class_names.begin() + 1, class_names.end(), name);
  if (known != class_names.end()) return known - class_names.begin();
  const std::size_t dash = name.find("-nucleotide");
  if (dash == std::string::npos || dash == 0 || dash > 9) throw std::runtime_error("no repeat name: " + name);
  return WordReader(name.substr(0, dash)).number();
}

std::string name_column(long long unit_length, bool padded) {
  if (unit_length >= 1 && unit_length <= 6) {
    return formatted(padded ? "%16s" : "%s", class_names[static_cast<std::size_t>(unit_length)]);
  }
  return formatted(padded ? "%5lld-nucleotide" : "%lld-nucleotide", unit_length);
}

void read_counts(WordReader& reader, ReportRecord& record, bool with_n) {
  record.mismatches = reader.number_before("mis");
  reader.expect("|");
  record.insertions = reader.number_before("ins");
  reader.expect("|");
  record.deletions = reader.number_before("del");
  reader.expect("|");
  if (!with_n) return;
  record.n_count = reader.number_before("N");
  reader.expect("|");
}

ReportRecord read_own_format(const std::string& line, const ReportSettings& settings) {
  WordReader reader(line);
  ReportRecord record;
  record.unit_length = unit_length_of(reader.word());
  record.start = reader.number_before(":");
  record.end = reader.number_before("|");
  record.bp = reader.number_before("bp");
  reader.expect("|");
  record.normalised = reader.number_before("BP");
  reader.expect("|");
  record.score = reader.number_before("pt");
  reader.expect("|");
  record.perfection = reader.word();
  reader.expect("%");
  reader.expect("|");
  if (settings.output_format == OutputFormat::extended) read_counts(reader, record, !settings.n_as_missense);
  reader.expect("unit");
  record.unit = reader.word();
  return record;
}

std::string written_own_format(const ReportRecord& record, const ReportSettings& settings) {
  std::string line = name_column(record.unit_length, true);
  line += formatted(" %9lld : %9lld | %6lld bp | %6lld BP | %6lld pt | %7s %% | ", record.start, record.end, record.bp,
                    record.normalised, record.score, record.perfection.c_str());
  if (settings.output_format == OutputFormat::extended) {
    line += formatted("%3lld mis | %3lld ins | %3lld del | ", record.mismatches, record.insertions, record.deletions);
    if (!settings.n_as_missense) line += formatted("%3lld N | ", record.n_count);
    line += " ";
  }
  return line + "unit " + record.unit;
}

ReportRecord read_sputnik_format(const std::string& line) {
  WordReader reader(line);
  ReportRecord record;
  record.unit_length = unit_length_of(reader.word());
  record.start = reader.number_before(":");
  record.end = reader.number_before("--");
  record.bp = record.end - record.start + 1;
  reader.expect("length");
  record.normalised = reader.number();
  reader.expect("score");
  record.score = reader.number();
  reader.expect("perfection");
  record.perfection = reader.word();
  reader.expect("unit");
  record.unit = reader.word();
  return record;
}

std::string written_sputnik_format(const ReportRecord& record) {
  return name_column(record.unit_length, false) +
         formatted(" %lld : %lld -- length %lld score %lld perfection %s unit ", record.start, record.end,
                   record.normalised, record.score, record.perfection.c_str()) +
         record.unit;
}

std::vector<Event> parse_events(const std::string& line) {
  const std::string label = "Missense: ";
  if (line.rfind(label, 0) != 0) throw std::runtime_error("no events line: " + line);
  std::vector<Event> events;
  std::string written = label;
  const char* at = line.c_str() + label.size();
  int used = 0;
  Event event;
  while (std::sscanf(at, "(%9lld,%c),%n", &event.position, &event.kind, &used) == 2 && used > 0) {
    events.push_back(event);
    written += formatted("(%lld,%c),", event.position, event.kind);
    at += used;
    used = 0;
  }
  if (written != line) throw std::runtime_error("unreadable events: " + line.substr(0, 200));
  return events;
}

}  // namespace

std::size_t following_lines(const ReportSettings& settings) {
  const std::size_t events = settings.output_format == OutputFormat::extended ? 1 : 0;
  if (settings.print_mode == PrintMode::alignment) return events + 3;
  return settings.print_mode == PrintMode::bases ? events + 1 : events;
}

ReportRecord parse_record(const std::vector<std::string>& lines, const ReportSettings& settings) {
  if (lines.size() != 1 + following_lines(settings)) throw std::runtime_error("the report ends within a record");
  const bool sputnik = settings.output_format == OutputFormat::sputnik;
  ReportRecord record = sputnik ? read_sputnik_format(lines[0]) : read_own_format(lines[0], settings);
  const std::string written = sputnik ? written_sputnik_format(record) : written_own_format(record, settings);
  if (written != lines[0]) throw std::runtime_error("repeat line written otherwise than \"" + written + "\"");
  std::size_t next = 1;
  if (settings.output_format == OutputFormat::extended) record.events = parse_events(lines[next++]);
  record.sequence_lines.assign(lines.begin() + static_cast<std::ptrdiff_t>(next), lines.end());
  return record;
}

}  // namespace checker
