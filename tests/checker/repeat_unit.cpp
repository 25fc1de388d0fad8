#include "repeat_unit.h"

#include <algorithm>

namespace checker {
namespace {

char complement(char base) {
  switch (base) {
    case 'A':
      return 'T';
    case 'C':
      return 'G';
    case 'G':
      return 'C';
    case 'T':
      return 'A';
    default:
      return base;
  }
}

}  // namespace

std::string smallest_rotation(const std::string& unit) {
  std::string best = unit;
  std::string rotation = unit;
  for (std::size_t i = 1; i < unit.size(); ++i) {
    std::rotate(rotation.begin(), rotation.begin() + 1, rotation.end());
    best = std::min(best, rotation);
  }
  return best;
}

std::string reverse_complement(const std::string& unit) {
  std::string result(unit.rbegin(), unit.rend());
  std::transform(result.begin(), result.end(), result.begin(), complement);
  return result;
}

bool is_periodic(const std::string& unit) {
  // A string repeats a shorter one exactly if it stands in its own double elsewhere than at the ends.
  return !unit.empty() && (unit + unit).find(unit, 1) < unit.size();
}

std::string comparable_form(const std::string& unit, UnitMode mode) {
  const std::string forward = smallest_rotation(unit);
  if (mode != UnitMode::smallest_of_both_strands) return forward;
  return std::min(forward, smallest_rotation(reverse_complement(unit)));
}

}  // namespace checker
