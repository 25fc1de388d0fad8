#include <list>

#include "satellite/Csat.h"
#include "test_support.h"

namespace {

const char bases[] = "ACGTACGT";

TEST(PoolTest, AnEmptyPoolMakesANewSeed) {
  Csat_garbagecollector pool;
  Csat* const sat = pool.take(bases + 1, bases + 3);
  EXPECT_EQ(sat->pos_left, bases + 1);
  EXPECT_EQ(sat->pos_right_end, bases + 3);
  EXPECT_EQ(pool.size(), 0U);
  pool.give_back(sat);
}

TEST(PoolTest, TheLastRecordGivenBackIsTakenFirst) {
  Csat_garbagecollector pool;
  Csat* const first = pool.take(bases, bases + 1);
  Csat* const second = pool.take(bases, bases + 1);
  pool.give_back(first);
  pool.give_back(second);
  EXPECT_EQ(pool.take(bases, bases + 1), second);
  EXPECT_EQ(pool.take(bases, bases + 1), first);
  pool.give_back(first);
  pool.give_back(second);
}

TEST(PoolTest, ARecycledRecordIsASeedAgain) {
  Csat_garbagecollector pool;
  Csat* const sat = pool.take(bases, bases + 2);
  sat->score = 17;
  sat->mismatches = sat->insertions = sat->deletions = sat->num_Ns = 3;
  sat->missense.push_back({bases, 'M'});
  pool.give_back(sat);
  ASSERT_EQ(pool.take(bases + 4, bases + 7), sat);
  EXPECT_EQ(sat->score, 0);
  EXPECT_EQ(sat->mismatches + sat->insertions + sat->deletions + sat->num_Ns, 0U);
  EXPECT_TRUE(sat->missense.empty());
  EXPECT_EQ(sat->unit_begin, bases + 4);
  EXPECT_EQ(sat->unit_end, bases + 7);
  pool.give_back(sat);
}

TEST(PoolTest, ARecycledRecordKeepsItsEventBuffer) {
  Csat_garbagecollector pool;
  Csat* const sat = pool.take(bases, bases + 2);
  sat->missense.push_back({bases, 'M'});
  const Csat::Event* const before = sat->missense.buffer;
  pool.give_back(sat);
  EXPECT_EQ(pool.take(bases, bases + 2)->missense.buffer, before);
  pool.give_back(sat);
}

TEST(PoolTest, AListIsGivenBackInItsOrder) {
  Csat_garbagecollector pool;
  Csat* const first = pool.take(bases, bases + 1);
  Csat* const second = pool.take(bases, bases + 1);
  std::list<Csat*> sats{first, second};
  pool.give_back_all(sats);
  EXPECT_TRUE(sats.empty());
  EXPECT_EQ(pool.size(), 2U);
  EXPECT_EQ(pool.take(bases, bases + 1), second);
  pool.give_back(second);
}

}  // namespace
