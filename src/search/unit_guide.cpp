#include "search/unit_guide.h"

#include <algorithm>
#include <cstring>

namespace {

// A step is a byte: its kind, and the matches behind it; behind `long_run` the bases taken and the matches follow.
constexpr unsigned kind_shift = 6;
constexpr std::uint32_t long_run = 63;

std::uint32_t number_at(const std::uint8_t* bytes) {
  std::uint32_t number = 0;
  std::memcpy(&number, bytes, sizeof number);
  return number;
}

/// Room for some more. Doubling would leave a third of the memory unused that guides may take.
template <typename Value>
void make_room(std::vector<Value>& values, std::size_t more) {
  const std::size_t needed = values.size() + more;
  if (needed > values.capacity()) values.reserve(needed + needed / 8);
}

}  // namespace

UnitGuide::UnitGuide(bool forward, const ExtensionRules& rules)
    : forward_(forward),
      mismatch_score_(static_cast<std::int32_t>(rules.mismatch_score)),
      indel_score_(static_cast<std::int32_t>(rules.indel_score)),
      leg_() {}

std::uint32_t UnitGuide::leg_at(const Place& place) const {
  if (index_.empty()) return unknown;
  const std::uint32_t entry = index_[slot_of(place)];
  return entry == 0 ? unknown : entry - 1;
}

/// The place's slot, or the free one where it would be entered.
std::size_t UnitGuide::slot_of(const Place& place) const {
  const std::uint64_t key = std::uint64_t{place.position} << 32 | place.phase;
  const std::size_t mask = index_.size() - 1;
  std::size_t slot = (key * 0x9E3779B97F4A7C15U >> 32) & mask;
  while (index_[slot] != 0) {
    const Place& other = legs_[index_[slot] - 1].begin;
    if (other.position == place.position && other.phase == place.phase) break;
    slot = (slot + 1) & mask;
  }
  return slot;
}

void UnitGuide::enlarge_index() {
  index_.assign(std::max<std::size_t>(16, 2 * index_.size()), 0);
  for (std::size_t number = 0; number < legs_.size(); ++number) {
    index_[slot_of(legs_[number].begin)] = static_cast<std::uint32_t>(number + 1);
  }
}

std::uint32_t UnitGuide::next_leg(std::uint32_t number) const {
  const Leg& leg = legs_[number];
  if (leg.next == unknown) leg.next = leg_at(leg.end);
  return leg.next;
}

char UnitGuide::take_step(const std::uint8_t*& byte, Point& at) const {
  const char kind = "MID"[*byte >> kind_shift];
  std::uint32_t bases = *byte++ & long_run;
  std::uint32_t matches = bases;
  if (bases == long_run) {
    bases = number_at(byte);
    matches = number_at(byte + sizeof bases);
    byte += 2 * sizeof bases;
  }
  if (kind != 'D') ++bases;
  at.position = forward_ ? at.position + bases : at.position - bases;
  at.gain += static_cast<std::int32_t>(matches) + (kind == 'M' ? mismatch_score_ : indel_score_);
  at.steps.add(kind);
  return kind;
}

UnitGuide::Way UnitGuide::follow(std::uint32_t first_leg, std::int64_t too_little) {
  Way way{first_leg, {}, {}, unknown};
  Point at;
  at.position = legs_[first_leg].begin.position;
  way.highest.gain = INT32_MIN;
  std::uint32_t highest_leg = unknown;
  Point highest_from;
  for (std::uint32_t number = first_leg; number != unknown; number = next_leg(number)) {
    const Leg& leg = legs_[number];
    if (std::int64_t{at.gain} + leg.lowest <= too_little) {
      way.last_phase = unknown;
      const std::uint8_t* byte = first_step(number);
      do {
        take_step(byte, at);
        if (at.gain > way.highest.gain) {
          way.highest = at;
          highest_leg = unknown;
        }
      } while (at.gain > too_little);
      break;
    }
    if (at.gain + leg.highest > way.highest.gain) {
      way.highest.gain = at.gain + leg.highest;
      highest_leg = number;
      highest_from = at;
    }
    at.position = leg.end.position;
    at.gain += leg.gain;
    at.steps.add(leg.steps);
    way.last_phase = leg.end.phase;
  }
  if (highest_leg != unknown) way.highest = first_with(highest_leg, highest_from, way.highest.gain);
  way.last = at;
  return way;
}

UnitGuide::Point UnitGuide::first_with(std::uint32_t number, const Point& from, std::int32_t gain) const {
  Point at = from;
  const std::uint8_t* byte = first_step(number);
  do {
    take_step(byte, at);
  } while (at.gain != gain);
  return at;
}

void UnitGuide::begin_leg(const Place& place) {
  leg_ = {};
  leg_.begin = place;
  leg_.end = place;
  leg_.first_byte = static_cast<std::uint32_t>(bytes_.size());
  is_in_leg_ = true;
}

void UnitGuide::add_step(char kind, std::uint32_t bases, std::uint32_t matches) {
  const unsigned number = kind == 'M' ? 0 : kind == 'I' ? 1 : 2;
  const bool is_short = bases == matches && bases < long_run;
  make_room(bytes_, 1 + 2 * sizeof bases);
  bytes_.push_back(static_cast<std::uint8_t>(number << kind_shift | (is_short ? bases : long_run)));
  if (!is_short) {
    std::uint8_t numbers[2 * sizeof bases];
    std::memcpy(numbers, &bases, sizeof bases);
    std::memcpy(numbers + sizeof bases, &matches, sizeof matches);
    bytes_.insert(bytes_.end(), std::begin(numbers), std::end(numbers));
  }
  leg_.gain += static_cast<std::int32_t>(matches) + (kind == 'M' ? mismatch_score_ : indel_score_);
  leg_.lowest = std::min(leg_.lowest, leg_.gain);
  leg_.highest = std::max(leg_.highest, leg_.gain);
  leg_.steps.add(kind);
}

void UnitGuide::end_leg(const Place& place) {
  is_in_leg_ = false;
  leg_.end = place;
  make_room(legs_, 1);
  legs_.push_back(leg_);
  if (4 * legs_.size() > 3 * index_.size()) {
    enlarge_index();
  } else {
    index_[slot_of(leg_.begin)] = static_cast<std::uint32_t>(legs_.size());
  }
}

void UnitGuide::drop_leg() {
  if (is_in_leg_) bytes_.resize(leg_.first_byte);
  is_in_leg_ = false;
}

bool UnitGuide::touches(const Leg& leg, std::uint32_t first, std::uint32_t end) const {
  const std::uint32_t low = std::min(leg.begin.position, leg.end.position);
  const std::uint32_t high = std::max(leg.begin.position, leg.end.position);
  return low < end && high >= first;
}

std::size_t UnitGuide::size() const {
  return sizeof *this + legs_.capacity() * sizeof(Leg) + bytes_.capacity() + index_.capacity() * sizeof(std::uint32_t);
}
