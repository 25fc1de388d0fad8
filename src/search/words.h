#pragma once

#include <cstddef>
#include <cstdint>

#include "search/base_planes.h"
#include "search/front.h"

/// Words of so many bases each, up to 15, as numbers: a bit of each base in the lower half, the other ones in the upper
/// half.
class Words {
 public:
  explicit constexpr Words(unsigned bases) : bases_(bases) {}

  /// How a word departs from one of a unit.
  enum class Step : std::uint8_t { none, mismatch, insertion, deletion };

  std::size_t count() const { return std::size_t{1} << 2 * bases_; }

  /// Of the lowest bits of two planes.
  std::uint32_t number_of(std::uint64_t low, std::uint64_t high) const {
    const std::uint64_t mask = (std::uint64_t{1} << bases_) - 1;
    return static_cast<std::uint32_t>((low & mask) | (high & mask) << bases_);
  }

  /// Calls `visit` with the phase at which each word of the endlessly repeated unit begins, from 0 on, and the planes
  /// of the word and of one more base. The planes are those of the sequence that begins at `first_base`.
  template <typename Visit>
  void for_each_of_unit(const BasePlanes& planes, const char* first_base, const UnitCircle& circle, Visit visit) const {
    const std::int64_t unit = circle.begin - first_base;
    std::uint64_t low = 0;
    std::uint64_t high = 0;
    for (std::int64_t i = 0, phase = 0; i < circle.length() + bases_; ++i) {
      low = low >> 1 | (planes.low_bits(unit + phase) & 1) << bases_;
      high = high >> 1 | (planes.high_bits(unit + phase) & 1) << bases_;
      if (++phase == circle.length()) phase = 0;
      if (i >= bases_) visit(i - bases_, low, high);
    }
  }

  /// Calls `visit` with the number of the word that begins the planes, and of each that a single step makes of it, some
  /// more than once, and with the step. A base that is deleted between two words is one of the second.
  template <typename Visit>
  void for_each_near(std::uint64_t low, std::uint64_t high, Visit visit) const {
    visit(number_of(low, high), Step::none);
    for (unsigned place = 0; place < bases_; ++place) {
      const std::uint64_t base = std::uint64_t{1} << place;
      const std::uint64_t before = base - 1;
      visit(number_of(low ^ base, high), Step::mismatch);
      visit(number_of(low, high ^ base), Step::mismatch);
      visit(number_of(low ^ base, high ^ base), Step::mismatch);
      const auto with_base_more = [&](std::uint64_t plane) { return (plane & before) | (plane & ~before) << 1; };
      const std::uint64_t low_more = with_base_more(low);
      const std::uint64_t high_more = with_base_more(high);
      visit(number_of(low_more, high_more), Step::insertion);
      visit(number_of(low_more | base, high_more), Step::insertion);
      visit(number_of(low_more, high_more | base), Step::insertion);
      visit(number_of(low_more | base, high_more | base), Step::insertion);
      const auto with_base_less = [&](std::uint64_t plane) { return (plane & before) | (plane >> 1 & ~before); };
      visit(number_of(with_base_less(low), with_base_less(high)), Step::deletion);
    }
  }

 private:
  unsigned bases_;
};
