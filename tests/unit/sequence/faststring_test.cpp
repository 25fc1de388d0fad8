#include "sequence/faststring.h"

#include "test_support.h"

namespace {

TEST(FaststringTest, StartsEmptyWithoutABuffer) {
  const faststring text;
  EXPECT_EQ(text.buffer, nullptr);
  EXPECT_EQ(text.length, 0U);
  EXPECT_EQ(text.capacity, 0U);
}

TEST(FaststringTest, ReserveGrowsToExactlyOneMore) {
  faststring text;
  text.reserve(10);
  EXPECT_EQ(text.capacity, 11U);
  EXPECT_EQ(text.length, 0U);
}

TEST(FaststringTest, ReserveKeepsABufferThatIsLargeEnough) {
  faststring text;
  text.reserve(10);
  const char* const before = text.buffer;
  text.reserve(10);
  EXPECT_EQ(text.buffer, before);
  EXPECT_EQ(text.capacity, 11U);
}

TEST(FaststringTest, ReserveOfTheCapacityGrowsByTheTerminator) {
  faststring text;
  text.reserve(10);
  text.reserve(11);
  EXPECT_EQ(text.capacity, 12U);
}

TEST(FaststringTest, ReserveKeepsTheContent) {
  faststring text;
  text.push_back('A');
  text.push_back('C');
  text.reserve(1000);
  EXPECT_EQ(std::string(text.buffer, text.length), "AC");
}

TEST(FaststringTest, AppendingDoublesTheCapacityFromFour) {
  faststring text;
  std::vector<std::size_t> capacities;
  for (int i = 0; i < 9; ++i) {
    text.push_back('A');
    capacities.push_back(text.capacity);
  }
  EXPECT_THAT(capacities, testing::ElementsAre(4, 4, 4, 4, 8, 8, 8, 8, 16));
}

TEST(FaststringTest, RoomForManyBytesDoublesUntilTheyFit) {
  faststring text;
  text.make_room_for(9);
  EXPECT_EQ(text.capacity, 16U);
}

TEST(FaststringTest, RoomThatIsThereLeavesTheBufferAlone) {
  faststring text;
  text.make_room_for(4);
  const char* const before = text.buffer;
  text.make_room_for(4);
  EXPECT_EQ(text.buffer, before);
}

TEST(FaststringTest, TerminatingAFullBufferGrowsItByOneByte) {
  faststring text;
  for (int i = 0; i < 4; ++i) text.push_back('A');
  text.terminate();
  EXPECT_EQ(text.capacity, 5U);
  EXPECT_EQ(text.length, 4U);
  EXPECT_STREQ(text.buffer, "AAAA");
}

TEST(FaststringTest, TerminatingABufferWithRoomDoesNotGrowIt) {
  faststring text;
  for (int i = 0; i < 3; ++i) text.push_back('A');
  text.terminate();
  EXPECT_EQ(text.capacity, 4U);
  EXPECT_STREQ(text.buffer, "AAA");
}

TEST(FaststringTest, TerminatingAnEmptyStringMakesABuffer) {
  faststring text;
  text.terminate();
  ASSERT_NE(text.buffer, nullptr);
  EXPECT_EQ(text.buffer[0], '\0');
}

}  // namespace
