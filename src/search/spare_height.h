#pragma once

#include <algorithm>
#include <cstdint>

#include "search/step_choice.h"

/// By how much the heights of one walk above the bound of permitted steps might be lower without another outcome, in
/// score points. It belongs to that walk, which tells it of each of its steps in their order.
class SpareHeight {
 public:
  /// With a height lower by more than `step_spare` another step is taken, or none if that is not `possible`.
  void note_step(std::int64_t step_spare, bool another_is_possible) {
    of_steps = std::min(of_steps, step_spare);
    if (another_is_possible) behind_best = std::min(behind_best, step_spare);
  }
  /// The walk is at its best behind the last step.
  void note_best() {
    to_best = of_steps;
    behind_best = StepChoice::any_height;
  }
  /// All steps up to the best state must be taken; it does not matter where the walk ends behind it.
  std::int64_t of_walk() const { return std::min(to_best, behind_best); }

 private:
  std::int64_t of_steps = StepChoice::any_height;
  std::int64_t to_best = StepChoice::any_height;
  std::int64_t behind_best = StepChoice::any_height;
};
