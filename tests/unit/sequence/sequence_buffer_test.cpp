// The base buffer must stay where it is from the end of reading to the end of reporting, because every repeat is a set
// of pointers into it. Its terminator is therefore in place as soon as the record has been read.

#include "sequence/CSequence_Mol.h"
#include "test_support.h"

namespace {

constexpr std::size_t reserved = 10000000;

/// A record of a file, read into a record whose buffer was reserved as the driver reserves it.
class ReservedRecord {
 public:
  explicit ReservedRecord(const std::string& content, std::size_t room = reserved) : file_(content) {
    mol.sequence.reserve(room);
  }
  void read_next() { mol.readFastaSequence(*file_); }

  CSequence_Mol mol;

 private:
  test::OpenFasta file_;
};

/// Terminating again, which is what a report would do, must not move the buffer.
void expect_settled(CSequence_Mol& mol) {
  const char* const before = mol.begin();
  ASSERT_LT(mol.sequence.length, mol.sequence.capacity);
  EXPECT_EQ(*mol.end(), '\0');
  mol.sequence.terminate();
  EXPECT_EQ(mol.begin(), before);
}

std::string fasta(std::size_t bases) {
  return ">r\n" + std::string(bases, 'A') + "\n";
}

TEST(SequenceBufferTest, ARecordOfTheReservedLengthFitsWithoutMoving) {
  ReservedRecord record(fasta(reserved));
  const char* const before = record.mol.begin();
  record.read_next();
  EXPECT_EQ(record.mol.sequence.length, reserved);
  EXPECT_EQ(record.mol.begin(), before);
  EXPECT_EQ(record.mol.sequence.capacity, reserved + 1);
  expect_settled(record.mol);
}

TEST(SequenceBufferTest, ARecordOfOneBaseMoreThanReservedSettles) {
  ReservedRecord record(fasta(reserved + 1));
  record.read_next();
  EXPECT_EQ(record.mol.sequence.length, reserved + 1);
  expect_settled(record.mol);
}

TEST(SequenceBufferTest, ARecordOfTwoBasesMoreThanReservedSettles) {
  ReservedRecord record(fasta(reserved + 2));
  record.read_next();
  EXPECT_EQ(record.mol.sequence.length, reserved + 2);
  expect_settled(record.mol);
}

TEST(SequenceBufferTest, ARecordOfAPowerOfTwoSettles) {
  for (const std::size_t bases : {4U, 8U, 1024U, 65536U, 4194304U}) {
    CSequence_Mol mol;
    test::OpenFasta file(fasta(bases));
    mol.readFastaSequence(*file);
    EXPECT_EQ(mol.sequence.length, bases);
    expect_settled(mol);
  }
}

TEST(SequenceBufferTest, ARecordAfterALongerOneReusesItsBuffer) {
  ReservedRecord record(">a\n" + std::string(1000, 'A') + "\n>b\nCCC\n", 10);
  record.read_next();
  const char* const before = record.mol.begin();
  record.read_next();
  EXPECT_EQ(std::string(record.mol.begin(), record.mol.end()), "CCC");
  EXPECT_EQ(record.mol.begin(), before);
  expect_settled(record.mol);
}

TEST(SequenceBufferTest, AnEmptyRecordAfterALongerOneIsTerminatedAtItsStart) {
  ReservedRecord record(">a\n" + std::string(1000, 'N') + "\n>b\n>c\n", 10);
  record.read_next();
  const char* const before = record.mol.begin();
  record.read_next();
  EXPECT_EQ(record.mol.sequence.length, 0U);
  EXPECT_EQ(record.mol.begin(), before);
  EXPECT_EQ(*record.mol.begin(), '\0');
  expect_settled(record.mol);
}

TEST(SequenceBufferTest, AnEmptyFirstRecordHasATerminatedBuffer) {
  test::OpenFasta file(">a\n");
  CSequence_Mol mol;
  mol.readFastaSequence(*file);
  ASSERT_NE(mol.begin(), nullptr);
  EXPECT_EQ(*mol.begin(), '\0');
}

TEST(SequenceBufferTest, SkippedBytesDoNotCountAsBases) {
  ReservedRecord record(">r\n" + test::repeated("A-", 5000) + "\n", 5000);
  record.read_next();
  EXPECT_EQ(record.mol.sequence.length, 5000U);
  expect_settled(record.mol);
}

}  // namespace
