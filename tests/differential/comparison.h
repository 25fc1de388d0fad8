#pragma once

#include <filesystem>
#include <string>
#include <vector>

#include "case_generator.h"

namespace differential {

// The executables of a comparison; all paths are absolute.
struct Contest {
  std::string program;
  std::string reference;
  // Empty: reports are only compared, not checked.
  std::string checker;
  // The program runs once with each of these lists of additional words; the reference never sees them.
  std::vector<std::vector<std::string>> extras = {{}};
  unsigned seconds_per_run = 60;
};

// What follows the name of the program on its command line.
std::vector<std::string> command_words(const Case& test_case);

// Runs both programs on the case, below `directory`: "reference/" and "program-0/", "program-1/", ... keep what they
// read and wrote. Returns the first difference, or what the checker finds, as text of a few lines; empty when all is
// well.
std::string find_fault(const Contest& contest, const Case& test_case, const std::filesystem::path& directory);

}  // namespace differential
