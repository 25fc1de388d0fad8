#pragma once

#include <cstdint>
#include <vector>

/// The distinct prime factors of n that are smaller than n, in ascending order; none for 0, 1 and the primes.
/// Computed for every n by trial division, so unit lengths have no upper bound.
std::vector<std::uint64_t> primeFactors(std::uint64_t n);
