#include <gtest/gtest.h>

#include <sstream>
#include <string>
#include <vector>

#include "fasta_records.h"
#include "repeat_unit.h"
#include "report_checker.h"
#include "report_settings.h"

namespace checker {
namespace {

constexpr const char* fasta =
    ">one\n"
    "GGTCAACACACACTCACACNNACACA\n"
    "CGACACACACATTGC\n"
    ">two\n"
    ">three\n"
    "CCATGATGATGATGATGATGNTGATGCC\n";

// Only the lines that differ between the reports below are arguments.
std::string header(const std::string& unit_form, const std::string& format, const std::string& print_mode,
                   const std::string& last_columns) {
  return "# Results computed with:\n"
         "#    Ostrel, version 3.2.6\n"
         "# Parameter settings used in this search:\n"
         "# Input file name:                    t.fa\n"
         "#    Sequence range to process:       1 - last sequence\n"
         "#    Satellites searched for:         imperfect repeats\n"
         "#    Recursion depth:                 5\n"
         "#    Minimum unit length:             1\n"
         "#    Maximum unit length:             6\n"
         "#    Minimum score:                   maximum (8, 0+1*unitlength )\n"
         "#    Minimum length:                  maximum (1, 0+0*unitlength )\n"
         "#    Treat N's as:                    neutral\n"
         "#    Max. succesive N's allowed:      4\n"
         "#    Mismatch score:                  -6\n"
         "#    Indel score:                     -6\n"
         "#    Minimum perfection:              0 %\n"
         "#    Number of flanking nucletides:   3\n"
         "#    Remove mostly overlapping satellites: yes\n"
         "#    Write file with masked seq.:     no\n"
         "#    Computing perfections treat N's: asMismatch\n"
         "#    Report units as:                 " +
         unit_form +
         "\n"
         "#    Output format:                   " +
         format +
         "\n"
         "#    Print sequence mode:             " +
         print_mode +
         "\n"
         "# \n"
         "# Columns in lines of output providing repeat information:\n"
         "# Column  1: Repeat unit length\n"
         "# Column  2: Position at which repeat starts in current sequence\n"
         "# Column  3: Position at which repeat ends in current sequence\n"
         "# Column  4: Length of repeat in original sequence, i.e. (end-start+1)\n"
         "# Column  5: Normalized repeat length, i.e. (end-start+1-insertions+deletions)\n"
         "# Column  6: Repeat score\n"
         "# Column  7: Repeat perfection\n" +
         last_columns + "# \n";
}

std::string extended_report() {
  return header("alphabetical normal form using reverse complement", "extended ostrel format", "print alignment",
                "# Column  8: Number of mismatches\n"
                "# Column  9: Number of insertions\n"
                "# Column 10: Number of deletions\n"
                "# Column 11: Number of N's\n"
                "# Column 12: Repeat unit\n") +
         ">one\n"
         "sequence length: 41\n"
         "    dinucleotide         6 :        37 |     32 bp |     31 BP |     14 pt |  87.097 % |   1 mis |   1 ins |"
         "   0 del |   2 N |  unit AC\n"
         "Missense: (9,M),(23,I),\n"
         "TCA:ACACACACTCACACNNACACACGACACACACA:TTG\n"
         "    |||||||| |||||**|||||| |||||||||    \n"
         "    ACACACACACACACACACACAC-ACACACACA    \n"
         ">two\n"
         "sequence length: 0\n"
         ">three\n"
         "sequence length: 28\n"
         "   trinucleotide         3 :        26 |     24 bp |     24 BP |     20 pt |  95.833 % |   0 mis |   0 ins |"
         "   0 del |   1 N |  unit ATC\n"
         "Missense: \n"
         "CC:ATGATGATGATGATGATGNTGATG:CC\n"
         "   ||||||||||||||||||*|||||   \n"
         "   ATGATGATGATGATGATGATGATG   \n"
         "## Finished successfully. ##\n";
}

std::string plain_report() {
  return header("alphabetical normal form using reverse complement", "ostrel format", "print sequence",
                "# Column  8: Repeat unit\n") +
         ">one\n"
         "sequence length: 41\n"
         "    dinucleotide         6 :        37 |     32 bp |     31 BP |     14 pt |  87.097 % | unit AC\n"
         "TCA:ACACACACTCACACNNACACACGACACACACA:TTG\n"
         ">two\n"
         "sequence length: 0\n"
         ">three\n"
         "sequence length: 28\n"
         "   trinucleotide         3 :        26 |     24 bp |     24 BP |     20 pt |  95.833 % | unit ATC\n"
         "CC:ATGATGATGATGATGATGNTGATG:CC\n"
         "## Finished successfully. ##\n";
}

std::string sputnik_report() {
  return header("alphabetical normal form", "sputnik compatible format", "don't print sequence",
                "# Column  8: Repeat unit\n") +
         ">one\n"
         "sequence length: 41\n"
         "dinucleotide 6 : 37 -- length 31 score 14 perfection 87 unit AC\n"
         ">two\n"
         "sequence length: 0\n"
         ">three\n"
         "sequence length: 28\n"
         "trinucleotide 3 : 26 -- length 24 score 20 perfection 96 unit ATG\n"
         "## Finished successfully. ##\n";
}

CheckResult check(const std::string& report, std::string* messages = nullptr) {
  std::istringstream fasta_stream(fasta);
  std::istringstream report_stream(report);
  std::ostringstream message_stream;
  const CheckResult result = check_report(fasta_stream, report_stream, message_stream);
  if (messages != nullptr) *messages = message_stream.str();
  return result;
}

std::string replaced(std::string text, const std::string& from, const std::string& to) {
  const std::size_t at = text.find(from);
  if (at == std::string::npos) throw std::logic_error("no such text: " + from);
  return text.replace(at, from.size(), to);
}

struct Corruption {
  const char* from;
  const char* to;
};

void expect_all_rejected(const std::string& good, const std::vector<Corruption>& corruptions) {
  for (const Corruption& corruption : corruptions) {
    const CheckResult result = check(replaced(good, corruption.from, corruption.to));
    EXPECT_GT(result.failed, 0) << corruption.from << " -> " << corruption.to;
  }
}

TEST(CheckReport, AcceptsGoodReportsOfAllFormats) {
  for (const std::string& report : {extended_report(), plain_report(), sputnik_report()}) {
    std::string messages;
    const CheckResult result = check(report, &messages);
    EXPECT_EQ(result.passed, 2) << messages;
    EXPECT_EQ(result.failed, 0) << messages;
    EXPECT_EQ(messages, "");
  }
}

TEST(CheckReport, AcceptsExtendedRecordsWithoutAlignment) {
  std::string report = replaced(extended_report(), "print alignment", "don't print sequence");
  for (const char* line : {"TCA:ACACACACTCACACNNACACACGACACACACA:TTG\n", "    |||||||| |||||**|||||| |||||||||    \n",
                           "    ACACACACACACACACACACAC-ACACACACA    \n", "CC:ATGATGATGATGATGATGNTGATG:CC\n",
                           "   ||||||||||||||||||*|||||   \n", "   ATGATGATGATGATGATGATGATG   \n"}) {
    report = replaced(report, line, "");
  }
  EXPECT_EQ(check(report).passed, 2);
  expect_all_rejected(report, {{"(9,M)", "(8,M)"}, {"(23,I)", "(23,D)"}, {"(23,I)", "(22,I)"}, {"ATC", "ACT"}});
}

TEST(CheckReport, RejectsCorruptedFieldsOfTheExtendedFormat) {
  expect_all_rejected(extended_report(), {{"    dinucleotide", "   trinucleotide"},
                                          {"  6 : ", "  7 : "},
                                          {"37 |", "38 |"},
                                          {"32 bp", "31 bp"},
                                          {"31 BP", "30 BP"},
                                          {"14 pt", "15 pt"},
                                          {"87.097", "87.098"},
                                          {"1 mis", "2 mis"},
                                          {"1 ins", "2 ins"},
                                          {"0 del", "1 del"},
                                          {"2 N |", "1 N |"},
                                          {"|  unit AC", "|  unit CA"},
                                          {"|  unit AC", "|  unit AG"},
                                          {"|  unit AC", "| unit AC"},
                                          {"unit ATC", "unit ATG"}});
}

TEST(CheckReport, RejectsCorruptedEventsAndAlignments) {
  expect_all_rejected(extended_report(), {{"(9,M)", "(9,I)"},
                                          {"(9,M)", "(8,M)"},
                                          {"(9,M),(23,I),", "(23,I),(9,M),"},
                                          {"(23,I),", "(23,I)"},
                                          {"TCA:", "TCC:"},
                                          {":TTG", ":TTC"},
                                          {":ACACACACT", ":ACACACACG"},
                                          {"    |||||||| |", "    |||||||||"},
                                          {"|||||**||", "||||||*||"},
                                          {"|||||**||", "|||||  ||"},
                                          {"||||||||    \n", "|||||||     \n"},
                                          {"ACAC-ACAC", "ACACAACAC"},
                                          {"    ACACACACACACA", "    ACACACACACACC"},
                                          {"ATGATG   \n", "ATGATG\n"}});
}

TEST(CheckReport, RejectsCorruptedFieldsOfTheOtherFormats) {
  expect_all_rejected(plain_report(), {{"6 :", "5 :"},
                                       {"32 bp", "33 bp"},
                                       {"31 BP", "32 BP"},
                                       {"14 pt", "13 pt"},
                                       {"87.097", "90.323"},
                                       {"unit AC", "unit AT"},
                                       {"TCA:", "CA:"},
                                       {":TTG", ":TTGC"},
                                       {":ACACACACT", ":ACACACACC"}});
  expect_all_rejected(sputnik_report(), {{"dinucleotide 6 : 37", "dinucleotide 6 : 36"},
                                         {"length 31", "length 32"},
                                         {"score 14", "score 13"},
                                         {"perfection 87", "perfection 88"},
                                         {"unit ATG", "unit ATC"}});
}

TEST(CheckReport, RejectsFaultsAroundTheRecords) {
  expect_all_rejected(extended_report(), {{">two\nsequence length: 0\n", ""},
                                          {">three", ">tree"},
                                          {"length: 41", "length: 40"},
                                          {"## Finished successfully. ##\n", ""},
                                          {"## Finished successfully. ##\n", "## Finished successfully. ##\n\n"},
                                          {"## Finished successfully. ##\n", "## Finished successfully. ##"},
                                          {"# Column  8: Number", "# Column  9: Number"},
                                          {"imperfect repeats", "imperfect repeat"},
                                          {"#    Recursion depth:                 5\n", ""}});
}

TEST(CheckReport, AppliesTheSettingsOfTheHeader) {
  expect_all_rejected(extended_report(),
                      {{"maximum (8, 0+1*", "maximum (15, 0+1*"},
                       {"maximum (8, 0+1*", "maximum (8, 0+7.5*"},
                       {"maximum (1, 0+0*", "maximum (25, 0+0*"},
                       {"allowed:      4", "allowed:      1"},
                       {"Mismatch score:                  -6", "Mismatch score:                  -5"},
                       {"Indel score:                     -6", "Indel score:                     -5"},
                       {"asMismatch", "asMatch"},
                       {"nucletides:   3", "nucletides:   2"},
                       {"imperfect repeats", "exact repeats"},
                       {"length:             6", "length:             2"},
                       {"normal form using reverse complement", "normal form"}});
}

TEST(CheckReport, RejectsDoubledAndMisplacedRecords) {
  const std::string record = "dinucleotide 6 : 37 -- length 31 score 14 perfection 87 unit AC\n";
  const std::string doubled = replaced(sputnik_report(), record, record + record);
  EXPECT_EQ(check(doubled).failed, 1);
  // Where overlapping repeats are kept, equal places are no fault.
  EXPECT_EQ(check(replaced(doubled, "satellites: yes", "satellites: no")).failed, 0);
}

TEST(FastaRecordsTest, NormalisesBasesAndFoldsLineEnds) {
  std::istringstream text(">a b \r\nACGTacgtNnXx123 -*\r\n\r\nRY\n>last");
  FastaRecords records(text);
  ASSERT_TRUE(records.next());
  EXPECT_EQ(records.name(), "a b ");
  EXPECT_EQ(records.bases(), "ACGTACGTNNNN");
  ASSERT_TRUE(records.next());
  EXPECT_EQ(records.name(), "last");
  EXPECT_EQ(records.bases(), "");
  EXPECT_FALSE(records.next());
}

TEST(FastaRecordsTest, RefusesMalformedText) {
  for (const char* text : {"", "ACGT\n", "\n>a\nAC\n", ">a\nAC\rGT\n", ">"}) {
    std::istringstream stream(text);
    FastaRecords records(stream);
    EXPECT_THROW(records.next(), std::runtime_error) << text;
  }
}

TEST(RepeatUnit, FormsAndPeriodicity) {
  EXPECT_EQ(smallest_rotation("TGCA"), "ATGC");
  EXPECT_EQ(reverse_complement("ACGG"), "CCGT");
  EXPECT_EQ(comparable_form("TG", UnitMode::smallest_of_both_strands), "AC");
  EXPECT_TRUE(is_periodic("ATAT"));
  EXPECT_TRUE(is_periodic("AAA"));
  EXPECT_FALSE(is_periodic("ACGT"));
  EXPECT_FALSE(is_periodic("A"));
}

TEST(ThresholdTest, RoundsTheLinearTermUp) {
  Threshold threshold;
  threshold.minimum = 6;
  threshold.factor = 1.5F;
  EXPECT_EQ(threshold.for_unit(5), 8);
  EXPECT_EQ(threshold.for_unit(2), 6);
}

}  // namespace
}  // namespace checker
