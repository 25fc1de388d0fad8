#pragma once

#include <cstddef>
#include <cstdio>
#include <memory>
#include <string>

/// A file that the program writes, or standard output. Owns the stream; the destructor flushes and closes it, so that
/// nothing written is lost on any way out. Standard output is flushed, never closed.
class OutputFile {
 public:
  OutputFile() = default;
  OutputFile(const OutputFile&) = delete;
  OutputFile& operator=(const OutputFile&) = delete;
  ~OutputFile() { close(); }

  void use_standard_output();
  /// Creates or truncates the file. False if it cannot be opened.
  bool open(const std::string& path);
  /// Creates a file that can be read as well, in the directory for temporary files; it disappears with the object.
  bool open_temporary();

  bool is_open() const { return stream_ != nullptr; }
  std::FILE* stream() const { return stream_; }

  /// Writes n bytes; a failure is noted.
  void write(const char* bytes, std::size_t n);

  /// A write has been lost, for the reason that stands in `errno`.
  void note_failure();
  /// True once a write has been lost; the reason is kept for `report_failure`.
  bool has_failed();
  /// Each returns false if anything written so far was lost.
  bool flush();
  bool close();

  /// Whether a write was lost because standard output is a pipe that nobody reads any more.
  bool reader_has_gone() const;
  /// Writes one sentence that names the file and the reason; nothing if the reader has gone, who has seen enough.
  void report_failure() const;

 private:
  std::FILE* stream_ = nullptr;
  std::unique_ptr<char[]> buffer_;  ///< of the stream, larger than its own would be
  std::string name_;
  bool is_standard_output_ = false;
  bool failed_ = false;
  int reason_ = 0;
};

/// Whether the two paths name one regular file, by any link, or would once the missing ones are created.
bool same_file(const std::string& a, const std::string& b);

/// Whether standard output has been redirected into the regular file `path`.
bool is_standard_output(const std::string& path);

/// Gives a closed standard stream a descriptor that cannot be read (input) or written (output), so that no file opened
/// later takes its place.
void occupy_standard_descriptors();
