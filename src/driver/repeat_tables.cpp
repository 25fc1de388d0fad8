#include "driver/repeat_tables.h"

#include <htslib/bgzf.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <optional>

#include "driver/messages.h"

namespace {

constexpr char standard_output_path[] = "/dev/stdout";

bool ends_in_gz(const std::string& name) {
  return name.size() >= 3 && name.compare(name.size() - 3, 3, ".gz") == 0;
}

/// Two tables on one terminal or pipe would mix; a device such as /dev/null takes any number.
bool are_one_file(const RunFile& a, const RunFile& b) {
  return (a.path == standard_output_path && b.path == standard_output_path) || same_file(a.path, b.path);
}

void report_collision(const RunFile& table, const RunFile& other) {
  general_PrintMessage(stderr, "Sorry! " + table.what, " would be " + other.what, "\n   \"" + table.path, "\".\n");
}

}  // namespace

bool RowFile::open(const std::string& name, bool head_grows) {
  compressed_ = ends_in_gz(name);
  if (compressed_) block_.reserve(BGZF_BLOCK_SIZE);  // now, so that closing it needs no memory
  if (name == "-") file_.use_standard_output();
  if (!file_.is_open() && !file_.open(name)) {
    general_PrintMessage(stderr, "Sorry! Failed to open file\n   \"", name, "\"\nas output file.\n");
    return false;
  }
  if (!head_grows || waiting_.open_temporary()) return true;
  general_PrintMessage(stderr, "Sorry! Failed to create a temporary file for the rows of\n   \"", name, "\".\n");
  return false;
}

void RowFile::write_row(const std::string& text) {
  if (waiting_.is_open()) {
    waiting_.write(text.data(), text.size());
  } else {
    emit(text.data(), text.size());
  }
}

bool RowFile::close() {
  if (!file_.is_open()) return true;
  append_waiting_rows();
  if (compressed_) {
    if (!block_.empty()) emit_block();
    emit_block();  // an empty block marks the end of the file
  }
  for (OutputFile* file : {&waiting_, &file_}) {
    if (file->close()) continue;
    file->report_failure();
    file_.close();
    return false;
  }
  return true;
}

void RowFile::append_waiting_rows() {
  if (!waiting_.is_open() || !waiting_.flush()) return;
  std::rewind(waiting_.stream());
  std::array<char, BGZF_MAX_BLOCK_SIZE> piece{};
  while (const std::size_t n = std::fread(piece.data(), 1, piece.size(), waiting_.stream())) emit(piece.data(), n);
  waiting_.has_failed();  // a read that failed counts as well
}

void RowFile::emit(const char* bytes, std::size_t n) {
  if (!compressed_) {
    file_.write(bytes, n);
    return;
  }
  while (n > 0) {
    const std::size_t step = std::min(n, BGZF_BLOCK_SIZE - block_.size());
    block_.append(bytes, step);
    bytes += step;
    n -= step;
    if (block_.size() == BGZF_BLOCK_SIZE) emit_block();
  }
}

void RowFile::emit_block() {
  constexpr int default_level = -1;
  std::array<char, BGZF_MAX_BLOCK_SIZE> block{};
  std::size_t size = block.size();
  if (bgzf_compress(block.data(), &size, block_.data(), block_.size(), default_level) == 0) {
    file_.write(block.data(), size);
  } else {
    errno = ENOMEM;  // which is all that a block of this size can lack
    file_.note_failure();
  }
  block_.clear();
}

std::string path_of_output(const std::string& name) {
  return name == "-" ? standard_output_path : name;
}

bool RepeatTables::collide(std::vector<RunFile> files) {
  for (const RowFormat& format : row_formats()) {
    if (format.filename->empty()) continue;
    const RunFile table = {std::string("The --") + format.option + " file", path_of_output(*format.filename)};
    const auto is_table = [&table](const RunFile& file) { return are_one_file(table, file); };
    const auto other = std::find_if(files.begin(), files.end(), is_table);
    if (other != files.end()) {
      report_collision(table, *other);
      return true;
    }
    files.push_back({std::string("the --") + format.option + " file", table.path});
  }
  return false;
}

bool RepeatTables::open() {
  for (const RowFormat& format : row_formats()) {
    if (format.filename->empty()) continue;
    RowFile& file = tables_.emplace_back(format).file;
    if (!file.open(*format.filename, format.sequence_line != nullptr)) return false;
    file.write_head(format.heading);
  }
  return true;
}

void RepeatTables::begin_sequence(const CSequence_Mol& sequence, unsigned number) {
  if (tables_.empty()) return;
  sequence_ = {sequence_id(sequence.name, number), sequence.end() - sequence.begin()};
  for (Table& table : tables_) {
    if (table.format.sequence_line != nullptr) table.file.write_head(table.format.sequence_line(sequence_));
  }
}

void RepeatTables::add(const Csat& sat, const CSequence_Mol& sequence) {
  if (tables_.empty()) return;
  const std::optional<RepeatRow> row = repeat_row(sat, sequence);
  if (!row) return;
  ++rows_;
  for (Table& table : tables_) table.file.write_row(table.format.line(sequence_, *row, rows_));
}

bool RepeatTables::close() {
  bool complete = true;
  for (Table& table : tables_) complete = table.file.close() && complete;
  return complete;
}

bool RepeatTables::reader_has_gone() const {
  return std::any_of(tables_.begin(), tables_.end(), [](const Table& table) { return table.file.reader_has_gone(); });
}
