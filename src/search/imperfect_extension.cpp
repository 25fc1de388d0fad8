// The extension of a repeat into an imperfect one: a greedy walk with a bounded lookahead.

#include <algorithm>
#include <functional>
#include <tuple>
#include <vector>

#include "search/CSearchController.h"
#include "search/lookahead_window.h"
#include "search/unit_runs.h"
#include "search/walk_guide.h"

namespace {

/// One direction of the extension of one record.
template <bool forward>
class ImperfectWalk {
 public:
  ImperfectWalk(Csat& record, const char* sequence_limit, const ExtensionRules& extension_rules,
                const BasePlanes& planes, const char* first_base, WalkGuide<forward>& walk_guide)
      : sat(record),
        circle{record.unit_begin, record.unit_end},
        limit(sequence_limit),
        rules(extension_rules),
        bound(-circle.length()),
        runs(planes, first_base, circle),
        window(planes, runs, first_base, circle, extension_rules),
        guide(walk_guide) {}

  /// Commits step after step until none is permitted, the limit is reached or a run of N blocks the way; then the
  /// record takes the earliest state of the highest score on that way. A later state of equal score is not worth its
  /// events.
  void run() {
    State state{Front<forward>::of(sat), sat.mismatches, sat.insertions, sat.deletions, sat.missense.size};
    State best;
    bool is_first = true;
    guide.begin_walk(circle, limit);
    while (true) {
      const bool way_is_free = runs.extend_exact(state.front, limit, rules);
      if (is_first || state.front.score > best.front.score) best = state;
      is_first = false;
      if (!way_is_free || rules.maximum_depth == 0 || state.front.position == limit) break;
      const char kind = next_step(state.front);
      if (kind == '-') break;
      commit(kind, state);
    }
    guide.end_walk();
    adopt(best);
  }

 private:
  using FrontState = Front<forward>;

  struct State {
    FrontState front;
    std::uint32_t mismatches;
    std::uint32_t insertions;
    std::uint32_t deletions;
    std::size_t events;
  };

  /// A step may be tried only while the score after it stays above minus the unit length.
  bool mismatch_permitted(const FrontState& front) const { return front.score + rules.mismatch_score > bound; }
  bool indel_permitted(const FrontState& front) const { return front.score + rules.indel_score > bound; }

  FrontState after_mismatch(FrontState front) const {
    front.take_base();
    front.step_unit(circle);
    front.score += rules.mismatch_score;
    return front;
  }

  FrontState after_insertion(FrontState front) const {
    front.take_base();
    front.score += rules.indel_score;
    return front;
  }

  FrontState after_deletion(FrontState front) const {
    front.step_unit(circle);
    front.score += rules.indel_score;
    return front;
  }

  /// Whether the score permits every step of the lookahead, however deep.
  bool all_permitted(const FrontState& front) const {
    return front.score + rules.maximum_depth * std::min(rules.mismatch_score, rules.indel_score) > bound;
  }

  char next_step(const FrontState& front) {
    if (!all_permitted(front)) return choose_step(front);
    const char known = guide.step_at(front);
    const char kind = known != '?' ? known : choose_step(front);
    guide.note(front, kind);
    return kind;
  }

  /// The first step of the best combination of steps within the lookahead: 'M', 'I', 'D', or '-' when none is
  /// permitted. On equal values a mismatch wins over an insertion and that over a deletion.
  char choose_step(const FrontState& front) {
    const bool mismatch = mismatch_permitted(front);
    const bool indel = indel_permitted(front);
    if (!mismatch && !indel) return '-';
    const char obvious = window.choose(front, limit, mismatch, indel);
    if (obvious != '?') return obvious;

    std::int64_t best = bound - 1;
    char choice = '-';
    const auto offer = [&](char kind, std::int64_t value) {
      if (value <= best) return;
      best = value;
      choice = kind;
    };
    if (mismatch) offer('M', lookahead(after_mismatch(front)));
    if (indel) {
      offer('I', lookahead(after_insertion(front)));
      offer('D', lookahead(after_deletion(front)));
    }
    return choice;
  }

  /// The highest score of any state within the lookahead after the given first step. Of two ways into one state, same
  /// position and unit base after equally many steps, only the higher-scoring one is followed: the bound forbids it
  /// nothing that it permits the other, and every later score is higher by the same difference. So the work grows
  /// polynomially with the depth.
  std::int64_t lookahead(const FrontState& first) {
    std::int64_t best = first.score;
    level.assign(1, first);
    for (std::int64_t depth = 1; !level.empty(); ++depth) {
      next_level.clear();
      for (FrontState& front : level) {
        const bool way_is_free = runs.extend_exact(front, limit, rules);
        best = std::max(best, front.score);
        if (way_is_free && depth < rules.maximum_depth && front.position != limit) push_steps(front);
      }
      keep_highest_of_equal_states();
      level.swap(next_level);
    }
    return best;
  }

  void push_steps(const FrontState& front) {
    if (mismatch_permitted(front)) next_level.push_back(after_mismatch(front));
    if (!indel_permitted(front)) return;
    next_level.push_back(after_insertion(front));
    next_level.push_back(after_deletion(front));
  }

  void keep_highest_of_equal_states() {
    const auto key = [](const FrontState& front) { return std::make_tuple(front.position, front.unit, -front.score); };
    std::sort(next_level.begin(), next_level.end(),
              [&key](const FrontState& a, const FrontState& b) { return key(a) < key(b); });
    const auto same = [](const FrontState& a, const FrontState& b) {
      return a.position == b.position && a.unit == b.unit;
    };
    next_level.erase(std::unique(next_level.begin(), next_level.end(), same), next_level.end());
  }

  /// Takes one step and notes its event. The base of a mismatch or an insertion is the one taken in; a deletion lies at
  /// the base right of the gap.
  void commit(char kind, State& state) {
    const char* const before = state.front.position;
    switch (kind) {
      case 'M':
        state.front = after_mismatch(state.front);
        ++state.mismatches;
        break;
      case 'I':
        state.front = after_insertion(state.front);
        ++state.insertions;
        break;
      default:
        state.front = after_deletion(state.front);
        ++state.deletions;
    }
    sat.missense.push_back({forward ? before : state.front.position, kind});
    state.events = sat.missense.size;
  }

  void adopt(const State& state) {
    state.front.store(sat);
    sat.mismatches = state.mismatches;
    sat.insertions = state.insertions;
    sat.deletions = state.deletions;
    sat.missense.size = state.events;
  }

  Csat& sat;
  const UnitCircle circle;
  const char* const limit;
  const ExtensionRules& rules;
  const std::int64_t bound;
  const UnitRuns runs;
  LookaheadWindow<forward> window;
  WalkGuide<forward>& guide;
  std::vector<FrontState> level;
  std::vector<FrontState> next_level;
};

}  // namespace

void CSearchController::extend_imperfect_forward(Csat& sat, const char* seq_end) const {
  ImperfectWalk<true>(sat, seq_end, rules, planes, seq.begin(), forward_guide).run();
}

void CSearchController::extend_imperfect_backward(Csat& sat, const char* left_limit) const {
  ImperfectWalk<false>(sat, left_limit + 1, rules, planes, seq.begin(), backward_guide).run();
}
