#pragma once

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <functional>
#include <memory>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include "sequence/CFile.h"
#include "sequence/CSequence_Mol.h"
#include "sequence/global-types-and-parameters.h"

namespace test {

/// A fresh directory that disappears with the object.
class TempDir {
 public:
  TempDir() {
    std::string pattern = (std::filesystem::temp_directory_path() / "ostrel-test-XXXXXX").string();
    if (mkdtemp(pattern.data()) == nullptr) throw std::runtime_error("no temporary directory");
    path_ = pattern;
  }
  TempDir(const TempDir&) = delete;
  TempDir& operator=(const TempDir&) = delete;
  ~TempDir() {
    std::error_code ignored;
    std::filesystem::remove_all(path_, ignored);
  }

  std::string path(const std::string& name = "") const { return (path_ / name).string(); }

  std::string write(const std::string& name, const std::string& content) const {
    std::ofstream(path(name), std::ios::binary) << content;
    return path(name);
  }

 private:
  std::filesystem::path path_;
};

inline std::string read_file(const std::string& path) {
  std::ifstream in(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
}

inline std::string repeated(const std::string& unit, std::size_t copies) {
  std::string text;
  text.reserve(unit.size() * copies);
  for (std::size_t i = 0; i < copies; ++i) text += unit;
  return text;
}

/// What `write` writes to the stream that it is given.
inline std::string bytes_written_by(const std::function<void(std::FILE*)>& write) {
  const TempDir dir;
  std::FILE* const out = std::fopen(dir.path("out").c_str(), "w");
  if (out == nullptr) throw std::runtime_error("no temporary file");
  write(out);
  std::fclose(out);
  return read_file(dir.path("out"));
}

/// A FASTA file of the given bytes, opened. The object is on the heap because its block is large.
class OpenFasta {
 public:
  explicit OpenFasta(const std::string& content) : file_(std::make_unique<CFile>(dir_.write("x.fa", content))) {}
  CFile& operator*() { return *file_; }
  CFile* operator->() { return file_.get(); }

 private:
  TempDir dir_;
  std::unique_ptr<CFile> file_;
};

using Record = std::pair<std::string, std::string>;  // name, bases

inline Record read_record(CFile& file, CSequence_Mol& sequence) {
  sequence.readFastaSequence(file);
  return {sequence.name, std::string(sequence.begin(), sequence.end())};
}

/// All records of a FASTA text, read through one reused record as the driver does.
inline std::vector<Record> read_all(const std::string& content) {
  OpenFasta file(content);
  CSequence_Mol sequence;
  std::vector<Record> records;
  while (!file->eof()) records.push_back(read_record(*file, sequence));
  return records;
}

/// The bases that the sequence lines `lines`, which follow a header, are stored as.
inline std::string bases_of(const std::string& lines) {
  return read_all(">r\n" + lines).at(0).second;
}

/// The integer that reading all records throws, or -1.
inline int error_of(const std::string& content) {
  try {
    read_all(content);
  } catch (int error) {
    return error;
  }
  return -1;
}

/// A record that holds the given bases.
class Sequence {
 public:
  explicit Sequence(const std::string& bases, const std::string& name = "r") {
    OpenFasta file(">" + name + "\n" + bases + "\n");
    mol.readFastaSequence(*file);
  }
  const char* at(std::ptrdiff_t index) const { return mol.begin() + index; }
  std::ptrdiff_t index(const char* position) const { return position - mol.begin(); }

  CSequence_Mol mol;
};

/// Every test starts from the defaults of the run parameters.
class WithParameters : public ::testing::Test {
 protected:
  WithParameters() {
    init_param();
    global_input_filename.clear();
    global_output_filename.clear();
  }
};

}  // namespace test
