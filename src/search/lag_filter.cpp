#include "search/lag_filter.h"

#include <algorithm>
#include <memory>

#include "search/lag_kernel.h"

namespace {

/// With units shorter than this hardly a seed is decided here.
constexpr std::int64_t shortest_unit = 8;
/// Scores of longer units may not fit the 16 bits of a lane.
constexpr std::int64_t longest_unit = 15000;
/// Units up to this length are decided by vectors of bytes, which hold more of them.
constexpr std::int64_t longest_unit_in_bytes = 192;
/// Lines across the shortest unit of a range.
constexpr std::int64_t lines_in_unit = 4;
/// Bytes of the widest vectors.
constexpr std::int64_t lanes_of_vector = 64;
/// Unit lengths decided together, at most. Their number times that of the rows of a block is memory.
constexpr std::int64_t most_units = 2048;
/// Rows decided at a time, at least; those around them have to be worked as well.
constexpr std::int64_t fewest_rows = 8192;
/// Seeds decided at a time, if the rows are more than that.
constexpr std::int64_t seeds_of_block = fewest_rows * most_units / 4;

std::uint16_t clamped(std::int64_t value) {
  return static_cast<std::uint16_t>(std::clamp<std::int64_t>(value, 0, UINT16_MAX));
}

/// What the forward walk of a seed may gain at most for the seed to be decided. The more it may be, the longer are the
/// backward walks that have to be considered.
std::int64_t most_forward_gain(std::int64_t unit_length) {
  return 8 + unit_length / 4;
}

/// The lags that the permitted walks of a unit length may come to within their unit, an inclusive range.
struct Lags {
  std::int64_t lowest;
  std::int64_t highest;
};

Lags lags_of(std::int64_t unit_length, std::int64_t forward_gain, const ExtensionRules& rules) {
  // A permitted walk begins at most so much above the bound, and matches at most what it does not leave out of its
  // unit.
  const std::int64_t score = unit_length + forward_gain + unit_length - 1;
  return {std::max<std::int64_t>(1, unit_length - score / (1 - rules.indel_score)),
          unit_length + score / -rules.indel_score};
}

LagTask make_task(std::int64_t first, std::int64_t last, const ThresholdTable& minimum_scores,
                  const ExtensionRules& rules) {
  LagTask task;
  task.first_unit = first;
  task.last_unit = last;
  task.mismatch = clamped(-rules.mismatch_score);
  task.indel = clamped(-rules.indel_score);
  task.free_Ns = rules.Ns_as_missense ? 0 : rules.Ns_allowed;
  Lags lags{first, last};
  for (std::int64_t L = first; L <= last; ++L) {
    const std::int64_t forward_gain = std::min(most_forward_gain(L), minimum_scores[L] - 1);
    task.most_forward_gain.push_back(clamped(forward_gain));
    task.most_gain.push_back(clamped(minimum_scores[L] - 1));
    const Lags of_unit = lags_of(L, forward_gain, rules);
    lags = {std::min(lags.lowest, of_unit.lowest), std::max(lags.highest, of_unit.highest)};
  }
  task.line_distance = std::max<std::int64_t>(1, first / lines_in_unit);
  task.first_lag = lags.lowest;
  task.lanes = static_cast<std::size_t>(lags.highest - lags.lowest) / 2 + 1;
  return task;
}

/// The decided seeds of a stretch, a bit for each.
class BlockOfSeeds {
 public:
  BlockOfSeeds(const LagTask& task, const LagBlock& block)
      : task_(task),
        block_(block),
        first_word_(std::max<std::int64_t>(0, block.first_row - task.last_unit) / 2 / 64),
        words_((block.end_row - task.first_unit) / 2 / 64 + 1 - first_word_),
        bits_(static_cast<std::size_t>((task.last_unit - task.first_unit + 1) * words_), 0) {
    certify_block(task, block, [this](std::int64_t row, const std::uint8_t* open, std::size_t bytes) {
      mark_row(row, open, bytes);
    });
  }

  void append_to(CandidateWords& candidates, std::int64_t unit_length) const {
    const std::uint64_t* const words = bits_.data() + (unit_length - task_.first_unit) * words_;
    for (std::int64_t i = 0; i < words_; ++i) {
      if (words[i] != 0) candidates.add(static_cast<std::size_t>(first_word_ + i), words[i]);
    }
  }

 private:
  void mark_row(std::int64_t row, const std::uint8_t* open, std::size_t bytes) {
    const std::int64_t lowest_lag = task_.first_lag + ((row - task_.first_lag) & 1);
    for (std::size_t byte = 0; byte < bytes; ++byte) {
      for (unsigned rest = open[byte]; rest != 0; rest &= rest - 1) {
        const auto lane = static_cast<std::int64_t>(8 * byte) + __builtin_ctz(rest);
        mark(row, lowest_lag + 2 * lane);
      }
    }
  }

  void mark(std::int64_t row, std::int64_t unit_length) {
    const std::int64_t p = (row - unit_length) / 2;
    if (row < unit_length || p >= block_.end - block_.begin - unit_length) return;  // it must end before the last base
    bits_[static_cast<std::size_t>((unit_length - task_.first_unit) * words_ + p / 64 - first_word_)] |=
        std::uint64_t{1} << (p % 64);
  }

  const LagTask& task_;
  const LagBlock block_;
  const std::int64_t first_word_;
  const std::int64_t words_;
  std::vector<std::uint64_t> bits_;
};

}  // namespace

bool LagFilter::is_useful(std::int64_t unit_length, std::int64_t minimum_score, const ExtensionRules& rules) {
  return rules.maximum_depth > 0 && minimum_score >= 1 && unit_length >= shortest_unit && unit_length <= longest_unit;
}

std::int64_t LagFilter::end_of_range(std::int64_t first, std::int64_t last) const {
  last = std::min({last, first + most_units - 1, longest_unit});
  if (first <= longest_unit_in_bytes) last = std::min(last, longest_unit_in_bytes);
  // Lines lie as far apart as the shortest unit of the range bears, so a wide range needs many of them. It pays where
  // its lags fit one vector, half of them each.
  const auto lags = [this](std::int64_t L) { return lags_of(L, most_forward_gain(L), rules_); };
  std::int64_t end = std::min(last, 2 * first);
  while (end < std::min(last, 4 * first) && lags(end + 1).highest - lags(first).lowest < 2 * lanes_of_vector) ++end;
  return end;
}

std::int64_t LagFilter::mark_candidates(std::int64_t first, std::int64_t last, const ThresholdTable& minimum_scores,
                                        std::vector<CandidateWords>& candidates, const Workers& workers,
                                        const std::function<void(double)>& report_share) const {
  const LagTask task = make_task(first, last, minimum_scores, rules_);
  candidates.clear();
  candidates.resize(static_cast<std::size_t>(last - first + 1));

  const std::int64_t end_row = 2 * (end_ - begin_) - first;  // of the last seed, exclusive
  const std::int64_t block_rows =
      std::clamp(2 * seeds_of_block / (last - first + 1), fewest_rows, std::max(fewest_rows, 8 * last));
  const auto blocks = static_cast<std::size_t>((end_row - first + block_rows - 1) / block_rows);
  const std::size_t at_once = std::size_t{4} * workers.count();
  for (std::size_t done = 0; done < blocks; done += at_once) {
    std::vector<std::unique_ptr<BlockOfSeeds>> decided(std::min(at_once, blocks - done));
    workers.run(decided.size(), [&](std::size_t number, unsigned /*worker*/) {
      const std::int64_t row = first + static_cast<std::int64_t>(done + number) * block_rows;
      decided[number] =
          std::make_unique<BlockOfSeeds>(task, LagBlock{begin_, end_, row, std::min(row + block_rows, end_row)});
    });
    std::size_t bytes = 0;
    for (std::int64_t L = first; L < first + static_cast<std::int64_t>(candidates.size()); ++L) {
      CandidateWords& words = candidates[static_cast<std::size_t>(L - first)];
      for (const auto& block : decided) block->append_to(words, L);
      bytes += words.bytes();
    }
    // A sequence full of candidates: the longer units have to wait.
    if (bytes > candidate_bytes_) candidates.resize((candidates.size() + 1) / 2);
    report_share(static_cast<double>(done + decided.size()) / static_cast<double>(blocks));
  }
  for (CandidateWords& words : candidates) words.shrink_to_fit();
  return first + static_cast<std::int64_t>(candidates.size()) - 1;
}
