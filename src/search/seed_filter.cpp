#include "search/seed_filter.h"

#include <algorithm>
#include <array>

#include "search/wide_vectors.h"

namespace {

/// Words of one block: the working arrays of a block stay in the nearest cache.
constexpr std::size_t block_words = 64;
/// Words of the blocks of short sequences, and what is short.
constexpr std::size_t short_block_words = 4;
constexpr std::int64_t short_words = 20;
/// Words of one task of several threads, whole blocks.
constexpr std::int64_t words_of_a_task = 64 * static_cast<std::int64_t>(block_words);

/// Longer runs than this are not told apart: a run of `longest_run` or more is always a candidate.
constexpr std::int64_t longest_run = 32;

/// More matches than this are not demanded of a step: hardly any seed is left.
constexpr std::int64_t longest_demand = 16;

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

/// So many matches behind a step are enough if the run before the stop has at least so many.
struct Demand {
  std::int64_t matches;
  std::int64_t run;
};

/// A kind of step and what it demands, by ascending matches and descending runs; nothing where it is never permitted.
struct StepDemands {
  StepKind kind;
  std::vector<Demand> demands;
};

using Steps = std::array<StepDemands, 3>;

/// Everything that is the same for all blocks of one unit length.
struct Task {
  const BasePlanes& planes;
  std::int64_t unit_length;
  std::int64_t run_cap;  ///< runs of this length are candidates whatever follows
  ExtensionRules rules;
  Steps forward_steps;
  Steps backward_steps;
};

std::vector<Demand> demands_of(const StepKind& kind, const Task& task) {
  const std::int64_t cheapest = std::min(-task.rules.mismatch_score, -task.rules.indel_score);
  std::vector<Demand> demands;
  for (std::int64_t run = task.run_cap - 1; run >= 0; --run) {
    if (run - kind.penalty <= -task.unit_length) break;  // not permitted, nor after shorter runs
    // The walk must gain by the step or be able to take a second one.
    const std::int64_t matches = std::min(kind.penalty + 1, 1 - task.unit_length + kind.penalty + cheapest - run);
    const std::int64_t demanded = std::clamp<std::int64_t>(matches, 0, kind.reliable);
    if (demands.empty() || demands.back().matches != demanded) demands.push_back({demanded, run});
    demands.back().run = run;  // the shortest run for which this many matches are enough covers the longer ones
  }
  return demands;
}

Steps steps_of(const Task& task, bool forward) {
  Steps steps;
  const auto kinds = step_kinds(task.unit_length, task.rules, forward);
  for (std::size_t i = 0; i < kinds.size(); ++i) steps[i] = {kinds[i], demands_of(kinds[i], task)};
  return steps;
}

Task make_task(const BasePlanes& planes, std::int64_t unit_length, std::int64_t minimum_score,
               const ExtensionRules& rules) {
  Task task{planes, unit_length, std::min(minimum_score, longest_run), rules, {}, {}};
  if (rules.maximum_depth == 0) return task;
  task.forward_steps = steps_of(task, true);
  task.backward_steps = steps_of(task, false);
  return task;
}

/// The work on one block of `words` words after the other, on working arrays of its own. Two words of context stand on
/// either side: a run that ends in the block may begin in the word before it, and a shift looks one word further.
template <std::size_t words>
class Block {
 public:
  /// `size` is the length of the sequence.
  Block(const Task& task, std::int64_t size, std::vector<std::uint64_t>& candidates)
      : task_(task), size_(size), candidates_(candidates) {}

  /// Marks what the block that begins at this word of the planes leads to, and with it some bits in the words around
  /// those.
  void mark(std::int64_t first_word) {
    first_word_ = first_word;
    meets_unknown_ = meets_unknown();
    for (std::size_t kind = 0; kind < matches_.size(); ++kind) {
      if (kind > 0 && task_.forward_steps[kind].demands.empty()) continue;
      const std::int64_t lag = kind == 0 ? task_.unit_length : task_.forward_steps[kind].kind.lag;
      task_.planes.matches(first_padded_word(), padded, lag, matches_[kind].data());
    }
    seeds_.fill(0);
    add_long_runs();
    add_runs_of_survivors<true>();
    add_runs_of_survivors<false>();
    const auto is_set = [](std::uint64_t word) { return word != 0; };
    if (std::none_of(seeds_.begin(), seeds_.end(), is_set)) return;
    fill_runs();
    mark_starts();
  }

 private:
  static constexpr std::size_t begin = 2;
  static constexpr std::size_t end = begin + words;
  static constexpr std::size_t padded = end + 2;
  using Bits = std::array<std::uint64_t, padded>;

  std::int64_t first_padded_word() const { return first_word_ - static_cast<std::int64_t>(begin); }

  /// The bits `distance` (0 to 63) positions ahead of, or behind, each position of word i.
  static std::uint64_t ahead(const Bits& bits, std::size_t i, unsigned distance) {
    return (bits[i] >> distance) | (bits[i + 1] << 1 << (63 - distance));
  }
  static std::uint64_t behind(const Bits& bits, std::size_t i, unsigned distance) {
    return (bits[i] << distance) | (bits[i - 1] >> 1 >> (63 - distance));
  }

  /// Sets the words of the block to those of `from`, with each bit kept only if the one `distance` positions ahead, or
  /// behind, is set in `bits`. `into` and `from` may be one.
  template <bool forward>
  static void and_shifted(Bits& into, const Bits& from, const Bits& bits, std::int64_t distance) {
    const auto d = static_cast<unsigned>(distance);
    for (std::size_t i = begin; i < end; ++i) {
      into[i] = from[i] & (forward ? ahead(bits, i, d) : behind(bits, i, d));
    }
  }

  static void or_and(Bits& into, const Bits& a, const Bits& b) {
    for (std::size_t i = begin; i < end; ++i) into[i] |= a[i] & b[i];
  }

  static constexpr Bits make_all_ones() {
    Bits bits{};
    for (std::uint64_t& word : bits) word = ~std::uint64_t{0};
    return bits;
  }

  static constexpr Bits all_ones = make_all_ones();

  /// Adds the stops of one direction behind which a step of one kind may lead on. `along` holds the matches at the
  /// kind's lag, with N counted as a match.
  template <bool forward>
  void add_survivors(const StepDemands& step, const Bits& along) {
    Bits chain;
    const Bits* found = &all_ones;
    std::int64_t length = 0;
    for (const Demand& demand : step.demands) {
      for (; length < demand.matches; ++length) {
        and_shifted<forward>(chain, *found, along, step.kind.offset + length);
        found = &chain;
      }
      or_and(survivors_, *found, runs_[static_cast<std::size_t>(demand.run)]);
    }
  }

  /// Adds the stops of one direction whose runs are candidates because of what follows them.
  template <bool forward>
  void find_survivors() {
    runs_[0] = all_ones;
    for (std::int64_t run = 1; run < task_.run_cap; ++run) {
      const auto i = static_cast<std::size_t>(run);
      and_shifted<!forward>(runs_[i], runs_[i - 1], matches_[0], run);
    }
    const Steps& steps = forward ? task_.forward_steps : task_.backward_steps;
    for (std::size_t kind = 0; kind < steps.size(); ++kind) {
      if (steps[kind].demands.empty()) continue;
      Bits along;
      task_.planes.unknown(first_padded_word(), padded, forward ? 0 : steps[kind].kind.lag, along.data());
      for (std::size_t i = 0; i < padded; ++i) along[i] |= matches_[kind][i];
      add_survivors<forward>(steps[kind], along);
    }
    for (std::size_t i = begin; i < end; ++i) survivors_[i] &= ~matches_[0][i];
  }

  /// Whether an N, or what lies outside the sequence, may end a run in the block.
  bool meets_unknown() {
    const std::int64_t first = 64 * (first_word_ - 1) - task_.unit_length;
    if (first < 0) return true;
    if (next_unknown_ < first) next_unknown_ = task_.planes.first_unknown(first);
    return next_unknown_ < 64 * (first_word_ + static_cast<std::int64_t>(words) + 1);
  }

  /// Adds the stops at which an N ends a run: what lies behind it is left to the extension. Only an N next to another
  /// base ends a run of admissible seeds.
  template <bool forward>
  void add_stops_at_unknown() {
    Bits unknown;
    task_.planes.unknown(first_padded_word(), padded, forward ? 0 : task_.unit_length, unknown.data());
    for (std::size_t i = begin; i < end; ++i) {
      survivors_[i] |= unknown[i] & ~(forward ? behind(unknown, i, 1) : ahead(unknown, i, 1));
    }
  }

  /// Adds the first positions of every stretch of `run_cap` matches.
  void add_long_runs() {
    Bits runs = matches_[0];  // as many matches as `length`, from the position on
    for (std::int64_t length = 1; length < task_.run_cap;) {
      const std::int64_t more = std::min(length, task_.run_cap - length);
      // Of the word behind the block its first half is needed.
      for (std::size_t i = begin; i + 1 < padded; ++i) runs[i] &= ahead(runs, i, static_cast<unsigned>(more));
      length += more;
    }
    for (std::size_t i = begin; i < end; ++i) seeds_[i] |= runs[i];
  }

  /// Fills up the run of every seed, from its first match to the stop behind it. Distances double and add up to
  /// `run_cap` or more; of longer runs all seeds are there already.
  void fill_runs() {
    Bits run = matches_[0];  // as many matches as the distance, from the position on
    Bits last = {};          // seeds behind which that many matches follow
    for (std::int64_t distance = 1; distance <= task_.run_cap; distance *= 2) {
      const auto d = static_cast<unsigned>(distance);
      for (std::size_t i = 1; i + 1 < padded; ++i) last[i] = seeds_[i] & run[i];
      for (std::size_t i = 1; i + 1 < padded; ++i) seeds_[i] |= (ahead(seeds_, i, d) & run[i]) | behind(last, i, d);
      for (std::size_t i = 0; i + 1 < padded; ++i) run[i] &= ahead(run, i, d);
    }
  }

  /// Marks the starts of the seeds. A seed must end before the last base of the sequence.
  void mark_starts() {
    const auto mark = [this](std::int64_t word, std::uint64_t bits) {
      if (word >= 0 && word < static_cast<std::int64_t>(candidates_.size()))
        candidates_[static_cast<std::size_t>(word)] |= bits;
    };
    for (std::size_t i = 1; i + 1 < padded; ++i) {
      const std::int64_t first = (first_padded_word() + static_cast<std::int64_t>(i)) * 64;
      if (seeds_[i] == 0 || first >= size_) continue;
      const std::uint64_t inside = ~std::uint64_t{0} >> (64 - std::min<std::int64_t>(64, size_ - first));
      const std::uint64_t seeds = seeds_[i] & inside;
      const std::int64_t back = (task_.unit_length + 63) / 64;  // words
      const auto up = static_cast<unsigned>(64 * back - task_.unit_length);
      mark(first / 64 - back, seeds << up);
      mark(first / 64 - back + 1, seeds >> 1 >> (63 - up));
    }
  }

  /// Adds the seeds whose run ends at a survivor.
  template <bool forward>
  void add_runs_of_survivors() {
    if (task_.rules.maximum_depth == 0 && !meets_unknown_) return;
    survivors_.fill(0);
    if (task_.rules.maximum_depth > 0) find_survivors<forward>();
    if (meets_unknown_) add_stops_at_unknown<forward>();
    // The stop before a run is one position before the seed of its first match.
    const Bits& stops = survivors_;
    for (std::size_t i = 1; i + 1 < padded; ++i) seeds_[i] |= forward ? stops[i] : behind(stops, i, 1);
  }

  const Task& task_;
  const std::int64_t size_;
  std::vector<std::uint64_t>& candidates_;
  std::int64_t first_word_ = 0;
  bool meets_unknown_ = true;
  std::int64_t next_unknown_ = 0;       ///< the first N at or after some base before the block
  std::array<Bits, 3> matches_;         ///< at the lag of each kind of step; the first is the unit length
  std::array<Bits, longest_run> runs_;  ///< [i]: at least i matches lead up to the position
  Bits survivors_;                      ///< stops whose runs are candidates
  Bits seeds_;                          ///< candidates by the position behind their unit
};

template <std::size_t words>
void mark_in_blocks(const Task& task, std::int64_t size, std::int64_t first_word, std::int64_t end_word,
                    std::vector<std::uint64_t>& candidates) {
  Block<words> block(task, size, candidates);
  for (; first_word < end_word; first_word += static_cast<std::int64_t>(words)) block.mark(first_word);
}

/// Marks what the words [first_word, end_word) lead to, and with it some bits in the words around those.
WITH_WIDE_VECTORS
void mark_blocks(const Task& task, std::int64_t size, std::int64_t first_word, std::int64_t end_word,
                 std::vector<std::uint64_t>& candidates) {
  if (end_word - first_word <= short_words) {
    mark_in_blocks<short_block_words>(task, size, first_word, end_word, candidates);
  } else {
    mark_in_blocks<block_words>(task, size, first_word, end_word, candidates);
  }
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
                                 std::vector<std::uint64_t>& candidates, const Workers& workers) const {
  candidates.assign(planes_.words(), 0);
  const Task task = make_task(planes_, unit_length, minimum_score, rules);
  const auto words = static_cast<std::int64_t>(candidates.size());
  const std::int64_t share = workers.count() == 1 ? words : words_of_a_task;
  if (words == 0) return;
  workers.run_apart(static_cast<std::size_t>((words + share - 1) / share), [&](std::size_t number, unsigned) {
    const std::int64_t first = static_cast<std::int64_t>(number) * share;
    mark_blocks(task, bases_, first, std::min(first + share, words), candidates);
  });
}
