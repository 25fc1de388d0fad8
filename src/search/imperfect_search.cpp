// The direct search for imperfect repeats.

#include <algorithm>
#include <iterator>
#include <list>
#include <map>
#include <optional>
#include <utility>
#include <vector>

#ifdef __GLIBC__
#include <malloc.h>
#endif

#include "search/CSearchController.h"
#include "search/array_edge.h"
#include "search/candidate_scan.h"
#include "search/hidden_repeats.h"
#include "search/lag_filter.h"
#include "search/postponed_repeats.h"
#include "search/seed_filter.h"
#include "sequence/global-types-and-parameters.h"

/// The seeds of one unit length, tried one after the other: what is kept decides which of the later ones may be tried.
///
/// On several threads every part of the sequence is tried ahead, on a copy of the state of its anchors, as if nothing
/// outside were kept meanwhile. What a seed grows into does not depend on anchors. So the seeds are then gone through
/// in order, with the true state: the outcome of those that were tried is there, and the few others are tried now.
class ImperfectPass {
 public:
  ImperfectPass(const CSearchController& controller, std::int64_t unit_length, CAnchorSeq& anchors,
                std::list<Csat*>& found, HiddenRepeats& hidden)
      : controller_(controller),
        unit_length_(unit_length),
        minimum_(controller.minimum_of(unit_length)),
        anchors_(anchors),
        found_(found),
        hidden_(hidden),
        next_N_(controller.seq.begin()),
        postponed_(controller, unit_length, anchors, hidden),
        // A seed that pauses should be known to be kept, and what it leads to should be easy to tell.
        pause_(may_postpone()
                   ? PausePoint{std::max(shortest_long_repeat, 2 * unit_length),
                                std::max(minimum_.score, ArrayEdge<true>::score_to_tell(unit_length, controller.rules))}
                   : PausePoint::never()) {}

  /// Tries a seed that the anchors admit. Returns one past the last of the seeds from `p` on that need not be tried any
  /// more. Seeds must come in the order of their positions.
  const char* try_seed(const char* p) {
    if (!is_unit(p, next_N_)) return p + 1;
    GrowthAids& aids = controller_.aids_of(0);
    Growth growth = Growth::finished;
    const char* const failed_end = grow(p, spare_, aids, growth);
    if (failed_end > p) return failed_end;
    keep({p, std::move(spare_), growth, untold_of(aids, growth)});
    return p + 1;
  }

  /// To be called before the anchors of the `count` positions from `first` on are asked.
  void settle(const char* first, std::ptrdiff_t count) {
    if (!postponed_.empty() && (!postponed_.reach(first + count) || postponed_.lie_before(first))) finish_postponed();
    anchors_.settle(first, count);
  }

  /// To be called behind the last seed.
  void finish() {
    if (!postponed_.empty()) finish_postponed();
  }

  void run_on_threads(const CandidateSet& set) {
    const std::size_t at_once = std::size_t{8} * controller_.workers.count();
    part_words_ = std::clamp<std::size_t>(set.words() / at_once, 1, 512);
    const std::size_t parts = (set.words() + part_words_ - 1) / part_words_;
    for (std::size_t first = 0; first < parts; first += at_once) {
      // The parts are copied from several threads.
      const auto bases = static_cast<std::ptrdiff_t>(64 * at_once * part_words_);
      const char* const begin = controller_.seq.begin() + 64 * first * part_words_;
      if (!postponed_.empty()) postponed_.reach(begin + bases);
      anchors_.settle(begin - 1, bases + unit_length_ + 256);
      std::vector<Part> tried(std::min(at_once, parts - first));
      controller_.workers.run(tried.size(), [&](std::size_t number, unsigned worker) {
        tried[number] = try_ahead(set, (first + number) * part_words_, worker);
      });
      for (std::size_t number = 0; number < tried.size(); ++number) {
        settle_part(set, (first + number) * part_words_, tried[number]);
      }
    }
    finish();
  }

 private:
  struct Kept {
    const char* begin;
    OwnedSat sat;
    Growth growth;
    std::vector<GuidedStretch> untold;
  };

  struct Part {
    std::vector<std::uint64_t> tried;  ///< one bit for each seed
    std::vector<Kept> kept;            ///< of those, in the order of their positions
  };

  /// `next_N` is the first N at or after some position before `p`; it is moved on.
  bool is_unit(const char* p, const char*& next_N) const {
    next_N = first_N(p, next_N, controller_.seq.end());
    return CSearchController::valid_starting_pattern(p, p + unit_length_, next_N);
  }

  /// Not if all repeats with the same ends are to be stored. Those of one base are no satellites.
  bool may_postpone() const {
    return global_remove_mostly_hidden && unit_length_ > 1 &&
           controller_.seq.end() - controller_.seq.begin() <= std::ptrdiff_t{1} << 30;
  }

  /// Grows the seed `p` into `spare`. Returns one past the last of the seeds from `p` on that are known to fail, or `p`
  /// if it does not. It may pause in `growth` if it certainly does not.
  const char* grow(const char* p, OwnedSat& spare, GrowthAids& aids, Growth& growth) const {
    if (spare == nullptr) spare.reset(sat_alloc.take(p, p + unit_length_));
    spare->seed(p, p + unit_length_);
    // No run of matches in it is as long as the minimum score.
    if (aids.growth_limit.keeps_below(*spare, minimum_.score)) return end_of_like(p, minimum_.score);
    if (unit_length_ >= shortest_unit_foreseen && aids.foresight.is_due()) {
      const std::optional<std::int64_t> score = controller_.foresee_score(*spare, aids);
      aids.foresight.count(score.has_value());
      if (score && *score < minimum_.score) return end_of_like(p, aids.forward.spare_height);
    }
    // What is not known yet is known with a higher score, nearly always.
    for (PausePoint pause = pause_;; pause.bases *= 4) {
      growth = controller_.grow_imperfect(*spare, aids, pause);
      if (growth == Growth::finished) break;
      if (is_kept_and_known(*spare, growth, aids)) return p;
      spare->seed(p, p + unit_length_);
    }
    return minimum_.is_reached_by(*spare) ? p : end_of_like(p, aids.forward.spare_height);
  }

  /// Whether a seed that has paused will be kept, and which anchors it leaves behind its first base.
  bool is_kept_and_known(Csat& seed, Growth growth, GrowthAids& aids) const {
    return minimum_.is_reached_by(seed) &&
           (growth == Growth::paused_backward || controller_.note_event_at_left_end(seed, aids));
  }

  /// One past the last of the seeds from `p` on that grow like the seed `p`, as long as their scores at the first stop
  /// of the forward walk are lower by no more than `spare_height`. Where the base behind a unit is the unit's first,
  /// the next seed has a rotation of the unit. Growing forward, it comes to where that stops with a score lower by one,
  /// and growing backward with the same score again.
  const char* end_of_like(const char* p, std::int64_t spare_height) const {
    const char* const last = controller_.seq.end() - unit_length_ - 1;
    const char* const end = p + std::min(spare_height, last - p);
    while (p < end && *p == p[unit_length_]) ++p;
    return p + 1;
  }

  /// Of the record grown last. If it has paused forward those of the other direction are of an older record.
  static std::vector<GuidedStretch> untold_of(const GrowthAids& aids, Growth growth) {
    return growth == Growth::paused_forward ? aids.forward.untold : aids.untold();
  }

  void keep(Kept kept) {
    if (kept.growth == Growth::finished) {
      anchors_.cover(*kept.sat, kept.untold);
      if (!postponed_.empty()) postponed_.note_kept(*kept.sat);
      store(std::move(kept.sat));
    } else {
      postponed_.postpone(*kept.sat, kept.growth, kept.untold);
    }
    if (postponed_.is_full()) finish_postponed();
  }

  void store(OwnedSat sat) {
    CSearchController::drop_many_events(*sat);
    sat->sort_missense();
    add(std::move(sat));
  }

  void finish_postponed() {
    postponed_.finish(
        [this](const Csat& sat) {
          const auto other = long_repeats_.find({sat.pos_left, sat.pos_right_end});
          return other == long_repeats_.end() || wins(sat, **other->second);
        },
        [this](OwnedSat sat) { store(std::move(sat)); });
    hidden_.forget_some(found_);
  }

  /// Against one of the same ends, both kept: they are kept by the order of their seeds.
  static bool wins(const Csat& sat, const Csat& other) {
    return sat.score > other.score || (sat.score == other.score && sat.unit_begin < other.unit_begin);
  }

  /// To the result. In a satellite array nearly as many repeats as it has bases may be the same stretch. Those of one
  /// unit length stand one behind the other in the sorted list and overlap with any other repeat alike; so whatever the
  /// overlap removal decides, it decides by the one of the highest score, the first of several. Only that is stored.
  void add(OwnedSat sat) {
    found_.push_back(sat.get());
    const Csat& added = *sat.release();
    if (!global_remove_mostly_hidden || added.length() < shortest_long_repeat) return;
    auto hidden = std::prev(found_.end());
    const auto [entry, is_new] = long_repeats_.try_emplace({added.pos_left, added.pos_right_end}, hidden);
    if (is_new) return;
    if (wins(added, **entry->second)) std::swap(entry->second, hidden);
    sat_alloc.give_back(*hidden);
    found_.erase(hidden);
  }

  template <typename Visit>
  void for_each_seed(const CandidateSet& set, std::size_t first_word, Visit visit) const {
    set.for_each_word(first_word, first_word + part_words_, [&](std::size_t word, std::uint64_t rest) {
      const char* const first = controller_.seq.begin() + 64 * word;
      for (; rest != 0; rest &= rest - 1) visit(first + __builtin_ctzll(rest));
    });
  }

  Part try_ahead(const CandidateSet& set, std::size_t first_word, unsigned worker) const {
    Part part;
    part.tried.resize(part_words_);
    GrowthAids& aids = controller_.aids_of(worker);
    const char* const begin = controller_.seq.begin() + 64 * first_word;
    CAnchorSeq anchors = anchors_.part(first_word, part_words_ + static_cast<std::size_t>(unit_length_) / 64 + 1);
    const char* next_N = begin;
    const char* failed_end = begin;
    OwnedSat spare;
    for_each_seed(set, first_word, [&](const char* p) {
      if (!part.kept.empty()) grow_on(part.kept.back(), p + unit_length_ + 1, anchors, aids);
      anchors.settle(p - 1, unit_length_ + 2);
      if (p >= failed_end && (!anchors.admits(p, unit_length_) || !is_unit(p, next_N))) return;
      part.tried[static_cast<std::size_t>((p - begin) / 64)] |= std::uint64_t{1} << ((p - begin) % 64);
      if (p < failed_end) return;
      Growth growth = Growth::finished;
      failed_end = grow(p, spare, aids, growth);
      if (failed_end > p) return;
      part.kept.push_back({p, std::move(spare), growth, untold_of(aids, growth)});
      anchors.cover(*part.kept.back().sat, part.kept.back().untold);
    });
    return part;
  }

  /// Up to `end` at least, if its right end has paused.
  void grow_on(Kept& kept, const char* end, CAnchorSeq& anchors, GrowthAids& aids) const {
    if (kept.growth != Growth::paused_forward || kept.sat->pos_right_end >= end) return;
    const PausePoint pause{end - kept.sat->pos_right_end + pause_.bases, pause_.score};
    if (!controller_.grow_on(*kept.sat, aids, pause)) kept.growth = Growth::paused_backward;
    kept.untold.insert(kept.untold.end(), aids.forward.untold.begin(), aids.forward.untold.end());
    anchors.cover(*kept.sat, kept.untold);
  }

  void settle_part(const CandidateSet& set, std::size_t first_word, Part& part) {
    const char* const begin = controller_.seq.begin() + 64 * first_word;
    controller_.report_progress(begin, unit_length_);
    auto next_kept = part.kept.begin();
    for_each_seed(set, first_word, [&](const char* p) {
      const auto at = static_cast<std::size_t>(p - begin);
      settle(p - 1, unit_length_ + 2);
      if ((part.tried[at / 64] >> (at % 64) & 1) == 0) {
        if (p >= failed_end_ && anchors_.admits(p, unit_length_)) failed_end_ = try_seed(p);
        return;
      }
      const bool is_kept = next_kept != part.kept.end() && next_kept->begin == p;
      if (is_kept && anchors_.admits(p, unit_length_)) keep(std::move(*next_kept));
      if (is_kept) ++next_kept;
    });
  }

  static constexpr std::int64_t shortest_long_repeat = 512;
  /// The walks of shorter ones are not long enough.
  static constexpr std::int64_t shortest_unit_foreseen = 64;

  const CSearchController& controller_;
  const std::int64_t unit_length_;
  const Minimum minimum_;
  CAnchorSeq& anchors_;
  std::list<Csat*>& found_;
  HiddenRepeats& hidden_;
  const char* next_N_;
  const char* failed_end_ = nullptr;  ///< the seeds before it that were not tried ahead need not be tried
  OwnedSat spare_;
  std::size_t part_words_ = 0;  ///< 64 positions each; of the parts that are tried ahead
  /// The repeats from some length on that were kept, by their ends.
  std::map<std::pair<const char*, const char*>, std::list<Csat*>::iterator> long_repeats_;
  PostponedRepeats postponed_;
  const PausePoint pause_;
};

namespace {

/// To the system.
void return_free_memory() {
#ifdef __GLIBC__
  malloc_trim(0);
#endif
}

}  // namespace

void CSearchController::complete_imperfect_search() {
  const auto bases = static_cast<std::size_t>(seq.end() - seq.begin());
  HiddenRepeats some_hidden(*this, std::max(least_hidden, bases / 32));
  if (!search_all_units(some_hidden)) {
    // Rare: an array whose best repeat is found late, and wins against others than those found before.
    sat_alloc.give_back_all(imperfect_sats.sats);
    HiddenRepeats all_hidden(*this, HiddenRepeats::any_number);
    search_all_units(all_hidden);
  }
  sort_sats(imperfect_sats.sats);
}

bool CSearchController::search_all_units(HiddenRepeats& hidden) {
  lag_range_last = 0;
  CAnchorSeq anchors(seq.begin(), seq.sequence.length);
  std::int64_t first = global_min_unit_length;
  if (first == 1) {
    unit_len_1_complete_imperfect_search(anchors, imperfect_sats.sats, hidden);
    // Runs of one base never hide positions from longer units; repeats of longer units do.
    anchors.reset();
    first = 2;
  }
  for (std::int64_t length = first; length <= longest_unit(); ++length) {
    prepare_candidates(length);
    anchors.settle_all();  // the guides of the next length need the memory
    one_unit_len_complete_imperfect_search(length, anchors, imperfect_sats.sats, hidden);
    // Long repeats leave gaps between what stays.
    if (is_long()) return_free_memory();
  }
  // What is left to do takes memory of its own, and so does the report of a long repeat.
  if (is_long()) let_go_of_walks();
  const bool is_complete = hidden.settle(imperfect_sats.sats);
  if (is_long()) let_go_of_walks();
  return is_complete;
}

void CSearchController::unit_len_1_complete_imperfect_search(CAnchorSeq& anchors, std::list<Csat*>& found,
                                                             HiddenRepeats& hidden) {
  // A window of one base is free at both ends or at none, and any base but N is a unit.
  one_unit_len_complete_imperfect_search(1, anchors, found, hidden);
}

void CSearchController::one_unit_len_complete_imperfect_search(std::int64_t unit_length, CAnchorSeq& anchors,
                                                               std::list<Csat*>& found, HiddenRepeats& hidden) {
  ImperfectPass pass(*this, unit_length, anchors, found, hidden);
  if (workers.count() == 1) {
    for_each_candidate(
        unit_length, rules.maximum_depth, anchors,
        [&pass](const char* first, std::ptrdiff_t count) { pass.settle(first, count); },
        [&pass](const char* p) { return pass.try_seed(p); });
    pass.finish();
  } else {
    pass.run_on_threads(find_candidates(unit_length, rules.maximum_depth));
  }
}

bool CSearchController::is_long() const {
  return seq.end() - seq.begin() >= 1 << 18;
}

void CSearchController::let_go_of_walks() {
  for (std::unique_ptr<GrowthAids>& aids : growth_aids) aids.reset();
  return_free_memory();
}

/// The lag filter decides a range of unit lengths at a time; a unit length outside the present range begins the next
/// one.
void CSearchController::prepare_candidates(std::int64_t unit_length) {
  if (unit_length <= lag_range_last) return;
  lag_range_first = unit_length;
  lag_range_last = unit_length - 1;
  const auto useful = [this](std::int64_t L) {
    return !SeedFilter::is_useful(L, (*minScores)[L], rules) && LagFilter::is_useful(L, (*minScores)[L], rules);
  };
  const LagFilter filter(seq.begin(), seq.end(), rules);
  const std::int64_t last = filter.end_of_range(unit_length, longest_unit());
  std::int64_t last_useful = unit_length - 1;
  while (last_useful < last && useful(last_useful + 1)) ++last_useful;
  if (last_useful < unit_length) return;
  // Where units are long the working space of the filter should not stand beside what the walks have left, which is of
  // no use for longer units. Otherwise it would take longer to ask for the memory again.
  const bool takes_much_memory = unit_length >= 256 && is_long();
  if (takes_much_memory) {
    lag_candidates.clear();
    let_go_of_walks();
  }
  // Nearly all of the work on these unit lengths is done here.
  const auto units = static_cast<double>(last_useful - unit_length + 1);
  const auto done = static_cast<double>(unit_length - global_min_unit_length);
  lag_range_last = filter.mark_candidates(unit_length, last_useful, *minScores, lag_candidates, workers,
                                          [&](double share) { draw_progress(done + share * units); });
  if (takes_much_memory) return_free_memory();
}
