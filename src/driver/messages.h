#pragma once

#include <cstdio>
#include <string>

/// The exit codes of a run, the low eight bits of which the shell sees. The manual page states them with the same
/// words.
enum ExitCode : int {
  EXIT_COMPLETE = 0,              ///< the run is complete
  EXIT_REFUSED_SETTING = -1,      ///< a setting was refused, or no input file was named
  EXIT_UNKNOWN_MODE = -2,         ///< a mode number is not 0, 1 or 2
  EXIT_INPUT_NOT_OPENED = -101,   ///< the input file could not be opened, or standard input cannot be read
  EXIT_OUTPUT_NOT_OPENED = -102,  ///< an output file could not be opened, or is the input or another output file
  EXIT_MALFORMED_INPUT = -103,    ///< the input is not well-formed FASTA or could not be read to its end
  EXIT_WRITE_FAILED = -104,       ///< a file could not be written completely
  EXIT_MASKED_NOT_OPENED = -105,  ///< the report is complete, but the masked file could not be opened
  EXIT_OUT_OF_MEMORY = -106,      ///< memory ran out
};

/// Writes each string as it stands. On standard error a progress line makes room for it.
void general_PrintMessage(std::FILE* out, const std::string& a, const std::string& b = {}, const std::string& c = {},
                          const std::string& d = {});

/// The banner.
void ostrel_welcome(std::FILE* out);

/// "Results computed with" and the version, every line after `prefix`.
void creator_message(std::FILE* out, const char* prefix);

/// The description of the columns of a repeat line, every line after `prefix`.
void print_output_format(std::FILE* out, const char* prefix);

/// The last line of a complete report.
void write_closing_line(std::FILE* out);

/// The closing messages of a complete run, on standard error.
void good_bye();

/// The closing message of a run that ends early, on standard error.
void good_bye_on_error(int code);
