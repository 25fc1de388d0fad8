#pragma once

#include <algorithm>
#include <cstdint>
#include <iterator>
#include <map>
#include <optional>

/// A half-open range of 0-based positions in a sequence.
struct Stretch {
  std::uint32_t begin;
  std::uint32_t end;

  std::uint32_t length() const { return end - begin; }
  bool contains(const Stretch& other) const { return begin <= other.begin && other.end <= end; }
};

/// The least one that contains both.
inline Stretch hull(const Stretch& a, const Stretch& b) {
  return {std::min(a.begin, b.begin), std::max(a.end, b.end)};
}

/// Parts of a sequence that neither overlap nor touch.
class Stretches {
 public:
  /// The one that contains the stretch, if there is one.
  std::optional<Stretch> around(const Stretch& stretch) const {
    const auto behind = ends_.upper_bound(stretch.begin);
    if (behind == ends_.begin()) return std::nullopt;
    const auto& [begin, end] = *std::prev(behind);
    if (end < stretch.end) return std::nullopt;
    return Stretch{begin, end};
  }

  void add(Stretch stretch) {
    auto first = ends_.upper_bound(stretch.begin);
    if (first != ends_.begin() && std::prev(first)->second >= stretch.begin) --first;
    while (first != ends_.end() && first->first <= stretch.end) {
      stretch = hull(stretch, {first->first, first->second});
      first = ends_.erase(first);
    }
    ends_.emplace(stretch.begin, stretch.end);
  }

 private:
  std::map<std::uint32_t, std::uint32_t> ends_;  ///< by the beginnings
};
