// Text that must look as if printf had written it.

#include "satellite/report_text.h"

#include <cinttypes>
#include <cmath>
#include <cstdint>
#include <limits>
#include <random>
#include <string>
#include <vector>

#include "test_support.h"

namespace {

template <typename Put>
std::string text_of(Put put) {
  return test::bytes_written_by([&](std::FILE* out) {
    ReportText text(out);
    put(text);
    text.flush();
  });
}

template <typename... Values>
std::string printed(const char* format, Values... values) {
  char bytes[128];
  std::snprintf(bytes, sizeof bytes, format, values...);
  return bytes;
}

TEST(ReportTextTest, NumbersArePaddedOnTheLeft) {
  constexpr std::int64_t largest = std::numeric_limits<std::int64_t>::max();
  for (const std::int64_t number :
       {std::int64_t{0}, std::int64_t{9}, std::int64_t{10}, std::int64_t{99999}, std::int64_t{100000}, std::int64_t{-1},
        std::int64_t{-99999}, largest, -largest - 1}) {
    for (const int width : {0, 1, 5, 6, 9, 30}) {
      EXPECT_EQ(text_of([&](ReportText& text) { text.put_number(number, static_cast<std::size_t>(width)); }),
                printed("%*" PRId64, width, number));
    }
  }
}

TEST(ReportTextTest, NamesArePaddedOnTheLeft) {
  for (const char* name : {"", "dinucleotide", "fifteen letters", "sixteen letters!", "seventeen letters"}) {
    EXPECT_EQ(text_of([&](ReportText& text) { text.put_aligned(name, 16); }), printed("%16s", name));
  }
}

void expect_as_printf(const std::vector<double>& numbers) {
  std::string expected;
  for (const double number : numbers) expected += printed("%7.3f\n", number);
  EXPECT_EQ(text_of([&](ReportText& text) {
              for (const double number : numbers) {
                text.put_fixed_3(number, 7);
                text.put('\n');
              }
            }),
            expected);
}

TEST(ReportTextTest, PercentagesAreRoundedAsByPrintf) {
  std::vector<double> numbers;
  for (int length = 1; length <= 200; ++length) {
    for (int matches = -length; matches <= length; ++matches) numbers.push_back(100.0 * matches / length);
  }
  expect_as_printf(numbers);
}

TEST(ReportTextTest, TiesAreRoundedAsByPrintf) {
  std::vector<double> numbers;
  for (int sixteenths = -1600; sixteenths <= 1600; ++sixteenths) numbers.push_back(sixteenths / 16.0);
  expect_as_printf(numbers);
}

TEST(ReportTextTest, ArbitraryNumbersAreRoundedAsByPrintf) {
  std::mt19937_64 random(7);
  std::uniform_real_distribution<double> percent(-200, 200);
  std::vector<double> numbers(20000);
  for (double& number : numbers) number = percent(random);
  expect_as_printf(numbers);
}

TEST(ReportTextTest, NumbersThatAreNoPercentagesAreWrittenAsByPrintf) {
  constexpr double infinity = std::numeric_limits<double>::infinity();
  const double nan = std::numeric_limits<double>::quiet_NaN();
  expect_as_printf({0.0, -0.0, -0.0001, 100.0, 9.3e20, -9.3e20, infinity, -infinity, nan, -nan});
}

TEST(ReportTextTest, PiecesRoundTheBufferSizeComeThroughWhole) {
  constexpr std::size_t size = ReportText::buffer_size;
  for (const std::size_t first : {std::size_t{0}, std::size_t{1}, size - 1, size, size + 1}) {
    for (const std::size_t second : {std::size_t{0}, std::size_t{1}, size - 1, size, size + 1, 2 * size + 1}) {
      const std::string a(first, 'a');
      const std::string b(second, 'b');
      const std::string written = text_of([&](ReportText& text) {
        text.put(a);
        text.put(b);
        text.put('c');
      });
      EXPECT_TRUE(written == a + b + "c") << first << " and " << second;
    }
  }
}

TEST(ReportTextTest, NothingIsInTheStreamBeforeTheFlush) {
  EXPECT_EQ(test::bytes_written_by([](std::FILE* out) {
              ReportText text(out);
              text.put("lost");
            }),
            "");
}

}  // namespace
