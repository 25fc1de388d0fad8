#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "small_random.h"

namespace differential {

// What the sequences should provoke.
struct SequenceAims {
  std::size_t max_unit = 6;       // longest unit worth planting
  std::size_t n_limit = 4;        // runs of N are made around this length
  std::size_t total_bases = 500;  // upper limit over all records, give or take one planted piece
};

// The bases of the records of one case, upper case A, C, G, T and N only.
std::vector<std::string> make_sequences(SmallRandom& random, const SequenceAims& aims);

}  // namespace differential
