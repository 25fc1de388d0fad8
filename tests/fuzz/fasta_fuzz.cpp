// FASTA bytes. The first byte of the input places the rest: at the start of the file, or behind a long header so that
// the end of the reader's first block falls into its first 16 bytes. All records, and the error that ends them, must be
// the reference's.

#include <sys/mman.h>
#include <unistd.h>

#include <algorithm>
#include <cstring>

#include "fuzz_support.h"
#include "sequence/CFile.h"
#include "sequence/CSequence_Mol.h"

namespace {

/// A file in memory that can be opened by name.
class MemoryFile {
 public:
  MemoryFile() : descriptor_(memfd_create("fasta", 0)) { fuzz::require(descriptor_ >= 0, "no file in memory"); }
  MemoryFile(const MemoryFile&) = delete;
  MemoryFile& operator=(const MemoryFile&) = delete;
  ~MemoryFile() { close(descriptor_); }

  std::string path() const { return "/proc/self/fd/" + std::to_string(descriptor_); }

  /// The file ends behind these bytes.
  void write_at(std::size_t offset, const char* bytes, std::size_t size) {
    const auto at = static_cast<off_t>(offset);
    const bool written = pwrite(descriptor_, bytes, size, at) == static_cast<ssize_t>(size) &&
                         ftruncate(descriptor_, at + static_cast<off_t>(size)) == 0;
    fuzz::require(written, "cannot write the file in memory");
  }

 private:
  int descriptor_;
};

struct Outcome {
  std::string records;  ///< those that were read completely, written as FASTA
  int error = -1;       ///< the integer that was thrown
};

void check_record(const CSequence_Mol& record) {
  const faststring& bases = record.sequence;
  fuzz::require(bases.length < bases.capacity, "no room for the terminator");
  fuzz::require(bases.buffer[bases.length] == '\0', "no terminator");
  const auto is_base = [](char c) { return c != '\0' && std::strchr("ACGTN", c) != nullptr; };
  fuzz::require(std::all_of(record.begin(), record.end(), is_base), "a byte that is no base");
}

/// Reads the file to its end through one record, as the driver does.
Outcome read_all(const std::string& path, int width) {
  Outcome outcome;
  CFile file(path);
  fuzz::require(!file.open_failed, "cannot open the file");
  CSequence_Mol record;
  outcome.records = fuzz::bytes_written_by([&](std::FILE* out) {
    try {
      while (!file.eof()) {
        const std::uint64_t line = file.line_number();
        record.readFastaSequence(file);
        fuzz::require(file.line_number() >= line, "lines are counted backwards");
        check_record(record);
        record.writeSequence(out, width);
      }
    } catch (int error) {
      outcome.error = error;
    }
  });
  return outcome;
}

/// What the reference makes of the bytes: a search that finds nothing, so that the masked copy is the input.
Outcome reference_outcome(const std::string& bytes) {
  reference::Options options;
  options.search_mode = 0;
  options.max_unit_length = 1;
  options.min_score = INT32_MAX;
  options.mask_repeats = true;
  const reference::Result result = reference::run(options, bytes);
  return {result.masked, result.fasta_error};
}

std::string readable(const std::string& bytes) {
  std::string text;
  for (const char c : bytes) {
    char shown[8];
    std::snprintf(shown, sizeof shown, c >= ' ' && c <= '~' ? "%c" : "\\x%02x", static_cast<unsigned char>(c));
    text += shown;
  }
  return text;
}

/// Records that were written can be read, and then they are the same, whatever the line width.
void check_round_trip(const std::string& path, const std::string& records) {
  static MemoryFile written;
  const std::string narrow = read_all(path, 7).records;
  written.write_at(0, narrow.data(), narrow.size());
  const Outcome again = read_all(written.path(), 80);
  fuzz::require_same(again.records, records, [] { return "records that were written and read again"; });
  fuzz::require(again.error == (records.empty() ? FASTA_HEADER_EXPECTED : -1), "records cannot be read again");
}

/// The file holds a record of a name alone, which is `prefix` as it is written, and then the bytes.
void check(const std::string& path, const std::string& prefix, const std::string& bytes) {
  const Outcome program = read_all(path, 80);
  const Outcome expected = reference_outcome(bytes);
  const auto input = [&bytes] { return readable(bytes); };
  fuzz::require(program.records.compare(0, prefix.size(), prefix) == 0, "the long header is misread");
  fuzz::require_same(program.records.substr(prefix.size()), expected.records, input);
  fuzz::require_same(std::to_string(program.error), std::to_string(expected.error), input);
  const bool has_cause = program.error != FASTA_CANNOT_PUSH_BACK && program.error != FASTA_READ_FAILED;
  fuzz::require(has_cause, "an error that a file in memory cannot cause");
  if (prefix.empty()) check_round_trip(path, program.records);
}

/// The reference reads plain text only; what is compressed must not do any harm.
bool is_compressed(const std::string& bytes) {
  return bytes.compare(0, 2, "\x1f\x8b") == 0;
}

void check_at_start(const std::string& bytes) {
  static MemoryFile file;
  file.write_at(0, bytes.data(), bytes.size());
  if (is_compressed(bytes)) {
    read_all(file.path(), 80);
    return;
  }
  check(file.path(), "", bytes);
}

/// Only the end of the long header and the bytes behind it are written anew for every input.
void check_across_blocks(const std::string& bytes, std::size_t before_block_end) {
  static const std::string endless_header = ">" + std::string(CFile::block_size, 'p');
  static MemoryFile file;
  static std::size_t intact = 0;
  const std::size_t end_of_name = CFile::block_size - before_block_end - 1;
  if (intact < end_of_name) file.write_at(intact, endless_header.data() + intact, end_of_name - intact);
  intact = end_of_name;
  const std::string tail = "\n" + bytes;
  file.write_at(end_of_name, tail.data(), tail.size());
  check(file.path(), endless_header.substr(0, end_of_name) + "\n", bytes);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  if (size == 0) return 0;
  constexpr std::size_t behind_long_header = 0xF0;  // and above; these take longer
  const std::string bytes(reinterpret_cast<const char*>(data) + 1, size - 1);
  const bool begins_a_record = !bytes.empty() && bytes.front() == '>';
  if (data[0] >= behind_long_header && begins_a_record) {
    check_across_blocks(bytes, std::min(bytes.size(), data[0] - behind_long_header));
  } else {
    check_at_start(bytes);
  }
  return 0;
}
