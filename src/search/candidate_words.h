#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <vector>

/// A set of positions of one sequence, kept as those of its 64-bit words that are not empty: bit i of word j stands for
/// the 0-based position 64 j + i. Words are added in ascending order. The object owns them.
class CandidateWords {
 public:
  /// `number` is that of the last word added, whose bits are kept too, or higher.
  void add(std::size_t number, std::uint64_t bits) {
    if (!numbers_.empty() && numbers_.back() == number) {
      bits_.back() |= bits;
      return;
    }
    numbers_.push_back(static_cast<std::uint32_t>(number));
    bits_.push_back(bits);
  }

  /// Lets go of memory that only further words would need.
  void shrink_to_fit() {
    numbers_.shrink_to_fit();
    bits_.shrink_to_fit();
  }

  /// Calls `visit` with the number and the bits of every word from `first` on and below `end`, in ascending order.
  template <typename Visit>
  void for_each(std::size_t first, std::size_t end, Visit visit) const {
    auto at = static_cast<std::size_t>(std::lower_bound(numbers_.begin(), numbers_.end(), first) - numbers_.begin());
    for (; at < numbers_.size() && numbers_[at] < end; ++at) visit(std::size_t{numbers_[at]}, bits_[at]);
  }

  /// The memory that it takes.
  std::size_t bytes() const {
    return numbers_.capacity() * sizeof(std::uint32_t) + bits_.capacity() * sizeof(std::uint64_t);
  }

 private:
  std::vector<std::uint32_t> numbers_;
  std::vector<std::uint64_t> bits_;
};
