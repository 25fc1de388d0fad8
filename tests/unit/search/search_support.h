#pragma once

#include <initializer_list>
#include <list>
#include <random>
#include <string>
#include <vector>

#include "search/CSearchController.h"
#include "search/run_status.h"
#include "test_support.h"

namespace test {

/// "[0,10) AC score 8", and behind that the counts that are not zero: " 1 mis 2 ins 3 del 4 N". Positions are 0-based
/// and half-open.
inline std::string described(const Sequence& sequence, const Csat& sat) {
  std::string text = "[" + std::to_string(sequence.index(sat.pos_left)) + "," +
                     std::to_string(sequence.index(sat.pos_right_end)) + ") " +
                     std::string(sat.unit_begin, sat.unit_end) + " score " + std::to_string(sat.score);
  const auto count = [&text](std::uint32_t number, const char* what) {
    if (number != 0) text += " " + std::to_string(number) + what;
  };
  count(sat.mismatches, " mis");
  count(sat.insertions, " ins");
  count(sat.deletions, " del");
  count(sat.num_Ns, " N");
  return text;
}

/// "10M 12D ": the events in the order of the list, by 0-based position in the sequence.
inline std::string events_of(const Sequence& sequence, const Csat& sat) {
  std::string text;
  for (const Csat::Event& event : sat.missense) {
    text += std::to_string(sequence.index(event.first)) + event.second + " ";
  }
  return text;
}

inline std::vector<std::string> described(const Sequence& sequence, const std::list<Csat*>& sats) {
  std::vector<std::string> texts;
  for (const Csat* sat : sats) texts.push_back(described(sequence, *sat));
  return texts;
}

/// Choices that are the same on every machine.
class Random {
 public:
  explicit Random(unsigned seed) : engine_(seed) {}
  unsigned below(unsigned n) { return static_cast<unsigned>(engine_() % n); }
  bool percent(unsigned p) { return below(100) < p; }
  template <typename Value>
  Value pick(std::initializer_list<Value> values) {
    return *(values.begin() + below(static_cast<unsigned>(values.size())));
  }
  std::string bases(std::size_t count, const std::string& letters = "ACGT") {
    std::string text;
    while (text.size() < count) text += letters[below(static_cast<unsigned>(letters.size()))];
    return text;
  }
  /// One of `rate` bases is a mismatch, an insertion or a deletion; none if it is 0.
  std::string copy(const std::string& text, unsigned rate) {
    std::string copied;
    for (const char base : text) {
      const unsigned number = rate == 0 ? 9 : below(rate);
      if (number == 0 || number == 1) copied += bases(1);
      if (number != 0 && number != 2) copied += base;
    }
    return copied;
  }

 private:
  std::mt19937 engine_;
};

/// Copies of a unit with two mismatches in every nine bases.
inline std::string departing_copies(const std::string& unit, std::size_t copies) {
  std::string text = repeated(unit, copies);
  for (std::size_t i = 2; i < text.size(); i += i % 9 == 2 ? 5 : 4) text[i] = text[i] == 'A' ? 'C' : 'A';
  return text;
}

/// A fixture whose parameters may be set before any of its functions is called.
class SearchTest : public WithParameters {
 protected:
  SearchTest() { update_report_time(); }  // no progress line in the middle of a test

  /// Those that the parameters set.
  static ExtensionRules rules() {
    return {global_mismatch_score, global_indel_score, global_maximum_recursion_depth, global_Ns_allowed_in_a_row,
            global_treat_Ns_as_missense};
  }

  static std::vector<std::string> exact(const std::string& bases) {
    Sequence sequence(bases);
    CSearchController controller(1, sequence.mol);
    controller.exact_search_2();
    return described(sequence, controller.exact_sats.sats);
  }

  static std::vector<std::string> imperfect(const std::string& bases) {
    Sequence sequence(bases);
    CSearchController controller(1, sequence.mol);
    controller.complete_imperfect_search();
    return described(sequence, controller.imperfect_sats.sats);
  }

  static std::vector<std::string> extended(const std::string& bases) {
    Sequence sequence(bases);
    CSearchController controller(1, sequence.mol);
    testing::internal::CaptureStderr();
    controller.search_exact_and_extend_to_imperfect_repeats();
    testing::internal::GetCapturedStderr();
    return described(sequence, controller.imperfect_sats.sats);
  }

  /// Every seed is kept, whatever it grows into.
  static void accept_everything() {
    global_min_score = 0;
    global_min_score_bx = 0;
  }

  static void unit_lengths(std::uint32_t shortest, std::uint32_t longest) {
    global_min_unit_length = shortest;
    global_max_unit_length = longest;
  }
};

}  // namespace test
