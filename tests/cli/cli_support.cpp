#include "cli_support.h"

#include <fcntl.h>
#include <pty.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <termios.h>
#include <unistd.h>

#include <array>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <regex>
#include <stdexcept>

namespace cli {

namespace {

namespace fs = std::filesystem;

constexpr unsigned longest_run = 60;  // seconds

std::string content_of(const fs::path& path) {
  std::ifstream in(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
}

fs::path fresh_directory() {
  std::string pattern = (fs::temp_directory_path() / "ostrel-cli-XXXXXX").string();
  if (mkdtemp(pattern.data()) == nullptr) throw std::runtime_error("no temporary directory");
  return pattern;
}

/// In the child: gives the descriptor the file, or ends the child.
void redirect(int descriptor, const std::string& path, int flags) {
  const int opened = open(path.c_str(), flags, 0666);
  if (opened == -1 || dup2(opened, descriptor) == -1) _exit(125);
  close(opened);
}

/// In the child: makes the descriptor a pipe that nobody reads.
void redirect_to_closed_pipe(int descriptor) {
  std::array<int, 2> ends{};
  if (pipe(ends.data()) != 0 || dup2(ends[1], descriptor) == -1) _exit(125);
  close(ends[0]);
  close(ends[1]);
}

/// In the child: standard input becomes a pipe that holds the bytes.
void redirect_from_pipe(const std::string& bytes) {
  std::array<int, 2> ends{};
  if (pipe(ends.data()) != 0 || dup2(ends[0], STDIN_FILENO) == -1) _exit(125);
  if (write(ends[1], bytes.data(), bytes.size()) != static_cast<ssize_t>(bytes.size())) _exit(125);
  close(ends[0]);
  close(ends[1]);
}
/// A terminal without a keyboard. Its far end is what the program writes to.
class Terminal {
 public:
  explicit Terminal(unsigned short columns) {
    if (columns == 0) return;
    winsize size{};
    size.ws_row = 24;
    size.ws_col = columns;
    termios raw{};
    cfmakeraw(&raw);
    if (openpty(&near_, &far_, nullptr, &raw, &size) != 0) throw std::runtime_error("no terminal");
  }
  Terminal(const Terminal&) = delete;
  Terminal& operator=(const Terminal&) = delete;
  ~Terminal() {
    if (near_ != -1) close(near_);
  }

  bool is_there() const { return near_ != -1; }

  /// In the child: makes the descriptor the terminal.
  void take_place_of(int descriptor) const {
    if (is_there() && dup2(far_, descriptor) == -1) _exit(125);
  }

  /// In the parent: everything that is written until the child has closed its end.
  std::string read_to_end() const {
    std::string text;
    if (!is_there()) return text;
    close(far_);
    std::array<char, 4096> bytes{};
    for (ssize_t got = 0; (got = ::read(near_, bytes.data(), bytes.size())) > 0;) {
      text.append(bytes.data(), static_cast<std::size_t>(got));
    }
    return text;
  }

 private:
  int near_ = -1;
  int far_ = -1;
};

void limit_memory(std::size_t bytes) {
  if (bytes == 0) return;
  const rlimit limit{bytes, bytes};
  setrlimit(RLIMIT_AS, &limit);
}

void limit_file_size(std::size_t bytes) {
  if (bytes == 0) return;
  std::signal(SIGXFSZ, SIG_IGN);
  const rlimit limit{bytes, bytes};
  setrlimit(RLIMIT_FSIZE, &limit);
}

/// The whole program is tested again with several threads, whose number stands in the environment.
std::vector<std::string> with_threads(std::vector<std::string> arguments) {
  const char* const threads = std::getenv("OSTREL_TEST_THREADS");
  if (threads != nullptr) arguments.insert(arguments.begin(), {"--threads", threads});
  return arguments;
}

[[noreturn]] void become_program(const std::vector<std::string>& arguments, const Surroundings& surroundings,
                                 const Terminal& terminal, const fs::path& dir, const fs::path& logs) {
  if (chdir(dir.c_str()) != 0) _exit(125);
  redirect(STDIN_FILENO, surroundings.stdin_path, O_RDONLY);
  if (!surroundings.stdin_bytes.empty()) redirect_from_pipe(surroundings.stdin_bytes);
  redirect(STDERR_FILENO, (logs / "err").string(), O_WRONLY | O_CREAT | O_TRUNC);
  terminal.take_place_of(STDERR_FILENO);
  const std::string out = surroundings.stdout_path.empty() ? (logs / "out").string() : surroundings.stdout_path;
  redirect(STDOUT_FILENO, out, O_WRONLY | O_CREAT | (surroundings.append_stdout ? O_APPEND : O_TRUNC));
  if (surroundings.stdout_is_closed_pipe) redirect_to_closed_pipe(STDOUT_FILENO);
  if (surroundings.stdin_is_closed) close(STDIN_FILENO);
  limit_memory(surroundings.memory_limit);
  limit_file_size(surroundings.file_size_limit);
  alarm(longest_run);

  std::string program = "ostrel";
  std::vector<std::string> words = with_threads(arguments);
  std::vector<char*> argv{program.data()};
  for (std::string& word : words) argv.push_back(word.data());
  argv.push_back(nullptr);
  execv(OSTREL_PROGRAM, argv.data());
  _exit(126);
}

std::string without_processor_times(const std::string& text) {
  static const std::regex time("\\d\\d\\.\\d\\d\\.\\d\\d - #");
  return std::regex_replace(text, time, "00.00.00 - #");
}

std::string columns(const Settings& settings) {
  const std::string always =
      "# \n"
      "# Columns in lines of output providing repeat information:\n"
      "# Column  1: Repeat unit length\n"
      "# Column  2: Position at which repeat starts in current sequence\n"
      "# Column  3: Position at which repeat ends in current sequence\n"
      "# Column  4: Length of repeat in original sequence, i.e. (end-start+1)\n"
      "# Column  5: Normalized repeat length, i.e. (end-start+1-insertions+deletions)\n"
      "# Column  6: Repeat score\n"
      "# Column  7: Repeat perfection\n";
  const std::string counts =
      "# Column  8: Number of mismatches\n"
      "# Column  9: Number of insertions\n"
      "# Column 10: Number of deletions\n";
  if (settings.format != "extended ostrel format") return always + "# Column  8: Repeat unit\n# \n";
  if (settings.treat_N == "missense") return always + counts + "# Column 11: Repeat unit\n# \n";
  return always + counts + "# Column 11: Number of N's\n# Column 12: Repeat unit\n# \n";
}

}  // namespace

std::string summary(const Settings& s, const std::string& prefix) {
  std::vector<std::string> lines = {
      "Results computed with:",
      "   Ostrel, version 3.2.6",
      "Parameter settings used in this search:",
      "Input file name:                    " + s.input,
      "   Sequence range to process:       " + s.range,
      "   Satellites searched for:         " + s.mode,
      "   Recursion depth:                 " + s.depth,
      "   Minimum unit length:             " + s.min_unit,
      "   Maximum unit length:             " + s.max_unit,
      "   Minimum score:                   " + s.min_score,
      "   Minimum length:                  " + s.min_length,
      "   Treat N's as:                    " + s.treat_N,
      "   Max. succesive N's allowed:      " + s.successive_N,
      "   Mismatch score:                  " + s.mismatch,
      "   Indel score:                     " + s.indel,
      "   Minimum perfection:              0 %",
      "   Number of flanking nucletides:   " + s.flanking,
      "   Remove mostly overlapping satellites: " + s.remove_overlapping,
      "   Write file with masked seq.:     " + s.mask,
      "   Computing perfections treat N's: " + s.perfection_N,
      "   Report units as:                 " + s.unit,
      "   Output format:                   " + s.format,
      "   Print sequence mode:             " + s.sequence_mode,
  };
  if (!s.output.empty()) lines.insert(lines.begin() + 4, "Output file name:                   " + s.output);
  std::string text;
  for (const std::string& line : lines) text += prefix + line + "\n";
  return text;
}

std::string unfinished_report(const Settings& settings, const std::string& records) {
  return summary(settings, "# ") + columns(settings) + records;
}

std::string report(const Settings& settings, const std::string& records) {
  return unfinished_report(settings, records) + "## Finished successfully. ##\n";
}

std::string progress(unsigned number, unsigned unit_length, const std::string& name) {
  std::array<char, 100> start{};
  std::snprintf(start.data(), start.size(), "00.00.00 - # %3u - %4ubp - ", number, unit_length);
  return start.data() + name + "\n";
}

std::string started(const Settings& settings, const std::string& lines) {
  return summary(settings, "") + "\n\nSearch progress:\n\nCPU-time - SeqNr - PatLen - Seq-Name\n" +
         std::string(72, '-') + "\n" + lines;
}

std::string finished(const Settings& settings, const std::string& lines) {
  return started(settings, lines) + "\nAnalysis finished successfully.\n\nOstrel says goodbye.\n\n";
}

std::string aborted(int code) {
  return "\nAnalysis has been aborted due to errors. Error number: " + std::to_string(code) + "\n\n";
}

CliTest::CliTest() : dir_(fresh_directory()), logs_(fresh_directory()) {}

CliTest::~CliTest() {
  std::error_code ignored;
  fs::remove_all(dir_, ignored);
  fs::remove_all(logs_, ignored);
}

void CliTest::write(const std::string& name, const std::string& content) const {
  std::ofstream(dir_ / name, std::ios::binary) << content;
}

std::string CliTest::read(const std::string& name) const {
  return content_of(dir_ / name);
}

Result CliTest::run(const std::vector<std::string>& arguments, const Surroundings& surroundings) const {
  const Terminal terminal(surroundings.terminal_columns);
  const pid_t child = fork();
  if (child == -1) throw std::runtime_error("no child process");
  if (child == 0) become_program(arguments, surroundings, terminal, dir_, logs_);
  const std::string shown = terminal.read_to_end();
  int status = 0;
  waitpid(child, &status, 0);
  const bool to_log = surroundings.stdout_path.empty() && !surroundings.stdout_is_closed_pipe;
  return {to_log ? content_of(logs_ / "out") : "", terminal.is_there() ? shown : content_of(logs_ / "err"),
          WIFEXITED(status) ? WEXITSTATUS(status) : 1000 + WTERMSIG(status)};
}

std::string after_banner(const Result& result) {
  const std::string start =
      "\n\n      Welcome to Ostrel, version 3.2.6,\n      a microsatellite and satellite search tool.\n";
  const std::string note = "                      fully implemented in this version.\n\n\n";
  const std::size_t end = result.err.find(note);
  if (result.err.compare(0, start.size(), start) != 0 || end == std::string::npos) return "NO BANNER: " + result.err;
  return without_processor_times(result.err.substr(end + note.size()));
}

void expect_refused(const Result& result, int status, const std::string& message) {
  EXPECT_EQ(result.out, "");
  EXPECT_EQ(after_banner(result), message);
  EXPECT_EQ(result.status, status);
}

}  // namespace cli
