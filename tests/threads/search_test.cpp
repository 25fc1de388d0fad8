// The search of one record with several threads finds what one thread finds. Short sequences are shared out in parts of
// 64 positions, so that seeds block each other across the limits of parts everywhere.

#include <random>

#include "search/search_support.h"

namespace {

class Random {
 public:
  explicit Random(unsigned number) : engine_(number) {}
  std::size_t below(std::size_t n) { return static_cast<std::size_t>(engine_() % n); }
  bool one_in(std::size_t n) { return below(n) == 0; }
  char base(std::size_t letters = 4) { return "ACGT"[below(letters)]; }

  std::string bases(std::size_t length, std::size_t letters = 4) {
    std::string text;
    for (std::size_t i = 0; i < length; ++i) text += base(letters);
    return text;
  }

  /// Copies of the unit with a departure in one of `distance` bases.
  std::string satellite(const std::string& unit, std::size_t length, std::size_t distance) {
    std::string text;
    for (std::size_t i = 0; text.size() < length; ++i) {
      const char next = unit[i % unit.size()];
      if (!one_in(distance)) {
        text += next;
        continue;
      }
      const std::size_t kind = below(8);
      if (kind < 4) text += base();
      if (kind == 4) text += {next, base()};
      if (kind == 5) text += std::string(1 + below(5), 'N');
    }
    return text;
  }

 private:
  std::mt19937 engine_;
};

/// Everything that a search leaves, as text.
struct Outcome {
  std::string found;   ///< before the overlap removal, without the events: which of them are kept is left open
  std::string left;    ///< behind it
  std::string report;  ///< the lines of the report, with all events
};

class SearchOnThreadsTest : public test::SearchTest {
 protected:
  static CsatContainer& search(CSearchController& controller) {
    controller.be_quiet();
    if (global_search_mode == 0) {
      controller.exact_search_2();
      return controller.exact_sats;
    }
    if (global_search_mode == 1) {
      controller.search_exact_and_extend_to_imperfect_repeats();
    } else {
      controller.complete_imperfect_search();
    }
    return controller.imperfect_sats;
  }

  static Outcome outcome(test::Sequence& sequence, unsigned threads) {
    CSearchController controller(1, sequence.mol, threads);
    CsatContainer& found = search(controller);
    Outcome result;
    // Which of the long ones are hidden, and so left out of the list, depends on how far others had grown by then.
    const bool some_are_left_out = global_search_mode == 2 && global_remove_mostly_hidden;
    for (const Csat* sat : found.sats) {
      if (!some_are_left_out || sat->length() < shortest_long_repeat)
        result.found += test::described(sequence, *sat) + "\n";
    }
    if (global_remove_mostly_hidden) CSearchController::remove_hidden(found);
    for (const Csat* sat : found.sats) result.left += test::described(sequence, *sat) + "\n";
    controller.forget_working_data();
    result.report = test::bytes_written_by([&](std::FILE* out) { controller.report_SATList(out, found.sats); });
    return result;
  }

  /// Returns how many repeats are left with one thread.
  static std::size_t expect_same(const std::string& bases, const std::vector<unsigned>& numbers_of_threads,
                                 const std::string& what) {
    test::Sequence sequence(bases);
    const Outcome alone = outcome(sequence, 1);
    for (const unsigned threads : numbers_of_threads) {
      const Outcome shared = outcome(sequence, threads);
      EXPECT_EQ(shared.found == alone.found, true) << what << ", " << threads << " threads: other repeats are found";
      EXPECT_EQ(shared.left == alone.left, true) << what << ", " << threads << " threads: other repeats are left";
      EXPECT_EQ(shared.report == alone.report, true) << what << ", " << threads << " threads: another report";
      if (HasFailure()) break;
    }
    return static_cast<std::size_t>(std::count(alone.left.begin(), alone.left.end(), '\n'));
  }

  static constexpr std::int64_t shortest_long_repeat = 512;

  static void expect_same_in_all_modes(const std::string& bases, const std::string& what) {
    for (const int mode : {0, 1, 2}) {
      global_search_mode = mode;
      expect_same(bases, {2, 5}, what + ", mode " + std::to_string(mode));
    }
  }
};

TEST_F(SearchOnThreadsTest, SequencesOfNoMoreThanAPart) {
  Random random(1);
  for (const std::size_t length : {0U, 1U, 2U, 3U, 63U, 64U, 65U, 66U, 127U, 128U, 129U}) {
    expect_same_in_all_modes(random.satellite("AC", length, 10).substr(0, length), std::to_string(length) + " bases");
  }
}

TEST_F(SearchOnThreadsTest, SequencesThatEndAtALimitOfParts) {
  Random random(2);
  accept_everything();
  for (std::size_t length = 64 * 20 - 3; length <= 64 * 20 + 8; ++length) {
    expect_same_in_all_modes(random.satellite("ACG", length, 12).substr(0, length), std::to_string(length) + " bases");
  }
}

TEST_F(SearchOnThreadsTest, ASatelliteArrayOverManyParts) {
  Random random(3);
  global_min_score = 20;
  unit_lengths(15, 19);
  for (const std::size_t distance : {11U, 30U, 200U}) {
    const std::string array = random.satellite(random.bases(17), 5000, distance);
    expect_same_in_all_modes(random.bases(500) + array + random.bases(500),
                             "a departure in " + std::to_string(distance) + " bases");
  }
}

TEST_F(SearchOnThreadsTest, UnitsLongerThanAPart) {
  Random random(4);
  global_min_score = 30;
  for (const std::uint32_t unit_length : {63U, 64U, 65U, 127U, 171U}) {
    unit_lengths(unit_length, unit_length + 1);
    expect_same_in_all_modes(random.satellite(random.bases(unit_length), 2000, 60), std::to_string(unit_length));
  }
}

// What is kept of a walk along a guide depends on the walks before it, and those are other ones on every thread.
TEST_F(SearchOnThreadsTest, ArraysOfMoreEventsThanAreKept) {
  std::string bases;
  for (int i = 0; i < 1500; ++i) bases += i % 7 == 3 ? "ACGTACGTACGTACGTACCGA" : "ACGTACGTACGTACGTACGA";
  unit_lengths(1, 24);
  global_search_mode = 2;
  for (const bool remove : {true, false}) {
    global_remove_mostly_hidden = remove;
    global_print_sat_seq_mode = remove ? 2 : 0;
    EXPECT_GT(expect_same(bases, {2, 5}, remove ? "overlaps removed" : "overlaps kept"), 0U);
  }
}

TEST_F(SearchOnThreadsTest, RunsOfOneBaseAndOfN) {
  Random random(5);
  expect_same_in_all_modes(std::string(5000, 'A'), "A alone");
  expect_same_in_all_modes(std::string(5000, 'N'), "N alone");
  expect_same_in_all_modes("ACACACACAC" + std::string(3000, 'N') + "ACACACACAC", "N between repeats");
  std::string bases;
  for (int i = 0; i < 60; ++i) {
    bases += std::string(1 + random.below(90), "AN"[random.below(2)]) + random.satellite("AAC", 40, 9);
  }
  for (const std::uint32_t most : {0U, 1U, 4U, 100U}) {
    global_Ns_allowed_in_a_row = most;
    expect_same_in_all_modes(bases, std::to_string(most) + " N allowed");
  }
}

TEST_F(SearchOnThreadsTest, LowThresholds) {
  Random random(6);
  accept_everything();
  unit_lengths(1, 12);
  global_remove_mostly_hidden = false;
  global_print_sat_seq_mode = 0;
  expect_same_in_all_modes(random.bases(2500), "random bases");
  expect_same_in_all_modes(random.bases(2500, 2), "two letters");
}

TEST_F(SearchOnThreadsTest, LongSequencesOfLongParts) {
  Random random(7);
  global_search_mode = 2;
  unit_lengths(1, 3);
  std::string bases;
  while (bases.size() < 600000) {
    bases += random.bases(random.below(2000)) + random.satellite(random.bases(1 + random.below(3)), 300, 15);
  }
  EXPECT_GT(expect_same(bases, {2, 3}, "600000 bases"), 100U);
}

/// Repeats of several units that run into each other, at low thresholds and costs: what is kept of them depends on the
/// order in which they are tried.
TEST_F(SearchOnThreadsTest, SeedsThatBlockEachOther) {
  std::size_t repeats = 0;
  for (unsigned number = 1; number <= 120; ++number) {
    Random random(number);
    global_search_mode = number % 4 == 0 ? 1 : 2;
    global_min_score = static_cast<int>(1 + random.below(8));
    global_min_score_bx = 0;
    global_mismatch_score = global_indel_score = -2 - static_cast<int>(random.below(5));
    global_maximum_recursion_depth = static_cast<std::uint32_t>(random.below(6));
    global_remove_mostly_hidden = random.one_in(2);
    global_treat_Ns_as_missense = random.one_in(4);
    unit_lengths(1 + static_cast<std::uint32_t>(random.below(2)), static_cast<std::uint32_t>(3 + random.below(14)));
    std::string bases;
    const std::size_t length = 200 + random.below(2500);
    while (bases.size() < length) {
      const std::string unit = random.bases(1 + random.below(9), 2 + random.below(3));
      bases += random.satellite(unit, 20 + random.below(250), 4 + random.below(30));
    }
    const auto threads = static_cast<unsigned>(2 + random.below(7));
    repeats += expect_same(bases, {threads}, "number " + std::to_string(number));
    if (HasFailure()) return;
  }
  EXPECT_GT(repeats, 5000U);
}

}  // namespace
