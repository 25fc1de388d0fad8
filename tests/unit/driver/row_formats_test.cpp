#include "driver/row_formats.h"

#include "test_support.h"

namespace {

RepeatRow example_row() {
  RepeatRow row{};
  row.start = 761;
  row.end = 807;
  row.unit_length = 4;
  row.length = 47;
  row.normalized_length = 48;
  row.score = 37;
  row.perfection = 100.0 * 47 / 48;
  row.copies = 12;
  row.deletions = 1;
  row.neutral_Ns = 2;
  row.unit = "AGAT";
  row.matched_unit = "GATA";
  row.alignment = "26=1D21=";
  return row;
}

std::string line(const std::string& option, const std::string& id, const RepeatRow& row = example_row()) {
  for (const RowFormat& format : row_formats()) {
    if (format.option == option) return format.line({id, 1000}, row, 7);
  }
  return "no such format";
}

std::string gff3_region(const std::string& id, std::int64_t length) {
  return row_formats()[1].sequence_line({id, length});
}

TEST(SequenceIdTest, EndsAtTheFirstBlankOrTab) {
  EXPECT_EQ(sequence_id("chr1 one\ttwo", 3), "chr1");
  EXPECT_EQ(sequence_id("chr1\tone two", 3), "chr1");
  EXPECT_EQ(sequence_id("chr1", 3), "chr1");
}

TEST(SequenceIdTest, OfNothingIsTheNumberOfTheRecord) {
  EXPECT_EQ(sequence_id("", 3), "record_3");
  EXPECT_EQ(sequence_id(" chr1", 3), "record_3");
  EXPECT_EQ(sequence_id("\tchr1", 3), "record_3");
}

TEST(BedTest, IsHalfOpenAndCountedFromZero) {
  EXPECT_EQ(line("bed", "chr1"), "chr1\t760\t807\tAGAT\t37\t.\t12.000\t37\t97.917\n");
}

TEST(BedTest, ShowsAScoreThatTheFormatAllows) {
  RepeatRow row = example_row();
  const auto score_columns = [&row](std::int64_t score) {
    row.score = score;
    const std::string text = line("bed", "c", row);
    return text.substr(text.find("AGAT"));
  };
  EXPECT_EQ(score_columns(1000), "AGAT\t1000\t.\t12.000\t1000\t97.917\n");
  EXPECT_EQ(score_columns(1001), "AGAT\t1000\t.\t12.000\t1001\t97.917\n");
  EXPECT_EQ(score_columns(0), "AGAT\t0\t.\t12.000\t0\t97.917\n");
  EXPECT_EQ(score_columns(-1), "AGAT\t0\t.\t12.000\t-1\t97.917\n");
}

TEST(Gff3Test, IsClosedAndCountedFromOne) {
  EXPECT_EQ(line("gff3", "chr1"),
            "chr1\tOstrel\tmicrosatellite\t761\t807\t37\t.\t.\tID=repeat7;unit=AGAT;unit_length=4;copies=12.000;"
            "perfection=97.917;normalized_length=48;mismatches=0;insertions=0;deletions=1;neutral_Ns=2;"
            "matched_unit=GATA;alignment=26%3D1D21%3D\n");
}

TEST(Gff3Test, NamesTheTermOfTheUnitLength) {
  const auto term = [](std::int64_t unit_length) {
    RepeatRow row = example_row();
    row.unit_length = unit_length;
    const std::string text = line("gff3", "c", row).substr(9);
    return text.substr(0, text.find('\t'));
  };
  EXPECT_EQ(term(1), "tandem_repeat");
  EXPECT_EQ(term(2), "microsatellite");
  EXPECT_EQ(term(10), "microsatellite");
  EXPECT_EQ(term(11), "minisatellite");
  EXPECT_EQ(term(40), "minisatellite");
  EXPECT_EQ(term(41), "satellite_DNA");
}

TEST(Gff3Test, EscapesWhatASequenceNameMayNotHold) {
  EXPECT_EQ(gff3_region("aZ09.:^*$@!+_?-|", 5), "##sequence-region aZ09.:^*$@!+_?-| 1 5\n");
  EXPECT_EQ(gff3_region(">a;b=c%&,#\xc3\xa4", 5), "##sequence-region %3Ea%3Bb%3Dc%25%26%2C%23%C3%A4 1 5\n");
  EXPECT_EQ(gff3_region(std::string("a\0b", 3), 5), "##sequence-region a%00b 1 5\n");
  EXPECT_EQ(line("gff3", "a;b").substr(0, 6), "a%3Bb\t");
}

TEST(Gff3Test, AnEmptySequenceHasNoRegion) {
  EXPECT_EQ(gff3_region("chr1", 0), "");
}

TEST(TsvTest, HasAsManyValuesAsNames) {
  EXPECT_EQ(line("tsv", "chr1"), "chr1\t4\t761\t807\t47\t48\t37\t97.917\t0\t0\t1\t2\tAGAT\t12.000\tGATA\t26=1D21=\n");
  const std::string heading = row_formats()[2].heading;
  const std::string text = line("tsv", "chr1");
  EXPECT_EQ(std::count(heading.begin(), heading.end(), '\t'), std::count(text.begin(), text.end(), '\t'));
}

TEST(JsonLinesTest, IsOneObjectOfNumbersAndTexts) {
  EXPECT_EQ(line("jsonl", "chr1"),
            "{\"sequence\":\"chr1\",\"unit_length\":4,\"start\":761,\"end\":807,\"length\":47,\"normalized_length\":48,"
            "\"score\":37,\"perfection\":97.917,\"mismatches\":0,\"insertions\":0,\"deletions\":1,\"neutral_Ns\":2,"
            "\"unit\":\"AGAT\",\"copies\":12.0,\"matched_unit\":\"GATA\",\"alignment\":\"26=1D21=\"}\n");
}

TEST(JsonLinesTest, EscapesAndReplacesWhatIsNotUtf8) {
  const auto name = [](const std::string& id) {
    const std::string text = line("jsonl", id);
    return text.substr(0, text.find(','));
  };
  EXPECT_EQ(name("a\"b\\c"), "{\"sequence\":\"a\\\"b\\\\c\"");
  EXPECT_EQ(name("\xc3\xa4"), "{\"sequence\":\"\xc3\xa4\"");
  EXPECT_EQ(name("a\xff\x62"), "{\"sequence\":\"a\xef\xbf\xbd\x62\"");
}

}  // namespace
