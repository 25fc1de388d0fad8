#include "driver/number2cstring.h"

#include "test_support.h"

namespace {

TEST(Number2strTest, OfAnInt) {
  EXPECT_STREQ(number2str(-102), "-102");
  EXPECT_STREQ(number2str(-2147483647 - 1), "-2147483648");
}

TEST(Number2strTest, OfAnUnsigned) {
  EXPECT_STREQ(number2str(4294967295U), "4294967295");
}

TEST(Number2strTest, OfAFloatDropsAnEmptyFraction) {
  EXPECT_STREQ(number2str(1.0F), "1");
  EXPECT_STREQ(number2str(0.0F), "0");
}

TEST(Number2strTest, OfAFloatShowsSixDigits) {
  EXPECT_STREQ(number2str(0.5F), "0.5");
  EXPECT_STREQ(number2str(1e38F), "1e+38");
  EXPECT_STREQ(number2str(0.1F), "0.1");
}

TEST(Number2strTest, OfADouble) {
  EXPECT_STREQ(number2str(0.25), "0.25");
}

TEST(Number2strTest, EveryCallOverwritesTheResultBefore) {
  const char* const first = number2str(1);
  number2str(2U);
  EXPECT_STREQ(first, "2");
}

}  // namespace
