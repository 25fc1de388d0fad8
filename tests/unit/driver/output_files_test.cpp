#include "driver/output_files.h"

#include "test_support.h"

namespace {

class SameFileTest : public testing::Test {
 protected:
  test::TempDir dir;
};

TEST_F(SameFileTest, OnePathIsOneFile) {
  const std::string path = dir.write("a", "");
  EXPECT_TRUE(same_file(path, path));
}

TEST_F(SameFileTest, TwoFilesAreNot) {
  EXPECT_FALSE(same_file(dir.write("a", ""), dir.write("b", "")));
}

TEST_F(SameFileTest, ADetourIsTheSameFile) {
  const std::string path = dir.write("a", "");
  EXPECT_TRUE(same_file(path, dir.path("./a")));
}

TEST_F(SameFileTest, ASymbolicLinkIsTheSameFile) {
  const std::string path = dir.write("a", "");
  std::filesystem::create_symlink(path, dir.path("link"));
  EXPECT_TRUE(same_file(path, dir.path("link")));
}

TEST_F(SameFileTest, AHardLinkIsTheSameFile) {
  const std::string path = dir.write("a", "");
  std::filesystem::create_hard_link(path, dir.path("link"));
  EXPECT_TRUE(same_file(path, dir.path("link")));
}

TEST_F(SameFileTest, AnExistingAndAMissingFileAreNot) {
  EXPECT_FALSE(same_file(dir.write("a", ""), dir.path("missing")));
}

TEST_F(SameFileTest, TwoMissingPathsAreComparedResolved) {
  EXPECT_TRUE(same_file(dir.path("missing"), dir.path("./missing")));
  EXPECT_FALSE(same_file(dir.path("missing"), dir.path("other")));
}

TEST_F(SameFileTest, ADeviceMayBeReadAndWritten) {
  EXPECT_FALSE(same_file("/dev/null", "/dev/null"));
}

class OutputFileTest : public testing::Test {
 protected:
  test::TempDir dir;
};

TEST_F(OutputFileTest, IsNotOpenAtFirst) {
  EXPECT_FALSE(OutputFile().is_open());
}

TEST_F(OutputFileTest, HoldsWhatWasWrittenAfterItIsClosed) {
  OutputFile file;
  ASSERT_TRUE(file.open(dir.path("out")));
  std::fputs("text\n", file.stream());
  EXPECT_TRUE(file.close());
  EXPECT_EQ(test::read_file(dir.path("out")), "text\n");
}

TEST_F(OutputFileTest, TruncatesAnExistingFile) {
  OutputFile file;
  ASSERT_TRUE(file.open(dir.write("out", "something longer")));
  file.close();
  EXPECT_EQ(test::read_file(dir.path("out")), "");
}

TEST_F(OutputFileTest, CannotBeOpenedOnADirectory) {
  OutputFile file;
  EXPECT_FALSE(file.open(dir.path()));
  EXPECT_FALSE(file.is_open());
}

TEST_F(OutputFileTest, AFullDeviceIsNoticedWhenItIsFlushed) {
  OutputFile file;
  ASSERT_TRUE(file.open("/dev/full"));
  std::fputs("text\n", file.stream());
  EXPECT_FALSE(file.flush());
  EXPECT_TRUE(file.has_failed());
  EXPECT_FALSE(file.close());
}

TEST_F(OutputFileTest, AFullDeviceIsReportedByItsName) {
  OutputFile file;
  ASSERT_TRUE(file.open("/dev/full"));
  std::fputs("text\n", file.stream());
  file.close();
  testing::internal::CaptureStderr();
  file.report_failure();
  EXPECT_EQ(testing::internal::GetCapturedStderr(),
            "Sorry! Failed to write file\n   \"/dev/full\"\ncompletely: No space left on device.\n");
}

TEST_F(OutputFileTest, ATemporaryFileCanBeReadAndLeavesNothing) {
  const char* const before = std::getenv("TMPDIR");
  const std::string place = before == nullptr ? "/tmp" : before;
  setenv("TMPDIR", dir.path().c_str(), 1);
  OutputFile file;
  EXPECT_TRUE(file.open_temporary());
  setenv("TMPDIR", place.c_str(), 1);
  file.write("text", 4);
  std::rewind(file.stream());
  char text[5] = {};
  EXPECT_EQ(std::fread(text, 1, 4, file.stream()), 4U);
  EXPECT_STREQ(text, "text");
  EXPECT_TRUE(std::filesystem::is_empty(dir.path()));
}

TEST_F(OutputFileTest, ClosingAFileThatIsNotOpenLosesNothing) {
  EXPECT_TRUE(OutputFile().close());
}

}  // namespace
