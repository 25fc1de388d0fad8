#pragma once

#include <cstdint>
#include <string>

/// The line of --progress: one line on the terminal, drawn again in place while a record is searched. Nothing is ever
/// drawn if standard error is no terminal. Whoever writes a message on standard error clears the line first. For one
/// thread.

/// True once the line was started on a terminal; the search asks before it works out how far it is.
extern bool progress_line_is_on;

/// Turns the line on if standard error is a terminal. The size of the input is in bytes, 0 if it is not known or not
/// all of it will be searched: then no share and no time are shown. The clock of rate and time left starts here.
void start_progress_line(std::uint64_t input_size);

/// A record of the input.
struct RecordPlace {
  std::uint64_t begin = 0;  ///< 0-based offset of its ">" in the file, in bytes
  std::uint64_t end = 0;    ///< one past its last byte
  std::uint64_t bases = 0;  ///< how many it holds
};

/// The record that is searched from now on; the one before counts as done.
void enter_record(const RecordPlace& record);

/// Draws the line if the last drawing is a quarter of a second old. `share` is how much of the search of the record is
/// done, 0 to 1; a smaller one than before is taken for that one.
void show_progress(double share);

/// Takes the line off the terminal if it is there.
void clear_progress_line();

/// What the line says. Bytes are those of the input file.
struct Progress {
  double bases = 0;             ///< searched so far
  double seconds = 0;           ///< since the start
  std::uint64_t file_size = 0;  ///< 0: not known
  double file_offset = 0;       ///< how far the file is done
  double bytes_searched = 0;    ///< file_offset without the records that were skipped
};
std::string progress_text(const Progress& progress);
