#include "search/lag_filter.h"

#include <algorithm>
#include <atomic>
#include <cstring>
#include <memory>

#include "search/lag_kernel.h"

namespace {

/// With units shorter than this hardly a seed is decided here.
constexpr std::int64_t shortest_unit = 8;
/// Scores of longer units may not fit the 16 bits of a lane.
constexpr std::int64_t longest_unit = 15000;
/// Rows decided at a time, apart from very long units; the rows above them have to be worked as well.
constexpr std::int64_t block_rows = 4096;
/// The bit sets of a range may take this much, and half a byte for each base.
constexpr std::int64_t free_bytes = std::int64_t{32} << 20;

/// What the forward walk of an undecided seed may gain at most; the backward walk may gain the rest of the minimum
/// score. A small share lets the backward walk end early, a large one decides more forward walks.
std::int64_t forward_share(std::int64_t unit_length, std::int64_t minimum_score) {
  return std::min((minimum_score - 1) / 2, 3 + unit_length / 10);
}

/// The most insertions, or deletions, of a walk that is still permitted to go on: it starts with `budget` above the
/// bound and matches at most its unit.
std::int64_t longest_drift(std::int64_t unit_length, std::int64_t budget, const ExtensionRules& rules) {
  return (unit_length + budget - 1) / -rules.indel_score;
}

std::uint16_t clamped(std::int64_t value) {
  return static_cast<std::uint16_t>(std::clamp<std::int64_t>(value, 0, UINT16_MAX));
}

/// One direction of one range of unit lengths.
LagTask make_task(std::int64_t first, std::int64_t last, const ThresholdTable& minimum_scores,
                  const ExtensionRules& rules, bool forward) {
  const auto share = [&](std::int64_t L) { return forward_share(L, minimum_scores[L]); };
  const auto budget = [&](std::int64_t L) { return forward ? L : L + share(L); };
  std::int64_t most = 0;
  for (std::int64_t L = first; L <= last; ++L) most = std::max(most, budget(L));

  LagTask task;
  task.first_unit = first;
  task.last_unit = last;
  task.longest_insertion = longest_drift(last, most, rules);
  task.first_lag = std::max<std::int64_t>(1, first - longest_drift(first, most, rules));
  task.lanes = static_cast<std::size_t>((last + task.longest_insertion - task.first_lag) / 64 + 1) * 64;
  task.line_distance = std::max<std::int64_t>(1, first / 4);
  task.mismatch = clamped(std::min(-rules.mismatch_score, -2 * rules.indel_score));
  task.indel = clamped(-rules.indel_score);
  task.start = clamped(most + 16);
  task.crossing_limit.assign(task.lanes, 0);
  task.gain_limit.assign(task.lanes, 0);
  for (std::int64_t L = first; L <= last; ++L) {
    const auto lane = static_cast<std::size_t>(L - task.first_lag);
    task.crossing_limit[lane] = clamped(task.start - budget(L));
    // Gains are cut off at the largest value of a lane, which must not look like little.
    const std::int64_t gain = forward ? share(L) : minimum_scores[L] - 1 - share(L);
    task.gain_limit[lane] = clamped(std::min<std::int64_t>(gain, 250));
  }
  return task;
}

/// The decided rows of one direction. Backward walks are forward walks on the reversed sequence: row x then belongs to
/// the seeds that end at base n - x, exclusive.
class RangeScan {
 public:
  RangeScan(const char* begin, const char* end, const LagTask& task, bool forward,
            std::vector<std::vector<std::uint64_t>>& candidates)
      : begin_(begin),
        size_(end - begin),
        task_(task),
        forward_(forward),
        rows_(std::min(std::max(block_rows, 4 * task.last_unit), decidable())),
        bases_(static_cast<std::size_t>(rows_ + task.last_unit + task.first_lag) + task.lanes + 64),
        candidates_(candidates) {}

  std::size_t blocks() const { return static_cast<std::size_t>((decidable() + rows_ - 1) / rows_); }

  /// Decides the rows of one block. Their candidates may share words with those of the blocks beside it.
  void run(std::size_t number) {
    const std::int64_t first_row = static_cast<std::int64_t>(number) * rows_;
    copy_bases(first_row);
    const std::int64_t rest = size_ - first_row;
    const LagRows rows{bases_.data(), std::min(rows_ + task_.last_unit, rest), 0, std::min(rows_, rest)};
    certify_rows(task_, rows, [this, first_row](std::int64_t row, const std::uint8_t* certified) {
      mark_row(first_row + row, certified);
    });
  }

 private:
  /// Outside the sequence stands a byte that is no base.
  void copy_bases(std::int64_t first_row) {
    std::memset(bases_.data(), 0, bases_.size());
    const std::int64_t count = std::min(static_cast<std::int64_t>(bases_.size()), size_ - first_row);
    if (forward_) {
      std::copy_n(begin_ + first_row, count, bases_.data());
    } else {
      std::reverse_copy(begin_ + size_ - first_row - count, begin_ + size_ - first_row, bases_.data());
    }
  }

  std::int64_t decidable() const { return size_ - task_.first_unit; }

  void mark_row(std::int64_t x, const std::uint8_t* bits) {
    const std::int64_t first_lane = task_.first_unit - task_.first_lag;
    const std::int64_t last_lane = task_.last_unit - task_.first_lag;
    for (std::int64_t byte = first_lane / 8; byte <= last_lane / 8; ++byte) {
      for (unsigned rest = 0xFFU & ~static_cast<unsigned>(bits[byte]); rest != 0; rest &= rest - 1) {
        const std::int64_t lane = 8 * byte + __builtin_ctz(rest);
        if (lane >= first_lane && lane <= last_lane) mark(x, task_.first_lag + lane);
      }
    }
  }

  void mark(std::int64_t x, std::int64_t unit_length) {
    const std::int64_t p = forward_ ? x : size_ - unit_length - x;
    if (p < 0 || p >= size_ - unit_length) return;  // a seed must end before the last base
    candidates_[static_cast<std::size_t>(unit_length - task_.first_unit)][static_cast<std::size_t>(p / 64)] |=
        std::uint64_t{1} << (p % 64);
  }

  const char* begin_;
  std::int64_t size_;
  const LagTask& task_;
  bool forward_;
  std::int64_t rows_;
  std::vector<char> bases_;
  std::vector<std::vector<std::uint64_t>>& candidates_;
};

}  // namespace

bool LagFilter::is_useful(std::int64_t unit_length, std::int64_t minimum_score, const ExtensionRules& rules) {
  return rules.maximum_depth > 0 && minimum_score >= 1 && unit_length >= shortest_unit && unit_length <= longest_unit;
}

std::int64_t LagFilter::end_of_range(std::int64_t first, std::int64_t last) const {
  const std::int64_t bases = std::max<std::int64_t>(1, end_ - begin_);
  const std::int64_t affordable = 4 + 8 * free_bytes / bases;
  // Lines lie as far apart as the shortest unit of the range bears, so a wide range would need many of them.
  return std::min({last, first + affordable - 1, first + first / 1, longest_unit});
}

void LagFilter::mark_candidates(std::int64_t first, std::int64_t last, const ThresholdTable& minimum_scores,
                                std::vector<std::vector<std::uint64_t>>& candidates, const Workers& workers,
                                const std::function<void(double)>& report_share) const {
  const auto words = static_cast<std::size_t>((end_ - begin_ + 63) / 64);
  candidates.assign(static_cast<std::size_t>(last - first + 1), std::vector<std::uint64_t>(words, 0));
  for (const bool forward : {true, false}) {
    const LagTask task = make_task(first, last, minimum_scores, rules_, forward);
    std::vector<std::unique_ptr<RangeScan>> scans(workers.count());
    const auto scan_of = [&](unsigned worker) -> RangeScan& {
      if (!scans[worker]) scans[worker] = std::make_unique<RangeScan>(begin_, end_, task, forward, candidates);
      return *scans[worker];
    };
    std::atomic<std::size_t> done{0};
    const std::size_t blocks = scan_of(0).blocks();
    workers.run_apart(blocks, [&](std::size_t block, unsigned worker) {
      scan_of(worker).run(block);
      ++done;
      if (worker == 0) report_share((forward ? 0 : 0.5) + static_cast<double>(done) / static_cast<double>(2 * blocks));
    });
  }
}
