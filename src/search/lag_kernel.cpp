#include "search/lag_kernel.h"

#include <algorithm>
#include <limits>

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "search/lag_kernel.cpp"
#include "hwy/foreach_target.h"  // compiles this file once for every vector level
#include "hwy/highway.h"

HWY_BEFORE_NAMESPACE();
namespace lag_kernel::HWY_NAMESPACE {

namespace hn = hwy::HWY_NAMESPACE;

/// The rows of the programme, each `lanes` values with lost values around them so that neighbours need no bounds.
template <typename Value>
class ValueRows {
 public:
  ValueRows(std::size_t rows, std::size_t lanes, std::size_t reach)
      : stride_(front + lanes + reach + front), values_(rows * stride_ + front, 0) {}
  Value* operator[](std::size_t row) { return values_.data() + row * stride_ + front; }

 private:
  static constexpr std::size_t front = 64;
  std::size_t stride_;
  std::vector<Value> values_;
};

template <typename Value>
class Programme {
 public:
  Programme(const LagTask& task, const LagRows& rows)
      : task_(task),
        rows_(rows),
        lines_(static_cast<std::size_t>(task.last_unit / task.line_distance) + 2),
        reach_(static_cast<std::size_t>(task.longest_insertion) + 64),
        values_(lines_ + 1, task.lanes, reach_),
        matched_(lines_ + 1, task.lanes, reach_),
        direct_(lines_ + 1, task.lanes, reach_),
        match_(1, task.lanes, reach_),
        limits_(2, task.lanes, reach_),
        lags_(1, task.lanes, reach_) {
    for (std::size_t i = 0; i < task.lanes; ++i) {
      limits_[0][i] = static_cast<Value>(task.gain_limit[i]);
      limits_[1][i] = static_cast<Value>(task.crossing_limit[i]);
      lags_[0][i] = static_cast<Value>(static_cast<std::size_t>(task.first_lag) + i);
    }
  }

  void run(const LagVerdicts& verdicts) {
    std::vector<std::uint8_t> certified(task_.lanes / 8);
    for (std::int64_t x = rows_.highest; x >= rows_.decided_begin; --x) {
      if ((x + 1) % task_.line_distance == 0) start_line(x + 1);
      compare_bases(x);
      take_base();
      insert_bases();
      if (x >= rows_.decided_end) continue;
      decide(x, certified.data());
      verdicts(x, certified.data());
    }
  }

 private:
  using Tag = hn::ScalableTag<Value>;
  static std::size_t width() { return hn::Lanes(Tag()); }
  /// A cost as a value; what costs more than any value can lose is lost all the same.
  static Value clamped(std::int64_t cost) {
    return static_cast<Value>(std::min<std::int64_t>(cost, std::numeric_limits<Value>::max()));
  }

  /// Row 0 of every table holds the gains, the others the crossings to the lines, in turn.
  std::size_t slot_of(std::int64_t line_number) const { return 1 + static_cast<std::size_t>(line_number) % lines_; }

  void start_line(std::int64_t line) {
    std::fill_n(values_[slot_of(line / task_.line_distance)], task_.lanes, static_cast<Value>(task_.start));
  }

  /// All ones where the bases match. An N of the sequence counts as a match: crossing it costs nothing.
  void compare_bases(std::int64_t x) {
    const Tag d;
    const hn::Rebind<std::uint8_t, Tag> bytes;
    const auto* const unit_base = reinterpret_cast<const std::uint8_t*>(rows_.bases + x);
    const auto* const sequence = unit_base + task_.first_lag;
    // Nothing matches the byte 0 that stands outside the sequence, not even itself.
    const auto base = hn::Set(d, static_cast<Value>(*unit_base == 0 ? 0xFF : *unit_base));
    const auto unknown = hn::Set(d, static_cast<Value>('N'));
    for (std::size_t i = 0; i < task_.lanes; i += width()) {
      const auto other = widen(d, hn::LoadU(bytes, sequence + i));
      hn::StoreU(hn::VecFromMask(d, hn::Or(hn::Eq(other, base), hn::Eq(other, unknown))), d, match_[0] + i);
    }
  }

  template <typename Bytes>
  static auto widen(hn::ScalableTag<std::uint16_t> d, Bytes bytes) {
    return hn::PromoteTo(d, bytes);
  }
  template <typename Bytes>
  static auto widen(hn::ScalableTag<std::uint8_t> /*d*/, Bytes bytes) {
    return bytes;
  }

  /// The steps that take in a base of the sequence or leave out one of the unit: match, mismatch, deletion.
  void take_base() {
    const Tag d;
    const auto one = hn::Set(d, Value{1});
    const auto mismatch = hn::Set(d, clamped(task_.mismatch));
    const auto indel = hn::Set(d, clamped(task_.indel));
    const std::size_t lanes = task_.lanes;  // in a local, for the stores below could change a member
    const std::size_t rows = lines_ + 1;
    const Value* const match = match_[0];
    for (std::size_t row = 0; row < rows; ++row) {
      const Value* const before = values_[row];
      Value* const matched = matched_[row];
      Value* const direct = direct_[row];
      for (std::size_t i = 0; i < lanes; i += width()) {
        const auto value = hn::LoadU(d, before + i);
        const auto with_match = hn::And(hn::SaturatedAdd(value, one), hn::LoadU(d, match + i));
        const auto deletion = hn::SaturatedSub(hn::LoadU(d, before + i - 1), indel);
        hn::StoreU(with_match, d, matched + i);
        hn::StoreU(hn::Max(hn::Max(with_match, deletion), hn::SaturatedSub(value, mismatch)), d, direct + i);
      }
    }
  }

  /// Insertions, any number in a row and then a match; before any other step they may as well come after it. The
  /// table `matched_` becomes the best of 0 to 2^k - 1 insertions and a match in k passes.
  void insert_bases() {
    const std::int64_t most = std::numeric_limits<Value>::max();
    for (std::int64_t step = 1; step < task_.longest_insertion && step * task_.indel < most; step *= 2) {
      insert_up_to(static_cast<std::size_t>(step));
    }
    const Tag d;
    const auto indel = hn::Set(d, clamped(task_.indel));
    const std::size_t lanes = task_.lanes;
    const std::size_t rows = lines_ + 1;
    for (std::size_t row = 0; row < rows; ++row) {
      const Value* const matched = matched_[row];
      const Value* const direct = direct_[row];
      Value* const values = values_[row];
      for (std::size_t i = 0; i < lanes; i += width()) {
        const auto insertion = hn::SaturatedSub(hn::LoadU(d, matched + i + 1), indel);
        hn::StoreU(hn::Max(hn::LoadU(d, direct + i), insertion), d, values + i);
      }
    }
  }

  /// Allows `step` more insertions to what `matched_` holds.
  void insert_up_to(std::size_t step) {
    const Tag d;
    const auto cost = hn::Set(d, clamped(static_cast<std::int64_t>(step) * task_.indel));
    const std::size_t lanes = task_.lanes;
    const std::size_t rows = lines_ + 1;
    for (std::size_t row = 0; row < rows; ++row) {
      Value* const matched = matched_[row];
      for (std::size_t i = 0; i < lanes; i += width()) {
        const auto further = hn::SaturatedSub(hn::LoadU(d, matched + i + step), cost);
        hn::StoreU(hn::Max(hn::LoadU(d, matched + i), further), d, matched + i);
      }
    }
  }

  /// All ones where a <= b; unsigned comparisons other than for equality are not everywhere to be had.
  template <typename Vector>
  static Vector at_most(Tag d, Vector a, Vector b) {
    return hn::VecFromMask(d, hn::Eq(hn::Max(a, b), b));
  }

  /// The seed of unit length L is decided by the last line that is at most L unit positions ahead.
  void decide(std::int64_t x, std::uint8_t* certified) {
    const Tag d;
    const auto in_line = hn::Set(d, static_cast<Value>(task_.line_distance));
    const std::int64_t first_number = (x + task_.first_unit) / task_.line_distance;
    const std::size_t first_slot = slot_of(first_number);
    for (std::size_t i = 0; i < task_.lanes; i += width()) {
      const auto lags = hn::LoadU(d, lags_[0] + i);
      const auto crossing_limit = hn::LoadU(d, limits_[1] + i);
      auto ended = hn::Zero(d);
      std::size_t slot = first_slot;
      std::int64_t ahead = first_number * task_.line_distance - x;
      for (; ahead <= task_.last_unit; ahead += task_.line_distance) {
        const auto beyond = hn::Sub(lags, hn::Set(d, static_cast<Value>(ahead)));
        // less than the distance, as unsigned values
        const auto here = hn::VecFromMask(d, hn::Ne(hn::Max(beyond, in_line), beyond));
        const auto lost = at_most(d, hn::LoadU(d, values_[slot] + i), crossing_limit);
        ended = hn::Or(ended, hn::And(here, lost));
        slot = slot == lines_ ? 1 : slot + 1;
      }
      const auto poor = at_most(d, hn::LoadU(d, values_[0] + i), hn::LoadU(d, limits_[0] + i));
      const auto verdict = hn::And(ended, poor);
      store_bits(d, verdict, i, certified);
    }
  }

  /// Stores one bit for each lane, lane 0 of the row lowest. Vectors of less than eight lanes have no whole byte.
  template <typename Vector>
  static void store_bits(Tag d, Vector verdict, std::size_t first, std::uint8_t* bits) {
    if (width() >= 8) {
      hn::StoreMaskBits(d, hn::Ne(verdict, hn::Zero(d)), bits + first / 8);
      return;
    }
    Value lanes[8];
    hn::StoreU(verdict, d, lanes);
    for (std::size_t i = 0; i < width(); ++i) {
      const auto bit = static_cast<std::uint8_t>(1U << ((first + i) % 8));
      std::uint8_t& byte = bits[(first + i) / 8];
      byte = static_cast<std::uint8_t>(lanes[i] != 0 ? byte | bit : byte & ~bit);
    }
  }

  const LagTask& task_;
  const LagRows& rows_;
  std::size_t lines_;
  std::size_t reach_;
  ValueRows<Value> values_;
  ValueRows<Value> matched_;
  ValueRows<Value> direct_;
  ValueRows<Value> match_;
  ValueRows<Value> limits_;
  ValueRows<Value> lags_;
};

void certify(const LagTask& task, const LagRows& rows, const LagVerdicts& verdicts) {
  const std::int64_t most = task.start + task.last_unit + 1;
  const std::int64_t highest_lag = task.first_lag + static_cast<std::int64_t>(task.lanes);
  if (most <= 255 && highest_lag <= 255) {
    Programme<std::uint8_t>(task, rows).run(verdicts);
  } else {
    Programme<std::uint16_t>(task, rows).run(verdicts);
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

std::vector<LagKernelLevel> lag_kernel_levels() {
  std::vector<LagKernelLevel> levels;
#if HWY_ARCH_X86
  // A level that was not compiled has no function.
  const auto add = [&levels](const char* name, bool supported, decltype(&certify_rows) kernel) {
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

void certify_rows(const LagTask& task, const LagRows& rows, const LagVerdicts& verdicts) {
  static const auto best = lag_kernel_levels().front().certify;
  best(task, rows, verdicts);
}
#endif
