#pragma once

#include <cstddef>
#include <cstdint>
#include <list>
#include <string>
#include <vector>

#include "driver/output_files.h"
#include "driver/row_formats.h"

/// A file of rows. One whose name ends in ".gz" is written in BGZF form, which tabix can index; "-" is standard output.
/// The destructor closes it.
class RowFile {
 public:
  RowFile() = default;
  RowFile(const RowFile&) = delete;
  RowFile& operator=(const RowFile&) = delete;
  ~RowFile() { close(); }

  /// Creates or truncates the file. With `head_grows`, `write_head` may be called between rows; the rows then wait in a
  /// temporary file. Where anything cannot be opened it says so and returns false.
  bool open(const std::string& name, bool head_grows);

  void write_head(const std::string& text) { emit(text.data(), text.size()); }
  void write_row(const std::string& text);

  /// Writes what is left. False if anything written was lost; says what the first time.
  bool close();
  bool reader_has_gone() const { return file_.reader_has_gone(); }

 private:
  void append_waiting_rows();
  void emit(const char* bytes, std::size_t n);
  void emit_block();

  OutputFile file_;
  OutputFile waiting_;  ///< open only if the head grows
  bool compressed_ = false;
  std::string block_;  ///< text that is not compressed yet
};

/// One of the files of a run, for the test that no two of them are the same.
struct RunFile {
  std::string what;  ///< "the input file"
  std::string path;
};

/// The path under which an output file of this name can be compared with others; "-" is standard output.
std::string path_of_output(const std::string& name);

/// The files with the repeats that are written beside the report, those that were asked for.
class RepeatTables {
 public:
  /// Whether one of them would be one of the other files of the run, or another one of them; says so.
  static bool collide(std::vector<RunFile> files);

  /// Creates the files and writes their headings. Where that fails it says so and returns false.
  bool open();

  /// The rows added from here on are of this record, the `number`th of the input, 1-based.
  void begin_sequence(const CSequence_Mol& sequence, unsigned number);
  /// Adds the repeat, with its events, unless the report leaves it out.
  void add(const Csat& sat, const CSequence_Mol& sequence);

  /// False if anything was lost; says what.
  bool close();
  /// Whether a write was lost because standard output is a pipe that nobody reads any more.
  bool reader_has_gone() const;

 private:
  struct Table {
    const RowFormat& format;
    RowFile file;
    explicit Table(const RowFormat& row_format) : format(row_format) {}
  };

  std::list<Table> tables_;
  RowSequence sequence_;
  std::uint64_t rows_ = 0;  ///< in each file so far
};
