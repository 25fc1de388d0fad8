#include "sequence/CDnaString.h"

#include <array>
#include <cstring>

#include "sequence/primefactors.h"

namespace {

constexpr std::array<char, 256> make_complement_table() {
  std::array<char, 256> table{};
  for (char& c : table) c = '?';
  constexpr char pairs[][2] = {{'A', 'T'}, {'C', 'G'}, {'N', 'N'}, {'D', 'H'}, {'K', 'M'}, {'R', 'Y'}, {'B', 'V'}};
  for (const auto& pair : pairs) {
    table[static_cast<unsigned char>(pair[0])] = pair[1];
    table[static_cast<unsigned char>(pair[1])] = pair[0];
  }
  return table;
}

constexpr std::array<char, 256> complement_table = make_complement_table();

}  // namespace

int CDnaString::setToReverseComplementOf(const CDnaString& other) {
  bytes.clear();
  bytes.reserve(other.bytes.size());
  int unknown = 0;
  for (auto base = other.bytes.rbegin(); base != other.bytes.rend(); ++base) {
    const char complement = complement_table[static_cast<unsigned char>(*base)];
    if (complement == '?') ++unknown;
    bytes.push_back(complement);
  }
  return unknown;
}

/// The smallest rotation by comparing two candidate starts i and j of the doubled string: after k equal bytes the one
/// that loses the next comparison takes with it every start that it has passed (Shiloach, J. Algorithms 2, 1981).
bool CDnaString::setToMinAlphaRepModCyclicPermOf(const CDnaString& other) {
  const std::size_t n = other.bytes.size();
  const auto at = [&other, n](std::size_t i) { return static_cast<unsigned char>(other.bytes[i < n ? i : i - n]); };
  std::size_t i = 0;
  std::size_t j = 1;
  std::size_t k = 0;
  while (i < n && j < n && k < n) {
    const unsigned char a = at(i + k);
    const unsigned char b = at(j + k);
    if (a == b) {
      ++k;
      continue;
    }
    (a > b ? i : j) += k + 1;
    if (i == j) ++j;
    k = 0;
  }
  const std::size_t best = i < j ? i : j;
  bytes.assign(other.bytes, best, n - best).append(other.bytes, 0, best);
  return k == n && n > 1;
}

bool isReducibleUnit_global(const char* begin, const char* end) {
  const auto n = static_cast<std::uint64_t>(end - begin);
  for (const std::uint64_t factor : primeFactors(n)) {
    const std::uint64_t block = n / factor;
    // Every block equals the next one exactly when the unit equals itself shifted by one block.
    if (std::memcmp(begin, begin + block, n - block) == 0) return true;
  }
  return false;
}
