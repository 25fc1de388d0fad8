// Checks a report against the FASTA file that it was made from, with nothing but the two files in hand.

#include <fstream>
#include <iostream>
#include <optional>
#include <string>
#include <vector>

#include "report_checker.h"

namespace {

constexpr const char* usage =
    "usage: check-report FASTA REPORT [--outputFormat 0|1|2]\n"
    "The settings are read from the report; a given output format is one that it must state.\n";

int run(const std::string& fasta_name, const std::string& report_name, std::optional<checker::OutputFormat> format) {
  std::ifstream fasta(fasta_name, std::ios::binary);
  std::ifstream report(report_name, std::ios::binary);
  if (!fasta || !report) {
    std::cerr << "cannot open " << (fasta ? report_name : fasta_name) << "\n";
    return 2;
  }
  const checker::CheckResult result = checker::check_report(fasta, report, std::cout, format);
  std::cout << result.passed << " passed, " << result.failed << " failed\n";
  return result.failed == 0 ? 0 : 1;
}

}  // namespace

int main(int argc, char** argv) {
  std::ios::sync_with_stdio(false);
  const std::vector<std::string> words(argv + 1, argv + argc);
  std::optional<checker::OutputFormat> format;
  if (words.size() == 4 && words[2] == "--outputFormat" && words[3].size() == 1 && words[3] >= "0" && words[3] <= "2") {
    format = static_cast<checker::OutputFormat>(words[3][0] - '0');
  } else if (words.size() != 2) {
    std::cerr << usage;
    return 2;
  }
  return run(words[0], words[1], format);
}
