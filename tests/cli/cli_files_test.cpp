// The output must never be the input, by whatever path it is named.

#include "cli_support.h"

namespace cli {
namespace {

class CliFilesTest : public CliTest {
 protected:
  CliFilesTest() { write_plain_input(); }

  void expect_input_kept(const Result& result) {
    EXPECT_EQ(result.out, "");
    EXPECT_EQ(after_banner(result), "Sorry! The output would overwrite the input file\n   \"x.fa\".\n" + aborted(-102));
    EXPECT_EQ(result.status, 154);
    EXPECT_EQ(read("x.fa"), ">r\nACGT\n");
  }
};

TEST_F(CliFilesTest, AnOutputOfTheSamePathIsRefused) {
  expect_input_kept(run({"x.fa", "x.fa"}));
}

TEST_F(CliFilesTest, AnOutputOfTheSamePathWithADotIsRefused) {
  expect_input_kept(run({"x.fa", "./x.fa"}));
}

TEST_F(CliFilesTest, AnOutputOfTheAbsolutePathIsRefused) {
  expect_input_kept(run({"x.fa", path("x.fa")}));
}

TEST_F(CliFilesTest, AnOutputThatIsASymbolicLinkToTheInputIsRefused) {
  std::filesystem::create_symlink("x.fa", path("link"));
  expect_input_kept(run({"x.fa", "link"}));
}

TEST_F(CliFilesTest, AnOutputThatIsAHardLinkToTheInputIsRefused) {
  std::filesystem::create_hard_link(path("x.fa"), path("link"));
  expect_input_kept(run({"x.fa", "link"}));
}

TEST_F(CliFilesTest, AnInputThatIsALinkToTheOutputIsRefused) {
  std::filesystem::create_symlink("x.fa", path("link"));
  const Result result = run({"link", "x.fa"});
  EXPECT_EQ(result.status, 154);
  EXPECT_EQ(read("x.fa"), ">r\nACGT\n");
}

TEST_F(CliFilesTest, StandardOutputAppendedToTheInputIsRefused) {
  Surroundings redirected;
  redirected.stdout_path = "x.fa";
  redirected.append_stdout = true;
  expect_input_kept(run({"x.fa"}, redirected));
}

TEST_F(CliFilesTest, StandardOutputAppendedToTheInputDoesNotMatterWithAnOutputFile) {
  Surroundings redirected;
  redirected.stdout_path = "x.fa";
  redirected.append_stdout = true;
  EXPECT_EQ(run({"x.fa", "out.txt"}, redirected).status, 0);
  EXPECT_EQ(read("x.fa"), ">r\nACGT\n");
}

TEST_F(CliFilesTest, AnOutputInAMissingDirectoryCannotBeOpened) {
  expect_refused(run({"x.fa", "missing/out.txt"}), 154,
                 "Sorry! Failed to open file\n   \"missing/out.txt\"\nas output file.\n" + aborted(-102));
}

TEST_F(CliFilesTest, AnOutputThatIsADirectoryCannotBeOpened) {
  std::filesystem::create_directory(path("dir"));
  expect_refused(run({"x.fa", "dir"}), 154,
                 "Sorry! Failed to open file\n   \"dir\"\nas output file.\n" + aborted(-102));
}

TEST_F(CliFilesTest, AnOutputThatCannotBeOpenedLeavesNoMaskedFile) {
  EXPECT_EQ(run({"--maskX", "x.fa", "missing/out.txt"}).status, 154);
  EXPECT_FALSE(exists("x.fa.masked"));
}

TEST_F(CliFilesTest, AnotherOutputReplacesWhatItHeld) {
  write("out.txt", std::string(100000, 'o'));
  Settings settings;
  settings.output = "out.txt";
  EXPECT_EQ(run({"x.fa", "out.txt"}).status, 0);
  EXPECT_EQ(read("out.txt"), report(settings, plain_record));
}

TEST_F(CliFilesTest, TheNullDeviceMayBeTheOutput) {
  EXPECT_EQ(run({"x.fa", "/dev/null"}).status, 0);
}

}  // namespace
}  // namespace cli
