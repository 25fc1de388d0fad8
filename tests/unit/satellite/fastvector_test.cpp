#include "satellite/fastvector.h"

#include "test_support.h"

namespace {

using testing::ElementsAre;

fastvector<int> numbers(int count) {
  fastvector<int> vector;
  for (int i = 1; i <= count; ++i) vector.push_back(i);
  return vector;
}

std::vector<int> elements(const fastvector<int>& vector) {
  return {vector.begin(), vector.end()};
}

TEST(FastvectorTest, StartsEmptyWithoutABuffer) {
  const fastvector<int> vector;
  EXPECT_TRUE(vector.empty());
  EXPECT_EQ(vector.capacity, 0U);
  EXPECT_EQ(vector.buffer, nullptr);
}

TEST(FastvectorTest, GrowsByDoublingFromFour) {
  fastvector<int> vector;
  std::vector<std::size_t> capacities;
  for (int i = 0; i < 9; ++i) {
    vector.push_back(i);
    capacities.push_back(vector.capacity);
  }
  EXPECT_THAT(capacities, ElementsAre(4, 4, 4, 4, 8, 8, 8, 8, 16));
}

TEST(FastvectorTest, KeepsItsElementsWhenItGrows) {
  EXPECT_THAT(elements(numbers(6)), ElementsAre(1, 2, 3, 4, 5, 6));
}

TEST(FastvectorTest, ReserveGrowsToExactlyTheNumber) {
  fastvector<int> vector;
  vector.reserve(7);
  EXPECT_EQ(vector.capacity, 7U);
  EXPECT_TRUE(vector.empty());
}

TEST(FastvectorTest, ReserveNeverShrinks) {
  fastvector<int> vector;
  vector.reserve(7);
  vector.reserve(3);
  EXPECT_EQ(vector.capacity, 7U);
}

TEST(FastvectorTest, ShrinksALargeBufferToItsElements) {
  fastvector<int> vector = numbers(3);
  vector.reserve(100);
  vector.shrink();
  EXPECT_EQ(vector.capacity, 3U);
  EXPECT_THAT(elements(vector), ElementsAre(1, 2, 3));
}

TEST(FastvectorTest, ShrinksALargeEmptyBufferToNone) {
  fastvector<int> vector;
  vector.reserve(100);
  vector.shrink();
  EXPECT_EQ(vector.capacity, 0U);
  EXPECT_EQ(vector.buffer, nullptr);
}

TEST(FastvectorTest, ALittleRoomStaysWhenItShrinks) {
  fastvector<int> vector = numbers(3);
  vector.shrink();
  EXPECT_EQ(vector.capacity, 4U);
}

TEST(FastvectorTest, MakesRoomForMoreByDoubling) {
  fastvector<int> vector = numbers(3);
  vector.reserve_more(2);
  EXPECT_EQ(vector.capacity, 8U);
  vector.reserve_more(5);
  EXPECT_EQ(vector.capacity, 8U);
  vector.reserve_more(20);
  EXPECT_EQ(vector.capacity, 23U);
  EXPECT_THAT(elements(vector), ElementsAre(1, 2, 3));
}

TEST(FastvectorTest, ClearKeepsTheBuffer) {
  fastvector<int> vector = numbers(3);
  const int* const before = vector.buffer;
  vector.clear();
  EXPECT_TRUE(vector.empty());
  EXPECT_EQ(vector.buffer, before);
  EXPECT_EQ(vector.capacity, 4U);
}

TEST(FastvectorTest, ACopyIsIndependent) {
  fastvector<int> original = numbers(2);
  fastvector<int> copy = original;
  original.buffer[0] = 99;
  original.push_back(3);
  EXPECT_THAT(elements(copy), ElementsAre(1, 2));
}

TEST(FastvectorTest, AssignmentReplacesTheElements) {
  fastvector<int> target = numbers(5);
  target = numbers(2);
  EXPECT_THAT(elements(target), ElementsAre(1, 2));
}

TEST(FastvectorTest, AssignmentToItselfKeepsTheElements) {
  fastvector<int> vector = numbers(3);
  const fastvector<int>& alias = vector;
  vector = alias;
  EXPECT_THAT(elements(vector), ElementsAre(1, 2, 3));
}

}  // namespace
