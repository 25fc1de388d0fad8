#include "search/unit_words.h"

#include <algorithm>

namespace {

/// What a step costs a walk at least, next to taking the same bases as matches.
std::int64_t least_loss(const ExtensionRules& rules) {
  return -std::max(rules.mismatch_score - 1, rules.indel_score);
}

}  // namespace

UnitWords::UnitWords(const char* begin, const char* end, const BasePlanes& planes, const ExtensionRules& rules)
    : begin_(begin),
      end_(end),
      planes_(planes),
      gain_of_near_(std::int64_t{bases} - least_loss(rules)),
      gain_of_others_(std::int64_t{bases} - 2 * least_loss(rules)) {}

template <bool forward>
bool UnitWords::keeps_from(std::int64_t enough, const Front<forward>& front, const UnitCircle& circle) {
  if (gain_of_others_ >= 0) return false;
  take_unit(circle);
  // Of all states before the next word ends.
  std::int64_t highest = front.score + bases - 1;
  std::int64_t position = front.position - begin_;
  while (highest < enough) {
    const std::int64_t words = std::min<std::int64_t>(7, (forward ? end_ - begin_ - position : position) / bases);
    if (words == 0 || highest <= -circle.length()) return true;
    const std::int64_t first = forward ? position : position - words * bases;
    const std::uint64_t low = planes_.low_bits(first);
    const std::uint64_t high = planes_.high_bits(first);
    const std::uint64_t unknown = planes_.unknown_bits(first);
    for (std::int64_t i = 0; i < words && highest < enough; ++i) {
      const std::int64_t shift = (forward ? i : words - 1 - i) * bases;
      const auto bits = [shift](std::uint64_t plane) { return static_cast<std::uint32_t>(plane >> shift) & mask; };
      highest += bits(unknown) != 0 ? std::int64_t{bases} : most_gain(number_of(bits(low), bits(high)));
    }
    position += (forward ? words : -words) * bases;
  }
  return false;
}

template bool UnitWords::keeps_from(std::int64_t enough, const Front<true>& front, const UnitCircle& circle);
template bool UnitWords::keeps_from(std::int64_t enough, const Front<false>& front, const UnitCircle& circle);

void UnitWords::take_unit(const UnitCircle& circle) {
  if (unit_.begin == circle.begin && unit_.end == circle.end) return;
  unit_ = circle;
  const std::size_t set_words = (std::size_t{1} << 2 * bases) / 64;
  exact_.assign(set_words, 0);
  near_.assign(set_words, 0);
  std::uint32_t low = 0;
  std::uint32_t high = 0;
  const std::int64_t unit = circle.begin - begin_;
  for (std::int64_t i = 0, phase = 0; i < circle.length() + bases; ++i) {
    low = low >> 1 | static_cast<std::uint32_t>(planes_.low_bits(unit + phase) & 1) << bases;
    high = high >> 1 | static_cast<std::uint32_t>(planes_.high_bits(unit + phase) & 1) << bases;
    if (++phase == circle.length()) phase = 0;
    if (i < bases) continue;
    add(exact_, number_of(low, high));
    add_near(low, high);
  }
}

void UnitWords::add_near(std::uint32_t low, std::uint32_t high) {
  add(near_, number_of(low, high));
  for (unsigned place = 0; place < bases; ++place) {
    const std::uint32_t base = 1U << place;
    const std::uint32_t before = base - 1;
    add(near_, number_of(low ^ base, high));
    add(near_, number_of(low, high ^ base));
    add(near_, number_of(low ^ base, high ^ base));
    const auto with_base_more = [&](std::uint32_t plane) { return (plane & before) | (plane & ~before) << 1; };
    const std::uint32_t low_more = with_base_more(low);
    const std::uint32_t high_more = with_base_more(high);
    add(near_, number_of(low_more, high_more));
    add(near_, number_of(low_more | base, high_more));
    add(near_, number_of(low_more, high_more | base));
    add(near_, number_of(low_more | base, high_more | base));
    const auto with_base_less = [&](std::uint32_t plane) { return (plane & before) | (plane >> 1 & ~before); };
    add(near_, number_of(with_base_less(low), with_base_less(high)));
  }
}
