// Runs the files named on the command line, and all files of the directories named there, through the fuzz target that
// this is linked to. Exit status 0 when there was at least one file; a fault aborts.

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <iterator>
#include <vector>

#include "fuzz_support.h"

namespace {

std::vector<std::filesystem::path> files_at(const std::filesystem::path& place) {
  if (!std::filesystem::is_directory(place)) return {place};
  std::vector<std::filesystem::path> files;
  for (const auto& entry : std::filesystem::recursive_directory_iterator(place)) {
    if (entry.is_regular_file()) files.push_back(entry.path());
  }
  std::sort(files.begin(), files.end());
  return files;
}

void replay(const std::filesystem::path& file) {
  std::ifstream in(file, std::ios::binary);
  if (!in) fuzz::fail("cannot open " + file.string());
  const std::string bytes((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
  std::cerr << file.filename().string() << " " << std::flush;  // so that a fault has a name
  const fuzz::ExactCopy copy(bytes.data(), bytes.size());
  LLVMFuzzerTestOneInput(copy.data(), bytes.size());
}

}  // namespace

int main(int argc, char** argv) {
  std::size_t files = 0;
  for (int i = 1; i < argc; ++i) {
    for (const std::filesystem::path& file : files_at(argv[i])) {
      replay(file);
      ++files;
    }
  }
  std::cerr << "\n" << files << " files replayed\n";
  return files > 0 ? 0 : 1;
}
