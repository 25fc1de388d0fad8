#include "search/seed_filter.h"

#include <algorithm>
#include <array>
#include <utility>

namespace {

/// Words of one block: the working arrays of a block stay in the nearest cache.
constexpr std::size_t block_words = 64;
constexpr std::size_t padded_words = block_words + 2;  // one word of context on either side

/// Longer runs than this are not told apart: a run of `longest_run` or more is always a candidate.
constexpr std::int64_t longest_run = 32;

/// More matches than this are not demanded of a step: hardly any seed is left.
constexpr std::int64_t longest_demand = 16;

using Bits = std::array<std::uint64_t, padded_words>;

/// The bits `distance` (0 to 63) positions ahead of, or behind, each position of word i.
std::uint64_t ahead(const Bits& bits, std::size_t i, unsigned distance) {
  return (bits[i] >> distance) | (bits[i + 1] << 1 << (63 - distance));
}
std::uint64_t behind(const Bits& bits, std::size_t i, unsigned distance) {
  return (bits[i] << distance) | (bits[i - 1] >> 1 >> (63 - distance));
}

template <bool forward>
void and_shifted(Bits& into, const Bits& bits, std::int64_t distance) {
  const auto d = static_cast<unsigned>(distance);
  for (std::size_t i = 1; i <= block_words; ++i) into[i] &= forward ? ahead(bits, i, d) : behind(bits, i, d);
}

void or_and(Bits& into, const Bits& a, const Bits& b) {
  for (std::size_t i = 1; i <= block_words; ++i) into[i] |= a[i] & b[i];
}

Bits all_ones() {
  Bits bits;
  bits.fill(~std::uint64_t{0});
  return bits;
}

/// One kind of first step: what it costs, along which lag the walk goes on, how far from the stop the next comparison
/// lies and for how many comparisons that lag stands for the unit.
struct StepKind {
  std::int64_t penalty;
  std::int64_t lag;
  std::int64_t offset;
  std::int64_t reliable;
};

std::array<StepKind, 3> step_kinds(std::int64_t unit_length, const ExtensionRules& rules, bool forward) {
  const std::int64_t L = unit_length;
  const auto reliable = [](std::int64_t comparisons) { return std::min(comparisons, longest_demand); };
  // A forward stop is the position whose base would be taken next, a backward stop the unit's side of that pair.
  return {{{-rules.mismatch_score, L, 1, reliable(L - 1)},
           {-rules.indel_score, L + 1, forward ? 1 : 0, reliable(L)},
           {-rules.indel_score, L - 1, forward ? 0 : 1, reliable(L - 1)}}};
}

/// Everything that is the same for all blocks of one unit length.
struct Task {
  const BasePlanes& planes;
  std::int64_t unit_length;
  std::int64_t run_cap;  ///< runs of this length are candidates whatever follows
  ExtensionRules rules;

  std::int64_t cheapest() const { return std::min(-rules.mismatch_score, -rules.indel_score); }
  bool permitted(const StepKind& kind, std::int64_t run) const { return run - kind.penalty > -unit_length; }

  /// How many bases a step after a run of `run` must match so that the walk gains by it or may take a second step.
  std::int64_t needed(const StepKind& kind, std::int64_t run) const {
    return std::min(kind.penalty + 1, 1 - unit_length + kind.penalty + cheapest() - run);
  }
};

/// Adds to `survivors` the stops of one direction behind which a step of one kind may lead on. `along` holds the
/// matches at the kind's lag, with N counted as a match; `runs`[i] tells whether at least i matches lead up to the
/// stop.
template <bool forward>
void add_survivors(const Task& task, const StepKind& kind, const Bits& along, const std::vector<Bits>& runs,
                   Bits& survivors) {
  std::vector<std::pair<std::int64_t, std::int64_t>> terms;  // needed matches, run length; ascending in the first
  for (std::int64_t run = task.run_cap - 1; run >= 0; --run) {
    if (!task.permitted(kind, run)) break;
    const std::int64_t needed = std::clamp<std::int64_t>(task.needed(kind, run), 0, kind.reliable);
    if (terms.empty() || terms.back().first != needed) terms.emplace_back(needed, run);
    terms.back().second = run;  // the shortest run for which this many matches are enough covers the longer ones
  }
  Bits chain = all_ones();
  std::int64_t length = 0;
  for (const auto& [needed, run] : terms) {
    for (; length < needed; ++length) and_shifted<forward>(chain, along, kind.offset + length);
    or_and(survivors, chain, runs[static_cast<std::size_t>(run)]);
  }
}

/// The stops of one direction, in one block, whose runs are candidates.
template <bool forward>
void find_survivors(const Task& task, std::int64_t first_word, const Bits& matches, Bits& survivors) {
  std::vector<Bits> runs(1, all_ones());
  for (std::int64_t run = 1; run < task.run_cap; ++run) {
    runs.push_back(runs.back());
    and_shifted<!forward>(runs.back(), matches, run);
  }
  survivors.fill(0);
  for (const StepKind& kind : step_kinds(task.unit_length, task.rules, forward)) {
    Bits along;
    Bits unknown;
    task.planes.matches(first_word - 1, padded_words, kind.lag, along.data());
    task.planes.unknown(first_word - 1, padded_words, forward ? 0 : kind.lag, unknown.data());
    for (std::size_t i = 0; i < padded_words; ++i) along[i] |= unknown[i];
    add_survivors<forward>(task, kind, along, runs, survivors);
  }
  for (std::size_t i = 1; i <= block_words; ++i) survivors[i] &= ~matches[i];
}

/// Adds the stops at which an N ends a run: what lies behind it is left to the extension. Only an N next to another
/// base ends a run of admissible seeds.
void add_stops_at_unknown(const Task& task, std::int64_t first_word, bool forward, Bits& survivors) {
  Bits unknown;
  task.planes.unknown(first_word - 1, padded_words, forward ? 0 : task.unit_length, unknown.data());
  for (std::size_t i = 1; i <= block_words; ++i) {
    survivors[i] |= unknown[i] & ~(forward ? behind(unknown, i, 1) : ahead(unknown, i, 1));
  }
}

/// Marks seeds by the position q behind their unit, one bit for each start q - unit length.
class Marker {
 public:
  Marker(const char* begin, const char* end, const Task& task, std::vector<std::uint64_t>& candidates)
      : begin_(begin), size_(end - begin), lag_(task.unit_length), cap_(task.run_cap), candidates_(candidates) {}

  /// All seeds of the run that ends before `stop`. Of a long run only the last seeds: the others are marked as such.
  void mark_run_before(std::int64_t stop) {
    mark(stop);
    for (std::int64_t q = stop - 1; q >= stop - cap_ && matches(q); --q) mark(q);
  }

  /// All seeds of the run that begins after `stop`, or the first ones of a long run.
  void mark_run_after(std::int64_t stop) {
    mark(stop + 1);
    for (std::int64_t q = stop + 1; q <= stop + cap_ && matches(q); ++q) mark(q + 1);
  }

  /// All seeds that touch the run of `run_cap` matches beginning at `first`.
  void mark_long_run(std::int64_t first) {
    for (std::int64_t q = first; q <= first + cap_; ++q) mark(q);
  }

 private:
  bool matches(std::int64_t q) const {
    return q >= lag_ && q < size_ && begin_[q] == begin_[q - lag_] && begin_[q] != 'N';
  }

  void mark(std::int64_t q) {
    const std::int64_t p = q - lag_;
    if (p < 0 || q >= size_) return;  // a seed must end before the last base
    candidates_[static_cast<std::size_t>(p / 64)] |= std::uint64_t{1} << (p % 64);
  }

  const char* begin_;
  std::int64_t size_;
  std::int64_t lag_;
  std::int64_t cap_;
  std::vector<std::uint64_t>& candidates_;
};

/// Calls `visit` with the position of every set bit of the block.
template <typename Visit>
void for_each_bit(const Bits& bits, std::int64_t first_word, Visit visit) {
  for (std::size_t i = 1; i <= block_words; ++i) {
    const std::int64_t base = (first_word + static_cast<std::int64_t>(i) - 1) * 64;
    for (std::uint64_t rest = bits[i]; rest != 0; rest &= rest - 1) visit(base + __builtin_ctzll(rest));
  }
}

/// The first positions of every stretch of `run_cap` matches.
Bits long_runs(const Task& task, const Bits& matches) {
  Bits runs = all_ones();
  for (std::int64_t i = 0; i < task.run_cap; ++i) and_shifted<true>(runs, matches, i);
  return runs;
}

void mark_block(const Task& task, std::int64_t first_word, Marker& marker) {
  Bits matches;
  task.planes.matches(first_word - 1, padded_words, task.unit_length, matches.data());
  for_each_bit(long_runs(task, matches), first_word, [&](std::int64_t q) { marker.mark_long_run(q); });

  Bits survivors;
  survivors.fill(0);
  if (task.rules.maximum_depth > 0) find_survivors<true>(task, first_word, matches, survivors);
  add_stops_at_unknown(task, first_word, true, survivors);
  for_each_bit(survivors, first_word, [&](std::int64_t q) { marker.mark_run_before(q); });

  survivors.fill(0);
  if (task.rules.maximum_depth > 0) find_survivors<false>(task, first_word, matches, survivors);
  add_stops_at_unknown(task, first_word, false, survivors);
  for_each_bit(survivors, first_word, [&](std::int64_t q) { marker.mark_run_after(q); });
}

}  // namespace

bool SeedFilter::is_useful(std::int64_t unit_length, std::int64_t minimum_score, const ExtensionRules& rules) {
  if (minimum_score < 1) return false;
  if (rules.maximum_depth == 0) return true;
  const std::int64_t mismatch = -rules.mismatch_score;
  const std::int64_t indel = -rules.indel_score;
  // With fewer matches demanded after a first step too many seeds are left; the lag filter rejects more.
  return 1 - unit_length + std::min(mismatch, indel) + std::min(mismatch, indel) >= 4;
}

void SeedFilter::mark_candidates(std::int64_t unit_length, std::int64_t minimum_score, const ExtensionRules& rules,
                                 std::vector<std::uint64_t>& candidates) const {
  candidates.assign(planes_.words(), 0);
  const Task task{planes_, unit_length, std::min(minimum_score, longest_run), rules};
  Marker marker(begin_, end_, task, candidates);
  const auto words = static_cast<std::int64_t>(planes_.words());
  for (std::int64_t word = 0; word < words; word += static_cast<std::int64_t>(block_words)) {
    mark_block(task, word, marker);
  }
}
