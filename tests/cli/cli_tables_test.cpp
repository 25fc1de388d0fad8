// The files with the repeats beside the report: they say what the report says, other programs can read them, and they
// never get in the way of another file.

#include <sys/wait.h>

#include <algorithm>
#include <array>
#include <cctype>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <nlohmann/json.hpp>
#include <regex>
#include <sstream>
#include <tuple>

#include "cli_support.h"
#include "compressed.h"

namespace cli {
namespace {

using testing::HasSubstr;

using Lines = std::vector<std::string>;

Lines lines_of(const std::string& text) {
  Lines lines;
  std::istringstream in(text);
  for (std::string line; std::getline(in, line);) lines.push_back(line);
  return lines;
}

Lines fields_of(const std::string& line) {
  Lines fields;
  std::istringstream in(line);
  for (std::string field; std::getline(in, field, '\t');) fields.push_back(field);
  return fields;
}

/// Imperfect repeats between random bases, of every unit length up to 12, in soft-masked lines of 50 that hold every
/// letter a FASTA file may hold.
class Generator {
 public:
  std::string bases() {
    std::string text;
    for (unsigned unit_length = 1; unit_length <= 12; ++unit_length) {
      text += random_bases(60) + imperfect(random_bases(unit_length), 40 + 5 * unit_length);
    }
    for (std::size_t i = 0; i < text.size(); ++i) {
      if (i / 90 % 2 == 1) text[i] = static_cast<char>(std::tolower(text[i]));
    }
    return text;
  }

 private:
  unsigned next(unsigned below) {
    state_ = state_ * 6364136223846793005U + 1442695040888963407U;
    return static_cast<unsigned>(state_ >> 33) % below;
  }

  std::string random_bases(unsigned size) {
    std::string text;
    for (unsigned i = 0; i < size; ++i) text += "ACGT"[next(4)];
    return text;
  }

  std::string imperfect(const std::string& unit, unsigned size) {
    std::string text;
    for (unsigned i = 0; i < size; ++i) {
      const char base = unit[i % unit.size()];
      const unsigned kind = next(60);
      if (kind == 0) text += "RYKMSWBDHVN"[next(11)];
      if (kind == 1) text += "ACGT"[next(4)];
      if (kind == 2) text += base;
      if (kind != 0 && kind != 1 && kind != 3) text += base;
    }
    return text;
  }

  std::uint64_t state_ = 42;
};

std::string in_lines(const std::string& bases, const std::string& line_end) {
  std::string text;
  for (std::size_t at = 0; at < bases.size(); at += 50) text += bases.substr(at, 50) + line_end;
  return text;
}

/// Puts what takes no position between the letters.
std::string with_gaps(const std::string& bases) {
  std::string text;
  for (std::size_t i = 0; i < bases.size(); ++i) {
    text += bases[i];
    if (i % 7 == 3) text += "-*x. 1X"[i % 49 / 7];
  }
  return text;
}

std::string runs_of(const std::array<std::string, 3>& alignment) {
  std::string kinds;
  for (std::size_t i = 0; i < alignment[0].size(); ++i) {
    const char mark = alignment[1][i];
    const char gap = alignment[0][i] == '-' ? 'D' : alignment[2][i] == '-' ? 'I' : 'X';
    kinds += mark == '|' ? '=' : mark == '*' ? 'M' : gap;
  }
  std::string text;
  for (std::size_t i = 0; i < kinds.size();) {
    const std::size_t end = std::min(kinds.find_first_not_of(kinds[i], i), kinds.size());
    text += std::to_string(end - i) + kinds[i];
    i = end;
  }
  return text;
}

std::string three_decimals(double value) {
  std::array<char, 50> text{};
  std::snprintf(text.data(), text.size(), "%.3f", value);
  return text.data();
}

std::size_t unit_length_of(const std::string& repeat_name) {
  static const Lines names = {
      "", "mononucleotide", "dinucleotide", "trinucleotide", "tetranucleotide", "pentanucleotide", "hexanucleotide"};
  for (std::size_t length = 1; length < names.size(); ++length) {
    if (repeat_name == names[length]) return length;
  }
  return std::stoul(repeat_name);
}

/// The table that an extended report with alignments amounts to.
std::string table_of(const std::string& report) {
  static const std::regex repeat_line(
      " *(\\S+) +(\\d+) : +(\\d+) \\| +(\\d+) bp \\| +(\\d+) BP \\| +(-?\\d+) pt \\| +(\\S+) % \\| +(\\d+) mis \\| "
      "+(\\d+) ins \\| +(\\d+) del \\| (?: +(\\d+) N \\| )? unit (\\S+)");
  std::string table =
      "sequence\tunit_length\tstart\tend\tlength\tnormalized_length\tscore\tperfection\tmismatches\tinsertions\t"
      "deletions\tneutral_Ns\tunit\tcopies\tmatched_unit\talignment\n";
  const Lines lines = lines_of(report);
  std::string id;
  std::smatch found;
  for (std::size_t i = 0; i < lines.size(); ++i) {
    if (lines[i][0] == '>') id = lines[i].substr(1, lines[i].find(' ') - 1);
    if (!std::regex_match(lines[i], found, repeat_line)) continue;
    const std::size_t unit_length = unit_length_of(found[1]);
    std::string perfect = lines.at(i + 4);
    perfect.erase(std::remove(perfect.begin(), perfect.end(), '-'), perfect.end());
    table += id + "\t" + std::to_string(unit_length);
    for (int column = 2; column <= 10; ++column) table += "\t" + found[static_cast<std::size_t>(column)].str();
    table += "\t" + (found[11].matched ? found[11].str() : "0") + "\t" + found[12].str();
    table += "\t" + three_decimals(std::stod(found[5]) / static_cast<double>(unit_length));
    table += "\t" + perfect.substr(0, unit_length);
    table += "\t" + runs_of({lines.at(i + 2), lines.at(i + 3), lines.at(i + 4)}) + "\n";
  }
  return table;
}

class CliTablesTest : public CliTest {
 protected:
  CliTablesTest() {
    Generator generator;
    const std::string first = generator.bases();
    const std::string second = generator.bases();
    write("x.fa", ">one first\n" + in_lines(first, "\n") + ">two second\n" + in_lines(second, "\n"));
    write("gaps.fa",
          ">one first\r\n" + in_lines(with_gaps(first), "\r\n") + ">two\r\n" + in_lines(with_gaps(second), "\r\n"));
  }

  /// Runs the search with all four tables, as x.bed, x.gff3, x.tsv and x.jsonl with the ending.
  Result run_with_tables(const Lines& options, const std::string& ending = "") {
    Lines words = {"-U", "12"};
    for (const char* format : {"bed", "gff3", "tsv", "jsonl"}) {
      words.push_back(std::string("--") + format);
      words.push_back(std::string("x.") + format + ending);
    }
    words.insert(words.end(), options.begin(), options.end());
    return run(words);
  }

  /// The fields of all rows of the table of tab-separated values.
  std::vector<Lines> rows() const {
    std::vector<Lines> rows;
    for (const std::string& line : lines_of(read("x.tsv"))) rows.push_back(fields_of(line));
    rows.erase(rows.begin());
    return rows;
  }
};

TEST_F(CliTablesTest, HoldWhatTheReportHolds) {
  const std::vector<Lines> settings = {{},
                                       {"-M", "exact"},
                                       {"-M", "extendExact"},
                                       {"-D"},
                                       {"--NsAsMissense"},
                                       {"--reportUnit", "0"},
                                       {"--reportUnit", "1"},
                                       {"--NPerfectionMode", "1", "-m", "-3", "-g", "-4"},
                                       {"--firstSeq", "2"}};
  for (const char* input : {"x.fa", "gaps.fa"}) {
    for (Lines options : settings) {
      options.emplace_back(input);
      const Result result = run_with_tables(options);
      EXPECT_EQ(result.status, 0);
      EXPECT_EQ(read("x.tsv"), table_of(result.out)) << testing::PrintToString(options);
      EXPECT_GT(rows().size(), 8U);
    }
  }
}

TEST_F(CliTablesTest, LeaveTheReportAsItIs) {
  EXPECT_EQ(run_with_tables({"x.fa"}).out, run({"-U", "12", "x.fa"}).out);
}

TEST_F(CliTablesTest, AgreeInThePositions) {
  run_with_tables({"x.fa"});
  const std::vector<Lines> expected = rows();
  const Lines bed = lines_of(read("x.bed"));
  const Lines jsonl = lines_of(read("x.jsonl"));
  Lines gff3 = lines_of(read("x.gff3"));
  gff3.erase(gff3.begin(), gff3.begin() + 2);  // one more than the heading of the others
  ASSERT_EQ(bed.size(), expected.size() + 1);
  ASSERT_EQ(gff3.size(), expected.size() + 1);
  ASSERT_EQ(jsonl.size(), expected.size());
  for (std::size_t i = 0; i < expected.size(); ++i) {
    const Lines bed_fields = fields_of(bed[i + 1]);
    const Lines gff3_fields = fields_of(gff3[i + 1]);
    EXPECT_EQ(bed_fields[1], std::to_string(std::stol(expected[i][2]) - 1));
    EXPECT_EQ(bed_fields[2], expected[i][3]);
    EXPECT_EQ(gff3_fields[3], expected[i][2]);
    EXPECT_EQ(gff3_fields[4], expected[i][3]);
  }
}

TEST_F(CliTablesTest, JsonHasTheSameNamesAndValues) {
  run_with_tables({"x.fa"});
  const Lines names = fields_of(lines_of(read("x.tsv"))[0]);
  const std::vector<Lines> expected = rows();
  const Lines jsonl = lines_of(read("x.jsonl"));
  ASSERT_EQ(jsonl.size(), expected.size());
  for (std::size_t i = 0; i < expected.size(); ++i) {
    const auto object = nlohmann::ordered_json::parse(jsonl[i]);
    std::size_t column = 0;
    for (const auto& [name, value] : object.items()) {
      EXPECT_EQ(name, names.at(column));
      const std::string text = value.is_string()           ? value.get<std::string>()
                               : value.is_number_integer() ? std::to_string(value.get<long>())
                                                           : three_decimals(value.get<double>());
      EXPECT_EQ(text, expected[i].at(column)) << name;
      ++column;
    }
    EXPECT_EQ(column, names.size());
  }
}

TEST_F(CliTablesTest, AreSortedByPosition) {
  for (const char* mode : {"exact", "extendExact", "imperfect"}) {
    run_with_tables({"-M", mode, "-D", "x.fa"});
    const auto position = [](const Lines& row) {
      return std::make_tuple(row[0], std::stol(row[2]), std::stol(row[3]));
    };
    const std::vector<Lines> all = rows();
    for (std::size_t i = 1; i < all.size(); ++i) EXPECT_LE(position(all[i - 1]), position(all[i])) << mode;
  }
}

TEST_F(CliTablesTest, ACompressedTableHoldsTheSame) {
  run_with_tables({"x.fa"});
  run_with_tables({"x.fa"}, ".gz");
  for (const std::string name : {"x.bed", "x.gff3", "x.tsv", "x.jsonl"}) {
    EXPECT_EQ(read(name + ".gz"), test::bgzf_of(read(name))) << name;
  }
}

TEST_F(CliTablesTest, NamesOfSequencesAreCutAndReplaced) {
  write("names.fa", ">a;b c\nACACACACAC\n>\nACACACACAC\n> c\nACACACACAC\n>d\xff\te\nACACACACAC\n>empty\n");
  EXPECT_EQ(run_with_tables({"names.fa"}).status, 0);
  Lines names;
  for (const Lines& row : rows()) names.push_back(row[0]);
  EXPECT_EQ(names, (Lines{"a;b", "record_2", "record_3", "d\xff"}));
  EXPECT_THAT(read("x.gff3"), testing::StartsWith("##gff-version 3\n##sequence-region a%3Bb 1 10\n"
                                                  "##sequence-region record_2 1 10\n##sequence-region record_3 1 10\n"
                                                  "##sequence-region d%FF 1 10\na%3Bb\tOstrel\tmicrosatellite\t1\t"));
  EXPECT_THAT(read("x.jsonl"), HasSubstr("{\"sequence\":\"d\xef\xbf\xbd\","));
}

TEST_F(CliTablesTest, HoldTheRepeatsBeforeAMalformedRecord) {
  write("x.fa", ">a\nACACACACAC\n>b\nAC\rGT\n");
  EXPECT_EQ(run_with_tables({"x.fa"}, ".gz").status, 153);
  const std::string bed = "#chrom\tstart\tend\tunit\tscore\tstrand\tcopies\traw_score\tperfection\n";
  EXPECT_EQ(read("x.bed.gz"), test::bgzf_of(bed + "a\t0\t10\tAC\t8\t.\t5.000\t8\t100.000\n"));
  EXPECT_EQ(run_with_tables({"x.fa"}).status, 153);
  EXPECT_EQ(rows().size(), 1U);
  EXPECT_EQ(lines_of(read("x.gff3")).size(), 3U);
}

TEST_F(CliTablesTest, ADashIsStandardOutputBesideAReport) {
  run_with_tables({"x.fa"});
  EXPECT_EQ(run({"-U", "12", "--tsv", "-", "x.fa", "out.txt"}).out, read("x.tsv"));
  EXPECT_THAT(read("out.txt"), HasSubstr("## Finished successfully. ##\n"));
}

/// Names that would make two files one.
class CliTableFilesTest : public CliTest {
 protected:
  CliTableFilesTest() { write_plain_input(); }

  void expect_collision(const Lines& words, const std::string& sentence, const Surroundings& surroundings = {}) {
    expect_refused(run(words, surroundings), 154, "Sorry! " + sentence + "\".\n" + aborted(-102));
    EXPECT_EQ(read("x.fa"), ">r\nACGT\n");
  }
};

TEST_F(CliTableFilesTest, MustNotBeTheInput) {
  std::filesystem::create_symlink("x.fa", path("link"));
  expect_collision({"--bed", "x.fa", "x.fa"}, "The --bed file would be the input file\n   \"x.fa");
  expect_collision({"--tsv", "link", "x.fa"}, "The --tsv file would be the input file\n   \"link");
  Surroundings redirected;
  redirected.stdin_path = "x.fa";
  expect_collision({"--tsv", "x.fa", "-"}, "The --tsv file would be the input file\n   \"x.fa", redirected);
}

TEST_F(CliTableFilesTest, MustNotBeTheReport) {
  expect_collision({"--gff3", "out.txt", "x.fa", "out.txt"}, "The --gff3 file would be the report\n   \"out.txt");
  expect_collision({"--gff3", "-", "x.fa"}, "The --gff3 file would be the report\n   \"/dev/stdout");
  Surroundings redirected;
  redirected.stdout_path = "out.txt";
  expect_collision({"--bed", "out.txt", "x.fa"}, "The --bed file would be the report\n   \"out.txt", redirected);
}

TEST_F(CliTableFilesTest, MustNotBeTheMaskedCopy) {
  expect_collision({"--maskX", "--jsonl", "x.fa.masked", "x.fa"},
                   "The --jsonl file would be the masked copy\n   \"x.fa.masked");
}

TEST_F(CliTableFilesTest, MustNotBeOneAnother) {
  expect_collision({"--bed", "a", "--tsv", "./a", "x.fa"}, "The --tsv file would be the --bed file\n   \"./a");
  expect_collision({"--bed", "-", "--tsv", "-", "x.fa", "out.txt"},
                   "The --tsv file would be the --bed file\n   \"/dev/stdout");
  EXPECT_FALSE(exists("a"));
  EXPECT_FALSE(exists("out.txt"));
}

TEST_F(CliTableFilesTest, MayAllBeTheNullDevice) {
  EXPECT_EQ(run({"--bed", "/dev/null", "--tsv", "/dev/null", "x.fa", "/dev/null"}).status, 0);
}

TEST_F(CliTableFilesTest, NeedAName) {
  expect_refused(run({"--bed", "", "x.fa"}), 255, "Sorry, --bed needs the name of a file; \"\" is none.\n\n\n");
  expect_refused(run({"--tsv", "--bed", "x.fa"}), 255,
                 "Sorry, --tsv needs the name of a file; \"--bed\" is none.\n\n\n");
}

TEST_F(CliTableFilesTest, ThatCannotBeOpenedAreNamed) {
  expect_refused(run({"--bed", "missing/x.bed", "x.fa"}), 154,
                 "Sorry! Failed to open file\n   \"missing/x.bed\"\nas output file.\n" + aborted(-102));
}

TEST_F(CliTableFilesTest, ThatCannotBeWrittenAreNamedAndTheReportIsWhole) {
  std::filesystem::create_symlink("/dev/full", path("full.gz"));
  for (const std::string format : {"--bed", "--gff3", "--tsv"}) {
    for (const std::string name : {"/dev/full", "full.gz"}) {
      const Result result = run({format, name, "x.fa"});
      EXPECT_THAT(result.err, HasSubstr("Sorry! Failed to write file\n   \"" + name +
                                        "\"\ncompletely: No space left on device.\n" + aborted(-104)));
      EXPECT_EQ(result.out, unfinished_report(Settings(), plain_record));
      EXPECT_EQ(result.status, 152);
    }
  }
}

TEST_F(CliTableFilesTest, OnAPipeThatNobodyReadsEndQuietly) {
  Surroundings closed;
  closed.stdout_is_closed_pipe = true;
  const Result result = run({"--bed", "-", "x.fa", "out.txt"}, closed);
  EXPECT_THAT(result.err, testing::Not(HasSubstr("Sorry")));
  EXPECT_THAT(result.err, testing::Not(HasSubstr("aborted")));
  EXPECT_EQ(result.status, 152);
}

/// Other programs of the field read the files.
class CliClientsTest : public CliTablesTest {
 protected:
  /// Standard output of the shell command, which must succeed.
  std::string output_of(const std::string& command) const {
    std::FILE* const pipe = popen(("cd '" + path("") + "' && { " + command + "; } 2>errors").c_str(), "r");
    if (pipe == nullptr) return "no shell";
    std::string text;
    std::array<char, 4096> piece{};
    while (const std::size_t n = std::fread(piece.data(), 1, piece.size(), pipe)) text.append(piece.data(), n);
    EXPECT_EQ(pclose(pipe), 0) << command << "\n" << read("errors");
    return text;
  }

  static bool lacks(const std::string& program) {
    return WEXITSTATUS(std::system(("command -v " + program + " >/dev/null").c_str())) != 0;
  }

  /// The bases of the repeats as the report shows them, one line each.
  std::string reported_bases() const {
    const Lines lines = lines_of(run({"-U", "12", "--outputFormat", "0", "--printRepeatSeqMode", "1", "x.fa"}).out);
    std::string bases;
    for (std::size_t i = 0; i + 1 < lines.size(); ++i) {
      if (lines[i].find(" bp | ") != std::string::npos) bases += lines[i + 1] + "\n";
    }
    return bases;
  }

  /// Bases from the file itself, in the letters of the report.
  static std::string normalized(std::string text) {
    for (char& c : text) {
      c = static_cast<char>(std::toupper(c));
      if (c != '\n' && std::string("ACGT").find(c) == std::string::npos) c = 'N';
    }
    return text;
  }
};

TEST_F(CliClientsTest, BedtoolsFetchesTheReportedBases) {
  if (lacks("bedtools")) GTEST_SKIP() << "bedtools is not installed";
  run_with_tables({"x.fa"});
  EXPECT_EQ(normalized(output_of("bedtools getfasta -fi x.fa -bed x.bed -tab | cut -f 2")), reported_bases());
}

TEST_F(CliClientsTest, BedtoolsReadsBedAndGff3Alike) {
  if (lacks("bedtools")) GTEST_SKIP() << "bedtools is not installed";
  run_with_tables({"x.fa"}, ".gz");
  const std::string same = output_of("bedtools intersect -f 1 -r -u -a x.bed.gz -b x.gff3.gz | wc -l");
  EXPECT_EQ(std::stoul(same), lines_of(reported_bases()).size());
}

TEST_F(CliClientsTest, SamtoolsFetchesTheReportedBases) {
  if (lacks("samtools")) GTEST_SKIP() << "samtools is not installed";
  run_with_tables({"x.fa"});
  output_of("tail -n +2 x.tsv | awk '{ print $1 \":\" $3 \"-\" $4 }' > regions");
  EXPECT_EQ(normalized(output_of("samtools faidx -n 1000 -r regions x.fa | grep -v '^>'")), reported_bases());
}

TEST_F(CliClientsTest, TabixIndexesBedAndGff3) {
  if (lacks("tabix")) GTEST_SKIP() << "tabix is not installed";
  run_with_tables({"x.fa"}, ".gz");
  run_with_tables({"x.fa"});
  output_of("tabix -p bed x.bed.gz && tabix -p gff x.gff3.gz");
  for (const std::string name : {"x.bed", "x.gff3"}) {
    for (const std::string id : {"one", "two"}) {
      EXPECT_EQ(output_of("tabix " + name + ".gz " + id), output_of("grep '^" + id + "' " + name)) << name;
    }
  }
  const Lines row = rows().at(5);
  const std::string found = output_of("tabix x.bed.gz " + row[0] + ":" + row[2] + "-" + row[2]);
  EXPECT_THAT(found, HasSubstr("\t" + row[3] + "\t" + row[12] + "\t"));
}

TEST_F(CliClientsTest, GenomeToolsFindsTheGff3Valid) {
  if (lacks("gt")) GTEST_SKIP() << "genometools is not installed";
  for (const char* input : {"x.fa", "gaps.fa"}) {
    run_with_tables({input});
    EXPECT_EQ(output_of("gt gff3validator -typecheck so x.gff3"), "input is valid GFF3\n");
  }
}

}  // namespace
}  // namespace cli
