#pragma once

#include <cstddef>
#include <cstdint>
#include <fstream>
#include <memory>
#include <string>

/// The errors of a FASTA input, thrown as plain integers and caught by the driver.
enum FastaError : int {
  FASTA_HEADER_EXPECTED = 0,   ///< the next byte is not ">", or the file ends directly after it
  FASTA_CANNOT_PUSH_BACK = 1,  ///< a byte cannot be pushed back: it is not in the block any more
  FASTA_LONE_CR = 2,           ///< a CR that is not followed by LF, and not the file's last byte
  FASTA_READ_FAILED = 3,       ///< the operating system could not read the file any further
};

/// A FASTA input file, read through one large block and handed out byte by byte with CR LF folded to LF.
///
/// Invariant: block <= current <= block_end <= block + block_size, and no byte beyond `block_end` is ever read.
/// The driver owns the one object for the whole run; it must be read in order.
class CFile : private std::ifstream {
 public:
  static constexpr std::size_t block_size = 2000000;

  /// Opens `filename`; `open_failed` tells whether that worked (a directory counts as failed).
  explicit CFile(const std::string& filename);
  ~CFile() override;

  CFile(const CFile&) = delete;
  CFile& operator=(const CFile&) = delete;

  /// The next byte; LF for CR LF and for a CR that ends the file. At the end of the file it sets `at_eof` and
  /// returns LF, which the caller must not take for a byte of the file.
  /// Throws FASTA_LONE_CR or FASTA_READ_FAILED.
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
  std::uint64_t size() const { return file_size; }

  /// How many of these bytes were handed out.
  std::uint64_t position() const { return bytes_read - static_cast<std::uint64_t>(block_end - current); }

  /// Counts a finished line; the readers call it once for every line end that they take.
  void count_line() { ++finished_lines; }

  /// The 1-based number of the line that is being read.
  std::uint64_t line_number() const { return finished_lines + 1; }

  bool open_failed = false;

 private:
  /// Refills the block if it is used up; false, with `at_eof` set, when nothing is left.
  bool refill_if_empty();

  std::uint64_t finished_lines = 0;
  std::uint64_t file_size = 0;
  std::uint64_t bytes_read = 0;
  bool at_eof = false;
  std::unique_ptr<char[]> block;
  char* current;
  char* block_end;
};
