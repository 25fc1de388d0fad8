#include "driver/repeat_tables.h"

#include <htslib/bgzf.h>

#include "test_support.h"

namespace {

std::string decompressed(const std::string& path) {
  BGZF* const file = bgzf_open(path.c_str(), "r");
  std::string text(1000000, ' ');
  const ssize_t size = bgzf_read(file, text.data(), text.size());
  EXPECT_EQ(bgzf_compression(file), 2) << "not in BGZF form";
  EXPECT_FALSE(file->no_eof_block);
  bgzf_close(file);
  return text.substr(0, static_cast<std::size_t>(size));
}

class RowFileTest : public testing::Test {
 protected:
  test::TempDir dir;
};

TEST_F(RowFileTest, HoldsHeadAndRows) {
  RowFile file;
  ASSERT_TRUE(file.open(dir.path("x.bed"), false));
  file.write_head("head\n");
  file.write_row("row\n");
  EXPECT_TRUE(file.close());
  EXPECT_EQ(test::read_file(dir.path("x.bed")), "head\nrow\n");
}

TEST_F(RowFileTest, AGrowingHeadStandsBeforeAllRows) {
  for (const char* name : {"x.gff3", "x.gff3.gz"}) {
    RowFile file;
    ASSERT_TRUE(file.open(dir.path(name), true));
    file.write_head("head\n");
    file.write_row(std::string(200000, 'r') + "\n");
    file.write_head("more\n");
    file.write_row("last\n");
    EXPECT_TRUE(file.close());
  }
  const std::string expected = "head\nmore\n" + std::string(200000, 'r') + "\nlast\n";
  EXPECT_EQ(test::read_file(dir.path("x.gff3")), expected);
  EXPECT_EQ(decompressed(dir.path("x.gff3.gz")), expected);
}

TEST_F(RowFileTest, AFullBlockLosesNothing) {
  for (const std::size_t size : std::vector<std::size_t>{0, 1, 65279, 65280, 65281, 130560, 130561}) {
    RowFile file;
    ASSERT_TRUE(file.open(dir.path("x.gz"), false));
    file.write_row(std::string(size, 'r'));
    EXPECT_TRUE(file.close());
    EXPECT_EQ(decompressed(dir.path("x.gz")), std::string(size, 'r')) << size;
  }
}

TEST_F(RowFileTest, TheDestructorClosesIt) {
  {
    RowFile file;
    ASSERT_TRUE(file.open(dir.path("x.gz"), false));
    file.write_row("row\n");
  }
  EXPECT_EQ(decompressed(dir.path("x.gz")), "row\n");
}

TEST_F(RowFileTest, OnlyAnEndInGzCompresses) {
  for (const char* name : {"gz", "x.gz.bed", "x.GZ"}) {
    RowFile file;
    ASSERT_TRUE(file.open(dir.path(name), false));
    file.write_row("row\n");
    file.close();
    EXPECT_EQ(test::read_file(dir.path(name)), "row\n") << name;
  }
}

TEST_F(RowFileTest, AFullDeviceIsReportedByItsNameOnce) {
  std::filesystem::create_symlink("/dev/full", dir.path("x.gz"));
  testing::internal::CaptureStderr();
  {
    RowFile file;
    ASSERT_TRUE(file.open(dir.path("x.gz"), false));
    file.write_row("row\n");
    EXPECT_FALSE(file.close());
  }
  EXPECT_EQ(testing::internal::GetCapturedStderr(),
            "Sorry! Failed to write file\n   \"" + dir.path("x.gz") + "\"\ncompletely: No space left on device.\n");
}

}  // namespace
