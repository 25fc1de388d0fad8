#pragma once

#include <algorithm>
#include <cstdint>

#include "search/base_planes.h"
#include "search/front.h"
#include "search/lag_matches.h"

/// Counts matches between the sequence and the endlessly repeated unit, 64 bases at a time.
///
/// The unit is the half-open stretch `circle` of the sequence that `planes` was made of and that begins at
/// `first_base`; all three must outlive the object.
class UnitRuns {
 public:
  static constexpr std::int64_t width = 64;  ///< bases at a time

  UnitRuns(const BasePlanes& planes, const char* first_base, UnitCircle circle)
      : planes_(planes),
        first_base_(first_base),
        circle_(circle),
        length_(circle.length()),
        unit_(circle.begin - first_base) {
    if (length_ >= width) return;
    whole_copies_ = width - width % length_;
    low_ = repeated(planes.low_bits(unit_));
    high_ = repeated(planes.high_bits(unit_));
  }

  /// 64 bits of a plane of the repeated unit, from the unit base number `phase`, 0 to the unit length - 1, on.
  std::uint64_t low_bits(std::int64_t phase) const {
    return length_ < width ? rotated(low_, phase)
                           : joined(phase, [this](std::int64_t at) { return planes_.low_bits(at); });
  }
  std::uint64_t high_bits(std::int64_t phase) const {
    return length_ < width ? rotated(high_, phase)
                           : joined(phase, [this](std::int64_t at) { return planes_.high_bits(at); });
  }

  /// A phase brought back into the unit; `phase` may be negative.
  std::int64_t wrapped(std::int64_t phase) const {
    if (phase >= 0 && phase < length_) return phase;
    const std::int64_t rest = phase % length_;
    return rest < 0 ? rest + length_ : rest;
  }

  /// 128 bases of the repeated unit, from base number `start` on, which may lie before the unit.
  TwoPlanes<Bits128> bases_from(std::int64_t start) const {
    const std::int64_t phase = wrapped(start);
    const std::int64_t later = wrapped(phase + width);
    return {joined_bits(low_bits(phase), low_bits(later)), joined_bits(high_bits(phase), high_bits(later))};
  }

  /// So many bases, as two bit planes.
  struct Bases {
    std::uint64_t low = 0;
    std::uint64_t high = 0;

    bool operator==(const Bases& other) const { return low == other.low && high == other.high; }
  };

  /// The 64 unit bases that a walk comes to next, the one expected now being the first of them, or the last if the walk
  /// grows backward.
  template <bool forward>
  Bases next_bases(const Front<forward>& front) const {
    const std::int64_t phase = wrapped(front.unit - circle_.begin - (forward ? 0 : width - 1));
    return {low_bits(phase), high_bits(phase)};
  }

  /// The number of bases from the front on that agree with the unit, N excluded, at most up to `limit`.
  template <bool forward>
  std::int64_t count(const Front<forward>& front, const char* limit) const {
    const std::int64_t most = room(front, limit);
    std::int64_t position = front.position - first_base_;
    std::int64_t phase = front.unit - circle_.begin;
    std::int64_t matches = 0;
    while (matches < most) {
      const std::uint64_t misses = forward ? misses_from(position, phase) : misses_before(position, phase);
      if (misses != 0) {
        matches += forward ? __builtin_ctzll(misses) : __builtin_clzll(misses);
        break;
      }
      matches += width;
      position += forward ? width : -width;
      phase = wrapped(phase + (forward ? width : -width));
    }
    return std::min(matches, most);
  }

  /// What a walk sees from where it has stopped: the next 64 bases of the sequence and of the unit, the nearest being
  /// the first of them, or the last if the walk grows backward.
  struct View {
    Bases sequence;  ///< undefined if the view is not whole
    Bases unit;
    bool is_whole = false;  ///< so many bases lie before the limit, and no N is among them
  };

  /// Every step begins with it: a call would take nearly as long as the look.
  template <bool forward>
  [[gnu::always_inline]] void look(const Front<forward>& front, const char* limit, View& view) const {
    const std::int64_t first = front.position - first_base_ - (forward ? 0 : width);
    view.is_whole = room(front, limit) >= width && planes_.unknown_bits(first) == 0;
    view.unit = next_bases(front);
    if (!view.is_whole) return;
    view.sequence.low = planes_.low_bits(first);
    view.sequence.high = planes_.high_bits(first);
  }

  /// The bases that are left.
  template <bool forward>
  static std::int64_t room(const Front<forward>& front, const char* limit) {
    return forward ? limit - front.position : front.position - limit;
  }

  static std::size_t hash(const Bases& sequence, const Bases& unit) {
    std::uint64_t mixed = (sequence.low ^ (unit.high << 20 | unit.high >> 44)) * 0x9E3779B97F4A7C15U;
    mixed ^= (unit.low ^ (sequence.high << 20 | sequence.high >> 44)) * 0xD6E8FEB86659FD93U;
    return (mixed ^ mixed >> 32) * 0x9E3779B97F4A7C15U >> 32;
  }

  /// The unit bases behind those of a view.
  template <bool forward>
  Bases bases_behind_view(const Front<forward>& front) const {
    const std::int64_t phase = wrapped(front.unit - circle_.begin + (forward ? width : 1 - 2 * width));
    return {low_bits(phase), high_bits(phase)};
  }

  /// The matches in a row behind a step of this kind, if the whole view is known. From `most_seen` on more may follow.
  template <bool forward>
  static std::int64_t matches_behind(char kind, const View& view) {
    const auto one_on = [](std::uint64_t bits) { return forward ? bits >> 1 : bits << 1; };
    const auto [low, high] = view.sequence;
    const auto [unit_low, unit_high] = view.unit;
    const std::uint64_t misses = kind == 'M'   ? one_on((low ^ unit_low) | (high ^ unit_high))
                                 : kind == 'I' ? (one_on(low) ^ unit_low) | (one_on(high) ^ unit_high)
                                               : (low ^ one_on(unit_low)) | (high ^ one_on(unit_high));
    if (misses == 0) return width;
    return forward ? __builtin_ctzll(misses) : __builtin_clzll(misses);
  }
  static constexpr std::int64_t most_seen = 63;  ///< the last base is shifted out of sight

  /// The matches in a row behind each kind of step.
  struct RunsBehindSteps {
    std::int64_t mismatch;
    std::int64_t insertion;
    std::int64_t deletion;
    std::int64_t longest() const { return std::max({mismatch, insertion, deletion}); }
  };

  /// Counts them from a front that has stopped. False if one of them is long, or near N or `limit`.
  template <bool forward>
  bool count_behind_steps(const Front<forward>& front, const char* limit, RunsBehindSteps& behind) const {
    View seen;
    look(front, limit, seen);
    if (!seen.is_whole) return false;
    behind.mismatch = matches_behind<forward>('M', seen);
    behind.insertion = matches_behind<forward>('I', seen);
    behind.deletion = matches_behind<forward>('D', seen);
    return behind.longest() < most_seen;
  }

  /// As the plain length_of_Ns, only faster.
  template <bool forward>
  std::int64_t length_of_Ns(const Front<forward>& front, const char* limit) const {
    const std::int64_t position = front.position - first_base_;
    return forward ? std::min(planes_.first_known(position), limit - first_base_) - position
                   : position - std::max(planes_.end_of_known_before(position), limit - first_base_);
  }

  /// Moves the front over `bases` bases, each against a unit base. The score stays.
  template <bool forward>
  void advance(Front<forward>& front, std::int64_t bases) const {
    const std::int64_t step = forward ? bases : -bases;
    front.position += step;
    front.unit = circle_.begin + wrapped(front.unit - circle_.begin + step);
  }

  /// As the plain extend_exact, only faster.
  template <bool forward>
  bool extend_exact(Front<forward>& front, const char* limit, const ExtensionRules& rules) const {
    while (true) {
      const std::int64_t matches = count(front, limit);
      advance(front, matches);
      front.score += matches;
      if (front.position == limit || front.next_base() != 'N') return true;
      bool took = false;
      if (!cross_Ns(front, circle_, length_of_Ns(front, limit), rules, took)) return false;
      if (!took) return true;
    }
  }

 private:
  /// The first `length_` bits of `bits` over and over, length_ < 64.
  std::uint64_t repeated(std::uint64_t bits) const {
    bits &= (std::uint64_t{1} << length_) - 1;
    for (std::int64_t filled = length_; filled < width; filled *= 2) bits |= bits << filled;
    return bits;
  }

  /// A repeated pattern from a later phase on: behind the last whole copy it begins anew.
  std::uint64_t rotated(std::uint64_t pattern, std::int64_t phase) const {
    const std::int64_t rest = whole_copies_ - phase;  // bits up to there, at least one
    return (pattern >> phase) | (pattern << 1 << (rest - 1));
  }

  template <typename Bits>
  std::uint64_t joined(std::int64_t phase, Bits bits) const {
    const std::int64_t rest = length_ - phase;
    if (rest >= width) return bits(unit_ + phase);
    return (bits(unit_ + phase) & ((std::uint64_t{1} << rest) - 1)) | (bits(unit_) << rest);
  }

  std::uint64_t differences(std::int64_t position, std::int64_t phase) const {
    return (planes_.low_bits(position) ^ low_bits(phase)) | (planes_.high_bits(position) ^ high_bits(phase)) |
           planes_.unknown_bits(position);
  }

  /// Bit i: the base i positions on does not agree. Behind the sequence nothing agrees.
  std::uint64_t misses_from(std::int64_t position, std::int64_t phase) const { return differences(position, phase); }

  /// Bit 63 - i: the base i + 1 positions back does not agree, the one before `position` being compared with `phase`.
  std::uint64_t misses_before(std::int64_t position, std::int64_t phase) const {
    if (position >= width) return differences(position - width, wrapped(phase - (width - 1)));
    // The sequence begins within the word: compare its first bases and let the others miss.
    const std::uint64_t bits = differences(0, wrapped(phase - (position - 1)));
    return bits << 1 << (width - 1 - position);
  }

  const BasePlanes& planes_;
  const char* first_base_;
  UnitCircle circle_;
  std::int64_t length_;
  std::int64_t unit_;              ///< number of the unit's first base in the sequence
  std::int64_t whole_copies_ = 0;  ///< bits of a word that whole copies of a shorter unit fill
  std::uint64_t low_ = 0;
  std::uint64_t high_ = 0;
};
