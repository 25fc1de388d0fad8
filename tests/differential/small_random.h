#pragma once

#include <cstdint>
#include <initializer_list>
#include <string>

namespace differential {

// A splitmix64 generator. The standard distributions may differ between libraries; with this one a seed means the same
// case on every machine.
class SmallRandom {
 public:
  explicit SmallRandom(std::uint64_t seed) : state_(seed) {}

  std::uint64_t next() {
    state_ += 0x9e3779b97f4a7c15U;
    std::uint64_t z = state_;
    z = (z ^ (z >> 30U)) * 0xbf58476d1ce4e5b9U;
    z = (z ^ (z >> 27U)) * 0x94d049bb133111ebU;
    return z ^ (z >> 31U);
  }

  // A number in [0, limit); limit is at least 1. The bias of the remainder does not matter for test data.
  std::uint64_t below(std::uint64_t limit) { return next() % limit; }

  // A number in [low, high], both included.
  std::uint64_t between(std::uint64_t low, std::uint64_t high) { return low + below(high - low + 1); }

  bool percent(unsigned chance) { return below(100) < chance; }

  char pick_char(const std::string& letters) { return letters[below(letters.size())]; }

  template <typename Value>
  Value pick(std::initializer_list<Value> values) {
    return *(values.begin() + below(values.size()));
  }

 private:
  std::uint64_t state_;
};

}  // namespace differential
