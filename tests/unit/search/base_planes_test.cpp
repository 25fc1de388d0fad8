#include "search/base_planes.h"

#include "search/search_support.h"

namespace {

/// 150 bases, more than two words, with N in the middle of each.
const std::string bases = test::repeated("ACGTTGCANNACGGT", 10);

BasePlanes planes_of(const std::string& text) {
  return {text.data(), text.data() + text.size()};
}

char base_at(std::int64_t index) {
  return index < 0 || index >= static_cast<std::int64_t>(bases.size()) ? 'N' : bases[static_cast<std::size_t>(index)];
}

bool bit(const std::vector<std::uint64_t>& words, std::int64_t index) {
  return (words[static_cast<std::size_t>(index / 64)] >> (index % 64) & 1) != 0;
}

TEST(BasePlanesTest, SixtyFourBasesAreAWord) {
  EXPECT_EQ(planes_of("").words(), 0U);
  EXPECT_EQ(planes_of("A").words(), 1U);
  EXPECT_EQ(planes_of(std::string(64, 'A')).words(), 1U);
  EXPECT_EQ(planes_of(std::string(65, 'A')).words(), 2U);
}

TEST(BasePlanesTest, MatchesTellEqualBasesAtEveryLag) {
  const BasePlanes planes = planes_of(bases);
  std::vector<std::uint64_t> matches(3);
  for (std::int64_t lag = 1; lag <= 149; ++lag) {
    planes.matches(0, 3, lag, matches.data());
    for (std::int64_t i = 0; i < 150; ++i) {
      ASSERT_EQ(bit(matches, i), base_at(i) != 'N' && base_at(i) == base_at(i - lag))
          << "lag " << lag << ", base " << i;
    }
  }
}

TEST(BasePlanesTest, NothingMatchesOutsideTheSequence) {
  const BasePlanes planes = planes_of(bases);
  std::vector<std::uint64_t> matches(6);
  planes.matches(-1, 6, 1, matches.data());
  for (std::int64_t i = 0; i < 64; ++i) EXPECT_FALSE(bit(matches, i)) << i;
  EXPECT_FALSE(bit(matches, 64));
  for (std::int64_t i = 64 + 150; i < 6 * 64; ++i) EXPECT_FALSE(bit(matches, i)) << i;
}

TEST(BasePlanesTest, UnknownMarksNBehindTheLag) {
  const BasePlanes planes = planes_of(bases);
  std::vector<std::uint64_t> unknown(3);
  for (const std::int64_t lag : {0, 1, 63, 64, 65, 100}) {
    planes.unknown(0, 3, lag, unknown.data());
    for (std::int64_t i = 0; i < 150; ++i) {
      ASSERT_EQ(bit(unknown, i), base_at(i - lag) == 'N') << "lag " << lag << ", base " << i;
    }
  }
}

TEST(BasePlanesTest, TheBitsFromAnyBaseTellTheBasesApart) {
  const BasePlanes planes = planes_of(bases);
  for (std::int64_t first = 0; first < 86; ++first) {
    std::string codes;
    for (unsigned i = 0; i < 64; ++i) {
      const std::uint64_t code = (planes.high_bits(first) >> i & 1) * 2 + (planes.low_bits(first) >> i & 1);
      codes += (planes.unknown_bits(first) >> i & 1) != 0 ? 'N' : static_cast<char>('0' + code);
    }
    for (std::size_t i = 0; i < 64; ++i) {
      const std::size_t at = static_cast<std::size_t>(first) + i;
      ASSERT_EQ(codes[i] == 'N', bases[at] == 'N');
      for (std::size_t j = 0; j < i; ++j) {
        ASSERT_EQ(codes[i] == codes[j], bases[at] == bases[static_cast<std::size_t>(first) + j]);
      }
    }
  }
}

TEST(BasePlanesTest, TheFirstNFromAnyBaseIsFound) {
  for (const std::size_t size : {0, 1, 63, 64, 65, 127, 128, 129, 200}) {
    for (const std::size_t unknown : {0, 1, 62, 63, 64, 65, 127, 128, 199, 200}) {
      std::string text(size, 'T');
      if (unknown < size) text[unknown] = 'N';
      const BasePlanes planes = planes_of(text);
      for (std::size_t first = 0; first <= size; ++first) {
        const std::size_t expected = std::min(text.find('N', first), size);
        ASSERT_EQ(planes.first_unknown(static_cast<std::int64_t>(first)), static_cast<std::int64_t>(expected))
            << size << " bases, N at " << unknown << ", from " << first;
      }
    }
  }
}

// At every place in a word, every letter.
TEST(BasePlanesTest, EveryLetterIsToldFromTheOthersAtEveryPlace) {
  for (std::size_t place = 0; place < 130; ++place) {
    for (const char letter : std::string("ACGTN")) {
      std::string text(130, 'A');
      text[place] = letter;
      const BasePlanes planes = planes_of(text);
      const auto at = static_cast<std::int64_t>(place);
      EXPECT_EQ(planes.unknown_bits(at) & 1, letter == 'N' ? 1U : 0U);
      if (letter == 'N') continue;
      EXPECT_EQ(planes.low_bits(at) & 1, letter == 'C' || letter == 'G' ? 1U : 0U);
      EXPECT_EQ(planes.high_bits(at) & 1, letter == 'G' || letter == 'T' ? 1U : 0U);
    }
  }
}

}  // namespace
