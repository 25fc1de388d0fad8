#include "search/search_support.h"

namespace {

bool valid(const std::string& window, std::ptrdiff_t next_N) {
  const char* const begin = window.data();
  return CSearchController::valid_starting_pattern(begin, begin + window.size(), begin + next_N);
}

TEST(ValidStartingPatternTest, AWindowOfOneBaseIsAdmissible) {
  EXPECT_TRUE(valid("A", 1));
}

TEST(ValidStartingPatternTest, AWindowWithAnNIsNot) {
  EXPECT_FALSE(valid("NAC", 0));
  EXPECT_FALSE(valid("ANC", 1));
  EXPECT_FALSE(valid("ACN", 2));
  EXPECT_FALSE(valid("N", 0));
}

TEST(ValidStartingPatternTest, AnNBehindTheWindowDoesNotMatter) {
  EXPECT_TRUE(valid("AC", 2));
}

TEST(ValidStartingPatternTest, AHomopolymerIsNot) {
  EXPECT_FALSE(valid("AA", 2));
  EXPECT_FALSE(valid("TTTTTT", 6));
}

TEST(ValidStartingPatternTest, TwoDifferentNeighboursAnywhereAreEnough) {
  EXPECT_TRUE(valid("CAAAA", 5));
  EXPECT_TRUE(valid("AAAAC", 5));
  EXPECT_TRUE(valid("AACAA", 5));
}

TEST(ValidStartingPatternTest, AUnitOfSeveralCopiesIsAdmissible) {
  EXPECT_TRUE(valid("ATAT", 4));
}

}  // namespace
