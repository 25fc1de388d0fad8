#include "driver/row_formats.h"

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <initializer_list>
#include <nlohmann/json.hpp>

#include "sequence/global-types-and-parameters.h"

namespace {

/// A perfection or a number of copies, as exact as the report shows a perfection.
std::string three_decimals(double value) {
  std::array<char, 400> text{};  // the longest double has 309 digits before the point
  std::snprintf(text.data(), text.size(), "%.3f", value);
  return text.data();
}

std::string joined(std::initializer_list<std::string> fields) {
  std::string line;
  for (const std::string& field : fields) {
    if (!line.empty()) line += '\t';
    line += field;
  }
  return line + '\n';
}

std::string bed_line(const RowSequence& sequence, const RepeatRow& row, std::uint64_t /*number*/) {
  const std::int64_t shown_score = std::clamp<std::int64_t>(row.score, 0, 1000);
  return joined({sequence.id, std::to_string(row.start - 1), std::to_string(row.end), row.unit,
                 std::to_string(shown_score), ".", three_decimals(row.copies), std::to_string(row.score),
                 three_decimals(row.perfection)});
}

/// GFF3 writes every other byte as "%" and two hexadecimal digits.
std::string gff3_escaped(const std::string& text, const char* allowed_punctuation) {
  std::string escaped;
  for (const char c : text) {
    const bool is_alphanumeric = (c >= '0' && c <= '9') || (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z');
    if (is_alphanumeric || (c != '\0' && std::strchr(allowed_punctuation, c) != nullptr)) {
      escaped += c;
      continue;
    }
    std::array<char, 4> hexadecimal{};
    std::snprintf(hexadecimal.data(), hexadecimal.size(), "%%%02X",
                  static_cast<unsigned>(static_cast<unsigned char>(c)));
    escaped += hexadecimal.data();
  }
  return escaped;
}

std::string gff3_sequence_id(const RowSequence& sequence) {
  return gff3_escaped(sequence.id, ".:^*$@!+_?-|");
}

/// A region has at least one base, so an empty sequence has none.
std::string gff3_sequence_region(const RowSequence& sequence) {
  if (sequence.length == 0) return "";
  return "##sequence-region " + gff3_sequence_id(sequence) + " 1 " + std::to_string(sequence.length) + "\n";
}

/// The term of the Sequence Ontology whose definition has this unit length. There is none for one base, nor an upper
/// bound for a satellite.
const char* sequence_ontology_term(std::int64_t unit_length) {
  if (unit_length == 1) return "tandem_repeat";    // SO:0000705, the general term
  if (unit_length <= 10) return "microsatellite";  // SO:0000289, units of 2 to 10 bases
  if (unit_length <= 40) return "minisatellite";   // SO:0000643, units of 10 to 40 bases
  return "satellite_DNA";                          // SO:0000005
}

std::string gff3_attributes(const RepeatRow& row, std::uint64_t number) {
  std::string text = "ID=repeat" + std::to_string(number);
  const auto add = [&text](const char* name, const std::string& value) {
    text += std::string(";") + name + '=' + gff3_escaped(value, ".-");
  };
  add("unit", row.unit);
  add("unit_length", std::to_string(row.unit_length));
  add("copies", three_decimals(row.copies));
  add("perfection", three_decimals(row.perfection));
  add("normalized_length", std::to_string(row.normalized_length));
  add("mismatches", std::to_string(row.mismatches));
  add("insertions", std::to_string(row.insertions));
  add("deletions", std::to_string(row.deletions));
  add("neutral_Ns", std::to_string(row.neutral_Ns));
  add("matched_unit", row.matched_unit);
  add("alignment", row.alignment);
  return text;
}

std::string gff3_line(const RowSequence& sequence, const RepeatRow& row, std::uint64_t number) {
  return joined({gff3_sequence_id(sequence), "Ostrel", sequence_ontology_term(row.unit_length),
                 std::to_string(row.start), std::to_string(row.end), std::to_string(row.score), ".", ".",
                 gff3_attributes(row, number)});
}

const char* const tsv_heading =
    "sequence\tunit_length\tstart\tend\tlength\tnormalized_length\tscore\tperfection\tmismatches\tinsertions\t"
    "deletions\tneutral_Ns\tunit\tcopies\tmatched_unit\talignment\n";

std::string tsv_line(const RowSequence& sequence, const RepeatRow& row, std::uint64_t /*number*/) {
  return joined({sequence.id, std::to_string(row.unit_length), std::to_string(row.start), std::to_string(row.end),
                 std::to_string(row.length), std::to_string(row.normalized_length), std::to_string(row.score),
                 three_decimals(row.perfection), std::to_string(row.mismatches), std::to_string(row.insertions),
                 std::to_string(row.deletions), std::to_string(row.neutral_Ns), row.unit, three_decimals(row.copies),
                 row.matched_unit, row.alignment});
}

/// The number that the other formats show, not one of more digits.
double as_shown(double value) {
  return std::stod(three_decimals(value));
}

std::string jsonl_line(const RowSequence& sequence, const RepeatRow& row, std::uint64_t /*number*/) {
  const nlohmann::ordered_json object = {{"sequence", sequence.id},
                                         {"unit_length", row.unit_length},
                                         {"start", row.start},
                                         {"end", row.end},
                                         {"length", row.length},
                                         {"normalized_length", row.normalized_length},
                                         {"score", row.score},
                                         {"perfection", as_shown(row.perfection)},
                                         {"mismatches", row.mismatches},
                                         {"insertions", row.insertions},
                                         {"deletions", row.deletions},
                                         {"neutral_Ns", row.neutral_Ns},
                                         {"unit", row.unit},
                                         {"copies", as_shown(row.copies)},
                                         {"matched_unit", row.matched_unit},
                                         {"alignment", row.alignment}};
  // JSON is UTF-8, a FASTA header need not be.
  return object.dump(-1, ' ', false, nlohmann::ordered_json::error_handler_t::replace) + "\n";
}

}  // namespace

std::string sequence_id(const std::string& name, unsigned number) {
  const std::string id = name.substr(0, name.find_first_of(" \t"));
  return id.empty() ? "record_" + std::to_string(number) : id;
}

const std::array<RowFormat, 4>& row_formats() {
  static const std::array<RowFormat, 4> formats = {{
      {"bed", &global_bed_filename, "#chrom\tstart\tend\tunit\tscore\tstrand\tcopies\traw_score\tperfection\n", nullptr,
       bed_line},
      {"gff3", &global_gff3_filename, "##gff-version 3\n", gff3_sequence_region, gff3_line},
      {"tsv", &global_tsv_filename, tsv_heading, nullptr, tsv_line},
      {"jsonl", &global_jsonl_filename, "", nullptr, jsonl_line},
  }};
  return formats;
}
