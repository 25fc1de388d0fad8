#include "search/progress_line.h"

#include "test_support.h"

namespace {

constexpr double M = 1e6;

Progress half_way() {
  Progress progress;
  progress.bases = 50 * M;
  progress.seconds = 20;
  progress.file_size = 102000000;
  progress.file_offset = 51 * M;
  progress.bytes_searched = 51 * M;
  return progress;
}

TEST(ProgressTextTest, ShowsBasesShareRateAndTimeLeft) {
  EXPECT_EQ(progress_text(half_way()), "50.00 Mbp, 50 % of 102.00 MB, 2.50 Mbp/s, 0:00:20 left");
}

TEST(ProgressTextTest, AnInputOfUnknownSizeHasNoShareAndNoTimeLeft) {
  Progress progress = half_way();
  progress.file_size = 0;
  EXPECT_EQ(progress_text(progress), "50.00 Mbp, 2.50 Mbp/s");
}

TEST(ProgressTextTest, NothingIsSaidOfTheRateBeforeTheFirstBase) {
  Progress progress = half_way();
  progress.bases = 0.5;
  progress.file_offset = 0;
  EXPECT_EQ(progress_text(progress), "0 bp, 0 % of 102.00 MB");
  progress = half_way();
  progress.seconds = 0;
  EXPECT_EQ(progress_text(progress), "50.00 Mbp, 50 % of 102.00 MB");
}

TEST(ProgressTextTest, SkippedRecordsCostNoTime) {
  Progress progress = half_way();
  progress.bytes_searched = 10.2 * M;
  EXPECT_EQ(progress_text(progress), "50.00 Mbp, 50 % of 102.00 MB, 2.50 Mbp/s, 0:01:40 left");
}

TEST(ProgressTextTest, AFileThatGrowsIsNeverMoreThanDone) {
  Progress progress = half_way();
  progress.file_offset = 200 * M;
  EXPECT_EQ(progress_text(progress), "50.00 Mbp, 100 % of 102.00 MB, 2.50 Mbp/s, 0:00:00 left");
}

TEST(ProgressTextTest, ALongTimeIsShownInHours) {
  Progress progress = half_way();
  progress.seconds = 100 * 3600 + 61;
  EXPECT_THAT(progress_text(progress), testing::EndsWith(", 100:01:01 left"));
}

TEST(ProgressTextTest, APrefixBeginsAtOneThousand) {
  Progress progress;
  for (const auto& [bases, text] : {std::pair{999.0, "999 bp"},
                                    {1000.0, "1.00 kbp"},
                                    {999994.0, "999.99 kbp"},
                                    {999996.0, "1.00 Mbp"},
                                    {2.5e9, "2.50 Gbp"},
                                    {3e15, "3000.00 Tbp"}}) {
    progress.bases = bases;
    EXPECT_EQ(progress_text(progress), text);
  }
}

/// What is drawn on standard error, which is a file here.
std::string drawn_without_terminal() {
  testing::internal::CaptureStderr();
  start_progress_line(100);
  enter_record({0, 100, 90});
  show_progress(0.5);
  clear_progress_line();
  return testing::internal::GetCapturedStderr();
}

TEST(ProgressLineTest, NothingIsDrawnWithoutATerminal) {
  EXPECT_EQ(drawn_without_terminal(), "");
  EXPECT_FALSE(progress_line_is_on);
}

}  // namespace
