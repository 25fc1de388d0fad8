#include "search/lag_kernel.h"

#include <algorithm>
#include <limits>

#include "search/row_bases.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "search/lag_kernel.cpp"
#include "hwy/foreach_target.h"  // compiles this file once for every vector level
#include "hwy/highway.h"

HWY_BEFORE_NAMESPACE();
namespace lag_kernel::HWY_NAMESPACE {

namespace hn = hwy::HWY_NAMESPACE;

/// A table of rows of values, in two parts for the two parities of a row. Each row has lost values around it, so that
/// neighbours need no bounds, and begins where a vector is loaded best.
template <typename Value>
class ValueRows {
 public:
  ValueRows(std::size_t rows, std::size_t lanes)
      : stride_((lanes + 2 * margin + 63) / 64 * 64), values_(2 * rows * stride_ + 64 / sizeof(Value), 0) {
    const auto address = reinterpret_cast<std::uintptr_t>(values_.data());
    first_ = values_.data() + (64 - address % 64) % 64 / sizeof(Value);
  }
  ValueRows(const ValueRows&) = delete;
  ValueRows& operator=(const ValueRows&) = delete;
  ~ValueRows() = default;

  Value* row(std::size_t number, std::size_t parity) { return first_ + (2 * number + parity) * stride_ + margin; }

  /// From a row to the one of the other parity.
  std::ptrdiff_t stride() const { return static_cast<std::ptrdiff_t>(stride_); }

 private:
  static constexpr std::size_t margin = 64;
  std::size_t stride_;
  std::vector<Value> values_;
  Value* first_;
};

/// The programme in one direction over one block, with vectors of at most `most_lanes` lanes.
template <typename Value, std::size_t most_lanes>
class Sweep {
 public:
  using Tag = hn::CappedTag<Value, most_lanes>;
  static std::size_t width() { return hn::Lanes(Tag()); }
  /// Of the values for a line: any permitted score will do. The others are lower by what the score has to be higher.
  static constexpr Value most = std::numeric_limits<Value>::max();

  /// `lanes` is a multiple of `width`.
  Sweep(const LagTask& task, std::size_t lanes)
      : task_(task),
        lanes_(static_cast<std::int64_t>(lanes)),
        slots_(static_cast<std::size_t>((2 * lanes_ + task.first_lag) / task.line_distance) + 2),
        values_(1 + slots_, lanes),
        decisive_(1, lanes),
        ones_and_zeros_(4 * lanes + static_cast<std::size_t>(task.first_lag) + 2, 0) {
    std::fill_n(ones_and_zeros_.begin(), lanes, most);
  }

  /// Works the rows down to `first_row`. `decide` is called in each row below `end_row`.
  template <typename Decide>
  void run(const LagBlock& block, bool forward, std::int64_t first_row, std::int64_t end_row, Decide decide) {
    lines_.clear();
    stand_at(end_row - 1);
    lowest_line_ = floor_divided(sequence_ + last_unit_lane(), task_.line_distance) + 1;
    // A walk may use up the unit of the last seed at the longest lag.
    const std::int64_t top = end_row + 2 * task_.last_unit + 2 * lanes_ + 4;
    stand_at(first_row);
    const std::int64_t lowest = unit_ - lanes_;
    stand_at(top);
    const RowBases bases(block, forward, task_.free_Ns, lowest, sequence_ + lanes_ + 1);
    for (std::int64_t row = top; row >= first_row; --row) {
      stand_at(row);
      begin_and_end_lines();
      for (std::int64_t i = 0; i < lanes_; i += static_cast<std::int64_t>(width())) work(bases, i);
      if (row < end_row) decide(row);
    }
  }

  /// Of the present row.
  std::size_t parity() const { return parity_; }
  /// The value of each seed of the row for the last line within its unit.
  const Value* decisive() { return decisive_.row(0, 0); }
  const Value* gains() { return values_.row(0, parity_); }

 private:
  using Vector = hn::Vec<Tag>;

  static std::int64_t floor_divided(std::int64_t a, std::int64_t b) { return a / b - (a % b < 0 ? 1 : 0); }

  std::int64_t first_unit_lane() const { return (task_.first_unit - task_.first_lag) / 2; }
  std::int64_t last_unit_lane() const { return (task_.last_unit - task_.first_lag) / 2; }

  /// Lane i of the row compares the unit base `unit_` - i with the sequence base `sequence_` + i. There the unit of its
  /// seed ends.
  void stand_at(std::int64_t row) {
    const std::int64_t rest = row - task_.first_lag;
    parity_ = static_cast<std::size_t>(rest & 1);
    unit_ = (rest - static_cast<std::int64_t>(parity_)) / 2;
    sequence_ = unit_ + task_.first_lag + static_cast<std::int64_t>(parity_);
  }

  std::int64_t highest_line() const { return lowest_line_ + static_cast<std::int64_t>(lines_.size()) - 1; }

  /// Leaves the lines that no unit of this row or of a lower one comes to, and sets up those that the task's last lane
  /// lies before for the first time.
  void begin_and_end_lines() {
    while (!lines_.empty() && highest_line() * task_.line_distance > sequence_ + last_unit_lane()) lines_.pop_back();
    const std::int64_t lowest_unit = unit_ - static_cast<std::int64_t>(task_.lanes) + 1;
    while (lowest_line_ > 1 && (lowest_line_ - 1) * task_.line_distance > lowest_unit) {
      --lowest_line_;
      const std::size_t slot = 1 + static_cast<std::size_t>(lowest_line_) % slots_;
      for (const std::size_t parity : {std::size_t{0}, std::size_t{1}})
        std::fill_n(values_.row(slot, parity), lanes_, most);
      lines_.insert(lines_.begin(), values_.row(slot, 0));
    }
  }

  /// A cost as a value; what costs more than any value can lose is lost all the same.
  static Value clamped(std::int64_t cost) { return static_cast<Value>(std::min<std::int64_t>(cost, most)); }

  template <typename Bytes>
  static auto widen(hn::CappedTag<std::uint16_t, most_lanes> d, Bytes bytes) {
    return hn::PromoteTo(d, bytes);
  }
  template <typename Bytes>
  static auto widen(hn::CappedTag<std::uint8_t, most_lanes> /*d*/, Bytes bytes) {
    return bytes;
  }

  /// Works one vector of the row, from lane `first` on, in all tables.
  void work(const RowBases& bases, std::int64_t first) {
    const Tag d;
    const hn::Rebind<std::uint8_t, Tag> bytes;
    const auto other = hn::LoadU(bytes, bases.from(sequence_ + first));
    const auto unit = hn::LoadU(bytes, bases.down_from(unit_ - first));
    const auto is_match = hn::Eq(other, unit);
    const auto is_free = hn::Or(is_match, hn::Eq(other, hn::Set(bytes, std::uint8_t{'N'})));
    const auto one = hn::Set(bytes, std::uint8_t{1});
    const auto gained = widen(d, hn::And(hn::VecFromMask(bytes, is_match), one));
    const auto free = widen(d, hn::And(hn::VecFromMask(bytes, is_free), one));
    const auto lost = hn::IfThenElseZero(hn::Eq(free, hn::Zero(d)), hn::Set(d, clamped(task_.mismatch)));
    const auto indel = hn::Set(d, clamped(task_.indel));
    // Copies of members: for all that the compiler knows, a store of bytes may change those.
    const std::ptrdiff_t here = first + (parity_ == 0 ? 0 : values_.stride());
    const std::ptrdiff_t there = first + (parity_ == 0 ? values_.stride() : 0);
    const std::ptrdiff_t beside = there + (parity_ == 0 ? -1 : 1);
    const std::int64_t distance = task_.line_distance;
    Value* const* line = lines_.data();
    Value* const* const end = line + lines_.size();

    Value* const table = values_.row(0, 0);
    const auto gain = stepped(table, here, there, beside, gained, lost, indel);
    hn::Store(hn::Min(gain, hn::Set(d, static_cast<Value>(task_.last_unit))), d, table + here);

    // A vector that is loaded n values before the zeros has all bits set in its first n lanes.
    const Value* const zeros = ones_and_zeros_.data() + lanes_;
    std::int64_t at = lowest_line_ * distance;
    // The first nodes lie on a line or behind it and need nothing to come there.
    std::int64_t from_line = at - (unit_ + 1 - first);
    const std::int64_t unit_end = sequence_ + std::max(first, first_unit_lane());
    for (; line != end && at + distance <= unit_end; ++line, at += distance, from_line += distance) {
      const auto value = stepped(*line, here, there, beside, gained, lost, indel);
      hn::Store(hn::Or(value, hn::LoadU(d, zeros + from_line)), d, *line + here);
    }
    // The last line that all units of the row come to, and those that only the longer ones do.
    auto decisive = hn::Set(d, most);
    std::int64_t to_line = sequence_ + first - at;
    for (; line != end; ++line, from_line += distance, to_line -= distance) {
      const auto step = stepped(*line, here, there, beside, gained, lost, indel);
      const auto value = hn::Or(step, hn::LoadU(d, zeros + from_line));
      hn::Store(value, d, *line + here);
      decisive = hn::Min(decisive, hn::Or(value, hn::LoadU(d, zeros + to_line)));
    }
    hn::Store(decisive, d, decisive_.row(0, 0) + first);
  }

  /// The values of the present row from those of the two rows above, the older of which they take the place of.
  static HWY_INLINE Vector stepped(const Value* table, std::ptrdiff_t here, std::ptrdiff_t there, std::ptrdiff_t beside,
                                   Vector gained, Vector lost, Vector indel) {
    const Tag d;
    // Lags lie in the two parities in turn: the neighbours of lane i are lane i and one beside it.
    const auto neighbours = hn::Max(hn::Load(d, table + there), hn::LoadU(d, table + beside));
    const auto straight = hn::SaturatedSub(hn::SaturatedAdd(hn::Load(d, table + here), gained), lost);
    return hn::Max(straight, hn::SaturatedSub(neighbours, indel));
  }

  const LagTask& task_;
  const std::int64_t lanes_;
  const std::size_t slots_;            ///< as many lines as can be worked at a time
  ValueRows<Value> values_;            ///< row 0 holds the gains, the others are for the lines, in turn
  ValueRows<Value> decisive_;          ///< of the present row, and so below
  std::vector<Value> ones_and_zeros_;  ///< `lanes` values with all bits set, and zeros
  std::size_t parity_ = 0;
  std::int64_t unit_ = 0;
  std::int64_t sequence_ = 0;
  std::int64_t lowest_line_ = 1;  ///< number of the first of the lines that are worked
  std::vector<Value*> lines_;     ///< their values, in ascending order
};

template <typename Value, std::size_t most_lanes>
class BlockVerdicts {
 public:
  BlockVerdicts(const LagTask& task, const LagBlock& block)
      : task_(task),
        block_(block),
        lanes_((task.lanes + width() - 1) / width() * width()),
        first_lane_(static_cast<std::size_t>(task.first_unit - task.first_lag) / 2 / width() * width()),
        end_lane_(static_cast<std::size_t>(task.last_unit - task.first_lag) / 2 / width() * width() + width()),
        limits_(limit_rows, lanes_),
        forward_gains_(static_cast<std::size_t>(block.end_row - block.first_row) * (end_lane_ - first_lane_)) {
    for (std::int64_t unit = task.first_unit; unit <= task.last_unit; ++unit) {
      const auto parity = static_cast<std::size_t>(unit - task.first_lag) % 2;
      const auto lane = static_cast<std::size_t>(unit - task.first_lag) / 2;
      const auto number = static_cast<std::size_t>(unit - task.first_unit);
      limits_.row(height, parity)[lane] = static_cast<Value>(most - unit);
      limits_.row(forward_gain, parity)[lane] = static_cast<Value>(task.most_forward_gain[number]);
      // A sum of gains that is cut off must not look like little.
      limits_.row(total_gain, parity)[lane] =
          static_cast<Value>(std::min<std::int64_t>(task.most_gain[number], most - 1));
      limits_.row(is_unit, parity)[lane] = most;
    }
  }

  void run(const LagVerdicts& verdicts) {
    Sweep<Value, most_lanes> sweep(task_, lanes_);
    sweep.run(block_, true, block_.first_row, block_.end_row, [&](std::int64_t row) { note_forward(sweep, row); });
    // The seed of row t stands in row 2 n - t of the reversed sequence.
    Sweep<Value, most_lanes> back(task_, lanes_);
    const std::int64_t mirror = 2 * (block_.end - block_.begin);
    std::vector<std::uint8_t> open(lanes_ / 8 + 8, 0);
    back.run(block_, false, mirror - block_.end_row + 1, mirror - block_.first_row + 1, [&](std::int64_t row) {
      if (decide(back, mirror - row, open.data())) verdicts(mirror - row, open.data(), (end_lane_ + 7) / 8);
    });
  }

 private:
  using Tag = typename Sweep<Value, most_lanes>::Tag;
  static constexpr Value most = Sweep<Value, most_lanes>::most;
  static std::size_t width() { return Sweep<Value, most_lanes>::width(); }
  enum LimitRow : std::size_t { height, forward_gain, total_gain, is_unit, limit_rows };

  Value* gains_of(std::int64_t row) {
    return forward_gains_.data() + static_cast<std::size_t>(row - block_.first_row) * (end_lane_ - first_lane_);
  }

  /// All ones where a <= b; unsigned comparisons other than for equality are not everywhere to be had.
  template <typename Vector>
  static Vector at_most(Tag d, Vector a, Vector b) {
    return hn::VecFromMask(d, hn::Eq(hn::Max(a, b), b));
  }

  /// Notes what the forward walks may gain; all ones where it is too much or where they may not end.
  void note_forward(Sweep<Value, most_lanes>& sweep, std::int64_t row) {
    const Tag d;
    Value* const gains = gains_of(row);
    const std::size_t parity = sweep.parity();
    for (std::size_t i = first_lane_; i < end_lane_; i += width()) {
      const auto gain = hn::Load(d, sweep.gains() + i);
      const auto ends = at_most(d, hn::Load(d, sweep.decisive() + i), hn::Load(d, limits_.row(height, parity) + i));
      const auto little = at_most(d, gain, hn::Load(d, limits_.row(forward_gain, parity) + i));
      hn::StoreU(hn::Or(gain, hn::Not(hn::And(ends, little))), d, gains + (i - first_lane_));
    }
  }

  /// Sets the bits of the seeds that are not rejected. False if there are none.
  bool decide(Sweep<Value, most_lanes>& sweep, std::int64_t row, std::uint8_t* open) {
    const Tag d;
    const Value* const gains = gains_of(row);
    const std::size_t parity = sweep.parity();
    bool any = false;
    for (std::size_t i = first_lane_; i < end_lane_; i += width()) {
      const auto forward = hn::LoadU(d, gains + (i - first_lane_));
      // The backward walk begins with what the forward walk gained.
      const auto ends = at_most(d, hn::SaturatedAdd(hn::Load(d, sweep.decisive() + i), forward),
                                hn::Load(d, limits_.row(height, parity) + i));
      const auto little = at_most(d, hn::SaturatedAdd(hn::Load(d, sweep.gains() + i), forward),
                                  hn::Load(d, limits_.row(total_gain, parity) + i));
      const auto rest = hn::AndNot(hn::And(ends, little), hn::Load(d, limits_.row(is_unit, parity) + i));
      const auto is_open = hn::Ne(rest, hn::Zero(d));
      any = any || !hn::AllFalse(d, is_open);
      store_bits(d, rest, i, open);
    }
    return any;
  }

  /// Stores one bit for each lane. Vectors of less than eight lanes have no whole byte.
  template <typename Vector>
  static void store_bits(Tag d, Vector rest, std::size_t first, std::uint8_t* bits) {
    if (width() >= 8) {
      hn::StoreMaskBits(d, hn::Ne(rest, hn::Zero(d)), bits + first / 8);
      return;
    }
    Value lanes[8];
    hn::StoreU(rest, d, lanes);
    for (std::size_t i = 0; i < width(); ++i) {
      const auto bit = static_cast<std::uint8_t>(1U << ((first + i) % 8));
      std::uint8_t& byte = bits[(first + i) / 8];
      byte = static_cast<std::uint8_t>(lanes[i] != 0 ? byte | bit : byte & ~bit);
    }
  }

  const LagTask& task_;
  const LagBlock& block_;
  const std::size_t lanes_;
  const std::size_t first_lane_;  ///< of the vectors that hold unit lengths, half-open range
  const std::size_t end_lane_;
  ValueRows<Value> limits_;
  std::vector<Value> forward_gains_;
};

void certify(const LagTask& task, const LagBlock& block, const LagVerdicts& verdicts) {
  // Lanes that the task does not need would only have to be worked.
  if (!fits_bytes(task)) {
    BlockVerdicts<std::uint16_t, 32>(task, block).run(verdicts);
  } else if (task.lanes <= 16) {
    BlockVerdicts<std::uint8_t, 16>(task, block).run(verdicts);
  } else if (task.lanes <= 32) {
    BlockVerdicts<std::uint8_t, 32>(task, block).run(verdicts);
  } else {
    BlockVerdicts<std::uint8_t, 64>(task, block).run(verdicts);
  }
}

}  // namespace lag_kernel::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace {

// Highway would choose as well, but by a function of its shared library, which spends 3 ms at every start of the
// program on finding out how exact the clock is. Only its headers are used here.
#if HWY_ARCH_X86
bool has_sse4() {
  return __builtin_cpu_supports("sse4.2") && __builtin_cpu_supports("pclmul") && __builtin_cpu_supports("aes");
}

bool has_avx2() {
  return has_sse4() && __builtin_cpu_supports("avx2") && __builtin_cpu_supports("fma") &&
         __builtin_cpu_supports("bmi") && __builtin_cpu_supports("bmi2");
}

bool has_avx512() {
  return has_avx2() && __builtin_cpu_supports("avx512f") && __builtin_cpu_supports("avx512vl") &&
         __builtin_cpu_supports("avx512dq") && __builtin_cpu_supports("avx512bw");
}
#endif

}  // namespace

bool fits_bytes(const LagTask& task) {
  const auto most = *std::max_element(task.most_forward_gain.begin(), task.most_forward_gain.end());
  return task.last_unit + most < UINT8_MAX;
}

std::vector<LagKernelLevel> lag_kernel_levels() {
  std::vector<LagKernelLevel> levels;
#if HWY_ARCH_X86
  // A level that was not compiled has no function.
  const auto add = [&levels](const char* name, bool supported, decltype(&certify_block) kernel) {
    if (supported && kernel != nullptr) levels.push_back({name, kernel});
  };
  using namespace lag_kernel;  // the macros name the functions without it
  add("AVX512", has_avx512(), HWY_CHOOSE_AVX3(certify));
  add("AVX2", has_avx2(), HWY_CHOOSE_AVX2(certify));
  add("SSE4", has_sse4(), HWY_CHOOSE_SSE4(certify));
  add("SSSE3", __builtin_cpu_supports("ssse3") != 0, HWY_CHOOSE_SSSE3(certify));
#endif
  levels.push_back({"baseline", &lag_kernel::HWY_STATIC_DISPATCH(certify)});
  return levels;
}

void certify_block(const LagTask& task, const LagBlock& block, const LagVerdicts& verdicts) {
  static const auto best = lag_kernel_levels().front().certify;
  best(task, block, verdicts);
}
#endif
