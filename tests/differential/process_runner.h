#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <vector>

namespace differential {

// A directory with a fresh name that vanishes, with all it holds, at the end of the object's life.
class TemporaryDirectory {
 public:
  // Throws std::runtime_error when none can be made.
  TemporaryDirectory();
  ~TemporaryDirectory();
  TemporaryDirectory(const TemporaryDirectory&) = delete;
  TemporaryDirectory& operator=(const TemporaryDirectory&) = delete;

  const std::filesystem::path& path() const { return path_; }

 private:
  std::filesystem::path path_;
};

// Runs words[0], an absolute path, in the given directory. Standard input is empty; standard output and error go to the
// files "stdout" and "stderr" there. Returns the exit status, or 1000 plus the number of the signal that ended the
// process: 1014 (SIGALRM) means that the time limit ran out.
int run_process(const std::vector<std::string>& words, const std::filesystem::path& directory, unsigned seconds);

// The bytes of a file, or nothing when there is no such file.
std::optional<std::string> read_file(const std::filesystem::path& path);

void write_file(const std::filesystem::path& path, const std::string& bytes);

}  // namespace differential
