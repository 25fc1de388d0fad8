#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "option_generator.h"

namespace differential {

// One run of the program: the text of its input file, its options and whether an output file is named.
struct Case {
  std::string fasta;
  std::vector<Option> options;
  bool names_output_file = false;
};

// The case of this seed: the same on every machine and in every build. The input is kept so small that the exhaustive
// reference needs about `seconds` at most; more seconds give longer inputs, so they belong to what the seed means.
Case make_case(std::uint64_t seed, double seconds = 0.3);

// The options as words of a command line, without the file names.
std::vector<std::string> option_words(const Case& test_case);

}  // namespace differential
