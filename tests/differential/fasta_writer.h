#pragma once

#include <string>
#include <vector>

#include "small_random.h"

namespace differential {

// The text of a FASTA file with these sequences in a form drawn at random: line width, line ends, lower case, ambiguity
// letters, X, blanks and digits, a last line without its end. A few texts in a hundred are malformed: a lone carriage
// return, a missing header mark or a header mark that ends the file.
std::string write_fasta(SmallRandom& random, const std::vector<std::string>& sequences);

}  // namespace differential
