#include "search/postponed_repeats.h"

#include <algorithm>
#include <map>
#include <optional>
#include <utility>

#include "search/stretches.h"

PostponedRepeats::PostponedRepeats(const CSearchController& controller, std::int64_t unit_length, CAnchorSeq& anchors,
                                   HiddenRepeats& hidden)
    : controller_(controller),
      unit_length_(unit_length),
      anchors_(anchors),
      hidden_(hidden),
      // Their growth takes memory for each unit.
      most_repeats_(static_cast<std::size_t>(std::min(std::int64_t{1} << 17, (std::int64_t{1} << 23) / unit_length))) {}

OwnedSat PostponedRepeats::record_of(const GrowingRepeat& grown) const {
  OwnedSat sat(sat_alloc.take(at(grown.unit), at(grown.unit) + unit_length_));
  grown.store(*sat, at(0));
  return sat;
}

void PostponedRepeats::note_end(std::uint32_t right_end) {
  last_end_ = std::max(last_end_, right_end);
  if (!open_.empty()) open_.back().later_end = std::max(open_.back().later_end, right_end);
}

void PostponedRepeats::postpone(const Csat& sat, Growth growth, const std::vector<GuidedStretch>& untold) {
  anchors_.cover(sat, untold);
  const GrowingRepeat grown(sat, at(0));
  if (growth == Growth::paused_forward) {
    open_.push_back({static_cast<std::uint32_t>(repeats_.size()), grown.right_end});
  } else {
    note_end(grown.right_end);
  }
  repeats_.push_back({grown, growth, true});
}

void PostponedRepeats::note_kept(const Csat& sat) {
  repeats_.push_back({GrowingRepeat(sat, at(0)), Growth::finished, false});
  note_end(repeats_.back().grown.right_end);
}

bool PostponedRepeats::reach(const char* end) {
  while (!open_.empty()) {
    const std::uint32_t right_end = repeats_[open_.back().number].grown.right_end;
    const std::ptrdiff_t bases = end - at(right_end);
    if (bases <= 0) return true;
    const bool is_far_behind = open_.size() > 1 && bases > most_bases_behind;
    if (is_far_behind && bases_to_catch_up_ <= 0) return false;
    const std::int64_t grown = grow_on(std::min(end, at(right_end) + most_bases_at_once)) - right_end;
    if (is_far_behind) bases_to_catch_up_ -= grown + bases_of_fall;
  }
  return true;
}

bool PostponedRepeats::lie_before(const char* position) const {
  return open_.empty() && at(last_end_) < position;
}

std::uint32_t PostponedRepeats::grow_on(const char* end) {
  const Open open = open_.back();
  GrowingRepeat& grown = repeats_[open.number].grown;
  const OwnedSat sat = record_of(grown);
  const char* const old_end = sat->pos_right_end;
  GrowthAids& aids = controller_.aids_of(0);
  const bool pauses = controller_.grow_on(*sat, aids, {end - old_end + bases_ahead, grown.score});
  grown = GrowingRepeat(*sat, at(0));
  // Before the old end, and where those end that were kept behind it, nothing changes.
  sat->pos_left = std::max(old_end, at(open.later_end));
  if (sat->pos_left < sat->pos_right_end) {
    const auto lies_before = [&sat](const Csat::Event& event) { return event.first < sat->pos_left; };
    const auto kept = std::remove_if(sat->missense.begin(), sat->missense.end(), lies_before);
    sat->missense.size = static_cast<std::size_t>(kept - sat->missense.begin());
    anchors_.cover(*sat, aids.forward.untold);
  }
  if (!pauses) {
    repeats_[open.number].growth = Growth::paused_backward;
    open_.pop_back();
    note_end(std::max(open.later_end, grown.right_end));
  }
  return grown.right_end;
}

void PostponedRepeats::finish(const Wanted& is_wanted, const Store& store) {
  bases_to_catch_up_ = least_to_catch_up;
  grow_to_ends();
  find_visible();
  for (const Repeat& repeat : repeats_) {
    if (repeat.is_visible) cover_anew(repeat.grown);
  }
  for (const Repeat* repeat : best_of_each_stretch()) {
    OwnedSat sat = record_of(repeat->grown);
    if (is_wanted(*sat)) store(std::move(sat));
  }
  repeats_.clear();
  open_.clear();
  last_end_ = 0;
}

void PostponedRepeats::grow_to_ends() {
  Stretches covered;
  std::vector<Repeat*> seen;
  std::size_t most = 1;
  const auto grow = [&] {
    grow_side_by_side(seen);
    for (const Repeat* repeat : seen) covered.add(repeat->stretch());
    seen.clear();
    most *= 4;
  };
  for (auto repeat = repeats_.rbegin(); repeat != repeats_.rend(); ++repeat) {
    if (repeat->growth == Growth::finished) {
      covered.add(repeat->stretch());
      continue;
    }
    const std::optional<Stretch> around = covered.around(repeat->stretch());
    repeat->is_hidden = around && controller_.stays_within(repeat->grown, repeat->growth, unit_length_, *around);
    if (repeat->is_hidden) {
      hidden_.add(repeat->grown, repeat->growth, unit_length_, *around);
    } else {
      seen.push_back(&*repeat);
      if (seen.size() == most) grow();
    }
  }
  grow();
}

void PostponedRepeats::grow_side_by_side(const std::vector<Repeat*>& repeats) {
  std::vector<GrowingRepeat*> forward;
  std::vector<GrowingRepeat*> backward;
  for (Repeat* repeat : repeats) {
    bases_to_catch_up_ -= repeat->stretch().length();
    if (repeat->growth == Growth::paused_forward) forward.push_back(&repeat->grown);
    backward.push_back(&repeat->grown);
    repeat->growth = Growth::finished;
  }
  controller_.finish_growth(forward, backward, unit_length_);
  for (const Repeat* repeat : repeats) bases_to_catch_up_ += repeat->stretch().length();
}

/// A repeat has no anchors to be seen where later ones cover it.
void PostponedRepeats::find_visible() {
  Stretches covered;
  for (auto repeat = repeats_.rbegin(); repeat != repeats_.rend(); ++repeat) {
    repeat->is_visible = !repeat->is_hidden && !covered.around(repeat->stretch());
    if (repeat->is_visible) covered.add(repeat->stretch());
  }
}

void PostponedRepeats::cover_anew(const GrowingRepeat& grown) {
  const OwnedSat sat(sat_alloc.take(at(grown.unit), at(grown.unit) + unit_length_));
  GrowthAids& aids = controller_.aids_of(0);
  controller_.grow_imperfect(*sat, aids);
  anchors_.cover(*sat, aids.untold());
}

/// Of those with the same ends the first one of the highest score.
std::vector<const PostponedRepeats::Repeat*> PostponedRepeats::best_of_each_stretch() const {
  std::map<std::pair<std::uint32_t, std::uint32_t>, const Repeat*> best;
  for (const Repeat& repeat : repeats_) {
    if (!repeat.was_postponed || repeat.is_hidden) continue;
    const GrowingRepeat& grown = repeat.grown;
    const Repeat*& other = best.try_emplace({grown.left, grown.right_end}, &repeat).first->second;
    if (grown.score > other->grown.score) other = &repeat;
  }
  std::vector<const Repeat*> repeats;
  repeats.reserve(best.size());
  for (const auto& [ends, repeat] : best) repeats.push_back(repeat);
  return repeats;
}
