#include <numeric>

#include "sequence/CDnaString.h"
#include "test_support.h"

namespace {

CDnaString dna(const std::string& text) {
  return {text.data(), text.data() + text.size()};
}

std::string reverse_complement(const std::string& text) {
  CDnaString result;
  result.setToReverseComplementOf(dna(text));
  return result.str();
}

int unknown_bytes(const std::string& text) {
  return CDnaString().setToReverseComplementOf(dna(text));
}

std::string smallest_rotation(const std::string& text) {
  CDnaString result;
  result.setToMinAlphaRepModCyclicPermOf(dna(text));
  return result.str();
}

bool periodic(const std::string& text) {
  return CDnaString().setToMinAlphaRepModCyclicPermOf(dna(text));
}

bool reducible(const std::string& text) {
  return isReducibleUnit_global(text.data(), text.data() + text.size());
}

/// Every word of the given length over the letters A, C and N.
std::vector<std::string> all_words(std::size_t length) {
  std::vector<std::string> words{""};
  for (std::size_t i = 0; i < length; ++i) {
    std::vector<std::string> longer;
    for (const std::string& word : words) {
      for (const char base : {'A', 'C', 'N'}) longer.push_back(word + base);
    }
    words = longer;
  }
  return words;
}

std::string rotated(const std::string& text, std::size_t by) {
  return text.substr(by) + text.substr(0, by);
}

TEST(ReverseComplementTest, OfBasesAndN) {
  EXPECT_EQ(reverse_complement("ACGTN"), "NACGT");
}

TEST(ReverseComplementTest, OfARunAndABase) {
  EXPECT_EQ(reverse_complement("AAAC"), "GTTT");
}

TEST(ReverseComplementTest, OfTheEmptyStringIsEmpty) {
  EXPECT_EQ(reverse_complement(""), "");
  EXPECT_EQ(unknown_bytes(""), 0);
}

TEST(ReverseComplementTest, OfLowerCaseIsUnknownAndCounted) {
  EXPECT_EQ(reverse_complement("acg"), "???");
  EXPECT_EQ(unknown_bytes("acg"), 3);
}

TEST(ReverseComplementTest, OfTheAmbiguityLettersPairsThem) {
  EXPECT_EQ(reverse_complement("DHKMRYBV"), "BVRYKMDH");
  EXPECT_EQ(unknown_bytes("DHKMRYBV"), 0);
}

TEST(ReverseComplementTest, OfLettersWithoutAComplementIsUnknown) {
  EXPECT_EQ(reverse_complement("SWEFIJLOPQUXZ"), std::string(13, '?'));
  EXPECT_EQ(unknown_bytes("SWEFIJLOPQUXZ"), 13);
}

TEST(ReverseComplementTest, OfBytesThatAreNotLettersIsUnknown) {
  EXPECT_EQ(reverse_complement("A-\xc3@["), "????T");
  EXPECT_EQ(unknown_bytes("A-\xc3@["), 4);
}

TEST(ReverseComplementTest, ReplacesWhatTheStringHeld) {
  CDnaString text = dna("GGGGGGGGGG");
  text.setToReverseComplementOf(dna("AC"));
  EXPECT_EQ(text.str(), "GT");
}

TEST(SmallestRotationTest, OfAnAperiodicUnit) {
  EXPECT_EQ(smallest_rotation("TGCA"), "ATGC");
  EXPECT_FALSE(periodic("TGCA"));
}

TEST(SmallestRotationTest, OfAPeriodicUnitTellsSo) {
  EXPECT_EQ(smallest_rotation("GAGA"), "AGAG");
  EXPECT_TRUE(periodic("GAGA"));
}

TEST(SmallestRotationTest, OfOneBaseIsNeverPeriodic) {
  EXPECT_EQ(smallest_rotation("T"), "T");
  EXPECT_FALSE(periodic("T"));
}

TEST(SmallestRotationTest, OfTheEmptyStringIsEmpty) {
  EXPECT_EQ(smallest_rotation(""), "");
  EXPECT_FALSE(periodic(""));
}

TEST(SmallestRotationTest, FindsPeriodsOfPrimeLengthToo) {
  EXPECT_TRUE(periodic("AAA"));
  EXPECT_TRUE(periodic("AAAAAAA"));
}

TEST(SmallestRotationTest, OfEveryShortWordIsTheMinimumOfItsRotations) {
  for (std::size_t length = 1; length <= 7; ++length) {
    for (const std::string& word : all_words(length)) {
      std::string best = word;
      bool equals_a_rotation = false;
      for (std::size_t by = 1; by < length; ++by) {
        best = std::min(best, rotated(word, by));
        equals_a_rotation = equals_a_rotation || rotated(word, by) == word;
      }
      ASSERT_EQ(smallest_rotation(word), best) << word;
      ASSERT_EQ(periodic(word), equals_a_rotation) << word;
    }
  }
}

TEST(SmallestRotationTest, IsTheSameForAllRotations) {
  const std::string unit = "ACCACGACCACT";
  for (std::size_t by = 0; by < unit.size(); ++by) EXPECT_EQ(smallest_rotation(rotated(unit, by)), "ACCACGACCACT");
}

TEST(ReducibleUnitTest, OfRepeatedUnitsIsTrue) {
  EXPECT_TRUE(reducible("ATAT"));
  EXPECT_TRUE(reducible("ACGACG"));
  EXPECT_TRUE(reducible("AAAA"));
}

TEST(ReducibleUnitTest, OfAnAperiodicUnitIsFalse) {
  EXPECT_FALSE(reducible("ACGT"));
}

TEST(ReducibleUnitTest, OfPrimeLengthsIsFalseEvenForOneRepeatedBase) {
  EXPECT_FALSE(reducible("AAA"));
  EXPECT_FALSE(reducible("AAAAAAA"));
}

TEST(ReducibleUnitTest, OfOneBaseIsFalse) {
  EXPECT_FALSE(reducible("A"));
  EXPECT_FALSE(reducible("N"));
}

TEST(ReducibleUnitTest, LooksAtEveryPrimeFactor) {
  EXPECT_TRUE(reducible(test::repeated("AC", 15)));         // 15 copies: 3 and 5 divide 30
  EXPECT_TRUE(reducible(test::repeated("AAAAAC", 5)));      // only 5
  EXPECT_TRUE(reducible(test::repeated("AAAAAAAAAC", 3)));  // only 3
  EXPECT_FALSE(reducible(std::string(29, 'A') + "C"));
}

TEST(ReducibleUnitTest, NeedsAllCopiesEqual) {
  EXPECT_FALSE(reducible("ACACAG"));
  EXPECT_FALSE(reducible("AGACAC"));
}

TEST(ReducibleUnitTest, WorksForUnitsLongerThanTenThousand) {
  EXPECT_TRUE(reducible(test::repeated("AAC", 5000)));
  EXPECT_FALSE(reducible(test::repeated("AAC", 5000) + "ACG"));
  EXPECT_FALSE(reducible(std::string(10007, 'A')));  // a prime
}

}  // namespace
