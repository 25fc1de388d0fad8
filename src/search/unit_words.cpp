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
  const std::int64_t most = enough - 1 - front.score;
  return gains<forward>(front.position, forward ? end_ : begin_, circle, most, front.score + circle.length()).highest <=
         most;
}

template <bool forward>
UnitWords::Gains UnitWords::gains(const char* first, const char* limit, const UnitCircle& circle, std::int64_t enough,
                                  std::int64_t loss) {
  // Of all states before the next word ends.
  constexpr std::int64_t within_word = bases - 1;
  if (gain_of_others_ >= 0) return {enough + 1, enough + 1};
  take_unit(circle);
  Gains gains{within_word, 0};
  std::int64_t position = first - begin_;
  while (gains.highest <= enough && gains.last + within_word > -loss) {
    const std::int64_t room = forward ? limit - begin_ - position : position - (limit - begin_);
    const std::int64_t words = std::min<std::int64_t>(7, room / bases);
    if (words == 0) break;
    const std::int64_t lowest = forward ? position : position - words * bases;
    const std::uint64_t low = planes_.low_bits(lowest);
    const std::uint64_t high = planes_.high_bits(lowest);
    const std::uint64_t unknown = planes_.unknown_bits(lowest);
    const auto word_at = [low, high](std::int64_t i) {
      return number_of(static_cast<std::uint32_t>(low >> i * bases), static_cast<std::uint32_t>(high >> i * bases));
    };
    const bool may_rise = gains.last + words * std::int64_t{bases} + within_word > gains.highest;
    if (may_rise || (unknown & ((std::uint64_t{1} << words * bases) - 1)) != 0) {
      for (std::int64_t i = 0; i < words; ++i) {
        const std::int64_t at = forward ? i : words - 1 - i;
        const bool is_known = (unknown >> at * bases & mask) == 0;
        gains.last += is_known ? most_gain(word_at(at)) : std::int64_t{bases};
        gains.highest = std::max(gains.highest, gains.last + within_word);
      }
    } else {
      std::int64_t near = 0;
      std::int64_t exact = 0;
      for (std::int64_t i = 0; i < words; ++i) {
        const std::uint32_t word = word_at(i);
        if (contains(near_, word) == 0) continue;
        ++near;
        exact += contains(exact_, word);
      }
      gains.last +=
          words * gain_of_others_ + near * (gain_of_near_ - gain_of_others_) + exact * (bases - gain_of_near_);
    }
    position += (forward ? words : -words) * bases;
  }
  return gains;
}

template bool UnitWords::keeps_from(std::int64_t enough, const Front<true>& front, const UnitCircle& circle);
template bool UnitWords::keeps_from(std::int64_t enough, const Front<false>& front, const UnitCircle& circle);
template UnitWords::Gains UnitWords::gains<true>(const char* first, const char* limit, const UnitCircle& circle,
                                                 std::int64_t enough, std::int64_t loss);
template UnitWords::Gains UnitWords::gains<false>(const char* first, const char* limit, const UnitCircle& circle,
                                                  std::int64_t enough, std::int64_t loss);

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
