#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "small_random.h"

namespace differential {

// One option of the command line: its flag and, unless it is a switch, its value. The shrinker drops whole options.
using Option = std::vector<std::string>;

// A random option list, together with the values of it that the sequence generator aims at.
struct OptionChoice {
  std::vector<Option> options;
  std::string search_mode = "imperfect";
  int mismatch_score = -6;
  int indel_score = -6;
  unsigned recursion = 5;
  unsigned min_unit = 1;
  std::uint64_t max_unit = 6;
  // Negative option values mean 0 to the program and are 0 here.
  unsigned n_limit = 4;
  unsigned flanking = 0;
};

// Every third list or so stays close to the defaults; the others draw most options anew. Recursion depth and longest
// unit are lowered until a sequence of some 250 bases costs the reference no more than `seconds`.
OptionChoice make_options(SmallRandom& random, double seconds);

// A rough estimate, in seconds for one base of input, of what the exhaustive reference needs.
double reference_seconds_per_base(const OptionChoice& choice);

}  // namespace differential
