#include "sequence/CSequence_Mol.h"
#include "test_support.h"

namespace {

using test::bases_of;
using test::error_of;
using test::OpenFasta;
using test::read_all;
using test::Record;
using testing::ElementsAre;

TEST(SequenceMolTest, BasesAreUpperCasedXDroppedAndOtherBytesSkipped) {
  EXPECT_EQ(bases_of("ACGTacgtNnXx123 -*\n"), "ACGTACGTNN");
}

TEST(SequenceMolTest, AmbiguityLettersBecomeN) {
  EXPECT_EQ(bases_of("RYKMSWBDHVU\n"), std::string(11, 'N'));
}

TEST(SequenceMolTest, EveryLetterButXAndTheBasesBecomesN) {
  EXPECT_EQ(bases_of("ABCDEFGHIJKLMNOPQRSTUVWXYZ\n"), "ANCNNNGNNNNNNNNNNNNTNNNNN");
  EXPECT_EQ(bases_of("abcdefghijklmnopqrstuvwxyz\n"), "ANCNNNGNNNNNNNNNNNNTNNNNN");
}

TEST(SequenceMolTest, BytesNextToTheLettersAndAboveAreSkipped) {
  EXPECT_EQ(bases_of("@[`{\t.\x80\xc1\xe1\xff\x01"
                     "A\n"),
            "A");
}

TEST(SequenceMolTest, TheNameKeepsItsBlanksAndLosesCrLf) {
  EXPECT_THAT(read_all(">  one  two \r\nAC\r\n"), ElementsAre(Record("  one  two ", "AC")));
}

TEST(SequenceMolTest, TheNameKeepsEveryOtherByte) {
  EXPECT_THAT(read_all(">a>b\t%s \xc3\xa4\nAC\n"), ElementsAre(Record("a>b\t%s \xc3\xa4", "AC")));
}

TEST(SequenceMolTest, AHeaderOnTheLastLineWithoutALineEndIsAnEmptyRecord) {
  EXPECT_THAT(read_all(">a\nAC\n>b"), ElementsAre(Record("a", "AC"), Record("b", "")));
}

TEST(SequenceMolTest, AHeaderOnTheLastLineWithALoneCrIsAnEmptyRecord) {
  EXPECT_THAT(read_all(">b\r"), ElementsAre(Record("b", "")));
}

TEST(SequenceMolTest, AHeaderOnTheLastLineWithALineEndIsAnEmptyRecord) {
  EXPECT_THAT(read_all(">b\n"), ElementsAre(Record("b", "")));
}

TEST(SequenceMolTest, AnEmptyNameIsAcceptedWhenALineEndFollows) {
  EXPECT_THAT(read_all(">\nAC\n"), ElementsAre(Record("", "AC")));
  EXPECT_THAT(read_all(">\n"), ElementsAre(Record("", "")));
}

TEST(SequenceMolTest, AnEmptyRecordBetweenOthersHasNoBases) {
  EXPECT_THAT(read_all(">a\nAC\n>b\n>c\nGT\n"), ElementsAre(Record("a", "AC"), Record("b", ""), Record("c", "GT")));
}

TEST(SequenceMolTest, TheLastSequenceLineNeedsNoLineEnd) {
  EXPECT_THAT(read_all(">a\nACGT"), ElementsAre(Record("a", "ACGT")));
}

TEST(SequenceMolTest, TheLastSequenceLineMayEndInALoneCr) {
  EXPECT_THAT(read_all(">a\nACGT\r"), ElementsAre(Record("a", "ACGT")));
}

TEST(SequenceMolTest, LinesOfDifferentLengthsAndEmptyLinesAddUp) {
  EXPECT_THAT(read_all(">a\nA\n\nCGT\n\n\nAC\n\n>b\n\nG\n"), ElementsAre(Record("a", "ACGTAC"), Record("b", "G")));
}

TEST(SequenceMolTest, AHeaderMarkInsideALineIsSkipped) {
  EXPECT_THAT(read_all(">a\nAC>GT\n"), ElementsAre(Record("a", "ACGT")));
}

TEST(SequenceMolTest, AFileThatStartsWithABlankLineIsMalformed) {
  EXPECT_EQ(error_of("\n>a\nAC\n"), 0);
}

TEST(SequenceMolTest, AFileThatStartsWithAnyOtherByteIsMalformed) {
  EXPECT_EQ(error_of("ACGT\n"), 0);
  EXPECT_EQ(error_of(" >a\nAC\n"), 0);
}

TEST(SequenceMolTest, AnEmptyFileIsMalformed) {
  EXPECT_EQ(error_of(""), 0);
}

TEST(SequenceMolTest, AFileThatIsALoneCrIsMalformed) {
  EXPECT_EQ(error_of("\r"), 0);
}

TEST(SequenceMolTest, AHeaderMarkDirectlyBeforeTheEndIsMalformed) {
  EXPECT_EQ(error_of(">"), 0);
  EXPECT_EQ(error_of(">a\nAC\n>"), 0);
}

TEST(SequenceMolTest, AHeaderMarkBeforeALastLoneCrIsMalformed) {
  EXPECT_EQ(error_of(">\r"), 0);
  EXPECT_EQ(error_of(">a\nAC\n>\r"), 0);
}

TEST(SequenceMolTest, ACrInTheMiddleOfALineIsMalformed) {
  EXPECT_EQ(error_of(">a\nAC\rGT\n"), 2);
}

TEST(SequenceMolTest, ACrInTheMiddleOfANameIsMalformed) {
  EXPECT_EQ(error_of(">a\rb\nAC\n"), 2);
}

TEST(SequenceMolTest, ACrAtTheStartOfALineIsMalformed) {
  EXPECT_EQ(error_of(">a\nAC\n\rGT\n"), 2);
}

TEST(SequenceMolTest, TheRecordsBeforeAMalformedOneAreRead) {
  OpenFasta file(">a\nAC\n>b\nG\rT\n");
  CSequence_Mol sequence;
  EXPECT_EQ(test::read_record(*file, sequence), Record("a", "AC"));
  EXPECT_THROW(sequence.readFastaSequence(*file), int);
}

TEST(SequenceMolTest, TheLineOfAMalformedByteIsTheLineThatIsBeingRead) {
  OpenFasta file(">a\r\nAC\r\n\r\n>b\r\nG\rT\r\n");
  CSequence_Mol sequence;
  sequence.readFastaSequence(*file);
  EXPECT_EQ(file->line_number(), 4U);
  EXPECT_THROW(sequence.readFastaSequence(*file), int);
  EXPECT_EQ(file->line_number(), 5U);
}

TEST(SequenceMolTest, BasesAreTerminatedAfterReading) {
  const test::Sequence sequence("ACGT");
  EXPECT_EQ(*sequence.mol.end(), '\0');
}

std::string written(const std::string& bases, int width) {
  test::Sequence sequence(bases, "name 100%");
  return test::bytes_written_by([&](std::FILE* out) { sequence.mol.writeSequence(out, width); });
}

TEST(WriteSequenceTest, BreaksLinesAtTheWidth) {
  EXPECT_EQ(written(std::string(170, 'A'), 80),
            ">name 100%\n" + std::string(80, 'A') + "\n" + std::string(80, 'A') + "\n" + std::string(10, 'A') + "\n");
}

TEST(WriteSequenceTest, OfExactlyTheWidthWritesOneLine) {
  EXPECT_EQ(written(std::string(80, 'C'), 80), ">name 100%\n" + std::string(80, 'C') + "\n");
}

TEST(WriteSequenceTest, OfOneMoreThanTheWidthWritesTwoLines) {
  EXPECT_EQ(written(std::string(81, 'C'), 80), ">name 100%\n" + std::string(80, 'C') + "\nC\n");
}

TEST(WriteSequenceTest, OfNoBasesWritesTheHeaderOnly) {
  EXPECT_EQ(written("", 80), ">name 100%\n");
}

TEST(WriteSequenceTest, TheMaskedBasesVanishWhenReadAgain) {
  EXPECT_EQ(bases_of("ACXXXXGT\n"), "ACGT");
}

}  // namespace
