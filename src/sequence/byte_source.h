#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>

struct BGZF;
struct hFILE;

/// The name that stands for standard input. A file of this name is "./-".
constexpr char standard_input_name[] = "-";

/// Where the bytes of an input come from: a file or standard input, plain, in gzip or in BGZF form, which the first two
/// bytes tell, never the name. What is compressed is handed out decompressed. It is read once, from start to end, so a
/// pipe will do. Owns the open file.
class ByteSource {
 public:
  /// Opens the file, or standard input; `is_open` tells whether that worked. A directory, and a standard input that is
  /// not open for reading, count as failed.
  explicit ByteSource(const std::string& filename);
  ByteSource(const ByteSource&) = delete;
  ByteSource& operator=(const ByteSource&) = delete;
  ~ByteSource();

  bool is_open() const { return file_ != nullptr || bgzf_ != nullptr; }

  /// Reads up to n bytes and returns how many there were: fewer than n only before the end or before damaged data, none
  /// at the end. Throws FASTA_READ_FAILED, and FASTA_DAMAGED_COMPRESSION once all bytes before the damaged block,
  /// or before the end of a gzip file that was cut off, have been handed out.
  std::size_t read(char* to, std::size_t n);

  /// The size of the file in bytes, compressed if it is so; 0 if it is not known, as for a pipe.
  std::uint64_t size() const { return size_; }
  /// How many of these bytes were read.
  std::uint64_t position() const;
  bool is_compressed() const { return bgzf_ != nullptr; }

  /// Whether the input is in BGZF form and was read to its end without the empty block that should stand there.
  bool lacks_end_marker() const;

 private:
  void look_for_compression();
  std::size_t read_plain(char* to, std::size_t n);
  std::size_t read_compressed(char* to, std::size_t n);
  void salvage_gzip();

  struct Close {
    void operator()(hFILE* file) const;
    void operator()(BGZF* file) const;
  };
  std::unique_ptr<hFILE, Close> file_;  ///< null once `bgzf_`, which then owns it, has taken it over
  std::unique_ptr<BGZF, Close> bgzf_;
  std::uint64_t size_ = 0;
  bool looked_ = false;
  std::string salvaged_;  ///< the last bytes of a gzip file that was cut off
  bool damaged_ = false;  ///< nothing behind the bytes handed out so far can be decompressed
};
