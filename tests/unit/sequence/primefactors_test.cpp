#include "sequence/primefactors.h"

#include "test_support.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

bool is_prime(std::uint64_t n) {
  if (n < 2) return false;
  for (std::uint64_t divisor = 2; divisor < n; ++divisor) {
    if (n % divisor == 0) return false;
  }
  return true;
}

TEST(PrimeFactorsTest, OfZeroAndOneThereAreNone) {
  EXPECT_THAT(primeFactors(0), IsEmpty());
  EXPECT_THAT(primeFactors(1), IsEmpty());
}

TEST(PrimeFactorsTest, OfAPrimeThereAreNoneSmallerThanIt) {
  EXPECT_THAT(primeFactors(2), IsEmpty());
  EXPECT_THAT(primeFactors(7), IsEmpty());
  EXPECT_THAT(primeFactors(9973), IsEmpty());
}

TEST(PrimeFactorsTest, OfASquareIsItsRoot) {
  EXPECT_THAT(primeFactors(4), ElementsAre(2));
  EXPECT_THAT(primeFactors(9409), ElementsAre(97));
}

TEST(PrimeFactorsTest, AreDistinctAndAscending) {
  EXPECT_THAT(primeFactors(12), ElementsAre(2, 3));
}

TEST(PrimeFactorsTest, OfTheProductOfTheFirstFive) {
  EXPECT_THAT(primeFactors(2310), ElementsAre(2, 3, 5, 7, 11));
}

TEST(PrimeFactorsTest, OfEveryNumberUpToAThousandAreItsProperPrimeDivisors) {
  for (std::uint64_t n = 0; n <= 1000; ++n) {
    std::vector<std::uint64_t> expected;
    for (std::uint64_t p = 2; p < n; ++p) {
      if (n % p == 0 && is_prime(p)) expected.push_back(p);
    }
    ASSERT_EQ(primeFactors(n), expected) << n;
  }
}

TEST(PrimeFactorsTest, OfNumbersAboveTenThousand) {
  EXPECT_THAT(primeFactors(10001), ElementsAre(73, 137));
  EXPECT_THAT(primeFactors(4294967295), ElementsAre(3, 5, 17, 257, 65537));
}

}  // namespace
