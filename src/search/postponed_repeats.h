#pragma once

#include <cstddef>
#include <cstdint>
#include <deque>
#include <functional>
#include <vector>

#include "satellite/Csat.h"
#include "search/CAnchorSeq.h"
#include "search/CSearchController.h"
#include "search/growing_repeat.h"
#include "search/hidden_repeats.h"

/// Kept repeats of one unit length that have not grown to their ends yet.
///
/// In a satellite array thousands of seeds may each grow over the whole array, but nearly all of these repeats are the
/// same stretch, and only one of them is stored. Which later seeds may be tried depends on a little of each: its
/// anchors ahead, up to where the next one is kept. So repeats that are long enough to be kept stay there; the one kept
/// last grows on with the search, and in the end all of them grow side by side. Nothing is left of them then but ends
/// and a score: they are stored without events. Those whose anchors are to be seen grow anew.
///
/// Repeats come in the order in which they are kept. The anchors are right from the present seed on up to where
/// `reach` was called for, and everywhere behind `finish`. Controller and anchors must outlive the object.
class PostponedRepeats {
 public:
  /// Whether a repeat of these ends and this score, of this unit, is to be stored.
  using Wanted = std::function<bool(const Csat&)>;
  using Store = std::function<void(OwnedSat)>;

  PostponedRepeats(const CSearchController& controller, std::int64_t unit_length, CAnchorSeq& anchors,
                   HiddenRepeats& hidden);

  bool empty() const { return repeats_.empty(); }

  /// A repeat that has paused. `untold` as for CAnchorSeq.
  void postpone(const Csat& sat, Growth growth, const std::vector<GuidedStretch>& untold);

  /// A repeat that was kept and covered while others wait.
  void note_kept(const Csat& sat);

  /// Whether no more should be kept waiting.
  bool is_full() const { return repeats_.size() >= most_repeats_; }

  /// Makes the anchors right up to `end`. False if only `finish` can.
  bool reach(const char* end);

  /// Whether none of them ends at the position or behind it.
  bool lie_before(const char* position) const;

  /// Grows all of them to their ends. Of those that have the same ends one is stored, if it is wanted.
  void finish(const Wanted& is_wanted, const Store& store);

 private:
  struct Repeat {
    GrowingRepeat grown;
    Growth growth;
    bool was_postponed;       ///< otherwise it was kept with the others, and is stored
    bool is_hidden = false;   ///< it certainly lies where later ones do
    bool is_visible = false;  ///< its anchors are, or some of them

    Stretch stretch() const { return {grown.left, grown.right_end}; }
  };

  /// A repeat whose right end has paused.
  struct Open {
    std::uint32_t number;
    std::uint32_t later_end;  ///< where those kept behind it end
  };

  /// So far a repeat grows on by itself, at least.
  static constexpr std::ptrdiff_t bases_ahead = 512;
  /// Further only as long as the bases last that it may take to catch up.
  static constexpr std::ptrdiff_t most_bases_behind = 1 << 10;
  static constexpr std::int64_t least_to_catch_up = 1 << 14;
  /// A walk that ends goes on behind its best state, by so much or more.
  static constexpr std::int64_t bases_of_fall = 1 << 11;
  /// The events of more would take memory.
  static constexpr std::ptrdiff_t most_bases_at_once = 1 << 16;

  const char* at(std::uint32_t offset) const { return controller_.seq.begin() + offset; }
  OwnedSat record_of(const GrowingRepeat& grown) const;
  void note_end(std::uint32_t right_end);
  /// The one kept last grows on to `end`, and covers what is its own there. Returns its right end.
  std::uint32_t grow_on(const char* end);
  /// Those that may be seen.
  void grow_to_ends();
  void grow_side_by_side(const std::vector<Repeat*>& repeats);
  void find_visible();
  void cover_anew(const GrowingRepeat& grown);
  std::vector<const Repeat*> best_of_each_stretch() const;

  const CSearchController& controller_;
  const std::int64_t unit_length_;
  CAnchorSeq& anchors_;
  HiddenRepeats& hidden_;
  const std::size_t most_repeats_;
  std::deque<Repeat> repeats_;  ///< since the first of those that wait; takes no more memory while it grows
  std::vector<Open> open_;      ///< of those
  std::uint32_t last_end_ = 0;  ///< of all whose right end has grown
  /// To be gone alone by those far behind: as many as it took the ones that waited before to grow to their ends, which
  /// they would have to do otherwise. So it takes twice the work at most, and much less where most of them are hidden
  /// once later ones have grown further.
  std::int64_t bases_to_catch_up_ = least_to_catch_up;
};
