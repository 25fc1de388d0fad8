// What is foreseen of a seed, against what it grows into.

#include "search/walk_course.h"

#include <algorithm>
#include <random>
#include <string>

#include "search/search_support.h"
#include "sequence/global-types-and-parameters.h"

namespace {

class Random {
 public:
  explicit Random(unsigned seed) : engine_(seed) {}
  unsigned below(unsigned n) { return static_cast<unsigned>(engine_() % n); }
  template <typename Value>
  Value pick(std::initializer_list<Value> values) {
    return *(values.begin() + below(static_cast<unsigned>(values.size())));
  }
  std::string bases(std::size_t count, const char* letters) {
    std::string text;
    const auto kinds = static_cast<unsigned>(std::char_traits<char>::length(letters));
    while (text.size() < count) text += letters[below(kinds)];
    return text;
  }

 private:
  std::mt19937 engine_;
};

/// Copies of a unit, so many percent of whose bases are others, are left out or have one more before them, with
/// stretches of other bases: walks that cross these are low, and rise again.
std::string satellite(Random& random, std::size_t unit_length, std::size_t length) {
  const char* const letters = random.pick({"ACGT", "ACGT", "AT"});
  const std::string unit = random.bases(unit_length, letters);
  const unsigned percent = random.pick({0U, 1U, 5U, 20U, 30U});
  const unsigned bases_between_others = random.pick({60U, 150U, 100'000U});
  std::string text = random.bases(random.pick({0U, 30U, 200U}), letters);
  for (std::size_t i = 0; text.size() < length; ++i) {
    const unsigned kind = random.below(100) < percent ? random.below(4) : 4;
    if (kind != 0) text += kind < 3 ? random.bases(1, letters) : std::string(1, unit[i % unit_length]);
    if (kind == 3) text += random.bases(1, letters);
    if (random.below(bases_between_others) == 0) {
      const unsigned others = 10 + random.below(50);
      text += random.bases(others, letters);
      i += others;
    }
    if (random.below(900) == 0) text += std::string(random.pick({1U, 3U, 4U, 9U}), 'N');
  }
  return text + random.bases(random.pick({0U, 30U, 200U}), letters);
}

class WalkCourseTest : public test::SearchTest {
 protected:
  static void draw_rules(Random& random) {
    global_mismatch_score = random.pick({-6, -6, -2, -4, -9});
    global_indel_score = random.pick({-6, -6, -2, -4, -9});
    global_maximum_recursion_depth = random.pick({5, 5, 1, 2, 7, 9});
    global_Ns_allowed_in_a_row = random.pick({4, 4, 0, 100});
    global_treat_Ns_as_missense = random.below(4) == 0;
  }

  static ExtensionRules rules() {
    return {global_mismatch_score, global_indel_score, global_maximum_recursion_depth, global_Ns_allowed_in_a_row,
            global_treat_Ns_as_missense};
  }
};

// Most of the seeds stand side by side, as in a search, some further on.
TEST_F(WalkCourseTest, WhatIsForeseenIsWhatASeedGrowsInto) {
  int told = 0;
  int asked = 0;
  for (unsigned number = 0; number < 60; ++number) {
    Random random(number);
    draw_rules(random);
    const std::size_t period = random.pick({30U, 45U, 70U, 100U, 171U});
    test::Sequence sequence(satellite(random, period, 700 + random.below(900)));
    CSearchController controller(1, sequence.mol);
    CSearchController plain(1, sequence.mol);
    const BasePlanes planes(sequence.mol.begin(), sequence.mol.end());
    const ExtensionRules extension_rules = rules();
    GrowthAids aids(sequence.mol.begin(), sequence.mol.end(), planes, extension_rules);
    for (const std::ptrdiff_t off : {0, -3, 9, 60}) {
      const std::ptrdiff_t length = static_cast<std::ptrdiff_t>(period) + off;
      const char* const last = sequence.mol.end() - length - 1;
      for (const char* p = sequence.mol.begin(); p < last; p += random.below(5) == 0 ? random.below(40) + 1 : 1) {
        if (std::find(p, p + length, 'N') != p + length) continue;
        Csat seed;
        seed.seed(p, p + length);
        const auto score = controller.foresee_score(seed, aids);
        EXPECT_EQ(seed.score, 0);
        ++asked;
        if (!score) continue;
        ++told;
        if (random.below(4) != 0) continue;
        Csat grown;
        grown.seed(p, p + length);
        plain.extend_imperfect_forward(grown, sequence.mol.end());
        plain.extend_imperfect_backward(grown, sequence.mol.begin() - 1);
        ASSERT_EQ(*score, grown.score) << "case " << number << " unit length " << length << " at "
                                       << p - sequence.mol.begin();
      }
    }
  }
  EXPECT_GT(told, asked / 4) << "of " << asked;
}

}  // namespace
