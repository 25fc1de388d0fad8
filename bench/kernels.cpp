// The parts of the search that all the time goes into, each by itself: bases a second, and what came out.

#include <benchmark/benchmark.h>

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <numeric>
#include <random>
#include <string>
#include <vector>

#include "search/CSearchController.h"
#include "search/growth_limit.h"
#include "search/lag_filter.h"
#include "search/lookahead_sets.h"
#include "search/seed_filter.h"
#include "sequence/global-types-and-parameters.h"

namespace {

constexpr std::size_t bases = 1000000;

/// Random bases; `at_share` of a hundred are A or T.
std::string random_bases(unsigned at_share) {
  std::mt19937 random(at_share);
  std::string text;
  for (std::size_t i = 0; i < bases; ++i) text += random() % 100 < at_share ? "AT"[random() % 2] : "CG"[random() % 2];
  return text;
}

/// A record read from a file of its own.
struct Record {
  explicit Record(const std::string& text) {
    const auto path = std::filesystem::temp_directory_path() / "ostrel_bench.fa";
    std::ofstream(path) << ">bench\n" << text << "\n";
    CFile file(path.string());
    mol.readFastaSequence(file);
    std::filesystem::remove(path);
  }
  CSequence_Mol mol;
};

ExtensionRules rules() {
  init_param();
  return {global_mismatch_score, global_indel_score, global_maximum_recursion_depth, global_Ns_allowed_in_a_row,
          global_treat_Ns_as_missense};
}

std::size_t count_bits(const std::vector<std::uint64_t>& words) {
  return std::accumulate(words.begin(), words.end(), std::size_t{0}, [](std::size_t sum, std::uint64_t word) {
    return sum + static_cast<std::size_t>(__builtin_popcountll(word));
  });
}

void finish(benchmark::State& state, std::size_t result) {
  state.SetItemsProcessed(state.iterations() * static_cast<std::int64_t>(bases));
  state.counters["result"] = static_cast<double>(result);
}

void make_planes(benchmark::State& state) {
  const Record record(random_bases(60));
  std::size_t words = 0;
  for (auto _ : state) {
    const BasePlanes planes(record.mol.begin(), record.mol.end());
    words = planes.words();
    benchmark::DoNotOptimize(words);
  }
  finish(state, words);
}
BENCHMARK(make_planes);

void filter_short_units(benchmark::State& state) {
  const Record record(random_bases(static_cast<unsigned>(state.range(1))));
  const BasePlanes planes(record.mol.begin(), record.mol.end());
  const SeedFilter filter(planes, record.mol.begin(), record.mol.end());
  std::vector<std::uint64_t> candidates;
  for (auto _ : state)
    filter.mark_candidates(state.range(0), std::max<std::int64_t>(6, state.range(0)), rules(), candidates);
  finish(state, count_bits(candidates));
}
BENCHMARK(filter_short_units)->ArgsProduct({{1, 2, 6, 8}, {60, 80}});

void filter_long_units(benchmark::State& state) {
  const Record record(random_bases(static_cast<unsigned>(state.range(2))));
  const LagFilter filter(record.mol.begin(), record.mol.end(), rules());
  const ThresholdTable thresholds(6, 0, 1.0F);
  std::vector<CandidateWords> candidates;
  for (auto _ : state) filter.mark_candidates(state.range(0), state.range(1), thresholds, candidates);
  std::size_t marked = 0;
  for (const CandidateWords& words : candidates) {
    words.for_each(0, SIZE_MAX, [&marked](std::size_t, std::uint64_t bits) {
      marked += static_cast<std::size_t>(__builtin_popcountll(bits));
    });
  }
  finish(state, marked);
}
BENCHMARK(filter_long_units)->Args({12, 24, 60})->Args({25, 50, 60})->Args({51, 100, 60})->Args({25, 50, 80});

/// Every seed, though the filters would leave few of them.
void tell_before_walks(benchmark::State& state) {
  const Record record(random_bases(static_cast<unsigned>(state.range(1))));
  const BasePlanes planes(record.mol.begin(), record.mol.end());
  const ExtensionRules extension_rules = rules();
  GrowthLimit limit(record.mol.begin(), record.mol.end(), planes, extension_rules);
  const std::int64_t unit_length = state.range(0);
  const std::int64_t minimum_score = std::max<std::int64_t>(6, unit_length);
  std::size_t told = 0;
  Csat seed;
  for (auto _ : state) {
    told = 0;
    for (const char* p = record.mol.begin(); p + unit_length < record.mol.end(); ++p) {
      seed.seed(p, p + unit_length);
      told += limit.keeps_below(seed, minimum_score) ? 1 : 0;
    }
  }
  finish(state, told);
}
BENCHMARK(tell_before_walks)->ArgsProduct({{2, 6, 20, 50}, {60, 80}})->Unit(benchmark::kMillisecond);

/// Whole lookaheads from stops in an array, of whose bases so many in a hundred depart from the unit. The result is how
/// many were told.
void look_ahead_on_sets(benchmark::State& state) {
  struct Stop {
    TwoPlanes<std::uint64_t> sequence{};
    TwoPlanes<Bits128> unit{};
  };
  std::mt19937 random(1);
  std::vector<Stop> stops(1000);
  for (Stop& stop : stops) {
    for (unsigned base = 0; base < 128; ++base) {
      stop.unit.low |= Bits128{random() % 2} << base;
      stop.unit.high |= Bits128{random() % 2} << base;
    }
    constexpr unsigned first = LookaheadSets::depth;
    stop.sequence = {static_cast<std::uint64_t>(stop.unit.low >> first) ^ 1,
                     static_cast<std::uint64_t>(stop.unit.high >> first)};
    for (unsigned base = 1; base < 64; ++base) {
      if (static_cast<std::int64_t>(random() % 100) < state.range(0)) stop.sequence.high ^= std::uint64_t{1} << base;
    }
  }
  std::size_t told = 0;
  for (auto _ : state) {
    told = 0;
    for (const Stop& stop : stops) {
      SetsChoice choice;
      told += LookaheadSets::choose(stop.sequence, stop.unit, 64, 6, choice) ? 1 : 0;
      benchmark::DoNotOptimize(choice);
    }
  }
  state.SetItemsProcessed(state.iterations() * static_cast<std::int64_t>(stops.size()));
  state.counters["told"] = static_cast<double>(told);
}
BENCHMARK(look_ahead_on_sets)->Arg(2)->Arg(10)->Arg(20);

void search_imperfect(benchmark::State& state) {
  Record record(random_bases(static_cast<unsigned>(state.range(1))));
  init_param();
  global_max_unit_length = static_cast<std::uint32_t>(state.range(0));
  std::size_t repeats = 0;
  for (auto _ : state) {
    CSearchController controller(1, record.mol);
    controller.complete_imperfect_search();
    repeats = controller.imperfect_sats.sats.size();
  }
  finish(state, repeats);
}
BENCHMARK(search_imperfect)->ArgsProduct({{6, 20, 50}, {60, 80}})->Unit(benchmark::kMillisecond);

}  // namespace
