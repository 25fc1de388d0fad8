#include "fasta_records.h"

#include <array>
#include <stdexcept>

namespace checker {
namespace {

// The base that a byte stands for, or 0 for a byte that is dropped.
std::array<char, 256> make_base_table() {
  std::array<char, 256> table{};
  for (std::size_t letter = 'A'; letter <= 'Z'; ++letter) {
    char base = 'N';
    if (letter == 'A' || letter == 'C' || letter == 'G' || letter == 'T') base = static_cast<char>(letter);
    if (letter == 'X') base = 0;
    table[letter] = base;
    table[letter - 'A' + 'a'] = base;
  }
  return table;
}

}  // namespace

// A carriage return is part of a line end, also as the last byte of the file; anywhere else it is an error.
bool FastaRecords::read_line() {
  if (!std::getline(input_, line_)) return false;
  const std::size_t carriage_return = line_.find('\r');
  if (carriage_return == std::string::npos) return true;
  if (carriage_return + 1 != line_.size()) throw std::runtime_error("FASTA: a lone carriage return");
  line_.pop_back();
  return true;
}

void FastaRecords::append_bases() {
  static const std::array<char, 256> table = make_base_table();
  for (const char byte : line_) {
    const char base = table[static_cast<unsigned char>(byte)];
    if (base != 0) bases_ += base;
  }
}

bool FastaRecords::next() {
  if (!line_is_pending_ && !read_line()) {
    if (!started_) throw std::runtime_error("FASTA: the file is empty");
    return false;
  }
  started_ = true;
  line_is_pending_ = false;
  if (line_.empty() || line_[0] != '>') throw std::runtime_error("FASTA: no header where one must start");
  name_ = line_.substr(1);
  if (name_.empty() && input_.eof()) throw std::runtime_error("FASTA: the file ends with a header mark");
  bases_.clear();
  while (read_line()) {
    if (!line_.empty() && line_[0] == '>') {
      line_is_pending_ = true;
      return true;
    }
    append_bases();
  }
  return true;
}

}  // namespace checker
