#include "report_settings.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <stdexcept>

namespace checker {
namespace {

bool starts_with(const std::string& text, const std::string& start) {
  return text.rfind(start, 0) == 0;
}

long long to_number(const std::string& text) {
  std::size_t used = 0;
  long long number = 0;
  try {
    number = std::stoll(text, &used);
  } catch (const std::exception&) {
    used = 0;
  }
  if (used == 0 || used != text.size()) throw std::runtime_error("header: not a whole number: " + text);
  return number;
}

// The header is read strictly from top to bottom.
class HeaderReader {
 public:
  explicit HeaderReader(const std::vector<std::string>& lines) : lines_(lines) {}

  // The rest of the next line, which must start with the label.
  std::string value(const std::string& label) {
    if (at_ >= lines_.size()) throw std::runtime_error("header: missing line: " + label);
    const std::string& line = lines_[at_];
    if (!starts_with(line, "# " + label)) throw std::runtime_error("header: expected \"" + label + "\" in: " + line);
    ++at_;
    return line.substr(2 + label.size());
  }

  void fixed(const std::string& text) {
    if (!value(text).empty()) throw std::runtime_error("header: unexpected text after: " + text);
  }

  bool next_is(const std::string& label) const { return at_ < lines_.size() && starts_with(lines_[at_], "# " + label); }

  long long number(const std::string& label) { return to_number(value(label)); }

  // The position of the value in the list of words.
  int word(const std::string& label, const std::vector<std::string>& words) {
    const std::string text = value(label);
    const auto found = std::find(words.begin(), words.end(), text);
    if (found == words.end()) throw std::runtime_error("header: unknown value: " + label + text);
    return static_cast<int>(found - words.begin());
  }

  Threshold threshold(const std::string& label) {
    const std::string text = value(label + "maximum (");
    const std::size_t comma = text.find(", ");
    const std::size_t plus = text.find('+', comma);
    const std::size_t end = text.find("*unitlength )", plus);
    if (end == std::string::npos || end + 13 != text.size()) throw std::runtime_error("header: no threshold: " + text);
    Threshold result;
    result.minimum = to_number(text.substr(0, comma));
    result.offset = to_number(text.substr(comma + 2, plus - comma - 2));
    result.factor = std::strtof(text.substr(plus + 1, end - plus - 1).c_str(), nullptr);
    return result;
  }

  void finished() const {
    if (at_ != lines_.size()) throw std::runtime_error("header: unexpected line: " + lines_[at_]);
  }

 private:
  const std::vector<std::string>& lines_;
  std::size_t at_ = 0;
};

void read_range(HeaderReader& reader, ReportSettings& settings) {
  const std::string range = reader.value("   Sequence range to process:       ");
  const std::size_t dash = range.find(" - ");
  if (dash == std::string::npos) throw std::runtime_error("header: no sequence range: " + range);
  settings.first_sequence = static_cast<std::uint32_t>(to_number(range.substr(0, dash)));
  const std::string last = range.substr(dash + 3);
  settings.last_sequence = last == "last sequence" ? UINT32_MAX : static_cast<std::uint32_t>(to_number(last));
}

void read_search(HeaderReader& reader, ReportSettings& settings) {
  settings.search_mode = static_cast<SearchMode>(
      reader.word("   Satellites searched for:         ",
                  {"exact repeats", "exact repeats which are extended to imperfect repeats", "imperfect repeats"}));
  settings.recursion = reader.number("   Recursion depth:                 ");
  settings.min_unit = reader.number("   Minimum unit length:             ");
  settings.max_unit = reader.number("   Maximum unit length:             ");
  settings.score = reader.threshold("   Minimum score:                   ");
  settings.length = reader.threshold("   Minimum length:                  ");
  settings.n_as_missense = reader.word("   Treat N's as:                    ", {"neutral", "missense"}) == 1;
  settings.n_limit = reader.number("   Max. succesive N's allowed:      ");
  settings.mismatch_score = reader.number("   Mismatch score:                  ");
  settings.indel_score = reader.number("   Indel score:                     ");
  reader.fixed("   Minimum perfection:              0 %");
}

void read_report_form(HeaderReader& reader, ReportSettings& settings) {
  settings.flanking = reader.number("   Number of flanking nucletides:   ");
  settings.remove_overlapping = reader.word("   Remove mostly overlapping satellites: ", {"no", "yes"}) == 1;
  reader.word("   Write file with masked seq.:     ", {"no", "yes"});
  settings.perfection_mode = static_cast<PerfectionMode>(
      reader.word("   Computing perfections treat N's: ", {"asMismatch", "asNeutral", "asMatch"}));
  settings.unit_mode = static_cast<UnitMode>(
      reader.word("   Report units as:                 ",
                  {"as they are", "alphabetical normal form", "alphabetical normal form using reverse complement"}));
  settings.output_format =
      static_cast<OutputFormat>(reader.word("   Output format:                   ",
                                            {"ostrel format", "extended ostrel format", "sputnik compatible format"}));
  settings.print_mode = static_cast<PrintMode>(reader.word(
      "   Print sequence mode:             ", {"don't print sequence", "print sequence", "print alignment"}));
}

void read_columns(HeaderReader& reader, const ReportSettings& settings) {
  std::vector<std::string> columns = {"Repeat unit length",
                                      "Position at which repeat starts in current sequence",
                                      "Position at which repeat ends in current sequence",
                                      "Length of repeat in original sequence, i.e. (end-start+1)",
                                      "Normalized repeat length, i.e. (end-start+1-insertions+deletions)",
                                      "Repeat score",
                                      "Repeat perfection"};
  if (settings.output_format == OutputFormat::extended) {
    columns.insert(columns.end(), {"Number of mismatches", "Number of insertions", "Number of deletions"});
    if (!settings.n_as_missense) columns.emplace_back("Number of N's");
  }
  columns.emplace_back("Repeat unit");
  reader.fixed("");
  reader.fixed("Columns in lines of output providing repeat information:");
  for (std::size_t i = 0; i < columns.size(); ++i) {
    const std::string number = std::to_string(i + 1);
    reader.fixed("Column " + std::string(number.size() < 2 ? " " : "") + number + ": " + columns[i]);
  }
  reader.fixed("");
}

}  // namespace

long long Threshold::for_unit(long long unit) const {
  const long double linear = static_cast<long double>(offset) + static_cast<long double>(unit) * factor;
  return std::max(minimum, static_cast<long long>(std::ceil(linear)));
}

ReportSettings parse_settings(const std::vector<std::string>& header) {
  HeaderReader reader(header);
  ReportSettings settings;
  reader.fixed("Results computed with:");
  reader.value("   Ostrel, version ");
  reader.fixed("Parameter settings used in this search:");
  reader.value("Input file name:                    ");
  if (reader.next_is("Output file name:")) reader.value("Output file name:                   ");
  read_range(reader, settings);
  read_search(reader, settings);
  read_report_form(reader, settings);
  read_columns(reader, settings);
  reader.finished();
  return settings;
}

}  // namespace checker
