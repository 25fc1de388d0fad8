#include "sequence/CFile.h"

#include "test_support.h"

namespace {

using test::OpenFasta;
using test::TempDir;

std::string all_bytes(CFile& file) {
  std::string bytes;
  while (true) {
    const char c = file.getChar();
    if (file.eof()) return bytes;
    bytes += c;
  }
}

TEST(CFileTest, OpeningAMissingFileFails) {
  const TempDir dir;
  EXPECT_TRUE(std::make_unique<CFile>(dir.path("missing.fa"))->open_failed);
}

TEST(CFileTest, OpeningADirectoryFails) {
  const TempDir dir;
  EXPECT_TRUE(std::make_unique<CFile>(dir.path())->open_failed);
}

TEST(CFileTest, OpeningAnEmptyNameFails) {
  EXPECT_TRUE(std::make_unique<CFile>("")->open_failed);
}

TEST(CFileTest, AnOpenedFileIsNotAtItsEndBeforeTheFirstRead) {
  OpenFasta file("");
  EXPECT_FALSE(file->open_failed);
  EXPECT_FALSE(file->eof());
}

TEST(CFileTest, TheEndIsNoticedByTheReadBehindTheLastByte) {
  OpenFasta file("A");
  EXPECT_EQ(file->getChar(), 'A');
  EXPECT_FALSE(file->eof());
  file->getChar();
  EXPECT_TRUE(file->eof());
}

TEST(CFileTest, BytesAreHandedOutAsTheyAre) {
  OpenFasta file("A\t\xc3\xa4\n>");
  EXPECT_EQ(all_bytes(*file), "A\t\xc3\xa4\n>");
}

TEST(CFileTest, CrLfBecomesLf) {
  OpenFasta file("A\r\nC\r\n");
  EXPECT_EQ(all_bytes(*file), "A\nC\n");
}

TEST(CFileTest, ACrThatEndsTheFileBecomesLf) {
  OpenFasta file("A\r");
  EXPECT_EQ(file->getChar(), 'A');
  EXPECT_EQ(file->getChar(), '\n');
}

TEST(CFileTest, ACrBeforeAnyOtherByteIsAnError) {
  OpenFasta file("\rA");
  try {
    file->getChar();
    FAIL() << "no integer was thrown";
  } catch (int error) {
    EXPECT_EQ(error, 2);
  }
}

TEST(CFileTest, ACrBeforeACrIsAnError) {
  OpenFasta file("\r\r\n");
  EXPECT_THROW(file->getChar(), int);
}

TEST(CFileTest, APushedBackByteIsHandedOutAgain) {
  OpenFasta file("AC");
  file->getChar();
  file->getChar();
  file->ungetChar();
  EXPECT_EQ(file->getChar(), 'C');
}

TEST(CFileTest, PushingBackAtTheStartOfTheBlockIsAnError) {
  OpenFasta file("AC");
  try {
    file->ungetChar();
    FAIL() << "no integer was thrown";
  } catch (int error) {
    EXPECT_EQ(error, 1);
  }
}

TEST(CFileTest, AfterClearingTheEndTheNextReadFindsItAgain) {
  OpenFasta file("");
  file->getChar();
  file->clear_eof();
  EXPECT_FALSE(file->eof());
  file->getChar();
  EXPECT_TRUE(file->eof());
}

TEST(CFileTest, TheSpanHoldsWhatIsLeftOfTheBlock) {
  OpenFasta file("ACGT");
  file->getChar();
  const CFile::Span span = file->available();
  EXPECT_EQ(std::string(span.begin, span.end), "CGT");
  file->consume(2);
  EXPECT_EQ(file->getChar(), 'T');
}

TEST(CFileTest, TheSpanIsEmptyAtTheEndOnly) {
  OpenFasta file("A");
  file->getChar();
  const CFile::Span span = file->available();
  EXPECT_EQ(span.begin, span.end);
  EXPECT_TRUE(file->eof());
}

TEST(CFileTest, LinesAreNumberedFromOne) {
  OpenFasta file("A\n");
  EXPECT_EQ(file->line_number(), 1U);
  file->count_line();
  EXPECT_EQ(file->line_number(), 2U);
}

TEST(CFileTest, TheSizeIsThatOfTheFileInBytes) {
  OpenFasta file(">r\r\nACGT\n");
  EXPECT_EQ(file->size(), 9U);
  EXPECT_EQ(CFile("/dev/null").size(), 0U);
}

TEST(CFileTest, ThePositionCountsTheBytesHandedOut) {
  OpenFasta file("A\r\nCG");
  EXPECT_EQ(file->position(), 0U);
  file->getChar();
  EXPECT_EQ(file->position(), 1U);
  file->getChar();
  EXPECT_EQ(file->position(), 3U);
  file->ungetChar();
  EXPECT_EQ(file->position(), 2U);
  all_bytes(*file);
  EXPECT_EQ(file->position(), 5U);
}

}  // namespace
