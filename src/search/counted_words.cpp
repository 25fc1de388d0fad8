#include "search/counted_words.h"

#include <algorithm>

namespace {

/// Rounds before potentials are read, and while they are.
constexpr int rounds = 64;
/// A word of a unit is rare if it is so many times less frequent than its words are on average.
constexpr std::uint64_t times_less = 8;
/// Enough for a step that no walk would take.
constexpr std::int64_t greatest_loss = 100;

}  // namespace

CountedWords::CountedWords(std::int64_t bases, const BasePlanes& planes, const char* first_base, const Stretch& part,
                           const ExtensionRules& rules)
    : part_(part),
      bases_(bases),
      numbers_(static_cast<unsigned>(bases)),
      planes_(planes),
      first_base_(first_base),
      mismatch_loss_(1 - rules.mismatch_score),
      insertion_loss_(1 - rules.indel_score),
      deletion_loss_(-rules.indel_score),
      counts_(numbers_.count() + 1),
      surplus_(counts_.size()) {
  words_.reserve(part.length() / static_cast<std::size_t>(bases));
  for (std::int64_t position = part.begin; position + bases <= part.end; position += bases) {
    const bool is_known = numbers_.number_of(planes.unknown_bits(position), 0) == 0;
    words_.push_back(is_known ? numbers_.number_of(planes.low_bits(position), planes.high_bits(position)) : unknown());
    ++counts_[words_.back()];
  }
}

std::int64_t CountedWords::highest_score(const UnitCircle& circle, const Known& known, std::int64_t enough) {
  if (2 * std::min(mismatch_loss_, deletion_loss_) <= bases_) return INT64_MAX;  // then any word gains something
  find_ways(circle);
  const auto bases = static_cast<std::size_t>(bases_);
  const Beyond beyond{std::min(words_.size(), (known.stretch.begin - part_.begin) / bases),
                      std::min(words_.size(), (known.stretch.end - part_.begin + bases - 1) / bases)};
  std::int64_t score = INT64_MAX;
  const auto look = [&](const Potentials& potentials) {
    if (score < enough) return;
    const Values values = take_values(potentials);
    score = std::min(score, known.score + gain_by_counts(beyond, values));
    // To go through them in their order takes as long as the array. It does not tell less than all words in sum.
    if (score >= enough && known.score + gain_of_all(beyond, values) < enough) {
      score = std::min(score, known.score + gain_by_order(beyond, values));
    }
    forget_values();
  };
  const Potentials none{std::vector<std::int32_t>(static_cast<std::size_t>(circle.length()), 0), 1};
  look(none);
  if (score < enough) return score;
  Potentials potentials = potentials_of(circle.length());
  // The higher they are, the more counts where a way leads in other words.
  for (const std::int64_t times : {2, 3, 4, 6, 8}) {
    potentials.scale = times * rounds / 2;
    look(potentials);
  }
  return score;
}

void CountedWords::find_ways(const UnitCircle& circle) {
  ways_.clear();
  exact_.resize(static_cast<std::size_t>(circle.length()));
  numbers_.for_each_of_unit(
      planes_, first_base_, circle, [this](std::int64_t begin, std::uint64_t low, std::uint64_t high) {
        exact_[static_cast<std::size_t>(begin)] = numbers_.number_of(low, high);
        numbers_.for_each_near(low, high,
                               [this, begin](std::uint32_t word, Words::Step step) { add_way(word, begin, step); });
      });
}

void CountedWords::add_way(std::uint32_t word, std::int64_t begin, Words::Step step) {
  if (counts_[word] == 0) return;
  std::int64_t unit_bases = bases_;
  std::int64_t loss = 0;
  if (step == Words::Step::mismatch) loss = mismatch_loss_;
  if (step == Words::Step::insertion) {
    loss = insertion_loss_;
    --unit_bases;
  }
  if (step == Words::Step::deletion) {
    loss = deletion_loss_;
    ++unit_bases;
  }
  const auto length = static_cast<std::int64_t>(exact_.size());
  ways_.push_back({word, static_cast<std::uint32_t>(begin), static_cast<std::uint32_t>((begin + unit_bases) % length),
                   static_cast<std::int32_t>(bases_ - std::min(loss, greatest_loss))});
}

/// Any potentials would do. What can be gained from each phase on in the next words, word for word, grows by the
/// average gain of the best turns once it is some words; it is the mean over as many again.
CountedWords::Potentials CountedWords::potentials_of(std::int64_t unit_length) const {
  const auto length = static_cast<std::size_t>(unit_length);
  const auto gain = [this](std::int64_t loss) {
    return static_cast<std::int16_t>(bases_ - std::min(loss, greatest_loss));
  };
  std::uint64_t all = 0;
  for (const std::uint32_t word : exact_) all += counts_[word];
  std::vector<std::int16_t> gains(length);
  for (std::size_t phase = 0; phase < length; ++phase) {
    const bool is_rare = times_less * length * counts_[exact_[phase]] < all;
    gains[phase] = gain(is_rare ? mismatch_loss_ : 0);
  }
  const std::int16_t with_insertion = gain(insertion_loss_);
  const std::int16_t with_deletion = gain(deletion_loss_);
  const std::int16_t with_two_steps = gain(2 * std::min(mismatch_loss_, deletion_loss_));
  // So that each phase has those behind it to which a word and two steps may lead.
  const auto behind = static_cast<std::size_t>(bases_) + 2;
  std::vector<std::int16_t> gained(length + behind, 0);
  std::vector<std::int16_t> next(length + behind);
  Potentials potentials{std::vector<std::int32_t>(length, 0), rounds};
  for (int round = 0; round < 2 * rounds; ++round) {
    for (std::size_t phase = 0; phase < length; ++phase) {
      const std::int16_t* const end = gained.data() + phase + bases_;
      const int of_most = std::max({end[0] + gains[phase], end[-1] + with_insertion, end[1] + with_deletion,
                                    end[-2] + with_two_steps, end[2] + with_two_steps});
      next[phase] = static_cast<std::int16_t>(of_most);
    }
    for (std::size_t i = length; i < length + behind; ++i) next[i] = next[i - length];
    gained.swap(next);
    if (round < rounds) continue;
    for (std::size_t phase = 0; phase < length; ++phase) potentials.of_phases[phase] += gained[phase];
  }
  return potentials;
}

CountedWords::Values CountedWords::take_values(const Potentials& potentials) {
  const std::vector<std::int32_t>& heights = potentials.of_phases;
  const auto length = static_cast<std::int64_t>(heights.size());
  const auto [lowest, highest] = std::minmax_element(heights.begin(), heights.end());
  // Of all ways through a word that take so many unit bases.
  const auto most_raised = [&](std::int64_t unit_bases) {
    const auto shift = static_cast<std::size_t>(unit_bases % length);
    std::int64_t most = INT64_MIN;
    for (std::size_t begin = 0, end = shift; begin < heights.size(); ++begin) {
      most = std::max<std::int64_t>(most, heights[end] - heights[begin]);
      if (++end == heights.size()) end = 0;
    }
    return most;
  };
  // Each step costs so much or more, and each base more or less than those of the word takes one.
  const std::int64_t least_loss = std::min(mismatch_loss_, deletion_loss_);
  const auto gain_with = [&](std::int64_t steps) { return potentials.scale * (bases_ - steps * least_loss); };
  Values values{potentials.scale, *highest - *lowest, gain_with(0), gain_with(2)};
  for (std::int64_t more = 0; gain_with(more) + values.range > values.of_others; ++more) {
    std::int64_t raised = most_raised(bases_ + more);
    if (more > 0 && more <= bases_) raised = std::max(raised, most_raised(bases_ - more));
    values.of_unknown = std::max(values.of_unknown, gain_with(more) + raised);
    values.of_others = std::max(values.of_others, gain_with(std::max<std::int64_t>(more, 2)) + raised);
  }
  for (const Way& way : ways_) {
    const std::int64_t value = potentials.scale * way.gain + heights[way.end] - heights[way.begin];
    if (value <= values.of_others + surplus_[way.word]) continue;
    if (surplus_[way.word] == 0) led_through_.push_back(way.word);
    surplus_[way.word] = static_cast<std::int32_t>(value - values.of_others);
  }
  const std::int64_t surplus = values.of_unknown - values.of_others;
  surplus_[unknown()] = static_cast<std::int32_t>(surplus);
  led_through_.push_back(unknown());
  return values;
}

void CountedWords::forget_values() {
  for (const std::uint32_t word : led_through_) surplus_[word] = 0;
  led_through_.clear();
}

/// On either side the first bases belong to a word that is known in part, and the last ones to one that the walk does
/// not come to the end of.
std::int64_t CountedWords::gain_of(std::int64_t value_of_words, const Values& values) const {
  return (value_of_words + 2 * values.range) / values.scale + 4 * (bases_ - 1);
}

std::int64_t CountedWords::gain_of_all(const Beyond& beyond, const Values& values) const {
  std::int64_t value = values.of_others * static_cast<std::int64_t>(words_.size());
  for (const std::uint32_t word : led_through_) value += std::int64_t{surplus_[word]} * counts_[word];
  for (std::size_t i = beyond.left_end; i < beyond.right_begin; ++i) value -= value_of(words_[i], values);
  return gain_of(value, values);
}

/// A walk can do without words that lose something.
std::int64_t CountedWords::gain_by_counts(const Beyond& beyond, const Values& values) const {
  const std::int64_t of_others = values.of_others_or_none();
  std::int64_t value = of_others * static_cast<std::int64_t>(words_.size());
  for (const std::uint32_t word : led_through_) {
    value += std::max<std::int64_t>(value_of(word, values) - of_others, 0) * counts_[word];
  }
  for (std::size_t i = beyond.left_end; i < beyond.right_begin; ++i) {
    value -= std::max<std::int64_t>(value_of(words_[i], values), 0);
  }
  return gain_of(value, values);
}

/// It comes to them one after the other.
std::int64_t CountedWords::gain_by_order(const Beyond& beyond, const Values& values) const {
  const auto highest_from = [&](auto first, auto end) {
    std::int64_t highest = 0;
    std::int64_t value = 0;
    for (auto word = first; word != end; ++word) {
      value += value_of(*word, values);
      highest = std::max(highest, value);
    }
    return highest;
  };
  const auto right = words_.begin() + static_cast<std::ptrdiff_t>(beyond.right_begin);
  const auto left = words_.rend() - static_cast<std::ptrdiff_t>(beyond.left_end);
  return gain_of(highest_from(right, words_.end()) + highest_from(left, words_.rend()), values);
}
