#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <memory>
#include <optional>
#include <random>
#include <string>
#include <unordered_map>
#include <utility>
#include <vector>

#include "search/unit_class.h"
#include "search/unit_guide.h"

/// The guides of one sequence, one direction and one thread, and the way of the present walk beside them. They are let
/// go of where they would take more memory than a limit.
template <bool forward>
class WalkGuides {
 public:
  /// A way of the present walk's guide.
  struct Led {
    std::shared_ptr<const UnitGuide> guide;
    UnitGuide::Way way;
  };

  /// The sequence, half-open range.
  WalkGuides(const char* begin, const char* end, const ExtensionRules& rules)
      : first_base_(begin),
        rules_(rules),
        most_bytes_(std::size_t{4} << 20),
        bases_between_lines_(std::max<std::int64_t>(512, (end - begin) / 2048)),
        is_usable_(end - begin <= longest_sequence) {}

  /// Lets go of all guides.
  void forget() {
    guides_.clear();
    guide_.reset();
    bytes_ = 0;
  }

  /// To be called before the steps of a walk.
  void begin_walk(const UnitCircle& circle) {
    leave();
    if (guide_) note_size();
    guide_.reset();
    if (circle.length() != circle_.length()) forget();
    circle_ = circle;
  }

  /// Whether guides are looked for where a walk has stopped behind so many bases that were taken without a step: where
  /// they crossed a line. Walks that meet have the same checkpoints from there on.
  bool is_checkpoint(const Front<forward>& front, std::int64_t bases) const {
    const std::int64_t position = front.position - first_base_;
    return position / bases_between_lines_ != (forward ? position - bases : position + bases) / bases_between_lines_;
  }

  /// How a walk goes on from a checkpoint at which everything is permitted, up to where it has gained `too_little` or
  /// less; nothing if no guide knows. To be told of its steps from where that ends on.
  std::optional<Led> lead(const Front<forward>& front, std::int64_t too_little) {
    if (!is_usable_) return {};
    if (!guide_) find_guide();
    if (guide_->is_in_leg()) {
      end_step(front);
      guide_->end_leg(place_of(front));
      count_bytes();
    }
    const UnitGuide::Place place = place_of(front);
    const std::uint32_t leg = guide_->leg_at(place);
    if (leg == UnitGuide::unknown) {
      guide_->begin_leg(place);
      return {};
    }
    Led led{guide_, guide_->follow(leg, too_little)};
    if (led.way.last_phase != UnitGuide::unknown) guide_->begin_leg({led.way.last.position, led.way.last_phase});
    return led;
  }

  /// Tells of a step that the walk takes by itself where everything is permitted.
  void note(const Front<forward>& front, char kind) {
    if (!guide_ || !guide_->is_in_leg()) return;
    end_step(front);
    step_ = {front.position, front.score, kind};
  }

  /// To be called where the steps told of so far and those to come do not follow each other, and behind the last step.
  void leave() {
    if (guide_) guide_->drop_leg();
    step_.kind = no_step;
  }

 private:
  struct Step {
    const char* position = nullptr;  ///< of the front before it
    std::int64_t score = 0;
    char kind = no_step;
  };
  static constexpr char no_step = '-';

  static constexpr std::ptrdiff_t longest_sequence = std::ptrdiff_t{1} << 30;

  UnitGuide::Place place_of(const Front<forward>& front) const {
    return {static_cast<std::uint32_t>(front.position - first_base_),
            static_cast<std::uint32_t>(unit_->phase_of(front.unit - circle_.begin))};
  }

  /// The front stands at the stop behind the last step.
  void end_step(const Front<forward>& front) {
    if (step_.kind == no_step) return;
    const std::int64_t taken = std::abs(front.position - step_.position);
    const std::int64_t cost = step_.kind == 'M' ? rules_.mismatch_score : rules_.indel_score;
    guide_->add_step(step_.kind, static_cast<std::uint32_t>(step_.kind == 'D' ? taken : taken - 1),
                     static_cast<std::uint32_t>(front.score - step_.score - cost));
    step_.kind = no_step;
  }

  void find_guide() {
    unit_.emplace(circle_);
    std::shared_ptr<UnitGuide>& guide = guides_[unit_->text()];
    const bool is_new = !guide;
    if (is_new) {
      guide = std::make_shared<UnitGuide>(forward, rules_);
      bytes_ += bytes_of(*guide);
    }
    guide_ = guide;
    bytes_of_guide_ = guide_->size();
    if (is_new) let_go_of_others();
  }

  /// With its unit's text, and what the map takes for it, or nearly so.
  std::size_t bytes_of(const UnitGuide& guide) const {
    return guide.size() + static_cast<std::size_t>(circle_.length()) + 128;
  }

  void note_size() {
    bytes_ += guide_->size() - bytes_of_guide_;
    bytes_of_guide_ = guide_->size();
  }

  void count_bytes() {
    note_size();
    let_go_of_others();
    if (bytes_ <= most_bytes_) return;
    forget();
    find_guide();
  }

  /// Lets go of guides that are too many. Units come again and again in turn where there are many: to let go of the one
  /// used last would let go of the next one that is needed. So any will do.
  void let_go_of_others() {
    while (bytes_ > most_bytes_ && guides_.size() > 1) {
      std::size_t bucket = random_() % guides_.bucket_count();
      while (guides_.bucket_size(bucket) == 0) bucket = (bucket + 1) % guides_.bucket_count();
      const auto other = guides_.begin(bucket);
      if (other->second == guide_) continue;
      bytes_ -= bytes_of(*other->second);
      guides_.erase(std::string(other->first));
    }
  }

  const char* const first_base_;
  const ExtensionRules rules_;
  const std::size_t most_bytes_;
  const std::int64_t bases_between_lines_;
  const bool is_usable_;
  std::unordered_map<std::string, std::shared_ptr<UnitGuide>> guides_;  ///< by the texts of their units
  std::size_t bytes_ = 0;                                               ///< of all guides
  std::minstd_rand random_;

  UnitCircle circle_{nullptr, nullptr};  ///< of the present walk, and so below
  std::optional<UnitClass> unit_;
  std::shared_ptr<UnitGuide> guide_;  ///< null until the walk comes to a checkpoint
  std::size_t bytes_of_guide_ = 0;
  Step step_;  ///< the last one that the walk took, if it is told of
};
