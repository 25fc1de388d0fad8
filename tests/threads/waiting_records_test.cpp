#include "driver/record_search.h"
#include "search/run_status.h"
#include "test_support.h"

namespace {

using testing::ElementsAre;

class WaitingRecordsTest : public test::WithParameters {
 protected:
  WaitingRecordsTest() { update_report_time(); }

  void add(const std::string& bases, unsigned number) {
    const test::Sequence sequence(bases, "record " + std::to_string(number));
    RecordPlace place;
    place.begin = 100 * number;
    waiting.add(sequence.mol, number, place);
  }

  /// "3: 2 repeats" for each record, or "3: not searched".
  static std::vector<std::string> described(const std::list<RecordSearch>& records) {
    std::vector<std::string> texts;
    for (const RecordSearch& record : records) {
      const std::string result =
          record.result == nullptr ? "not searched" : std::to_string(record.result->sats.size()) + " repeats";
      texts.push_back(std::to_string(record.number) + ": " + result);
    }
    return texts;
  }

  WaitingRecords waiting;
};

TEST_F(WaitingRecordsTest, RecordsOfAMillionBasesWaitIfThereAreThreads) {
  EXPECT_TRUE(WaitingRecords::has_to_wait(0, 2));
  EXPECT_TRUE(WaitingRecords::has_to_wait(1000000, 2));
  EXPECT_FALSE(WaitingRecords::has_to_wait(1000001, 2));
  EXPECT_FALSE(WaitingRecords::has_to_wait(0, 1));
}

TEST_F(WaitingRecordsTest, NothingWaitsAtFirst) {
  EXPECT_FALSE(waiting.are_enough());
  EXPECT_THAT(waiting.take_searched(3), testing::IsEmpty());
}

TEST_F(WaitingRecordsTest, RecordsComeOutSearchedAndInTheirOrder) {
  add("ACACACACACAC", 1);
  add("ACGT", 2);
  add("", 4);
  add("TTGTTGTTGTTGACACACACACAC", 5);
  EXPECT_THAT(described(waiting.take_searched(2)),
              ElementsAre("1: 1 repeats", "2: 0 repeats", "4: 0 repeats", "5: not searched"));
  EXPECT_THAT(waiting.take_searched(2), testing::IsEmpty());
}

TEST_F(WaitingRecordsTest, ARecordLongerThanTheShareOfAThreadIsLeftToAllThreads) {
  add(std::string(51, 'A'), 1);
  add(std::string(50, 'A'), 2);
  add(std::string(1, 'A'), 3);
  EXPECT_THAT(described(waiting.take_searched(2)), ElementsAre("1: 1 repeats", "2: 1 repeats", "3: 0 repeats"));
  add(std::string(52, 'A'), 1);
  add(std::string(50, 'A'), 2);
  add(std::string(1, 'A'), 3);
  EXPECT_THAT(described(waiting.take_searched(2)), ElementsAre("1: not searched", "2: 1 repeats", "3: 0 repeats"));
}

TEST_F(WaitingRecordsTest, ALoneRecordIsLeftToAllThreads) {
  add("ACACACACACAC", 1);
  EXPECT_THAT(described(waiting.take_searched(2)), ElementsAre("1: not searched"));
}

TEST_F(WaitingRecordsTest, ARecordKeepsItsNameItsBasesAndItsPlace) {
  {
    test::Sequence sequence("ACACACACACAC", "a name");
    waiting.add(sequence.mol, 7, {5, 25, 12});
    sequence.mol.sequence.buffer[0] = 'G';
    sequence.mol.name = "another";
  }
  const std::list<RecordSearch> records = waiting.take_searched(2);
  ASSERT_EQ(records.size(), 1U);
  EXPECT_EQ(records.front().sequence->name, "a name");
  EXPECT_EQ(std::string(records.front().sequence->begin(), records.front().sequence->end()), "ACACACACACAC");
  EXPECT_EQ(records.front().place.begin, 5U);
  EXPECT_EQ(records.front().place.end, 25U);
  EXPECT_EQ(records.front().place.bases, 12U);
}

TEST_F(WaitingRecordsTest, FourThousandRecordsAreEnough) {
  for (unsigned i = 1; i < 4096; ++i) waiting.add(CSequence_Mol(), i, {});
  EXPECT_FALSE(waiting.are_enough());
  waiting.add(CSequence_Mol(), 4096, {});
  EXPECT_TRUE(waiting.are_enough());
  const std::list<RecordSearch> records = waiting.take_searched(3);
  EXPECT_EQ(records.size(), 4096U);
  EXPECT_FALSE(waiting.are_enough());
}

TEST_F(WaitingRecordsTest, EightMillionBasesAreEnough) {
  global_search_mode = 0;
  const test::Sequence sequence(std::string(999999, 'N'));
  for (unsigned i = 1; i <= 8; ++i) waiting.add(sequence.mol, i, {});
  EXPECT_FALSE(waiting.are_enough());
  const test::Sequence rest(std::string(8, 'N'));
  waiting.add(rest.mol, 9, {});
  EXPECT_TRUE(waiting.are_enough());
  waiting.take_searched(2);
  waiting.add(rest.mol, 1, {});
  EXPECT_FALSE(waiting.are_enough());
}

TEST_F(WaitingRecordsTest, WhatASearchHasToSayWaitsWithIt) {
  global_search_mode = 1;
  for (unsigned i = 1; i <= 3; ++i) add("ACACACACACAC", i);
  testing::internal::CaptureStderr();
  const std::list<RecordSearch> records = waiting.take_searched(3);
  EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
  for (const RecordSearch& record : records) {
    EXPECT_EQ(record.controller->unsaid, "  Searching for exact repeats.\n  Extend exact to imperfect repeats.\n");
  }
}

TEST_F(WaitingRecordsTest, ManyRecordsOnManyThreads) {
  for (unsigned i = 1; i <= 500; ++i) add(test::repeated(i % 2 == 0 ? "AC" : "ACG", 4 + i % 90), i);
  const std::list<RecordSearch> records = waiting.take_searched(5);
  unsigned number = 0;
  for (const RecordSearch& record : records) {
    EXPECT_EQ(record.number, ++number);
    ASSERT_NE(record.result, nullptr);
    EXPECT_EQ(record.result->sats.size(), record.sequence->sequence.length >= (number % 2 == 0 ? 8U : 9U) ? 1U : 0U)
        << number;
  }
  EXPECT_EQ(number, 500U);
}

}  // namespace
