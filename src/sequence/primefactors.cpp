#include "sequence/primefactors.h"

std::vector<std::uint64_t> primeFactors(std::uint64_t n) {
  std::vector<std::uint64_t> factors;
  std::uint64_t rest = n;
  for (std::uint64_t p = 2; p * p <= rest; ++p) {
    if (rest % p != 0) continue;
    factors.push_back(p);
    while (rest % p == 0) rest /= p;
  }
  if (rest > 1 && rest < n) factors.push_back(rest);
  return factors;
}
