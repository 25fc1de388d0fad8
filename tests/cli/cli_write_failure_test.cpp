// Writes that fail. A run that lost a byte of its report never says that it finished.

#include "cli_support.h"

namespace cli {
namespace {

using testing::HasSubstr;
using testing::Not;

class CliWriteFailureTest : public CliTest {
 protected:
  CliWriteFailureTest() { write_plain_input(); }

  static void expect_lost(const Result& result, const std::string& sentence) {
    EXPECT_THAT(result.err, HasSubstr(sentence + aborted(-104)));
    EXPECT_THAT(result.err, Not(HasSubstr("finished successfully")));
    EXPECT_EQ(result.status, 152);
  }
};

TEST_F(CliWriteFailureTest, AFullDeviceAsOutputFile) {
  expect_lost(run({"x.fa", "/dev/full"}),
              "Sorry! Failed to write file\n   \"/dev/full\"\ncompletely: No space left on device.\n");
}

TEST_F(CliWriteFailureTest, AFullDeviceAsStandardOutput) {
  Surroundings full;
  full.stdout_path = "/dev/full";
  expect_lost(run({"x.fa"}, full), "Sorry! Failed to write to standard output: No space left on device.\n");
}

TEST_F(CliWriteFailureTest, AFullDeviceBehindTheMaskedFile) {
  std::filesystem::create_symlink("/dev/full", path("x.fa.masked"));
  const Result result = run({"--maskX", "x.fa"});
  expect_lost(result, "Sorry! Failed to write file\n   \"x.fa.masked\"\ncompletely: No space left on device.\n");
  Settings settings;
  settings.mask = "yes";
  EXPECT_EQ(result.out, unfinished_report(settings, plain_record));
}

TEST_F(CliWriteFailureTest, AClosedPipeOnStandardOutputEndsQuietly) {
  Surroundings closed;
  closed.stdout_is_closed_pipe = true;
  const Result result = run({"x.fa"}, closed);
  EXPECT_EQ(after_banner(result), started(Settings(), ""));
  EXPECT_EQ(result.status, 152);
}

TEST_F(CliWriteFailureTest, AClosedPipeDoesNotMatterWithAnOutputFile) {
  Surroundings closed;
  closed.stdout_is_closed_pipe = true;
  EXPECT_EQ(run({"x.fa", "out.txt"}, closed).status, 0);
}

}  // namespace
}  // namespace cli
