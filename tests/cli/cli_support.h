#pragma once

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstddef>
#include <filesystem>
#include <string>
#include <vector>

namespace cli {

/// What a run left behind.
struct Result {
  std::string out;
  std::string err;
  int status;  ///< exit status; 1000 + the number of the signal if one ended the program
};

/// How a run departs from the ordinary: standard input is empty, standard output and standard error go to files that
/// the test reads. A terminal passes on what is written as it is.
struct Surroundings {
  std::string stdin_path = "/dev/null";
  std::string stdin_bytes;  ///< if there are any, they come through a pipe, at most 64 KiB
  bool stdin_is_closed = false;
  std::string stdout_path;     ///< standard output goes here instead, and `Result::out` stays empty
  bool append_stdout = false;  ///< ... behind what the file holds
  bool stdout_is_closed_pipe = false;
  unsigned short terminal_columns = 0;  ///< standard error is a terminal of so many columns; 0: a file
  std::size_t memory_limit = 0;         ///< bytes of address space; 0: no limit
  std::size_t file_size_limit = 0;      ///< bytes that a file may grow to, then writes fail; 0: no limit
};

/// The settings that the summary shows, at their defaults.
struct Settings {
  std::string input = "x.fa";
  std::string output;  ///< no line if empty
  std::string range = "1 - last sequence";
  std::string mode = "imperfect repeats";
  std::string depth = "5";
  std::string min_unit = "1";
  std::string max_unit = "6";
  std::string min_score = "maximum (6, 0+1*unitlength )";
  std::string min_length = "maximum (1, 0+0*unitlength )";
  std::string treat_N = "neutral";
  std::string successive_N = "4";
  std::string mismatch = "-6";
  std::string indel = "-6";
  std::string flanking = "0";
  std::string remove_overlapping = "yes";
  std::string mask = "no";
  std::string perfection_N = "asMismatch";
  std::string unit = "alphabetical normal form using reverse complement";
  std::string format = "extended ostrel format";
  std::string sequence_mode = "print alignment";
};

/// "Results computed with" and the summary, every line behind the prefix.
std::string summary(const Settings& settings, const std::string& prefix);

/// The whole report: header lines, the given records, the closing line.
std::string report(const Settings& settings, const std::string& records);

/// The report of a run that could not be completed: without the closing line.
std::string unfinished_report(const Settings& settings, const std::string& records);

/// "00.00.00 - #   1 -    1bp - name": the progress line of a record.
std::string progress(unsigned number, unsigned unit_length, const std::string& name);

/// The settings, the heading of the progress lines, and the given lines. What the program writes behind its banner.
std::string started(const Settings& settings, const std::string& lines);

/// ... followed by the goodbye of a complete run.
std::string finished(const Settings& settings, const std::string& lines);

/// "\nAnalysis has been aborted due to errors. Error number: ...".
std::string aborted(int code);

/// A fresh directory in which the program runs. The files of a run are named relative to it.
class CliTest : public testing::Test {
 protected:
  CliTest();
  ~CliTest() override;

  Result run(const std::vector<std::string>& arguments, const Surroundings& surroundings = {}) const;

  std::string path(const std::string& name) const { return (dir_ / name).string(); }
  void write(const std::string& name, const std::string& content) const;
  std::string read(const std::string& name) const;
  bool exists(const std::string& name) const { return std::filesystem::exists(dir_ / name); }

  /// x.fa of one record without repeats: its report is the record's header alone.
  void write_plain_input() const { write("x.fa", ">r\nACGT\n"); }

 private:
  std::filesystem::path dir_;   ///< where the program runs
  std::filesystem::path logs_;  ///< where its standard streams go
};

/// Standard error without the banner and with the processor times of progress lines set to zero.
std::string after_banner(const Result& result);

/// The program's words only: the run's status and standard error, and nothing on standard output.
void expect_refused(const Result& result, int status, const std::string& message);

constexpr const char* plain_record = ">r\nsequence length: 4\n";

}  // namespace cli
