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
    const std::int64_t at_once = std::min<std::int64_t>(7, room / bases);
    if (at_once == 0) break;
    const std::int64_t lowest = forward ? position : position - at_once * bases;
    const std::uint64_t low = planes_.low_bits(lowest);
    const std::uint64_t high = planes_.high_bits(lowest);
    const std::uint64_t unknown = planes_.unknown_bits(lowest);
    const auto word_at = [low, high](std::int64_t i) { return words.number_of(low >> i * bases, high >> i * bases); };
    const bool may_rise = gains.last + at_once * std::int64_t{bases} + within_word > gains.highest;
    if (may_rise || (unknown & ((std::uint64_t{1} << at_once * bases) - 1)) != 0) {
      for (std::int64_t i = 0; i < at_once; ++i) {
        const std::int64_t at = forward ? i : at_once - 1 - i;
        const bool is_known = (unknown >> at * bases & mask) == 0;
        gains.last += is_known ? most_gain(word_at(at)) : std::int64_t{bases};
        gains.highest = std::max(gains.highest, gains.last + within_word);
      }
    } else {
      std::int64_t near = 0;
      std::int64_t exact = 0;
      for (std::int64_t i = 0; i < at_once; ++i) {
        const std::uint32_t word = word_at(i);
        if (contains(near_, word) == 0) continue;
        ++near;
        exact += contains(exact_, word);
      }
      gains.last +=
          at_once * gain_of_others_ + near * (gain_of_near_ - gain_of_others_) + exact * (bases - gain_of_near_);
    }
    position += (forward ? at_once : -at_once) * bases;
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
  exact_.assign(words.count() / 64, 0);
  near_.assign(words.count() / 64, 0);
  words.for_each_of_unit(planes_, begin_, circle, [this](std::int64_t, std::uint64_t low, std::uint64_t high) {
    add(exact_, words.number_of(low, high));
    words.for_each_near(low, high, [this](std::uint32_t word, Words::Step) { add(near_, word); });
  });
}
