#pragma once

#include "search/lookahead_window.h"
#include "search/step_memo.h"
#include "search/walk_guide.h"

/// What the walks of one sequence and one direction remember of one another. Without it every walk would go the same
/// way more slowly.
template <bool forward>
struct WalkAids {
  WalkGuides<forward> guides;
  StepMemo<forward> memo;
  LookaheadSpace space;

  /// The sequence, half-open range.
  WalkAids(const char* begin, const char* end) : guides(begin, end), memo(begin) {}
};
