// The extension of a repeat into an imperfect one: a greedy walk with a bounded lookahead.

#include <algorithm>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "search/CSearchController.h"
#include "search/bare_walk.h"
#include "search/imperfect_walk.h"
#include "search/unit_class.h"
#include "search/walk_bundle.h"

void CSearchController::extend_imperfect_forward(Csat& sat, const char* seq_end) const {
  ImperfectWalk<true>(sat, seq_end, rules, planes, seq.begin(), aids_of(0).forward, nullptr)
      .run(WalkPart::whole, PausePoint::never());
}

void CSearchController::extend_imperfect_backward(Csat& sat, const char* left_limit) const {
  ImperfectWalk<false>(sat, left_limit + 1, rules, planes, seq.begin(), aids_of(0).backward, nullptr)
      .run(WalkPart::whole, PausePoint::never());
}

Growth CSearchController::grow_imperfect(Csat& seed, GrowthAids& aids, const PausePoint& pause) const {
  ImperfectWalk<true> forward(seed, seq.end(), rules, planes, seq.begin(), aids.forward, &aids.forward.untold);
  if (forward.run(WalkPart::whole, pause)) return Growth::paused_forward;
  ImperfectWalk<false> backward(seed, seq.begin(), rules, planes, seq.begin(), aids.backward, &aids.backward.untold);
  const bool pauses = backward.run(WalkPart::whole, pause);
  seed.remove_Ns_at_ends();
  return pauses ? Growth::paused_backward : Growth::finished;
}

std::optional<std::int64_t> CSearchController::foresee_score(const Csat& seed, GrowthAids& aids) const {
  if (rules.maximum_depth == 0) return std::nullopt;  // no step is taken
  const UnitCircle unit{seed.unit_begin, seed.unit_end};
  const auto forward =
      BareWalk<true>(unit, seq.end(), rules, planes, seq.begin(), aids.forward).foresee(Front<true>::of(seed));
  if (!forward) return std::nullopt;
  auto left = Front<false>::of(seed);
  left.score = forward->score;
  const auto backward = BareWalk<false>(unit, seq.begin(), rules, planes, seq.begin(), aids.backward).foresee(left);
  if (!backward) return std::nullopt;
  aids.forward.spare_height = forward->spare_height;
  return backward->score;
}

bool CSearchController::grow_on(Csat& sat, GrowthAids& aids, const PausePoint& pause) const {
  ImperfectWalk<true> forward(sat, seq.end(), rules, planes, seq.begin(), aids.forward, &aids.forward.untold);
  const bool pauses = forward.run(WalkPart::rest, pause);
  sat.remove_Ns_at_ends();
  return pauses;
}

bool CSearchController::note_event_at_left_end(Csat& seed, GrowthAids& aids) const {
  const UnitCircle unit{seed.unit_begin, seed.unit_end};
  const BeginEvent event = BareWalk<false>(unit, seq.begin(), rules, planes, seq.begin(), aids.backward)
                               .event_at_begin(Front<false>::of(seed));
  if (event == BeginEvent::deletion) seed.missense.push_back({seed.pos_left, 'D'});
  return event != BeginEvent::unknown;
}

namespace {

/// Of one unit length.
template <bool forward>
std::vector<GrowingRepeat*> grow_side_by_side(const std::vector<GrowingRepeat*>& repeats, std::int64_t unit_length,
                                              std::int64_t most_bases, const char* limit, const ExtensionRules& rules,
                                              const BasePlanes& planes, const char* first_base,
                                              WalkAids<forward>& aids) {
  WalkBundle<forward> bundle(planes, first_base, unit_length, rules, aids.unit_words);
  const auto go_to_line = [&](const char* line, auto& walk) {
    return BareWalk<forward>(walk.circle, limit, rules, planes, first_base, aids).go_to_line(line, walk);
  };
  return bundle.finish(repeats, go_to_line, most_bases);
}

}  // namespace

bool CSearchController::stays_within(const GrowingRepeat& grown, Growth growth, std::int64_t unit_length,
                                     const Stretch& stretch) const {
  GrowthAids& aids = aids_of(0);
  const char* const first_base = seq.begin();
  const UnitCircle unit{first_base + grown.unit, first_base + grown.unit + unit_length};
  std::int64_t most_score = grown.score;
  if (growth == Growth::paused_forward) {
    BareWalk<true> walk(unit, seq.end(), rules, planes, first_base, aids.forward);
    if (!walk.ends_by(first_base + stretch.end, first_base + grown.right_end, grown.score, most_score)) return false;
    most_score += stretch.end - grown.right_end;
  }
  BareWalk<false> walk(unit, first_base, rules, planes, first_base, aids.backward);
  return walk.ends_by(first_base + stretch.begin, first_base + grown.left, grown.score, most_score);
}

CSearchController::GrowingRepeats CSearchController::finish_growth(const GrowingRepeats& forward,
                                                                   const GrowingRepeats& backward,
                                                                   std::int64_t unit_length,
                                                                   std::int64_t most_bases) const {
  const char* const first_base = seq.begin();
  GrowingRepeats others = share_out(forward, unit_length, [&](const GrowingRepeats& share, GrowthAids& aids) {
    return grow_side_by_side(share, unit_length, most_bases, seq.end(), rules, planes, first_base, aids.forward);
  });
  const GrowingRepeats left = share_out(backward, unit_length, [&](const GrowingRepeats& share, GrowthAids& aids) {
    return grow_side_by_side(share, unit_length, most_bases, first_base, rules, planes, first_base, aids.backward);
  });
  others.insert(others.end(), left.begin(), left.end());
  std::sort(others.begin(), others.end());
  for (GrowingRepeat* grown : backward) {
    if (std::binary_search(others.begin(), others.end(), grown)) continue;
    while (first_base[grown->right_end - 1] == 'N') --grown->right_end;
    while (first_base[grown->left] == 'N') ++grown->left;
  }
  return others;
}

CSearchController::GrowingRepeats CSearchController::share_out(const GrowingRepeats& repeats, std::int64_t unit_length,
                                                               const GrowShare& grow) const {
  std::vector<GrowingRepeats> shares(workers.count());
  for (GrowingRepeat* repeat : repeats) {
    const char* const unit = seq.begin() + repeat->unit;
    const bool is_alone = shares.size() == 1;
    const std::size_t mixed = is_alone ? 0 : std::hash<std::string>()(UnitClass({unit, unit + unit_length}).text());
    shares[mixed % shares.size()].push_back(repeat);
  }
  std::vector<GrowingRepeats> returned(shares.size());
  workers.run(shares.size(),
              [&](std::size_t number, unsigned worker) { returned[number] = grow(shares[number], aids_of(worker)); });
  GrowingRepeats all;
  for (const GrowingRepeats& some : returned) all.insert(all.end(), some.begin(), some.end());
  return all;
}
