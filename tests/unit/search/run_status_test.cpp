#include "search/run_status.h"

#include "test_support.h"

namespace {

std::string line(unsigned number, const std::string& name, unsigned unit_length, char kind = 'r') {
  testing::internal::CaptureStderr();
  report_status(number, name.c_str(), unit_length, kind);
  return testing::internal::GetCapturedStderr();
}

class RunStatusTest : public testing::Test {
 protected:
  RunStatusTest() { start_run_clock(); }
};

TEST_F(RunStatusTest, ALineShowsTimeNumberUnitLengthAndName) {
  EXPECT_EQ(line(1, "first", 6), "00.00.00 - #   1 -    6bp - first\n");
}

TEST_F(RunStatusTest, TheFinalLineLooksTheSame) {
  EXPECT_EQ(line(1, "first", 6, 'f'), line(1, "first", 6, 'r'));
}

TEST_F(RunStatusTest, LongNumbersAreWrittenWhole) {
  EXPECT_EQ(line(12345, "a", 20000), "00.00.00 - # 12345 - 20000bp - a\n");
}

TEST_F(RunStatusTest, TheNameIsCutAtSeventyBytes) {
  EXPECT_EQ(line(1, std::string(70, 'n'), 1), "00.00.00 - #   1 -    1bp - " + std::string(70, 'n') + "\n");
  EXPECT_EQ(line(1, std::string(71, 'n'), 1), "00.00.00 - #   1 -    1bp - " + std::string(70, 'n') + "\n");
}

TEST_F(RunStatusTest, ANameWithPercentSignsIsWrittenAsItIs) {
  EXPECT_EQ(line(1, "100%s", 1), "00.00.00 - #   1 -    1bp - 100%s\n");
}

TEST_F(RunStatusTest, NoLineIsDueRightAfterTheTimeWasSet) {
  update_report_time();
  EXPECT_FALSE(check_report_status());
}

}  // namespace
