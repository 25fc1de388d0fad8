#include "comparison.h"

#include <algorithm>
#include <optional>

#include "process_runner.h"

namespace differential {
namespace {

constexpr const char* input_name = "input.fa";
constexpr const char* output_name = "report.txt";
constexpr const char* masked_name = "input.fa.masked";

std::string shown(const std::string& text, std::size_t line_start) {
  if (line_start >= text.size()) return "(nothing)";
  const std::string line = text.substr(line_start, text.find('\n', line_start) - line_start);
  return line.size() <= 300 ? line : line.substr(0, 300) + "...";
}

std::string first_difference(const std::string& program, const std::string& reference) {
  const auto apart = std::mismatch(program.begin(), program.end(), reference.begin(), reference.end());
  const auto at = static_cast<std::size_t>(apart.first - program.begin());
  const std::size_t last_break = at == 0 ? std::string::npos : program.rfind('\n', at - 1);
  const std::size_t line_start = last_break == std::string::npos ? 0 : last_break + 1;
  const auto number = 1 + std::count(program.begin(), apart.first, '\n');
  return "line " + std::to_string(number) + ", column " + std::to_string(at - line_start + 1) +
         "\n  program:   " + shown(program, line_start) + "\n  reference: " + shown(reference, line_start) + "\n";
}

std::string compare_files(const std::filesystem::path& program, const std::filesystem::path& reference,
                          const char* name) {
  const std::optional<std::string> ours = read_file(program / name);
  const std::optional<std::string> theirs = read_file(reference / name);
  if (ours == theirs) return {};
  if (!ours) return std::string("only the reference wrote ") + name + "\n";
  if (!theirs) return std::string("only the program wrote ") + name + "\n";
  return std::string(name) + " differs at " + first_difference(*ours, *theirs);
}

std::string status_text(int status) {
  if (status == 1014) return "out of time";
  if (status >= 1000) return "signal " + std::to_string(status - 1000);
  return "exit status " + std::to_string(status);
}

int run_one(const std::string& executable, const std::vector<std::string>& extra, const Case& test_case,
            const std::filesystem::path& directory, unsigned seconds) {
  std::filesystem::create_directories(directory);
  write_file(directory / input_name, test_case.fasta);
  std::vector<std::string> words = {executable};
  words.insert(words.end(), extra.begin(), extra.end());
  const std::vector<std::string> common = command_words(test_case);
  words.insert(words.end(), common.begin(), common.end());
  return run_process(words, directory, seconds);
}

std::string check_report(const Contest& contest, const Case& test_case, const std::filesystem::path& directory) {
  const std::string report = (directory / (test_case.names_output_file ? output_name : "stdout")).string();
  const std::filesystem::path checker_directory = directory / "check";
  std::filesystem::create_directories(checker_directory);
  const int status = run_process({contest.checker, (directory / input_name).string(), report}, checker_directory,
                                 contest.seconds_per_run);
  if (status == 0) return {};
  const std::string findings = read_file(checker_directory / "stdout").value_or("");
  return "the checker ends with " + status_text(status) + "\n" + findings.substr(0, 2000);
}

// The report on standard output is compared last: a difference of status says more.
std::string compare_runs(int status, int reference_status, const std::filesystem::path& program,
                         const std::filesystem::path& reference) {
  if (status != reference_status) {
    return "program: " + status_text(status) + ", reference: " + status_text(reference_status) + "\n";
  }
  if (status >= 1000) return "both: " + status_text(status) + "\n";
  for (const char* name : {output_name, masked_name, "stdout"}) {
    const std::string difference = compare_files(program, reference, name);
    if (!difference.empty()) return difference;
  }
  return {};
}

}  // namespace

std::vector<std::string> command_words(const Case& test_case) {
  std::vector<std::string> words = option_words(test_case);
  words.emplace_back(input_name);
  if (test_case.names_output_file) words.emplace_back(output_name);
  return words;
}

std::string find_fault(const Contest& contest, const Case& test_case, const std::filesystem::path& directory) {
  const std::filesystem::path reference = directory / "reference";
  const int reference_status = run_one(contest.reference, {}, test_case, reference, contest.seconds_per_run);
  for (std::size_t i = 0; i < contest.extras.size(); ++i) {
    const std::filesystem::path program = directory / ("program-" + std::to_string(i));
    const int status = run_one(contest.program, contest.extras[i], test_case, program, contest.seconds_per_run);
    std::string fault = compare_runs(status, reference_status, program, reference);
    if (fault.empty() && status == 0 && !contest.checker.empty()) fault = check_report(contest, test_case, program);
    if (!fault.empty()) return fault;
  }
  return {};
}

}  // namespace differential
