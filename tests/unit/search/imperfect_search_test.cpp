#include <algorithm>
#include <memory>
#include <random>

#include "search/CAnchorSeq.h"
#include "search/search_support.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

using ImperfectSearchTest = test::SearchTest;

TEST_F(ImperfectSearchTest, AnEmptySequenceYieldsNothingHoweverLowTheMinimumScore) {
  global_min_score = -1;
  global_min_score_bx = -5.0F;
  EXPECT_THAT(imperfect(""), IsEmpty());
}

TEST_F(ImperfectSearchTest, FindsARepeatWithAnInsertionOnce) {
  EXPECT_THAT(imperfect("ACACACACACGACACACACAC"), ElementsAre("[0,21) AC score 12 1 ins"));
}

TEST_F(ImperfectSearchTest, FindsADinucleotideRepeatWithAMismatchOnce) {
  EXPECT_THAT(imperfect("ACACACACACGCACACACACAC"), ElementsAre("[0,22) AC score 13 1 mis"));
}

TEST_F(ImperfectSearchTest, ASequenceOfUnitLengthOrLessHasNoSeed) {
  accept_everything();
  unit_lengths(2, 2);
  EXPECT_THAT(imperfect(""), IsEmpty());
  EXPECT_THAT(imperfect("A"), IsEmpty());
  EXPECT_THAT(imperfect("AC"), IsEmpty());
}

TEST_F(ImperfectSearchTest, WithOneBaseMoreOnlyTheSeedAtTheFirstBaseIsTried) {
  accept_everything();
  unit_lengths(2, 2);
  EXPECT_THAT(imperfect("ACG"), ElementsAre("[0,2) AC score 0"));
}

TEST_F(ImperfectSearchTest, ASeedThatEndsAtTheLastBaseIsNeverTried) {
  accept_everything();
  unit_lengths(2, 2);
  EXPECT_THAT(imperfect("AAC"), IsEmpty());  // AA is no unit, AC ends with the sequence
  EXPECT_THAT(imperfect("AACG"), ElementsAre("[1,3) AC score 0"));
}

TEST_F(ImperfectSearchTest, TheLastBaseIsNoSeedOfUnitLengthOne) {
  accept_everything();
  unit_lengths(1, 1);
  EXPECT_THAT(imperfect("A"), IsEmpty());
  EXPECT_THAT(imperfect("ACG"), ElementsAre("[0,1) A score 0", "[1,2) C score 0"));
}

TEST_F(ImperfectSearchTest, ALongMononucleotideRunIsKeptOnceFromItsFirstBase) {
  unit_lengths(1, 1);
  EXPECT_THAT(imperfect("CAAAAAAAAAAAAG"), ElementsAre("[1,13) A score 11"));
}

// The window AT at 2 lies inside two covered runs; it is a seed only because the mask starts anew.
TEST_F(ImperfectSearchTest, TheMaskIsResetAfterUnitLengthOne) {
  accept_everything();
  unit_lengths(1, 2);
  EXPECT_THAT(imperfect("AAATTTG"), ElementsAre("[0,3) A score 2", "[2,4) AT score 0", "[3,6) T score 2"));
}

TEST_F(ImperfectSearchTest, TheMaskIsCarriedOnFromUnitLengthTwo) {
  EXPECT_THAT(imperfect("ACACACACACACACAC"), ElementsAre("[0,16) AC score 14"));
}

TEST_F(ImperfectSearchTest, WithUnitsFromTwoMononucleotideRunsAreNeverFound) {
  unit_lengths(2, 6);
  EXPECT_THAT(imperfect(std::string(20, 'A')), IsEmpty());
}

TEST_F(ImperfectSearchTest, ASequenceOfNYieldsNothing) {
  accept_everything();
  EXPECT_THAT(imperfect("NNNNNNNN"), IsEmpty());
  EXPECT_THAT(imperfect("N"), IsEmpty());
}

TEST_F(ImperfectSearchTest, ASequenceThatEndsInNHasNoSeedBehindItsBases) {
  unit_lengths(1, 1);
  EXPECT_THAT(imperfect("AAAAAAAANNNNNN"), ElementsAre("[0,8) A score 7"));
}

// Its first base is a seed of unit length 1 and 8; with penalties of 6 both grow over the whole of it.
TEST_F(ImperfectSearchTest, OfEqualRangesTheShorterUnitIsListedFirst) {
  unit_lengths(1, 8);
  global_min_score = 8;
  EXPECT_THAT(imperfect("AAAAAAACAAAAAAACAAAAAAA"), ElementsAre("[0,23) A score 8 2 mis", "[0,23) AAAAAAAC score 15"));
}

TEST_F(ImperfectSearchTest, ALeftPartWorthExactlyTheMismatchIsNotJoined) {
  // The part before the G scores 4, too little for a step of its own; from the right, 11 - 6 + 6 is no gain.
  EXPECT_THAT(imperfect("ACACACGCACACACACACAC"), ElementsAre("[7,20) CA score 11"));
}

TEST_F(ImperfectSearchTest, NAtTheEndsAreTrimmed) {
  EXPECT_THAT(imperfect("NNNACACACACACNN"), ElementsAre("[3,13) AC score 8"));
}

TEST_F(ImperfectSearchTest, EventsAreSorted) {
  test::Sequence sequence("ACACACACACGCACACACACACGACACACACACAC");
  CSearchController controller(1, sequence.mol);
  controller.complete_imperfect_search();
  ASSERT_FALSE(controller.imperfect_sats.sats.empty());
  EXPECT_EQ(test::events_of(sequence, *controller.imperfect_sats.sats.front()), "10M 22I ");
}

TEST_F(ImperfectSearchTest, WithDepthZeroFindsPerfectRepeatsOnly) {
  global_maximum_recursion_depth = 0;
  EXPECT_THAT(imperfect("ACACACACACGACACACACAC"), ElementsAre("[0,10) AC score 8", "[11,21) AC score 8"));
}

TEST_F(ImperfectSearchTest, TheLargestMaximumUnitLengthEndsAtTheSequence) {
  unit_lengths(1, 4294967295U);
  EXPECT_THAT(imperfect("ACACACACAC"), ElementsAre("[0,10) AC score 8"));
}

TEST_F(ImperfectSearchTest, TheSpareRecordGoesBackToThePool) {
  test::Sequence sequence("ACGTTGCA");
  std::size_t before = 0;
  {
    CSearchController controller(1, sequence.mol);
    controller.complete_imperfect_search();
    before = sat_alloc.size();
    EXPECT_GE(before, 1U);
  }
  EXPECT_EQ(sat_alloc.size(), before);
}

/// Every seed that the anchors leave, grown by itself.
class PlainSearch {
 public:
  explicit PlainSearch(const std::string& bases)
      : sequence_(bases), controller_(1, sequence_.mol), anchors_(sequence_.mol.begin(), bases.size()) {
    const auto size = static_cast<std::int64_t>(bases.size());
    for (std::int64_t unit = global_min_unit_length; unit <= global_max_unit_length; ++unit) {
      for (std::int64_t p = 0; p + unit < size; ++p) try_seed(sequence_.at(p), unit);
      if (unit == 1) anchors_.reset();
    }
    std::stable_sort(found_.begin(), found_.end(),
                     [](const auto& a, const auto& b) { return lessThan_sat(a.get(), b.get()); });
  }

  std::vector<std::string> result() const {
    std::vector<std::string> texts;
    for (const auto& sat : found_) texts.push_back(test::described(sequence_, *sat));
    return texts;
  }

 private:
  void try_seed(const char* p, std::int64_t unit) {
    const char* const next_N = std::find(p, sequence_.mol.end(), 'N');
    if (!anchors_.admits(p, unit) || !CSearchController::valid_starting_pattern(p, p + unit, next_N)) return;
    auto sat = std::make_unique<Csat>();
    sat->seed(p, p + unit);
    controller_.extend_imperfect_forward(*sat, sequence_.mol.end());
    controller_.extend_imperfect_backward(*sat, sequence_.mol.begin() - 1);
    sat->remove_Ns_at_ends();
    if (sat->score < (*controller_.minScores)[unit]) return;
    anchors_.cover(*sat);
    found_.push_back(std::move(sat));
  }

  test::Sequence sequence_;
  CSearchController controller_;
  CAnchorSeq anchors_;
  std::vector<std::unique_ptr<Csat>> found_;
};

// A seed that failed speaks for others, but only for those that would have failed.
TEST_F(ImperfectSearchTest, FindsWhatEverySeedByItselfFinds) {
  std::size_t repeats = 0;
  for (unsigned number = 2000; number < 6000; ++number) {
    std::mt19937 random(number);
    const auto between = [&random](int low, int high) {
      return low + static_cast<int>(random() % static_cast<unsigned>(high - low + 1));
    };
    global_mismatch_score = -between(2, 6);
    global_indel_score = -between(2, 6);
    global_maximum_recursion_depth = between(1, 4);
    global_min_score = between(3, 12);
    global_min_score_bx = 0;
    const auto unit = static_cast<std::uint32_t>(between(1, 14));
    unit_lengths(unit, unit + static_cast<std::uint32_t>(between(0, 2)));
    const char* const letters = between(0, 1) == 0 ? "AC" : "ACGT";
    const std::size_t period = unit + static_cast<std::size_t>(between(0, 1));
    std::string bases;
    while (bases.size() < 90) {
      const bool is_new = bases.size() < period || random() % 5 == 0;
      bases += is_new ? letters[random() % std::char_traits<char>::length(letters)] : bases[bases.size() - period];
      if (random() % 30 == 0) bases += letters[0];
      if (random() % 200 == 0) bases += 'N';
    }
    const std::vector<std::string> expected = PlainSearch(bases).result();
    ASSERT_EQ(imperfect(bases), expected) << "case " << number << ": " << bases;
    repeats += expected.size();
  }
  EXPECT_GT(repeats, 4000U);
}

}  // namespace
