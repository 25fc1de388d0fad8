#include "search/hidden_repeats.h"

#include <algorithm>
#include <iterator>
#include <map>
#include <tuple>
#include <utility>
#include <vector>

#include "search/contestants.h"
#include "search/counted_words.h"

/// Hidden repeats whose stretches overlap.
class HiddenRepeats::Array {
 public:
  /// `zone` is what lies between the hidden repeats of other arrays, `field` all records found before.
  Array(const CSearchController& controller, const std::vector<Repeat*>& repeats,
        const std::vector<Forgotten>& forgotten, const Stretch& stretch, const Stretch& zone, const Contestants& field)
      : controller_(controller), stretch_(stretch), zone_(zone), field_(field), forgotten_(forgotten) {
    waiting_.reserve(repeats.size());
    field.for_each_in(stretch, [this](const Contestant& other) { take_if_best(other); });
    if (stretch.length() >= shortest_counted) {
      for (const std::int64_t bases : {7, 8, 9}) {
        words_.emplace_back(bases, controller.planes, controller.seq.begin(), stretch, controller.rules);
      }
    }
    for (Repeat* repeat : repeats) waiting_.push_back({highest_score(*repeat), repeat});
  }

  /// Marks those that are worse than the best one.
  void forget_losers() {
    Forgotten losers{{UINT32_MAX, 0}, INT64_MIN, INT64_MAX, INT64_MAX};
    for (const Waiting& waiting : waiting_) {
      Repeat& repeat = *waiting.repeat;
      const std::int64_t beyond_unit = std::int64_t{repeat.known().length()} - repeat.unit_length;
      if (waiting.most_score >= best_score_ || beyond_unit < 0) continue;
      repeat.is_forgotten = true;
      losers.add({repeat.stretch, waiting.most_score, repeat.unit_length, beyond_unit});
    }
    if (losers.stretch.begin < losers.stretch.end) forgotten_.push_back(losers);
  }

  /// Those that are no longer known.
  const std::vector<Forgotten>& forgotten() const { return forgotten_; }

  /// Grows those that may win against the best one, or all if the overlap removal may depend on them. Those that have
  /// not grown to their ends then need not be known. False if it may depend on some that were forgotten.
  bool settle() {
    for (std::ptrdiff_t most = 16;; most *= 2) {
      // When the best one is known most others need not grow far to be seen to be worse.
      const bool is_best_sought = most <= most_to_seek_best;
      std::stable_sort(waiting_.begin(), waiting_.end(),
                       [](const Waiting& a, const Waiting& b) { return a.most_score > b.most_score; });
      const auto end = std::find_if(waiting_.begin(), waiting_.end(),
                                    [&](const Waiting& waiting) { return waiting.most_score < best_score_; });
      if (end == waiting_.begin()) break;
      grow_an_end(std::min(most, end - waiting_.begin()), is_best_sought);
      for (const Contestant& other : grown_) take_if_best(other);
    }
    const std::vector<Contestant> all = all_in(stretch_);
    const auto best = best_of(all);
    const auto wins = [&](const Waiting& waiting) { return best == all.end() || !loses(waiting, *best); };
    grow(std::partition(waiting_.begin(), waiting_.end(), wins) - waiting_.begin());
    if ((waiting_.empty() && forgotten_.empty()) || may_leave_out_others()) return true;
    grow(static_cast<std::ptrdiff_t>(waiting_.size()));
    return forgotten_.empty();
  }

 private:
  struct Waiting {
    std::int64_t most_score;
    Repeat* repeat;
    std::int64_t bases_to_grow = first_bases;  ///< the next time
  };

  static constexpr std::int64_t first_bases = 1 << 13;
  static constexpr std::ptrdiff_t most_to_seek_best = 32;

  /// From so many bases on the words of an array are counted.
  static constexpr std::uint32_t shortest_counted = 1 << 12;

  UnitCircle unit_of(const Repeat& repeat) const {
    const char* const begin = controller_.seq.begin() + repeat.grown.unit;
    return {begin, begin + repeat.unit_length};
  }

  /// What the repeat scores at most within its stretch.
  std::int64_t highest_score(const Repeat& repeat) {
    const bool is_open = repeat.growth == Growth::paused_forward;
    if (!words_.empty()) {
      const std::uint32_t end = is_open ? repeat.grown.right_end : stretch_.end;
      return words_for(repeat.unit_length)
          .highest_score(unit_of(repeat), {{repeat.grown.left, end}, repeat.grown.score}, best_score_);
    }
    const std::int64_t score = repeat.grown.score + most_gain<false>(repeat, repeat.grown.left, repeat.stretch.begin);
    return is_open ? score + most_gain<true>(repeat, repeat.grown.right_end, repeat.stretch.end) : score;
  }

  template <bool forward>
  std::int64_t most_gain(const Repeat& repeat, std::uint32_t from, std::uint32_t to) const {
    const char* const first_base = controller_.seq.begin();
    UnitWords& words = controller_.aids_of(0).unit_words;
    constexpr std::int64_t never = INT64_MAX / 4;
    return words.gains<forward>(first_base + from, first_base + to, unit_of(repeat), never, never).highest;
  }

  /// Where a unit is some words long a walk may always step between two words, and in each third turn if it is as long
  /// as some words and a third of one.
  CountedWords& words_for(std::int64_t unit_length) {
    return words_[unit_length % 3 != 0 ? 2 : unit_length % 2 != 0 ? 1 : 0];
  }

  /// The first ones grow to their ends.
  void grow(std::ptrdiff_t count) {
    while (count > 0) count = grow_an_end(count, true);
  }

  /// The first ones grow at an end, the right one first, to where it stops or only for some bases, each time for more.
  /// Returns how many of them are to grow on: they are the first ones now.
  std::ptrdiff_t grow_an_end(std::ptrdiff_t count, bool is_whole) {
    using Repeats = std::vector<GrowingRepeat*>;
    struct Ends {
      Repeats right;
      Repeats left;
      Repeats unfinished;
    };
    std::map<std::pair<std::int64_t, std::int64_t>, Ends> ends_to_grow;
    const auto end = waiting_.begin() + count;
    const auto ends_of = [&](const Waiting& waiting) -> Ends& {
      return ends_to_grow[{waiting.repeat->unit_length, is_whole ? any_bases : waiting.bases_to_grow}];
    };
    for (auto at = waiting_.begin(); at != end; ++at) {
      Ends& ends = ends_of(*at);
      (at->repeat->growth == Growth::paused_forward ? ends.right : ends.left).push_back(&at->repeat->grown);
    }
    for (auto& [size, ends] : ends_to_grow) {
      const auto [unit_length, bases] = size;
      ends.unfinished = controller_.finish_growth(ends.right, ends.left, unit_length, bases);
    }
    for (auto at = waiting_.begin(); at != end; ++at) {
      const Repeats& unfinished = ends_of(*at).unfinished;
      if (std::binary_search(unfinished.begin(), unfinished.end(), &at->repeat->grown)) {
        at->bases_to_grow *= 2;
      } else {
        Growth& growth = at->repeat->growth;
        growth = growth == Growth::paused_forward ? Growth::paused_backward : Growth::finished;
        at->bases_to_grow = first_bases;
      }
      if (at->repeat->growth != Growth::finished) at->most_score = std::min(at->most_score, highest_score(*at->repeat));
    }
    const auto grown = std::stable_partition(
        waiting_.begin(), end, [](const Waiting& waiting) { return waiting.repeat->growth != Growth::finished; });
    for (auto at = grown; at != end; ++at) {
      const Repeat& repeat = *at->repeat;
      grown_.push_back({repeat.known(), repeat.unit_length, repeat.grown.score});
    }
    const std::ptrdiff_t others = grown - waiting_.begin();
    waiting_.erase(grown, end);
    return others;
  }

  /// All records that overlap with a stretch and have their ends, in the order of the sorted list.
  std::vector<Contestant> all_in(const Stretch& stretch) const {
    std::vector<Contestant> all;
    field_.for_each_in(stretch, [&all](const Contestant& contestant) { all.push_back(contestant); });
    all.insert(all.end(), grown_.begin(), grown_.end());
    std::stable_sort(all.begin(), all.end(), comes_before);
    return all;
  }

  /// Whether the overlap removal comes to the same with or without the repeats that have not grown.
  bool may_leave_out_others() const {
    Stretch stretch{UINT32_MAX, 0};
    std::int64_t least_beyond_unit = INT64_MAX;
    const auto take = [&](const Stretch& part, std::int64_t beyond_unit) {
      stretch = hull(stretch, part);
      least_beyond_unit = std::min(least_beyond_unit, beyond_unit);
    };
    for (const Waiting& waiting : waiting_) {
      const Repeat& repeat = *waiting.repeat;
      take(repeat.stretch, std::int64_t{repeat.known().length()} - repeat.unit_length);
    }
    for (const Forgotten& losers : forgotten_) take(losers.stretch, losers.least_beyond_unit);
    const std::vector<Contestant> all = all_in(stretch);
    const auto best = best_of(all);
    if (best == all.end() || !zone_.contains(best->stretch) || !wins_everywhere(*best)) return false;
    const auto loses_to_best = [&best](const Waiting& waiting) { return loses(waiting, *best); };
    if (!std::all_of(waiting_.begin(), waiting_.end(), loses_to_best)) return false;
    const auto lose_to_best = [&best](const Forgotten& losers) {
      return loses(losers.most_score, losers.stretch, losers.least_unit_length, *best);
    };
    if (!std::all_of(forgotten_.begin(), forgotten_.end(), lose_to_best)) return false;
    // Those before the best one that lose to it, too, come to nothing in any case, but sooner or later: they may meet
    // no others behind the place where the first of these repeats may begin.
    bool has_met_loser = false;
    for (auto other = all.begin(); other != best; ++other) {
      if (other->shared(stretch) == 0) continue;
      if (other->competes_with(*best)) {
        has_met_loser = true;
      } else if (has_met_loser || other->stretch.begin >= stretch.begin ||
                 other->outside(stretch) < other->unit_length || other->shared(stretch) > least_beyond_unit) {
        return false;
      }
    }
    return true;
  }

  void take_if_best(const Contestant& other) {
    if (is_main(other)) best_score_ = std::max(best_score_, other.score);
  }

  /// Whether it covers most of the array. Another one beside it may have a higher score.
  bool is_main(const Contestant& contestant) const { return 2 * contestant.shared(stretch_) > stretch_.length(); }

  /// Of those that cover most of the array the first one of the highest score.
  std::vector<Contestant>::const_iterator best_of(const std::vector<Contestant>& all) const {
    auto best = all.end();
    for (auto at = all.begin(); at != all.end(); ++at) {
      if (is_main(*at) && (best == all.end() || at->score > best->score)) best = at;
    }
    return best;
  }

  /// Whether the repeat certainly competes with the best one, and loses.
  static bool loses(const Waiting& waiting, const Contestant& best) {
    const Repeat& repeat = *waiting.repeat;
    return repeat.known().length() >= repeat.unit_length &&
           loses(waiting.most_score, repeat.stretch, repeat.unit_length, best);
  }
  static bool loses(std::int64_t most_score, const Stretch& stretch, std::int64_t unit_length, const Contestant& best) {
    return most_score < best.score && Contestant{stretch, 0, 0}.outside(best.stretch) < unit_length;
  }

  /// Against all others that compete with it.
  bool wins_everywhere(const Contestant& best) const {
    bool wins = true;
    const auto meet = [&](const Contestant& other) {
      const bool is_better = other.score > best.score || (other.score == best.score && comes_before(other, best));
      wins = wins && !(is_better && other.competes_with(best));
    };
    field_.for_each_in(best.stretch, meet);
    std::for_each(grown_.begin(), grown_.end(), meet);
    return wins;
  }

  const CSearchController& controller_;
  const Stretch stretch_;
  const Stretch zone_;
  const Contestants& field_;
  std::vector<CountedWords> words_;      ///< of 7, 8 and 9 bases; none in a short array
  std::int64_t best_score_ = INT64_MIN;  ///< of those that cover most of the array
  std::vector<Waiting> waiting_;
  std::vector<Contestant> grown_;  ///< those that have grown to their ends
  std::vector<Forgotten> forgotten_;
};

void HiddenRepeats::Forgotten::add(const Forgotten& more) {
  stretch = hull(stretch, more.stretch);
  most_score = std::max(most_score, more.most_score);
  least_unit_length = std::min(least_unit_length, more.least_unit_length);
  least_beyond_unit = std::min(least_beyond_unit, more.least_beyond_unit);
}

bool HiddenRepeats::settle(std::list<Csat*>& found) {
  if (repeats_.empty() && forgotten_.empty()) return true;
  const Contestants field(found, controller_.seq.begin());
  const bool is_settled = for_each_array(field, [](Array& array) { return array.settle(); });
  if (is_settled) add_grown_ones(found);
  repeats_.clear();
  forgotten_.clear();
  return is_settled;
}

/// Of those forgotten before and now that lie in the same array it is enough to know what holds for all of them.
void HiddenRepeats::forget_losers(const std::list<Csat*>& found) {
  std::vector<Forgotten> forgotten;
  for_each_array(Contestants(found, controller_.seq.begin()), [&forgotten](Array& array) {
    array.forget_losers();
    if (array.forgotten().empty()) return true;
    forgotten.push_back(array.forgotten().front());
    for (const Forgotten& losers : array.forgotten()) forgotten.back().add(losers);
    return true;
  });
  forgotten_ = std::move(forgotten);
  repeats_.erase(
      std::remove_if(repeats_.begin(), repeats_.end(), [](const Repeat& repeat) { return repeat.is_forgotten; }),
      repeats_.end());
  // Otherwise the same ones would be asked again and again.
  most_repeats_ = std::max(most_repeats_, 2 * repeats_.size());
}

/// Up to the first one for which `visit` returns false; returns whether there is none.
bool HiddenRepeats::for_each_array(const Contestants& field, const VisitArray& visit) {
  // Where each begins that is known, and that was forgotten.
  std::vector<Repeat*> repeats;
  repeats.reserve(repeats_.size());
  for (Repeat& repeat : repeats_) repeats.push_back(&repeat);
  const auto begins_before = [](const auto& a, const auto& b) { return a.stretch.begin < b.stretch.begin; };
  std::stable_sort(repeats.begin(), repeats.end(),
                   [&](const Repeat* a, const Repeat* b) { return begins_before(*a, *b); });
  std::vector<Forgotten> forgotten = forgotten_;
  std::stable_sort(forgotten.begin(), forgotten.end(), begins_before);
  auto repeat = repeats.begin();
  auto losers = forgotten.begin();
  const auto next_begin = [&] {
    return std::min(repeat == repeats.end() ? UINT32_MAX : (*repeat)->stretch.begin,
                    losers == forgotten.end() ? UINT32_MAX : losers->stretch.begin);
  };
  std::uint32_t last_end = 0;
  while (next_begin() != UINT32_MAX) {
    const auto first_repeat = repeat;
    const auto first_losers = losers;
    Stretch stretch{next_begin(), next_begin() + 1};
    while (next_begin() < stretch.end) {
      const bool is_repeat = repeat != repeats.end() && (*repeat)->stretch.begin == next_begin();
      stretch = hull(stretch, is_repeat ? (*repeat++)->stretch : (losers++)->stretch);
    }
    Array array(controller_, {first_repeat, repeat}, {first_losers, losers}, stretch, {last_end, next_begin()}, field);
    if (!visit(array)) return false;
    last_end = stretch.end;
  }
  return true;
}

void HiddenRepeats::add_grown_ones(std::list<Csat*>& found) const {
  const char* const first_base = controller_.seq.begin();
  // Of those of one unit length and the same ends only the best one, the first of several.
  const auto wins = [](const GrowingRepeat& a, const GrowingRepeat& b) {
    return a.score > b.score || (a.score == b.score && a.unit < b.unit);
  };
  using Key = std::tuple<std::int64_t, std::uint32_t, std::uint32_t>;
  std::map<Key, const GrowingRepeat*> best;
  for (const Repeat& repeat : repeats_) {
    if (repeat.growth != Growth::finished) continue;
    const GrowingRepeat& grown = repeat.grown;
    const GrowingRepeat*& other =
        best.try_emplace({repeat.unit_length, grown.left, grown.right_end}, &grown).first->second;
    if (wins(grown, *other)) other = &grown;
  }
  if (best.empty()) return;
  for (auto at = found.begin(); at != found.end();) {
    const GrowingRepeat older(**at, first_base);
    const auto same = best.find({(*at)->unit_length(), older.left, older.right_end});
    if (same != best.end() && wins(*same->second, older)) {
      sat_alloc.give_back(*at);
      at = found.erase(at);
      continue;
    }
    if (same != best.end()) best.erase(same);
    ++at;
  }
  auto at = found.begin();
  for (const auto& [key, grown] : best) {
    const std::int64_t unit_length = std::get<0>(key);
    while (at != found.end() && (*at)->unit_length() <= unit_length) ++at;
    const char* const unit = first_base + grown->unit;
    OwnedSat sat(sat_alloc.take(unit, unit + unit_length));
    grown->store(*sat, first_base);
    found.insert(at, sat.get());
    static_cast<void>(sat.release());
  }
}
