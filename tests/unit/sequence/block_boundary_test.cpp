// The input is read in blocks of 2,000,000 bytes. Nothing that it holds may be read differently because a block ends
// there.

#include "sequence/CSequence_Mol.h"
#include "test_support.h"

namespace {

using test::error_of;
using test::read_all;
using test::Record;
using testing::ElementsAre;

constexpr std::size_t block = CFile::block_size;

static_assert(block == 2000000, "the tests below place bytes by this size");

const std::string start = ">first\n";

/// Bases that fill a file which begins with `start` up to the offset.
std::string filling(std::size_t offset) {
  return std::string(offset - start.size(), 'A');
}

/// How far a byte lies from the first byte of the second block.
class BlockBoundaryTest : public testing::TestWithParam<int> {
 protected:
  std::size_t offset() const { return block + static_cast<std::size_t>(GetParam() + 2) - 2; }
};

std::string name_of_shift(const testing::TestParamInfo<int>& shift) {
  static const char* const names[] = {"TwoBefore", "OneBefore", "At", "OneAfter"};
  return names[shift.param + 2];
}

INSTANTIATE_TEST_SUITE_P(Around, BlockBoundaryTest, testing::Values(-2, -1, 0, 1), name_of_shift);

TEST_P(BlockBoundaryTest, TheHeaderMark) {
  const std::string bases = filling(offset() - 1);
  EXPECT_THAT(read_all(start + bases + "\n>second\nCC\n"), ElementsAre(Record("first", bases), Record("second", "CC")));
}

TEST_P(BlockBoundaryTest, TheLfOfASequenceLine) {
  const std::string bases = filling(offset());
  EXPECT_THAT(read_all(start + bases + "\nCC\n"), ElementsAre(Record("first", bases + "CC")));
}

TEST_P(BlockBoundaryTest, TheCrOfASequenceLine) {
  const std::string bases = filling(offset());
  EXPECT_THAT(read_all(start + bases + "\r\nCC\r\n"), ElementsAre(Record("first", bases + "CC")));
}

TEST_P(BlockBoundaryTest, TheCrOfAnEmptyLine) {
  const std::string bases = filling(offset() - 1);
  EXPECT_THAT(read_all(start + bases + "\n\r\nCC\r\n"), ElementsAre(Record("first", bases + "CC")));
}

TEST_P(BlockBoundaryTest, TheCrBeforeAHeader) {
  const std::string bases = filling(offset());
  EXPECT_THAT(read_all(start + bases + "\r\n>second\r\nCC\r\n"),
              ElementsAre(Record("first", bases), Record("second", "CC")));
}

TEST_P(BlockBoundaryTest, ALoneCr) {
  EXPECT_EQ(error_of(start + filling(offset()) + "\rCC\n"), 2);
}

TEST_P(BlockBoundaryTest, AByteInsideAName) {
  const std::string bases = filling(offset() - 6);
  EXPECT_THAT(read_all(start + bases + "\n>sec  nd \nCC\n"),
              ElementsAre(Record("first", bases), Record("sec  nd ", "CC")));
}

TEST_P(BlockBoundaryTest, TheLfOfAName) {
  const std::string bases = filling(offset() - 8);
  EXPECT_THAT(read_all(start + bases + "\n>second\nCC\n"), ElementsAre(Record("first", bases), Record("second", "CC")));
}

TEST_P(BlockBoundaryTest, TheCrOfAName) {
  const std::string bases = filling(offset() - 8);
  EXPECT_THAT(read_all(start + bases + "\n>second\r\nCC\n"),
              ElementsAre(Record("first", bases), Record("second", "CC")));
}

TEST_P(BlockBoundaryTest, ABaseAndASkippedByte) {
  const std::string bases = filling(offset());
  EXPECT_THAT(read_all(start + bases + "xcN-c\n"), ElementsAre(Record("first", bases + "CNC")));
}

TEST_P(BlockBoundaryTest, TheEndOfTheFileAfterALineEnd) {
  const std::string bases = filling(offset() - 1);
  EXPECT_THAT(read_all(start + bases + "\n"), ElementsAre(Record("first", bases)));
}

TEST_P(BlockBoundaryTest, TheEndOfTheFileWithoutALineEnd) {
  const std::string bases = filling(offset());
  EXPECT_THAT(read_all(start + bases), ElementsAre(Record("first", bases)));
}

TEST_P(BlockBoundaryTest, ALoneCrThatEndsTheFile) {
  const std::string bases = filling(offset());
  EXPECT_THAT(read_all(start + bases + "\r"), ElementsAre(Record("first", bases)));
}

TEST_P(BlockBoundaryTest, AHeaderThatEndsTheFile) {
  const std::string bases = filling(offset() - 3);
  EXPECT_THAT(read_all(start + bases + "\n>b"), ElementsAre(Record("first", bases), Record("b", "")));
}

TEST_P(BlockBoundaryTest, AHeaderMarkThatEndsTheFile) {
  EXPECT_EQ(error_of(start + filling(offset() - 1) + "\n>"), 0);
}

TEST(BlocksTest, ANameLongerThanABlock) {
  const std::string name(2 * block + 7, 'n');
  EXPECT_THAT(read_all(">" + name + "\nAC\n"), ElementsAre(Record(name, "AC")));
}

TEST(BlocksTest, LinesAreCountedAcrossBlocks) {
  test::OpenFasta file(start + filling(block - 1) + "\r\nCC\r\nC\rC\n");
  CSequence_Mol sequence;
  EXPECT_THROW(sequence.readFastaSequence(*file), int);
  EXPECT_EQ(file->line_number(), 4U);
}

}  // namespace
