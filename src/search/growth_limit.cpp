#include "search/growth_limit.h"

#include <algorithm>
#include <cstring>

#include "search/unit_runs.h"
#include "sequence/faststring.h"

namespace {

/// 16 bytes in one value; a compiler extension that g++ and clang have on every machine.
using Vector [[gnu::vector_size(16)]] = std::uint8_t;

Vector all(std::int64_t value) {
  return Vector{} + static_cast<std::uint8_t>(value);
}
Vector load(const void* bytes) {
  Vector vector;
  std::memcpy(&vector, bytes, sizeof vector);
  return vector;
}
Vector max(Vector a, Vector b) {
  return a > b ? a : b;
}
Vector min(Vector a, Vector b) {
  return a < b ? a : b;
}
/// Not below 0.
Vector less(Vector a, Vector b) {
  return max(a, b) - b;
}
Vector one_lane_up(Vector v) {
  return __builtin_shufflevector(v, Vector{}, 16, 0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14);
}
Vector one_lane_down(Vector v) {
  return __builtin_shufflevector(v, Vector{}, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15, 16);
}
bool is_zero(Vector v) {
  std::uint64_t halves[2];
  std::memcpy(halves, &v, sizeof halves);
  return (halves[0] | halves[1]) == 0;
}

std::uint8_t as_height(std::int64_t cost) {
  return static_cast<std::uint8_t>(std::min<std::int64_t>(cost, 255));
}

}  // namespace

GrowthLimit::GrowthLimit(const char* begin, const char* end, const BasePlanes& planes, const ExtensionRules& rules)
    : begin_(begin),
      end_(end),
      planes_(planes),
      rules_(rules),
      mismatch_cost_(as_height(-rules.mismatch_score)),
      indel_cost_(as_height(-rules.indel_score)),
      most_height_(std::min<std::int64_t>(most_height, 20 * std::int64_t{indel_cost_})) {}

bool GrowthLimit::keeps_below(const Csat& seed, std::int64_t minimum_score) {
  const UnitCircle circle{seed.unit_begin, seed.unit_end};
  if (!is_useful(circle, minimum_score)) return false;
  const UnitRuns runs(planes_, begin_, circle);
  auto right = Front<true>::of(seed);
  auto left = Front<false>::of(seed);
  const bool may_go_right = runs.extend_exact(right, end_, rules_);
  const bool may_go_left = runs.extend_exact(left, begin_, rules_);
  const std::int64_t matches_left = left.score - seed.score;
  if (right.score + matches_left >= minimum_score) return false;
  reverse_unit(circle);
  const std::int64_t score_right =
      may_go_right ? highest_score(right, circle, minimum_score, most_bases_of(circle)) : right.score;
  if (score_right >= minimum_score - matches_left) return false;
  left.score = score_right + matches_left;
  return !may_go_left || highest_score(left, circle, minimum_score, most_bases_of(circle)) < minimum_score;
}

template <bool forward>
bool GrowthLimit::keeps_from(std::int64_t enough, const Front<forward>& front, const UnitCircle& circle) {
  if (!is_useful(circle, front.score + 1)) return false;
  reverse_unit(circle);
  // Heights that do not fit are enough in any case.
  enough = std::min(enough, most_height_ - circle.length());
  return highest_score(front, circle, enough, most_bases_of(circle)) < enough;
}

template bool GrowthLimit::keeps_from(std::int64_t enough, const Front<true>& front, const UnitCircle& circle);
template bool GrowthLimit::keeps_from(std::int64_t enough, const Front<false>& front, const UnitCircle& circle);

template <bool forward>
std::int64_t GrowthLimit::highest_gain_ahead(const Front<forward>& front, std::int64_t height,
                                             std::int64_t unit_bases) {
  // They stand for a unit, to whose end no way may come.
  const std::int64_t length = std::min(unit_bases, most_bases_ahead);
  if (length <= 2 * lanes) return unknown;
  const UnitCircle ahead =
      forward ? UnitCircle{front.unit, front.unit + length} : UnitCircle{front.unit + 1 - length, front.unit + 1};
  Front<forward> start = front;
  start.score = height - length;
  reverse_unit(ahead);
  const std::int64_t highest = highest_score(start, ahead, most_height - length, length - 2 * lanes);
  return highest == unknown ? unknown : highest - start.score;
}

template std::int64_t GrowthLimit::highest_gain_ahead(const Front<true>&, std::int64_t, std::int64_t);
template std::int64_t GrowthLimit::highest_gain_ahead(const Front<false>&, std::int64_t, std::int64_t);

void GrowthLimit::reverse_unit(const UnitCircle& circle) {
  if (reversed_.begin == circle.begin && reversed_.end == circle.end) return;
  reversed_ = circle;
  const char* base = circle.end;
  const std::int64_t filled = circle.length() + lanes + 1;
  for (std::int64_t i = 0; i < filled; ++i) {
    base = circle.previous(base);
    reversed_unit_[static_cast<std::size_t>(i)] = static_cast<std::uint8_t>(*base);
  }
}

/// A row holds the states that have taken `t` bases, of sequence and unit together. Lane 8 + i stands for `2 i` more
/// sequence bases than unit bases if `t` is even and for `2 i + 1` more if it is odd; backward it is unit bases that
/// are more. Along the lanes the next sequence base moves to higher positions, in both directions, and the next unit
/// base to lower ones. An indel leads from a row to the next one and to a neighbouring diagonal, a match or a mismatch
/// to the one after that and on the same diagonal.
template <bool forward>
std::int64_t GrowthLimit::highest_score(const Front<forward>& front, const UnitCircle& circle, std::int64_t enough,
                                        std::int64_t most_bases) const {
  const std::int64_t length = circle.length();
  const char* sequence = (forward ? front.position : front.position - 1) - lanes / 2;  // the base for lane 0
  // As many bases as can be taken before a load leaves the bytes around the sequence.
  constexpr auto padding = static_cast<std::int64_t>(faststring::padding);
  const std::int64_t room = forward ? end_ + padding - sequence - lanes - 1 : sequence - (begin_ - padding);
  most_bases = std::min(room, most_bases);
  const std::int64_t phase = front.unit - circle.begin + lanes / 2;  // for lane 0
  std::int64_t unit = length - 1 - phase % length;                   // where it stands in the reversed unit

  const Vector one = all(1);
  const Vector any_base = all('N');
  const Vector mismatch_cost = all(mismatch_cost_);
  const Vector indel_cost = all(indel_cost_);
  const Vector too_low = all(enough + length - 1);
  const auto after_base = [&](Vector heights, const char* bases, const std::uint8_t* unit_bases) {
    const Vector base = load(bases);
    const auto matches = reinterpret_cast<Vector>((base == load(unit_bases)) | (base == any_base));
    return max(less(heights, mismatch_cost), matches & (heights + min(heights, one)));
  };

  Vector even{};
  even[lanes / 2] = static_cast<std::uint8_t>(front.score + length);
  Vector odd = less(max(even, one_lane_down(even)), indel_cost);
  Vector best = even;
  for (std::int64_t bases = 0;; bases += 4) {
    if (bases + 4 > most_bases) return unknown;
    for (int i = 0; i < 4; ++i) {
      const std::uint8_t* const unit_bases = &reversed_unit_[static_cast<std::size_t>(unit)];
      even = max(after_base(even, sequence, unit_bases), less(max(odd, one_lane_up(odd)), indel_cost));
      odd = max(after_base(odd, forward ? sequence + 1 : sequence, forward ? unit_bases : unit_bases + 1),
                less(max(even, one_lane_down(even)), indel_cost));
      best = max(best, max(even, odd));
      sequence += forward ? 1 : -1;
      unit = forward ? (unit == 0 ? length - 1 : unit - 1) : (unit + 1 == length ? 0 : unit + 1);
    }
    if (!is_zero(less(best, too_low))) return unknown;
    if (is_zero(even | odd)) break;
  }
  std::uint8_t highest[lanes];
  std::memcpy(highest, &best, sizeof highest);
  // Ways may have left the diagonals.
  if (std::max(highest[0], highest[lanes - 1]) > indel_cost_) return unknown;
  return *std::max_element(highest, highest + lanes) - length;
}
