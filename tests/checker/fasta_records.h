#pragma once

#include <istream>
#include <string>

namespace checker {

// Reads a FASTA file record by record; holds one record at a time. Bases come out upper case: A, C, G and T as they
// are, X dropped, any other letter as N, everything that is no letter dropped.
class FastaRecords {
 public:
  explicit FastaRecords(std::istream& input) : input_(input) {}

  // Moves to the next record; false at the end of the file. Throws std::runtime_error for malformed text.
  bool next();

  const std::string& name() const { return name_; }
  const std::string& bases() const { return bases_; }

 private:
  bool read_line();
  void append_bases();

  std::istream& input_;
  std::string line_;
  bool line_is_pending_ = false;
  bool started_ = false;
  std::string name_;
  std::string bases_;
};

}  // namespace checker
