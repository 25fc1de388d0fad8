#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>
#include <tuple>
#include <unordered_map>
#include <utility>
#include <vector>

#include "search/base_planes.h"
#include "search/front.h"
#include "search/growing_repeat.h"
#include "search/step_choice.h"
#include "search/unit_class.h"
#include "search/unit_runs.h"
#include "search/unit_words.h"

/// One walk, or several that are one, of which only the best state is asked for.
template <bool forward>
struct BundledWalk {
  UnitCircle circle;
  Front<forward> front;  ///< anywhere on the way: matches may lie ahead
  std::int64_t best_score;
  const char* best_position;  ///< of the earliest state of that score, perhaps without N behind it
  const char* best_unit;      ///< expected there
  bool is_over = false;

  BundledWalk(const UnitCircle& unit, const Front<forward>& begin)
      : circle(unit), front(begin), best_score(begin.score), best_position(begin.position), best_unit(begin.unit) {}

  void take_if_best(const Front<forward>& state) {
    if (state.score <= best_score) return;
    best_score = state.score;
    best_position = state.position;
    best_unit = state.unit;
  }
};

/// The way of a walk from one place to another. Gains are of score, since its beginning.
template <bool forward>
struct WalkLeg {
  bool depends_on_score = false;  ///< somewhere it does not permit everything
  std::int64_t unit_bases = 0;    ///< taken
  std::int64_t unit_bases_seen = 0;
  std::int64_t gain = 0;
  std::int64_t lowest = 0;  ///< gain at a stop
  std::int64_t highest = 0;
  const char* highest_position = nullptr;  ///< the first one; null if nothing is gained anywhere
  std::int64_t highest_unit_bases = 0;     ///< taken up to there

  explicit WalkLeg(std::int64_t score) : first_score_(score) {}

  void take_run(std::int64_t matches) { see(unit_bases += matches); }
  /// N, which a shorter leg might not come to.
  void take_Ns() { unit_bases_seen = StepChoice::whole_unit; }

  void take_if_best(const Front<forward>& front) {
    if (front.score - first_score_ <= highest) return;
    highest = front.score - first_score_;
    highest_position = front.position;
    highest_unit_bases = unit_bases;
  }

  /// Where everything is permitted the choice does not depend on the score.
  void stop(std::int64_t score, bool all_is_permitted) {
    lowest = std::min(lowest, score - first_score_);
    if (!all_is_permitted) depends_on_score = true;
  }

  void take_step(const StepChoice& step) {
    see(step.unit_bases_seen > most_counted ? step.unit_bases_seen : unit_bases + step.unit_bases_seen);
    if (step.kind != 'I') ++unit_bases;
  }

  void finish(std::int64_t score) { gain = score - first_score_; }

 private:
  static constexpr std::int64_t most_counted = 1 << 20;

  void see(std::int64_t bases) { unit_bases_seen = std::max(unit_bases_seen, bases); }

  std::int64_t first_score_;
};

/// Walks with many units of one length through one sequence, side by side from line to line, a line being a place in
/// the sequence.
///
/// Where a walk goes depends on the unit and on the phase in which it stands where, as long as the score permits
/// everything. So walks with rotations of one unit that have met in the same phase at a line are one walk from there
/// on, a group, each with a score that differs from the group's by a constant; or for ever, if the scores are equal.
///
/// Where it goes from one line to the next depends only on the unit bases that it sees on the way. The units of a
/// satellite are alike, so many groups that stand at a line see there what another one has seen: they go the same way,
/// and need not go it.
///
/// The sequence is the one that `planes` was made of and that begins at `first_base`; both must outlive the bundle.
template <bool forward>
class WalkBundle {
 public:
  using Walk = BundledWalk<forward>;
  using Leg = WalkLeg<forward>;

  WalkBundle(const BasePlanes& planes, const char* first_base, std::int64_t unit_length, const ExtensionRules& rules,
             UnitWords& unit_words)
      : planes_(planes),
        first_base_(first_base),
        unit_length_(unit_length),
        unit_words_(unit_words),
        least_height_(1 - rules.deepest_lookahead()) {}

  /// Lets the repeats grow to their ends in this direction, or so many bases or more if the end is not reached before.
  /// Returns those whose end is not known then: they stand where their score was highest. `go_to_line(line, walk)`
  /// takes a walk to a line, or over it, or to its end, and returns its leg.
  template <typename GoToLine>
  std::vector<GrowingRepeat*> finish(std::vector<GrowingRepeat*> repeats, GoToLine go_to_line,
                                     std::int64_t most_bases = any_bases) {
    const std::int64_t most_lines = most_bases / bases_between_lines;
    std::vector<GrowingRepeat*> unfinished;
    // The one that is reached first comes last.
    std::sort(repeats.begin(), repeats.end(),
              [this](const GrowingRepeat* a, const GrowingRepeat* b) { return comes_before(end_of(*b), end_of(*a)); });
    std::int64_t line = 0;
    while (!groups_.empty() || !repeats.empty()) {
      if (groups_.empty()) line = line_before(end_of(*repeats.back()));
      const char* const begin = position_of(line);
      const char* const end = position_of(line + 1);
      for (; !repeats.empty() && comes_before(end_of(*repeats.back()), end); repeats.pop_back()) {
        groups_.push_back(group_of(*repeats.back()));
        groups_.back().last_line = line > any_bases - most_lines ? any_bases : line + most_lines;
      }
      // Some are split off on the way.
      for (std::size_t number = 0; number < groups_.size(); ++number) {
        if (comes_before(groups_[number].walk.front.position, end)) go(number, begin, end, go_to_line);
      }
      if (line % lines_between_meetings == 0) end_those_fallen();
      drop_ended(line, unfinished);
      ++line;
      if (line % lines_between_meetings == 0) join_those_at(end);
    }
    return unfinished;
  }

 private:
  using Bases = UnitRuns::Bases;

  /// Half of what is looked at ahead of most walks.
  static constexpr std::int64_t bases_between_lines = 32;
  static constexpr std::int64_t lines_between_meetings = 16;
  static constexpr std::int64_t most_seen = 2 * UnitRuns::width;
  static constexpr std::size_t slots = 2048;
  /// Above the least height: groups of different scores that would soon be split again are not made.
  static constexpr std::int64_t spare_height = 64;
  static constexpr std::int64_t no_score = INT64_MIN / 2;

  struct Member {
    GrowingRepeat* repeat;
    std::int64_t lead;          ///< of its score before the group's
    std::uint32_t class_phase;  ///< of its first unit base
  };

  /// Walks that are in the same place and phase, with rotations of one unit. One of them has no lead.
  struct Group {
    Walk walk;  ///< best is what the group's score has had since the members were last told of it
    std::uint32_t unit_class;
    std::uint32_t class_phase;  ///< of the first base of its circle
    std::uint32_t class_period;
    std::int64_t least_lead;
    std::int64_t highest_lead;
    std::vector<Member> members;
    /// Below the best score, before it is asked whether the walk may come back to it.
    std::int64_t fall_to_ask = UnitWords::least_fall;
    std::int64_t last_line = 0;  ///< behind it the walk may pause
  };

  /// A leg from a line to the next one. Distances are counted as the walk goes.
  struct Entry {
    const char* begin = nullptr;
    Bases bases;
    Bases bases_behind;  ///< those; only where they were seen
    std::int32_t gain = 0;
    std::int32_t lowest = 0;
    std::int32_t highest = 0;
    std::uint16_t unit_bases = 0;
    std::uint16_t highest_bases = 0;
    std::uint16_t highest_unit_bases = 0;
  };

  static std::size_t slot_of(const Bases& near, const Bases& behind = {}) {
    return UnitRuns::hash(near, behind) % slots;
  }

  static bool comes_before(const char* a, const char* b) { return forward ? a < b : a > b; }

  const char* position_of(std::int64_t line) const {
    return first_base_ + (forward ? line : -line) * bases_between_lines;
  }
  /// The last line at or before a position, as the walks go.
  std::int64_t line_before(const char* position) const {
    const std::int64_t base = position - first_base_;
    return forward ? base / bases_between_lines : -((base + bases_between_lines - 1) / bases_between_lines);
  }

  const char* end_of(const GrowingRepeat& repeat) const {
    return first_base_ + (forward ? repeat.right_end : repeat.left);
  }

  Group group_of(GrowingRepeat& repeat) {
    const char* const begin = first_base_ + repeat.unit;
    const UnitCircle circle{begin, begin + unit_length_};
    const char* const expected = first_base_ + (forward ? repeat.unit_right : repeat.unit_left);
    const UnitClass unit(circle);
    const auto next_class = static_cast<std::uint32_t>(classes_.size());
    const std::uint32_t unit_class = classes_.emplace(unit.text(), next_class).first->second;
    const auto class_phase = static_cast<std::uint32_t>(unit.phase_of(0));
    return {Walk(circle, {end_of(repeat), expected, repeat.score, 0}),
            unit_class,
            class_phase,
            static_cast<std::uint32_t>(unit.period()),
            0,
            0,
            {{&repeat, 0, class_phase}}};
  }

  /// Takes a group to the line `end` or over it, at most to where it is over.
  template <typename GoToLine>
  void go(std::size_t number, const char* begin, const char* end, GoToLine& go_to_line) {
    Group& group = groups_[number];
    const Walk before = group.walk;
    const bool may_share = groups_.size() > 1 && before.front.position == begin;
    const Bases near = UnitRuns(planes_, first_base_, before.circle).next_bases(before.front);
    if (may_share && take_known(group, near, end)) return;
    const Leg leg = go_to_line(end, group.walk);
    if (group.least_lead < 0 || group.highest_lead > 0) {
      const std::int64_t height = before.front.score + before.circle.length() + leg.lowest;
      if (leg.depends_on_score || height + group.least_lead < least_height_) split(number, before, leg);
    }
    const Group& gone = groups_[number];
    if (may_share && gone.walk.front.position == end && !gone.walk.is_over) note(leg, before, near);
  }

  bool take_known(Group& group, const Bases& near, const char* end) const {
    if (near_.empty()) return false;
    const UnitRuns runs(planes_, first_base_, group.walk.circle);
    const char* const begin = group.walk.front.position;
    const Entry& near_entry = near_[slot_of(near)];
    if (near_entry.begin == begin && near_entry.bases == near) return take(near_entry, end, runs, group);
    const Bases behind = runs.bases_behind_view(group.walk.front);
    const Entry& far_entry = far_[slot_of(near, behind)];
    return far_entry.begin == begin && far_entry.bases == near && far_entry.bases_behind == behind &&
           take(far_entry, end, runs, group);
  }

  /// False if the score does not permit everything on the way.
  bool take(const Entry& leg, const char* end, const UnitRuns& runs, Group& group) const {
    Walk& walk = group.walk;
    Front<forward>& front = walk.front;
    if (front.score + group.least_lead + walk.circle.length() + leg.lowest < least_height_) return false;
    if (front.score + leg.highest > walk.best_score) {
      Front<forward> best = front;
      runs.advance(best, leg.highest_unit_bases);
      best.position = front.position + (forward ? leg.highest_bases : -leg.highest_bases);
      best.score += leg.highest;
      walk.take_if_best(best);
    }
    runs.advance(front, leg.unit_bases);
    front.position = end;
    front.score += leg.gain;
    return true;
  }

  void note(const Leg& leg, const Walk& before, const Bases& near) {
    if (leg.depends_on_score || leg.unit_bases_seen > most_seen) return;
    if (near_.empty()) {
      near_.resize(slots);
      far_.resize(slots);
    }
    const char* const begin = before.front.position;
    const Bases behind = UnitRuns(planes_, first_base_, before.circle).bases_behind_view(before.front);
    Entry& entry = leg.unit_bases_seen <= UnitRuns::width ? near_[slot_of(near)] : far_[slot_of(near, behind)];
    const std::ptrdiff_t highest_bases = leg.highest_position == nullptr ? 0 : leg.highest_position - begin;
    entry.begin = begin;
    entry.bases = near;
    entry.bases_behind = behind;
    entry.gain = static_cast<std::int32_t>(leg.gain);
    entry.lowest = static_cast<std::int32_t>(leg.lowest);
    entry.highest = static_cast<std::int32_t>(leg.highest);
    entry.unit_bases = static_cast<std::uint16_t>(leg.unit_bases);
    entry.highest_bases = static_cast<std::uint16_t>(forward ? highest_bases : -highest_bases);
    entry.highest_unit_bases = static_cast<std::uint16_t>(leg.highest_unit_bases);
  }

  /// The members whose score does not permit everything on a way that the group has gone from `before` on go by
  /// themselves, those of equal scores together.
  void split(std::size_t number, const Walk& before, const Leg& leg) {
    std::vector<Member>& members = groups_[number].members;
    const std::int64_t height = before.front.score + before.circle.length() + leg.lowest;
    const auto stays = std::partition(members.begin(), members.end(), [&](const Member& member) {
      return member.lead == 0 || (!leg.depends_on_score && height + member.lead >= least_height_);
    });
    std::vector<Member> others(stays, members.end());
    members.erase(stays, members.end());
    find_leads(groups_[number]);
    std::sort(others.begin(), others.end(), [](const Member& a, const Member& b) { return a.lead < b.lead; });
    for (std::size_t first = 0; first < others.size();) {
      const std::int64_t lead = others[first].lead;
      Group part = groups_[number];
      part.walk = before;
      part.members.clear();
      for (; first < others.size() && others[first].lead == lead; ++first) {
        part.members.push_back({others[first].repeat, 0, others[first].class_phase});
      }
      part.walk.front.score += lead;
      part.walk.best_score = before.best_score + lead;
      find_leads(part);
      groups_.push_back(std::move(part));
    }
  }

  static void find_leads(Group& group) {
    group.least_lead = 0;
    group.highest_lead = 0;
    for (const Member& member : group.members) {
      group.least_lead = std::min(group.least_lead, member.lead);
      group.highest_lead = std::max(group.highest_lead, member.lead);
    }
  }

  /// Tells the members of the group's best state.
  void tell(Group& group) const {
    const auto position = static_cast<std::uint32_t>(group.walk.best_position - first_base_);
    const auto offset = static_cast<std::uint32_t>(group.walk.best_unit - group.walk.circle.begin);
    const std::uint32_t phase = group.class_phase + offset + group.class_period;
    for (const Member& member : group.members) {
      const std::int64_t score = group.walk.best_score + member.lead;
      if (score <= member.repeat->score) continue;
      member.repeat->score = static_cast<std::int32_t>(score);
      (forward ? member.repeat->right_end : member.repeat->left) = position;
      (forward ? member.repeat->unit_right : member.repeat->unit_left) =
          member.repeat->unit + (phase - member.class_phase) % group.class_period;
    }
    group.walk.best_score = no_score;
  }

  /// Walks that will certainly not come back to their best scores.
  void end_those_fallen() {
    for (Group& group : groups_) {
      Front<forward> front = group.walk.front;
      front.score += group.highest_lead;
      if (group.walk.is_over || front.score < UnitWords::least_score(unit_length_)) continue;
      const std::int64_t fall = least_fall_of(group);
      if (fall < UnitWords::least_fall) group.fall_to_ask = UnitWords::least_fall;
      if (fall < group.fall_to_ask) continue;
      group.walk.is_over = unit_words_.keeps_from(front.score + fall + 1, front, group.walk.circle);
      group.fall_to_ask = 2 * fall;
    }
  }

  /// The least distance of a member's score from its best.
  std::int64_t least_fall_of(const Group& group) const {
    std::int64_t least = INT64_MAX;
    for (const Member& member : group.members) {
      const std::int64_t best = std::max<std::int64_t>(member.repeat->score, group.walk.best_score + member.lead);
      least = std::min(least, best - member.lead - group.walk.front.score);
    }
    return least;
  }

  void drop_ended(std::int64_t line, std::vector<GrowingRepeat*>& unfinished) {
    const auto ended = std::partition(groups_.begin(), groups_.end(), [line](const Group& group) {
      return !group.walk.is_over && line < group.last_line;
    });
    for (auto group = ended; group != groups_.end(); ++group) {
      tell(*group);
      if (group->walk.is_over) continue;
      for (const Member& member : group->members) unfinished.push_back(member.repeat);
    }
    groups_.erase(ended, groups_.end());
  }

  /// Groups in the same phase at a line become one.
  void join_those_at(const char* line) {
    using Key = std::tuple<std::uint32_t, std::uint32_t, std::int64_t, std::size_t>;
    std::vector<Key> keys;
    for (std::size_t number = 0; number < groups_.size(); ++number) {
      const Group& group = groups_[number];
      if (group.walk.front.position != line) continue;
      const std::int64_t least = group.walk.front.score + group.walk.circle.length() + group.least_lead;
      const bool is_high = least >= least_height_ + spare_height;
      if (!is_high && (group.least_lead < 0 || group.highest_lead > 0)) continue;
      const auto offset = static_cast<std::uint32_t>(group.walk.front.unit - group.walk.circle.begin);
      keys.emplace_back(group.unit_class, (group.class_phase + offset) % group.class_period,
                        is_high ? INT64_MAX : group.walk.front.score, number);
    }
    std::sort(keys.begin(), keys.end());
    std::vector<char> is_joined(groups_.size());
    for (std::size_t first = 0; first < keys.size();) {
      std::size_t end = first + 1;
      const auto is_same = [&](const Key& other) {
        return std::get<0>(other) == std::get<0>(keys[first]) && std::get<1>(other) == std::get<1>(keys[first]) &&
               std::get<2>(other) == std::get<2>(keys[first]);
      };
      while (end < keys.size() && is_same(keys[end])) ++end;
      if (end > first + 1) join(keys, first, end, is_joined);
      first = end;
    }
    std::size_t kept = 0;
    for (std::size_t number = 0; number < groups_.size(); ++number) {
      if (is_joined[number] != 0) continue;
      if (kept != number) groups_[kept] = std::move(groups_[number]);
      ++kept;
    }
    groups_.erase(groups_.begin() + static_cast<std::ptrdiff_t>(kept), groups_.end());
  }

  template <typename Keys>
  void join(const Keys& keys, std::size_t first, std::size_t end, std::vector<char>& is_joined) {
    const auto number_of = [&keys](std::size_t i) { return std::get<3>(keys[i]); };
    std::size_t largest = first;
    for (std::size_t i = first; i < end; ++i) {
      if (groups_[number_of(i)].members.size() > groups_[number_of(largest)].members.size()) largest = i;
    }
    Group& all = groups_[number_of(largest)];
    tell(all);
    for (std::size_t i = first; i < end; ++i) {
      if (i == largest) continue;
      Group& group = groups_[number_of(i)];
      tell(group);
      const std::int64_t lead = group.walk.front.score - all.walk.front.score;
      for (const Member& member : group.members) {
        all.members.push_back({member.repeat, member.lead + lead, member.class_phase});
      }
      all.last_line = std::max(all.last_line, group.last_line);
      is_joined[number_of(i)] = 1;
    }
    find_leads(all);
  }

  const BasePlanes& planes_;
  const char* const first_base_;
  const std::int64_t unit_length_;
  UnitWords& unit_words_;
  const std::int64_t least_height_;  ///< above the bound of permitted steps, for a lookahead to be permitted everything
  std::vector<Entry> near_;          ///< a cache of legs that have seen no more than the nearest 64 unit bases
  std::vector<Entry> far_;           ///< and of the others
  std::vector<Group> groups_;
  std::unordered_map<std::string, std::uint32_t> classes_;  ///< by the texts of their units
};
