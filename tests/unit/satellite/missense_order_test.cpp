#include <algorithm>

#include "satellite/Csat.h"
#include "test_support.h"

namespace {

const char bases[] = "ACGTACGTACGTACGT";

std::string sorted(const std::vector<std::pair<int, char>>& events) {
  Csat sat;
  for (const auto& [position, kind] : events) sat.missense.push_back({bases + position, kind});
  sat.sort_missense();
  std::string text;
  for (const Csat::Event& event : sat.missense) text += std::to_string(event.first - bases) + event.second + " ";
  return text;
}

bool less(int a, char kind_a, int b, char kind_b) {
  return Csat::lessThan_missense()({bases + a, kind_a}, {bases + b, kind_b});
}

TEST(LessThanMissenseTest, ThePositionDecidesFirst) {
  EXPECT_TRUE(less(1, 'M', 2, 'D'));
  EXPECT_FALSE(less(2, 'D', 1, 'M'));
}

TEST(LessThanMissenseTest, AtOnePositionADeletionComesBeforeAMismatch) {
  EXPECT_TRUE(less(3, 'D', 3, 'M'));
  EXPECT_FALSE(less(3, 'M', 3, 'D'));
}

TEST(LessThanMissenseTest, EqualEventsCompareLessBothWays) {
  EXPECT_TRUE(less(3, 'D', 3, 'D'));
}

TEST(SortMissenseTest, SortsByPosition) {
  EXPECT_EQ(sorted({{5, 'M'}, {1, 'I'}, {3, 'D'}}), "1I 3D 5M ");
}

TEST(SortMissenseTest, PutsADeletionBeforeAMismatch) {
  EXPECT_EQ(sorted({{3, 'M'}, {3, 'D'}}), "3D 3M ");
  EXPECT_EQ(sorted({{3, 'D'}, {3, 'M'}}), "3D 3M ");
}

TEST(SortMissenseTest, PutsADeletionBeforeAnInsertion) {
  EXPECT_EQ(sorted({{3, 'I'}, {3, 'D'}}), "3D 3I ");
  EXPECT_EQ(sorted({{3, 'D'}, {3, 'I'}}), "3D 3I ");
}

TEST(SortMissenseTest, PutsAllDeletionsOfAPositionFirst) {
  EXPECT_EQ(sorted({{3, 'D'}, {3, 'M'}, {3, 'D'}, {3, 'D'}, {2, 'M'}}), "2M 3D 3D 3D 3M ");
}

// An ordering that is no strict weak ordering makes std::sort read beyond the list from 17 equal elements on.
TEST(SortMissenseTest, ManyEqualEventsStayWithinTheList) {
  std::vector<std::pair<int, char>> events(200, {7, 'D'});
  events.emplace_back(7, 'M');
  std::reverse(events.begin(), events.end());
  EXPECT_EQ(sorted(events), test::repeated("7D ", 200) + "7M ");
}

TEST(SortMissenseTest, OfNoEventsDoesNothing) {
  EXPECT_EQ(sorted({}), "");
}

}  // namespace
