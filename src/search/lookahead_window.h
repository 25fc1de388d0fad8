#pragma once

#include <algorithm>
#include <cstdint>

#include "search/base_planes.h"
#include "search/front.h"

/// 128 bits in one value; a compiler extension that g++ and clang have on every 64-bit machine.
__extension__ using Bits128 = unsigned __int128;

/// Decides most steps of an imperfect walk without a lookahead.
///
/// A further step can only pay off where, after some step, more bases match in a row than the mildest penalty costs. If
/// there is no such run anywhere within reach of the lookahead, the value of a first step is its own score, and the best
/// of the three is found by comparing three runs of matches. The window holds, for 64 sequence positions and all lags
/// within reach, one bit for each comparison.
///
/// The window stays valid for the walk that it was made for: one unit, one direction. It says nothing, and the lookahead
/// must be done, near N and the sequence's ends, where a long run is near, and for depths or penalties beyond its width.
template <bool forward>
class LookaheadWindow {
 public:
  /// `first_base` is the sequence that `planes` was made of. `circle` is the unit of the walk.
  LookaheadWindow(const BasePlanes& planes, const char* first_base, const UnitCircle& circle,
                  const ExtensionRules& rules)
      : planes_(planes),
        first_base_(first_base),
        circle_(circle),
        rules_(rules),
        long_run_(std::min(-rules.mismatch_score, -rules.indel_score) + 1),
        reach_((std::min(rules.maximum_depth, std::int64_t{64}) - 1) * long_run_ + 2),
        usable_(rules.maximum_depth >= 1 && rules.maximum_depth <= 8 && long_run_ <= 16 &&
                reach_ + long_run_ <= width) {}

  /// The better first step of a walk that has stopped at `front`, of those permitted: 'M', 'I' or 'D'; '?' if only the
  /// lookahead can tell. `limit` is where the sequence ends for this direction.
  char choose(const Front<forward>& front, const char* limit, bool mismatch_permitted, bool indel_permitted) {
    if (!usable_ || !locate(front, limit)) return '?';
    if (long_run_within_reach()) return '?';
    char choice = '?';
    std::int64_t best = INT64_MIN;
    const auto offer = [&](char kind, std::int64_t value) {
      if (value <= best) return;
      best = value;
      choice = kind;
    };
    if (mismatch_permitted) offer('M', rules_.mismatch_score + run(1, 0));
    if (indel_permitted) {
      offer('I', rules_.indel_score + run(1, 1));
      offer('D', rules_.indel_score + run(0, -1));
    }
    return choice;
  }

 private:
  static constexpr std::int64_t width = 64;       ///< positions
  static constexpr std::int64_t most_drift = 12;  ///< lags on either side

  static std::uint64_t low_bits(std::int64_t n) { return n >= 64 ? ~std::uint64_t{0} : (std::uint64_t{1} << n) - 1; }

  /// Finds the place of `front` in the window, making a new one if need be. False where no window can be made.
  bool locate(const Front<forward>& front, const char* limit) {
    if (made_ && place(front)) return true;
    made_ = make(front, limit);
    return made_ && place(front);
  }

  bool place(const Front<forward>& front) {
    position_ = forward ? front.position - anchor_position_ : anchor_position_ - front.position;
    if (position_ < 0 || position_ + reach_ + long_run_ > width) return false;
    const std::int64_t unit_steps = forward ? front.unit - anchor_unit_ : anchor_unit_ - front.unit;
    const auto length = static_cast<std::int32_t>(circle_.length());
    auto drift = static_cast<std::int32_t>(position_ - unit_steps) % length;  // the unit is a circle
    if (2 * drift > length) drift -= length;
    if (2 * drift < -length) drift += length;
    drift_ = drift;
    return std::abs(drift_) + rules_.maximum_depth <= most_drift;
  }

  bool make(const Front<forward>& front, const char* limit) {
    const std::int64_t room = forward ? limit - front.position : front.position - limit;
    if (room < width || circle_.length() > INT32_MAX) return false;
    anchor_position_ = front.position;
    anchor_unit_ = front.unit;
    const std::int64_t first = front.position - first_base_ - (forward ? 0 : width);
    if (planes_.unknown_bits(first) != 0) return false;
    const std::uint64_t low = planes_.low_bits(first);
    const std::uint64_t high = planes_.high_bits(first);

    // Bit j of the unrolled unit is the unit base j steps after this one.
    const std::int64_t start = front.unit - circle_.begin - most_drift - (forward ? 0 : width - 1);
    Bits128 unit_low = 0;
    Bits128 unit_high = 0;
    unroll(start, unit_low, unit_high);
    long_runs_ = 0;
    for (std::int64_t drift = -most_drift; drift <= most_drift; ++drift) {
      const auto shift = static_cast<unsigned>(most_drift + (forward ? -drift : drift));
      const std::uint64_t differ = (low ^ static_cast<std::uint64_t>(unit_low >> shift)) |
                                   (high ^ static_cast<std::uint64_t>(unit_high >> shift));
      matches_[drift + most_drift] = ~differ;
      long_runs_ |= starts_of_long_runs(~differ);
    }
    return true;
  }

  /// The unit's bits from `start` on, round the circle, 128 of them; `start` may be negative.
  void unroll(std::int64_t start, Bits128& low, Bits128& high) const {
    const std::int64_t length = circle_.length();
    const std::int64_t unit = circle_.begin - first_base_;
    std::int64_t at = ((start % length) + length) % length;
    std::int64_t filled = 0;
    // Once a whole unit has been taken, the rest is a copy of what is there.
    const std::int64_t wanted = std::min<std::int64_t>(128, length);
    while (filled < wanted) {
      const std::int64_t count = std::min({length - at, wanted - filled, width});
      low |= static_cast<Bits128>(planes_.low_bits(unit + at) & low_bits(count)) << filled;
      high |= static_cast<Bits128>(planes_.high_bits(unit + at) & low_bits(count)) << filled;
      filled += count;
      at = at + count == length ? 0 : at + count;
    }
    for (; filled < 128; filled *= 2) {
      low |= low << filled;
      high |= high << filled;
    }
  }

  /// The positions, in the direction of the walk, at which at least `long_run_` matches begin.
  std::uint64_t starts_of_long_runs(std::uint64_t matches) const {
    std::uint64_t starts = matches;
    std::int64_t length = 1;
    while (length < long_run_) {
      const std::int64_t step = std::min(length, long_run_ - length);
      starts &= forward ? starts >> step : starts << step;
      length += step;
    }
    return starts;
  }

  bool long_run_within_reach() const {
    return forward ? (long_runs_ >> position_ & low_bits(reach_)) != 0
                   : long_runs_ << position_ >> (width - reach_) != 0;
  }

  /// The matches in a row after `bases` more sequence bases, at a lag changed by `drift`.
  std::int64_t run(std::int64_t bases, std::int64_t drift) const {
    const std::uint64_t matches = matches_[drift_ + drift + most_drift];
    const std::int64_t skip = position_ + bases;
    const std::uint64_t misses = forward ? ~matches >> skip : ~matches << skip;
    if (misses == 0) return width;
    return forward ? __builtin_ctzll(misses) : __builtin_clzll(misses);
  }

  const BasePlanes& planes_;
  const char* const first_base_;
  const UnitCircle circle_;
  const ExtensionRules& rules_;
  const std::int64_t long_run_;  ///< matches in a row that pay for a step
  const std::int64_t reach_;     ///< positions at which a run within the lookahead may begin
  const bool usable_;

  bool made_ = false;
  const char* anchor_position_ = nullptr;
  const char* anchor_unit_ = nullptr;
  std::int64_t position_ = 0;  ///< of the front, in bases taken since the anchor
  std::int64_t drift_ = 0;     ///< of the front: sequence bases less unit bases taken since the anchor
  std::uint64_t long_runs_ = 0;
  std::uint64_t matches_[2 * most_drift + 1] = {};
};
