#include "alignment.h"

#include <algorithm>

namespace checker {
namespace {

bool is_base(char c) {
  return c == 'A' || c == 'C' || c == 'G' || c == 'T';
}

// Gathers columns one by one.
class ColumnCounter {
 public:
  // Returns what is wrong with the column, or null. '-' stands for a gap.
  const char* add(char base, char mark, char unit_base, bool n_can_be_neutral) {
    if (unit_base != '-' && !is_base(unit_base)) return "the unit line holds another character than A, C, G, T and -";
    const char* fault = mark == '|'   ? add_match(base, unit_base)
                        : mark == '*' ? add_n(base, unit_base, n_can_be_neutral)
                        : mark == ' ' ? add_event(base, unit_base, n_can_be_neutral)
                                      : "the match line holds another character than |, * and blank";
    if (unit_base != '-') result_.unit_bases += unit_base;
    if (result_.matches + result_.n_columns + result_.mismatches + result_.insertions + result_.deletions == 1) {
      first_is_match_ = mark == '|';
    }
    last_is_match_ = mark == '|';
    return fault;
  }

  Alignment result() {
    result_.match_at_both_ends = first_is_match_ && last_is_match_;
    return std::move(result_);
  }

 private:
  const char* add_match(char base, char unit_base) {
    ++result_.matches;
    ++position_;
    ++run_;
    result_.longest_match_run = std::max(result_.longest_match_run, run_);
    return base == unit_base && is_base(base) ? nullptr : "a bar stands between different bases";
  }

  const char* add_n(char base, char unit_base, bool n_can_be_neutral) {
    ++result_.n_columns;
    ++position_;
    run_ = 0;
    if (base != 'N' || !is_base(unit_base)) return "a * stands at another base than N";
    return n_can_be_neutral ? nullptr : "a * although no N can be neutral";
  }

  const char* add_event(char base, char unit_base, bool n_can_be_neutral) {
    run_ = 0;
    if (base == '-') {
      ++result_.deletions;
      result_.events.push_back({position_ + 1, 'D'});
      return unit_base == '-' ? "a gap in both lines" : nullptr;
    }
    ++position_;
    const bool inserted = unit_base == '-';
    ++(inserted ? result_.insertions : result_.mismatches);
    result_.events.push_back({position_, inserted ? 'I' : 'M'});
    if (base == unit_base) return "a mismatch of equal bases";
    if (base == 'N') return n_can_be_neutral ? "an N is an event although it is neutral" : nullptr;
    return is_base(base) ? nullptr : "the sequence line holds another character than A, C, G, T, N and -";
  }

  Alignment result_;
  long long position_ = 0;
  long long run_ = 0;
  bool first_is_match_ = false;
  bool last_is_match_ = false;
};

}  // namespace

Alignment read_alignment(const std::string& sequence_line, const std::string& match_line, const std::string& unit_line,
                         bool n_can_be_neutral, std::vector<std::string>& faults) {
  ColumnCounter counter;
  for (std::size_t i = 0; i < sequence_line.size(); ++i) {
    const char* fault = counter.add(sequence_line[i], match_line[i], unit_line[i], n_can_be_neutral);
    if (fault != nullptr) faults.push_back("column " + std::to_string(i + 1) + ": " + fault);
  }
  return counter.result();
}

bool align_with_events(const std::string& bases, const std::string& unit, std::size_t phase,
                       const std::vector<Event>& events, bool n_can_be_neutral, Alignment& result) {
  ColumnCounter counter;
  auto event = events.begin();
  std::size_t at_unit = phase;
  std::size_t at = 0;
  while (at < bases.size()) {
    const bool eventful = event != events.end() && event->position == static_cast<long long>(at) + 1;
    const char kind = eventful ? event->kind : bases[at] == 'N' ? '*' : '|';
    const char* fault = counter.add(kind == 'D' ? '-' : bases[at], eventful ? ' ' : kind,
                                    kind == 'I' ? '-' : unit[at_unit], n_can_be_neutral);
    if (fault != nullptr) return false;
    if (kind != 'I') at_unit = at_unit + 1 == unit.size() ? 0 : at_unit + 1;
    if (kind != 'D') ++at;
    if (eventful) ++event;
  }
  result = counter.result();
  return event == events.end();
}

// Wraparound dynamic programming: scores[j] belongs to the alignments whose next unit base is j.
long long best_score(const std::string& bases, const std::string& unit, const ReportSettings& settings) {
  const std::size_t length = unit.size();
  const auto following = [length](std::size_t j) { return j + 1 == length ? 0 : j + 1; };
  std::vector<long long> scores(length, 0);
  std::vector<long long> extended(length);
  for (const char base : bases) {
    const long long unequal = base == 'N' && settings.n_can_be_neutral() ? 0 : settings.mismatch_score;
    for (std::size_t j = 0; j < length; ++j) extended[j] = scores[j] + settings.indel_score;
    for (std::size_t j = 0; j < length; ++j) {
      long long& paired = extended[following(j)];
      paired = std::max(paired, scores[j] + (base == unit[j] ? 1 : unequal));
    }
    // A deletion may follow a deletion beyond the end of the unit, hence the second round.
    for (std::size_t i = 0; i < 2 * length; ++i) {
      const std::size_t j = i % length;
      extended[following(j)] = std::max(extended[following(j)], extended[j] + settings.indel_score);
    }
    scores.swap(extended);
  }
  return *std::max_element(scores.begin(), scores.end());
}

}  // namespace checker
