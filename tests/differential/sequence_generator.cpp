#include "sequence_generator.h"

#include <algorithm>

// Each draw stands in a statement of its own: the order in which a compiler evaluates two arguments of one call is its
// own choice, and a seed must mean the same sequences everywhere.
namespace differential {
namespace {

// Letters are drawn uniformly from such a string; repeated letters make the composition.
std::string draw_composition(SmallRandom& random) {
  return random.pick<const char*>({"ACGT", "ACGT", "AAAATTTTCG", "ATCCCGGG", "AAT", "AC", "ACG", "AAAAAAG", "GGGT"});
}

std::string random_bases(SmallRandom& random, std::size_t length, const std::string& composition) {
  std::string bases;
  while (bases.size() < length) bases += random.pick_char(composition);
  return bases;
}

// Chances in 1000 for every base.
struct MutationRates {
  unsigned substitution = 0;
  unsigned insertion = 0;
  unsigned deletion = 0;
};

MutationRates draw_rates(SmallRandom& random) {
  switch (random.below(6)) {
    case 0:
      return {};
    case 1:
      return {20, 0, 0};
    case 2:
      return {80, 10, 10};
    case 3:
      return {10, 60, 60};
    case 4:
      return {0, 120, 0};
    default:
      return {30, 0, 120};
  }
}

std::string mutate(SmallRandom& random, const std::string& bases, const MutationRates& rates) {
  std::string result;
  for (const char base : bases) {
    if (random.below(1000) < rates.insertion) result += random.pick_char("ACGT");
    if (random.below(1000) < rates.deletion) continue;
    result += random.below(1000) < rates.substitution ? random.pick_char("ACGT") : base;
  }
  return result;
}

// `length` bases of the endless repetition of the unit.
std::string repeated(const std::string& unit, std::size_t length) {
  std::string result;
  while (result.size() < length) result += unit;
  result.resize(length);
  return result;
}

std::size_t draw_unit_length(SmallRandom& random, std::size_t max_unit) {
  if (random.percent(50)) return random.between(1, std::min<std::size_t>(max_unit, 6));
  // One more than the longest unit searched: its repeat must not be found under its own length.
  return random.between(1, max_unit + 1);
}

std::string draw_unit(SmallRandom& random, std::size_t max_unit) {
  const std::size_t length = draw_unit_length(random, max_unit);
  return random_bases(random, length, random.percent(70) ? "ACGT" : "AC");
}

std::string planted_repeat(SmallRandom& random, const SequenceAims& aims) {
  const std::string unit = draw_unit(random, aims.max_unit);
  const std::size_t copies = random.percent(60) ? random.between(2, 5) : random.between(3, 20);
  const std::size_t length = unit.size() * copies + random.below(unit.size());
  return mutate(random, repeated(unit, std::min(length, aims.total_bases)), draw_rates(random));
}

std::string n_run(SmallRandom& random, std::size_t n_limit) {
  const std::size_t around = std::min<std::size_t>(n_limit, 12);
  const std::size_t low = around == 0 ? 1 : around - 1;
  const std::size_t length = random.percent(70) ? random.between(low, around + 1) : random.between(1, 6);
  return std::string(length, 'N');
}

void scatter_n_runs(SmallRandom& random, std::string& bases, std::size_t n_limit) {
  const std::size_t runs = random.between(1, 3);
  for (std::size_t i = 0; i < runs; ++i) {
    const std::size_t at = random.below(bases.size() + 1);
    const std::string run = n_run(random, n_limit);
    // An overwritten run keeps the phase of the repeat around it, an inserted one breaks it.
    const std::size_t replaced = random.percent(60) ? std::min(run.size(), bases.size() - at) : 0;
    bases.replace(at, replaced, run);
  }
}

std::string repeat_with_n(SmallRandom& random, const SequenceAims& aims) {
  std::string bases = planted_repeat(random, aims);
  scatter_n_runs(random, bases, aims.n_limit);
  return bases;
}

// Neighbours of different units that touch each other, as real compound microsatellites do.
std::string compound_repeat(SmallRandom& random, const SequenceAims& aims) {
  std::string bases;
  const std::size_t parts = random.between(2, 4);
  for (std::size_t i = 0; i < parts; ++i) bases += planted_repeat(random, aims);
  return bases;
}

std::string one_piece(SmallRandom& random, const SequenceAims& aims, const std::string& composition) {
  switch (random.below(9)) {
    case 0:
    case 1:
    case 2:
      return random_bases(random, random.between(1, 40), composition);
    case 3:
    case 4:
    case 5:
      return planted_repeat(random, aims);
    case 6:
      return repeat_with_n(random, aims);
    case 7:
      return compound_repeat(random, aims);
    default:
      return random.percent(40) ? n_run(random, aims.n_limit) : std::string();
  }
}

std::string mixed_sequence(SmallRandom& random, const SequenceAims& aims) {
  // The reason for the limit is that of low_complexity below: some compositions have two letters only.
  const std::string composition =
      aims.total_bases > 1500 ? random.pick<const char*>({"ACGT", "AAAATTTTCG", "ATCCCGGG"}) : draw_composition(random);
  // Short backgrounds keep the repeats of a small sequence close together, long ones give the seeds that fail.
  const std::size_t background = random.percent(30) ? aims.total_bases / 3 : 0;
  std::string bases = random_bases(random, background, composition);
  while (bases.size() < aims.total_bases) bases += one_piece(random, aims, composition);
  bases.resize(aims.total_bases);
  if (random.percent(15)) bases = n_run(random, aims.n_limit) + bases;
  if (random.percent(15)) bases += n_run(random, aims.n_limit);
  return bases;
}

std::vector<std::string> several_mixed(SmallRandom& random, const SequenceAims& aims) {
  const std::size_t count = random.percent(60) ? 1 : random.between(2, 5);
  SequenceAims share = aims;
  share.total_bases = std::max<std::size_t>(aims.total_bases / count, 1);
  std::vector<std::string> sequences;
  for (std::size_t i = 0; i < count; ++i) {
    sequences.push_back(random.percent(5) ? std::string() : mixed_sequence(random, share));
  }
  return sequences;
}

// Repeats whose lengths lie around every multiple of the unit length, bare or between short flanks.
std::vector<std::string> boundary_lengths(SmallRandom& random, const SequenceAims& aims) {
  std::vector<std::string> sequences;
  std::size_t used = 0;
  while (used < aims.total_bases && sequences.size() < 60) {
    const std::string unit = draw_unit(random, aims.max_unit);
    const std::size_t copies = random.between(1, 4);
    std::string bases = repeated(unit, unit.size() * copies + random.between(0, 2) - 1);
    if (random.percent(30)) bases = random_bases(random, random.between(0, 3), "ACGT") + bases;
    if (random.percent(30)) bases += random_bases(random, random.between(0, 3), "ACGTN");
    used += bases.size() + 1;
    sequences.push_back(bases);
  }
  return sequences;
}

std::vector<std::string> many_small(SmallRandom& random, const SequenceAims& aims) {
  const std::string composition = random.pick<const char*>({"ACGT", "AC", "ACN", "A", "AAAACGTN", "ACG"});
  std::vector<std::string> sequences;
  std::size_t used = 0;
  while (used < aims.total_bases && sequences.size() < 60) {
    sequences.push_back(random_bases(random, random.below(51), composition));
    used += sequences.back().size() + 1;
  }
  return sequences;
}

// A stretch of the list of all strings over a small alphabet in the order of their length, so that a row of seeds
// covers the very short sequences without gaps left to chance.
std::vector<std::string> enumerated(SmallRandom& random, const SequenceAims& aims) {
  const std::string alphabet = random.pick<const char*>({"AC", "AN", "ACN", "ACG"});
  std::size_t index = random.below(5000);
  std::vector<std::string> sequences;
  std::size_t used = 0;
  while (used < aims.total_bases && sequences.size() < 60) {
    std::string bases;
    for (std::size_t rest = index; rest > 0; rest = (rest - 1) / alphabet.size()) {
      bases += alphabet[(rest - 1) % alphabet.size()];
    }
    used += bases.size() + 1;
    sequences.push_back(bases);
    ++index;
  }
  return sequences;
}

std::vector<std::string> low_complexity(SmallRandom& random, const SequenceAims& aims) {
  const std::string letters = random.pick<const char*>({"A", "AC", "AAAAT", "GGGGGGGC", "AT", "CN", "AAAAAAAAN"});
  // Where nearly everything aligns with everything, the walk of one seed covers the whole sequence and the cost is
  // quadratic.
  return {random_bases(random, random.between(1, std::min<std::size_t>(aims.total_bases, 1000)), letters)};
}

std::vector<std::string> repeats_at_both_ends(SmallRandom& random, const SequenceAims& aims) {
  SequenceAims half = aims;
  half.total_bases = std::max<std::size_t>(aims.total_bases / 2, 1);
  std::string bases = planted_repeat(random, half);
  bases += random_bases(random, random.below(30), "ACGT");
  bases += planted_repeat(random, half);
  return {bases};
}

}  // namespace

std::vector<std::string> make_sequences(SmallRandom& random, const SequenceAims& aims) {
  const std::uint64_t roll = random.below(100);
  if (roll < 60) return several_mixed(random, aims);
  if (roll < 72) return boundary_lengths(random, aims);
  if (roll < 80) return many_small(random, aims);
  if (roll < 86) return enumerated(random, aims);
  if (roll < 94) return low_complexity(random, aims);
  return repeats_at_both_ends(random, aims);
}

}  // namespace differential
