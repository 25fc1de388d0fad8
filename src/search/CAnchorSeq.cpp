#include "search/CAnchorSeq.h"

namespace {

/// More are not kept waiting: each may keep a guide in memory.
constexpr std::size_t most_named_stretches = 16;
constexpr std::ptrdiff_t settled_at_first = 4096;

}  // namespace

void CAnchorSeq::cover(const Csat& sat, const std::vector<GuidedStretch>& untold) {
  const std::ptrdiff_t first = std::max<std::ptrdiff_t>(0, sat.pos_left - seq_begin + 1);
  const std::ptrdiff_t end = std::min<std::ptrdiff_t>(bits(), sat.pos_right_end - seq_begin + 1);
  if (!named.empty()) forget_named(first, end);
  const std::ptrdiff_t base_0 = first_base - seq_begin + 1;
  const std::size_t named_before = named.size();
  for (const GuidedStretch& stretch : untold) {
    // A deletion is noted at the base behind the gap, so at either end there may be an event one base further.
    const std::ptrdiff_t from = std::max<std::ptrdiff_t>(first, base_0 + std::min(stretch.begin, stretch.end));
    const std::ptrdiff_t to = std::min<std::ptrdiff_t>(end, base_0 + std::max(stretch.begin, stretch.end) + 1);
    if (from < to) named.push_back({stretch, from, to, {}, settled_at_first});
  }
  const auto new_ones = named.begin() + offset(named_before);
  std::sort(new_ones, named.end(), [](const NamedStretch& a, const NamedStretch& b) { return a.first < b.first; });
  std::ptrdiff_t told = first;
  for (auto stretch = new_ones; stretch != named.end(); ++stretch) {
    clear_bits(told, stretch->first);
    told = stretch->end;
  }
  clear_bits(told, end);
  for (const Csat::Event& event : sat.missense) free_event(event.first - seq_begin + 1);
  while (named.size() > most_named_stretches) settle_bits(named.front().first, named.front().end);
}

/// The position of an event of the repeat covered last.
void CAnchorSeq::free_event(std::ptrdiff_t bit) {
  for (NamedStretch& stretch : named) {
    if (bit < stretch.first || bit >= stretch.end) continue;
    stretch.other_events.push_back(bit);
    return;
  }
  free(bit);
}

/// What is asked for lies close together most often, but whoever asks again and again wants it all: each time twice as
/// much is written, since the guide must be gone along from the stretch's beginning.
void CAnchorSeq::settle_bits(std::ptrdiff_t first, std::ptrdiff_t end) {
  for (std::size_t i = 0; i < named.size();) {
    if (named[i].end <= first || named[i].first >= end) {
      ++i;
      continue;
    }
    NamedStretch stretch = std::move(named[i]);
    named.erase(named.begin() + offset(i));
    const std::ptrdiff_t from = std::max(first, stretch.first);
    const std::ptrdiff_t to = std::min(stretch.end, std::max(end, from + stretch.settled_at_once));
    write(stretch, from, to);
    stretch.settled_at_once *= 2;
    // What is left of it does not begin before the place asked for, or lies behind it.
    if (to < stretch.end) {
      named.push_back(stretch);
      named.back().first = to;
    }
    if (stretch.first < from) {
      named.push_back(std::move(stretch));
      named.back().end = from;
    }
  }
}

void CAnchorSeq::write(const NamedStretch& stretch, std::ptrdiff_t first, std::ptrdiff_t end) {
  const std::ptrdiff_t base_0 = first_base - seq_begin + 1;
  const auto position = [base_0](std::ptrdiff_t bit) {
    return static_cast<std::uint32_t>(std::max<std::ptrdiff_t>(0, bit - base_0));
  };
  clear_bits(first, end);
  const auto free_inside = [&](std::ptrdiff_t bit) {
    if (bit >= first && bit < end) free(bit);
  };
  stretch.stretch.guide->for_each_event(
      stretch.stretch.first_leg, stretch.stretch.steps, position(first), position(end),
      [&](std::uint32_t at, char) { free_inside(base_0 + static_cast<std::ptrdiff_t>(at)); });
  for (const std::ptrdiff_t bit : stretch.other_events) free_inside(bit);
}

/// The bits [first, end) are about to be written anew.
void CAnchorSeq::forget_named(std::ptrdiff_t first, std::ptrdiff_t end) {
  for (std::size_t i = named.size(); i-- > 0;) {
    NamedStretch& stretch = named[i];
    if (stretch.end <= first || stretch.first >= end) continue;
    const bool has_left = stretch.first < first;
    const bool has_right = stretch.end > end;
    if (has_left && has_right) {
      named.push_back(stretch);
      named.back().first = end;
      named[i].end = first;
    } else if (has_left) {
      stretch.end = first;
    } else if (has_right) {
      stretch.first = end;
    } else {
      named.erase(named.begin() + offset(i));
    }
  }
}
