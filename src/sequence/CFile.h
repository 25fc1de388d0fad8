#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>

#include "sequence/byte_source.h"
#include "sequence/fasta_error.h"

/// A FASTA input, decompressed if need be, read through one large block and handed out byte by byte with CR LF folded
/// to LF.
///
/// Invariant: block <= current <= block_end <= block + block_size, and no byte beyond `block_end` is ever read.
/// The driver owns the one object for the whole run; it must be read in order.
class CFile {
 public:
  static constexpr std::size_t block_size = 2000000;

  /// Opens `filename`, or standard input for "-"; `open_failed` tells whether that worked (a directory counts as
  /// failed).
  explicit CFile(const std::string& filename);

  /// The next byte; LF for CR LF and for a CR that ends the file. At the end of the file it sets `at_eof` and
  /// returns LF, which the caller must not take for a byte of the file.
  /// Throws FASTA_LONE_CR, FASTA_READ_FAILED or FASTA_DAMAGED_COMPRESSION.
  char getChar();

  /// Steps back by one byte. Throws FASTA_CANNOT_PUSH_BACK at the start of the block.
  void ungetChar();

  bool eof() const { return at_eof; }

  /// For a header on the file's last line: lets the record be completed; the next refill sets the flag again.
  void clear_eof() { at_eof = false; }

  /// The bytes that can be handed out without a refill, [begin, end), at least one unless the file has ended.
  struct Span {
    const char* begin;
    const char* end;
  };
  Span available();

  /// Marks the first n bytes of the span that `available` returned as handed out.
  void consume(std::size_t n) { current += n; }

  /// The size of the file in bytes when it was opened; 0 if it is not known, as for a pipe.
  std::uint64_t size() const { return source.size(); }

  /// How many of these bytes were handed out; of a compressed file, how many were read to that end.
  std::uint64_t position() const;

  /// Counts a finished line; the readers call it once for every line end that they take.
  void count_line() { ++finished_lines; }

  /// The 1-based number of the line that is being read.
  std::uint64_t line_number() const { return finished_lines + 1; }

  /// Whether the whole file was read and misses the end marker of its compressed form (BGZF).
  bool lacks_end_marker() const { return source.lacks_end_marker(); }

  bool open_failed = false;

 private:
  /// Refills the block if it is used up; false, with `at_eof` set, when nothing is left.
  bool refill_if_empty();

  std::uint64_t finished_lines = 0;
  bool at_eof = false;
  ByteSource source;
  std::unique_ptr<char[]> block;
  char* current;
  char* block_end;
};
