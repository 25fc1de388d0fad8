#include "option_generator.h"

#include <algorithm>
#include <cmath>

namespace differential {
namespace {

// Measured: most trees are cut short by the score bound, so the share of one counted node is small.
constexpr double seconds_per_node = 5e-9;
constexpr double bases_worth_searching = 250;

// Collects options; each draw_* function below adds one group of them.
class OptionWriter {
 public:
  OptionWriter(SmallRandom& random, OptionChoice& choice, unsigned chance)
      : random_(random), choice_(choice), chance_(chance) {}

  void draw_all(double seconds) {
    draw_mode();
    draw_penalties();
    draw_units_and_recursion(seconds);
    draw_thresholds();
    draw_n_handling();
    draw_report_form();
    draw_range();
  }

 private:
  bool wanted() { return random_.percent(chance_); }
  bool half_wanted() { return random_.percent(chance_ / 2); }

  void add(const std::string& flag, const std::string& value) { choice_.options.push_back({flag, value}); }
  void add(const std::string& flag, int value) { add(flag, std::to_string(value)); }
  void add_switch(const std::string& flag) { choice_.options.push_back({flag}); }

  void draw_mode() {
    if (!wanted()) return;
    choice_.search_mode = random_.pick<const char*>({"exact", "extendExact", "imperfect", "imperfect"});
    add(random_.percent(80) ? "-M" : "--searchMode", choice_.search_mode);
  }

  int draw_penalty() {
    if (random_.percent(4)) return -1000;
    return -static_cast<int>(random_.between(2, 12));
  }

  void draw_penalties() {
    if (wanted()) {
      choice_.mismatch_score = draw_penalty();
      add("-m", choice_.mismatch_score);
    }
    if (wanted()) {
      choice_.indel_score = draw_penalty();
      add("-g", choice_.indel_score);
    }
  }

  std::uint64_t draw_max_unit() {
    const std::uint64_t roll = random_.below(100);
    if (roll < 1) return 4294967295U;
    if (roll < 3) return 100;
    if (roll < 40) return random_.between(choice_.min_unit, 8);
    if (roll < 75) return random_.between(7, 25);
    return random_.between(25, 60);
  }

  bool too_slow(double seconds) const { return reference_seconds_per_base(choice_) * bases_worth_searching > seconds; }

  void draw_units_and_recursion(double seconds) {
    const bool min_wanted = wanted();
    if (min_wanted) choice_.min_unit = static_cast<unsigned>(random_.between(1, 2));
    const bool max_wanted = wanted();
    if (max_wanted) choice_.max_unit = draw_max_unit();
    bool recursion_wanted = wanted();
    if (recursion_wanted) choice_.recursion = static_cast<unsigned>(random_.below(8));

    while (choice_.recursion > 2 && too_slow(seconds)) {
      --choice_.recursion;
      recursion_wanted = true;
    }
    while (max_wanted && choice_.max_unit > 8 && too_slow(seconds)) {
      choice_.max_unit = std::min<std::uint64_t>(choice_.max_unit, 100) * 3 / 4;
    }

    if (min_wanted) add("-u", static_cast<int>(choice_.min_unit));
    if (max_wanted) add("-U", std::to_string(choice_.max_unit));
    if (recursion_wanted) add_recursion();
  }

  void add_recursion() {
    const bool negative = choice_.recursion == 0 && random_.percent(25);
    add("-r", negative ? -3 : static_cast<int>(choice_.recursion));
  }

  // A few of these lists are refused because score and length minimum are both too small; both programs must refuse
  // them alike.
  void draw_thresholds() {
    if (wanted()) add("-s", draw_minimum({2, 3, 4, 5, 6, 7, 8}, {0, -4, 10, 15, 30}));
    if (half_wanted()) add("--minScore_a", draw_minimum({-6, -1, 0, 1, 2}, {5, 10}));
    if (wanted()) {
      add("--minScore_b", random_.pick<const char*>({"0", "0.1", "0.5", "1", "1.5", "2", "-0.5", "0.333333"}));
    }
    if (half_wanted()) add("-l", draw_minimum({1, 2, 5, 8, 10}, {12, 15, 20, 30}));
    if (half_wanted()) add("--minLength_a", draw_minimum({-5, 0, 2, 6}, {12}));
    if (half_wanted()) {
      add("--minLength_b", random_.pick<const char*>({"0", "0.1", "0.5", "1", "1.5", "2", "3"}));
    }
  }

  // Mostly low minimums: a report without repeats compares little.
  int draw_minimum(std::initializer_list<int> usual, std::initializer_list<int> rare) {
    return random_.percent(80) ? random_.pick(usual) : random_.pick(rare);
  }

  void draw_n_handling() {
    if (wanted()) {
      // 0 is a case of its own: with it an N is an ordinary mismatch.
      const int limit = random_.percent(25) ? random_.pick({-1, 0, 0, 1000000}) : static_cast<int>(random_.below(9));
      choice_.n_limit = static_cast<unsigned>(std::max(limit, 0));
      add("-N", limit);
    }
    if (half_wanted()) add_switch("--NsAsMissense");
    if (wanted()) add("--NPerfectionMode", static_cast<int>(random_.below(3)));
  }

  void draw_report_form() {
    if (wanted()) add("--reportUnit", static_cast<int>(random_.below(3)));
    if (wanted()) add("--printRepeatSeqMode", static_cast<int>(random_.below(3)));
    if (half_wanted()) add("--outputFormat", static_cast<int>(random_.below(3)));
    if (wanted()) {
      const int flanking = random_.pick({0, 1, 5, 20, 2147483647, -5});
      choice_.flanking = static_cast<unsigned>(std::max(flanking, 0));
      add("-f", flanking);
    }
    if (half_wanted()) add_switch(random_.percent(50) ? "-D" : "--dontRemoveMostlyOverlapping");
    if (half_wanted()) add_switch("--maskX");
  }

  void draw_range() {
    if (random_.percent(chance_ / 10)) add("--firstSeq", random_.pick({0, 1, 1, 2, 2, 3, -1}));
    if (random_.percent(chance_ / 10)) add("--lastSeq", random_.pick({0, 1, 2, 2, 5, -1}));
  }

  SmallRandom& random_;
  OptionChoice& choice_;
  unsigned chance_;
};

// Nodes that the walks from one seed of one unit length visit. A step is allowed while the score stays above -unit, so
// long units and cheap steps make long walks, and near the end of a walk the lookahead trees are cut short.
double nodes_for_one_seed(const OptionChoice& choice, double unit) {
  const double penalty = std::min(-choice.mismatch_score, -choice.indel_score);
  const double steps_paid_for = std::max(0.02, (unit - 1) / penalty);
  const double affordable_depth = std::min<double>(choice.recursion, steps_paid_for + 1);
  const double tree = std::pow(3.0, affordable_depth + 1) / 2;
  return 1 + 2 * steps_paid_for * tree / 4;
}

}  // namespace

OptionChoice make_options(SmallRandom& random, double seconds) {
  OptionChoice choice;
  const unsigned chance = random.percent(33) ? 8 : random.pick({35U, 60U, 80U});
  OptionWriter(random, choice, chance).draw_all(seconds);
  return choice;
}

double reference_seconds_per_base(const OptionChoice& choice) {
  // Exact seeds that are extended stand on a part of the positions only.
  const double share_of_seeds = choice.search_mode == "exact" ? 0 : choice.search_mode == "extendExact" ? 0.2 : 1;
  // Units longer than the sequence cost nothing, and where units of this length are asked for it is short.
  const std::uint64_t longest = std::min<std::uint64_t>(choice.max_unit, 200);
  double nodes = 0;
  for (std::uint64_t unit = choice.min_unit; unit <= longest; ++unit) {
    nodes += 4 + share_of_seeds * nodes_for_one_seed(choice, static_cast<double>(unit));
  }
  return nodes * seconds_per_node;
}

}  // namespace differential
