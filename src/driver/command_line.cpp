#include "driver/command_line.h"

#include <tclap/CmdLine.h>

#include <algorithm>
#include <string>
#include <vector>

#include "driver/messages.h"
#include "driver/number2cstring.h"
#include "driver/ostrel_version.h"
#include "sequence/byte_source.h"
#include "sequence/global-types-and-parameters.h"

namespace {

using IntOption = TCLAP::ValueArg<int>;
using UnsignedOption = TCLAP::ValueArg<unsigned int>;
using FloatOption = TCLAP::ValueArg<float>;
using FileOption = TCLAP::ValueArg<std::string>;

std::string length_rule(const char* closing) {
  return std::string(
             "The minimum length of a repeat is determined with: maximum( minLength, minLength_a + "
             "minLength_b*(unit-length) ). Default value of ") +
         closing;
}

std::string score_rule(const char* closing) {
  return std::string(
             "The minimum score of a repeat is determined with: maximum( minScore, minScore_a + "
             "minScore_b*(unit-length) ). Default value of ") +
         closing;
}

std::string table_file(const std::string& form) {
  return "Also writes the repeats of the report to this file, " + form +
         ". A file whose name ends in .gz is compressed in blocks (BGZF); - is standard output.";
}

/// The file names. The library would take any word that is left for a name, a misspelt option too; and then the name
/// behind it for the output file. A word that begins with a dash is a name only behind "--".
class FileNames : public TCLAP::UnlabeledMultiArg<std::string> {
 public:
  using UnlabeledMultiArg::UnlabeledMultiArg;

  bool processArg(int* i, std::vector<std::string>& words) override {
    const std::string& word = words[static_cast<std::size_t>(*i)];
    const bool looks_like_option = word.size() > 1 && word[0] == '-';
    if (looks_like_option && !TCLAP::Arg::ignoreRest()) return false;
    return UnlabeledMultiArg::processArg(i, words);
  }
};

/// The values of --searchMode.
std::vector<std::string> search_modes() {
  return {"exact", "extendExact", "imperfect"};
}

/// Every option of the command line. The default of a value is its parameter's present value; what the help texts call
/// the default is not always the same, and both stay as they are.
struct Options {
  explicit Options(TCLAP::CmdLine& cmd);

  std::vector<std::string> search_mode_words = search_modes();
  TCLAP::ValuesConstraint<std::string> allowed_search_modes{search_mode_words};

  IntOption succN;
  TCLAP::SwitchArg NsAsMissense;
  IntOption reportUnit;
  IntOption NPerfectionMode;
  IntOption printRepeatSeqMode;
  IntOption outputFormat;
  TCLAP::SwitchArg maskX;
  FileOption bed;
  FileOption gff3;
  FileOption tsv;
  FileOption jsonl;
  TCLAP::SwitchArg progress;
  IntOption threads;
  IntOption flanking;
  FloatOption minPerfection;
  TCLAP::SwitchArg dontRemoveMostlyOverlapping;
  IntOption firstSeq;
  IntOption lastSeq;
  IntOption recursion;
  UnsignedOption minUnitLen;
  UnsignedOption maxUnitLen;
  FloatOption minLength_b;
  IntOption minLength_a;
  IntOption minLength;
  FloatOption minScore_b;
  IntOption minScore_a;
  IntOption minScore;
  IntOption mismatchScore;
  IntOption indelScore;
  TCLAP::ValueArg<std::string> searchMode;
  FileNames iofiles;
};

/// The library prints a short usage on standard error, not the long one on standard output, after a parse error only if
/// it has help and version options; here they are added by hand.
class CommandLine : public TCLAP::CmdLine {
 public:
  using CmdLine::CmdLine;
  bool hasHelpAndVersion() override { return true; }
};

/// The library's own help and version options, the second with its short flag, which the library leaves out.
struct StandardOptions {
  explicit StandardOptions(TCLAP::CmdLine& cmd)
      : output(cmd.getOutput()),
        show_help(&cmd, &output),
        show_version(&cmd, &output),
        help("h", "help", "Displays usage information and exits.", cmd, false, &show_help),
        version("v", "version", "Displays version information and exits.", cmd, false, &show_version) {}

  TCLAP::CmdLineOutput* output;
  TCLAP::HelpVisitor show_help;
  TCLAP::VersionVisitor show_version;
  TCLAP::SwitchArg help;
  TCLAP::SwitchArg version;
};

Options::Options(TCLAP::CmdLine& cmd)
    : succN("N", "succN", "The maximum number of successive N's allowed in a satellite. Default: 2.", false,
            global_Ns_allowed_in_a_row, "int", cmd),
      NsAsMissense("", "NsAsMissense", "Treat N's as missense. Default: Treat N's as neutral with score 0.", cmd,
                   false),
      reportUnit("", "reportUnit",
                 "Repeat units can be reported in three different modes. 0: asIs, 1: Alphabetical normal form, 2: "
                 "Alphabetical normal form also considering the reverse complement. Default: 2",
                 false, global_report_unit_mode, "int", cmd),
      NPerfectionMode("", "NPerfectionMode",
                      "Ostrel provides different modes to treat N's when computing the perfection of a repeat. 0: "
                      "asMismatch, 1: asNeutral, 2: asMatch. Default: 0",
                      false, global_N_and_perfection_mode, "int", cmd),
      printRepeatSeqMode("", "printRepeatSeqMode",
                         "Ostrel provides different modes to print the repeat sequence along with its information. 0: "
                         "don't print sequence, 1: print sequence, 2: print alignment.",
                         false, global_print_sat_seq_mode, "int", cmd),
      outputFormat("", "outputFormat",
                   "Ostrel provides different output formats for printing the repeat information. 0: Ostrel output "
                   "format, 1: extended Ostrel output format",
                   false, global_print_sat_mode, "int", cmd),
      maskX("", "maskX", "Writes the sequences to a file with the extension \".masked\" in which repeats are masked.",
            cmd, global_mask_repeats),
      bed("", "bed", table_file("in BED form"), false, "", "file", cmd),
      gff3("", "gff3", table_file("in GFF3 form"), false, "", "file", cmd),
      tsv("", "tsv", table_file("as a table of tab-separated values"), false, "", "file", cmd),
      jsonl("", "jsonl", table_file("in JSON Lines form"), false, "", "file", cmd),
      progress("", "progress",
               "Shows on the terminal how far the search has come: bases done, share of the input file, bases per "
               "second and time left. Nothing is shown if standard error is not a terminal.",
               cmd, global_show_progress),
      threads("", "threads",
              "The number of threads that search. 0: one for each processor. The result is the same. Default: 1.",
              false, global_threads, "int", cmd),
      flanking("f", "flanking",
               "If the satellite sequence is printed, this is the number of flanking nucleotides to be printed to the "
               "left and right of it. Default: 0",
               false, global_flanking, "int", cmd),
      minPerfection("P", "minPerfection",
                    "Minimum perfection of satellites. Satellites below this value are broken up or reduced in length "
                    "if this yields a satellite above the minimum perfection. If N's are treated as mismatch when "
                    "computing the perfection, this value also has an influence when searching for exact repeats.",
                    false, global_perfection_minimum, "float", cmd),
      dontRemoveMostlyOverlapping(
          "D", "dontRemoveMostlyOverlapping",
          "Ostrel sometimes finds repeats that partially or completely overlap with other repeats, e.g. if alignments "
          "with alternative repeat patterns exist at the same locus in a sequence. The default is to remove one of any "
          "two mostly overlapping repeats in favour of that repeat with the highest score. With this option, Ostrel "
          "reports also repeats that mostly overlap with higher scoring repeats.",
          cmd, global_remove_mostly_hidden),
      firstSeq("", "firstSeq", "Number of first sequence to be processed in this run.", false,
               static_cast<int>(global_sequence_from), "int", cmd),
      lastSeq("", "lastSeq", "Number of last sequence to be processed in this run.", false,
              static_cast<int>(global_sequence_to), "int", cmd),
      recursion("r", "recursion",
                "The recursion depth used in the search. Values in the range 3 to 7 are recommended. A value of 0 "
                "implies a search for perfect repeats only.",
                false, global_maximum_recursion_depth, "int", cmd),
      minUnitLen("u", "minUnitLen", "Minimum unit length. Default: 2", false, global_min_unit_length, "int", cmd),
      maxUnitLen("U", "maxUnitLen", "Maximum unit length. Default: 5", false, global_max_unit_length, "int", cmd),
      minLength_b("", "minLength_b", length_rule("minLength_b: 0"), false, global_min_length_bx, "float", cmd),
      minLength_a("", "minLength_a", length_rule("minLength_a: 0"), false, global_min_length_a, "int", cmd),
      minLength("l", "minLength", length_rule("minLength: 1"), false, global_min_length, "int", cmd),
      minScore_b("", "minScore_b", score_rule("minScore_b: 0"), false, global_min_score_bx, "float", cmd),
      minScore_a("", "minScore_a", score_rule("minScore_a: 0"), false, global_min_score_a, "int", cmd),
      minScore("s", "minScore", score_rule("minScore: 0"), false, global_min_score, "int", cmd),
      mismatchScore("m", "mismatchScore",
                    "Score for mismatch - must be negative. Default: -6. Match score is fixed to one.", false,
                    global_mismatch_score, "int", cmd),
      indelScore("g", "indelScore", "Score for indels - must be negative. Default: -6. Match score is fixed to one.",
                 false, global_indel_score, "int", cmd),
      searchMode("M", "searchMode",
                 "Ostrel provides three different search modes. exact: Search for exact repeats, only. extendExact: "
                 "Searches for exact repeats and extends them by inserting mismatches and indels. imperfect: Searches "
                 "directly for imperfect repeats.",
                 false, "imperfect", &allowed_search_modes, cmd),
      iofiles("iofiles",
              "Ostrel requires either one or two file names as parameters. The first must be the input file in FASTA "
              "format. If a second file is specified, output is written to it. If no second file is given, output is "
              "written to the console. ",
              false, "Input and output filenames", cmd, true) {}

void store_values(Options& options) {
  // Both are stored unsigned: the default -1 of --lastSeq becomes the value that means the last sequence.
  global_sequence_from = static_cast<std::uint32_t>(options.firstSeq.getValue());
  global_sequence_to = static_cast<std::uint32_t>(options.lastSeq.getValue());
  global_maximum_recursion_depth = options.recursion.getValue();
  global_Ns_allowed_in_a_row = options.succN.getValue();
  global_treat_Ns_as_missense = options.NsAsMissense.getValue();
  global_remove_mostly_hidden = options.dontRemoveMostlyOverlapping.getValue();
  global_min_unit_length = options.minUnitLen.getValue();
  global_max_unit_length = options.maxUnitLen.getValue();
  global_min_length = options.minLength.getValue();
  global_min_length_a = options.minLength_a.getValue();
  global_min_length_bx = options.minLength_b.getValue();
  global_min_score = options.minScore.getValue();
  global_min_score_a = options.minScore_a.getValue();
  global_min_score_bx = options.minScore_b.getValue();
  global_mismatch_score = options.mismatchScore.getValue();
  global_indel_score = options.indelScore.getValue();
  global_flanking = options.flanking.getValue();
  global_perfection_minimum = options.minPerfection.getValue();
  global_mask_repeats = options.maskX.getValue();
  global_bed_filename = options.bed.getValue();
  global_gff3_filename = options.gff3.getValue();
  global_tsv_filename = options.tsv.getValue();
  global_jsonl_filename = options.jsonl.getValue();
  global_show_progress = options.progress.getValue();
  global_threads = options.threads.getValue();
  const std::string& mode = options.searchMode.getValue();
  global_search_mode = mode == "exact" ? 0 : mode == "extendExact" ? 1 : 2;
}

/// One or two names are taken; with more, neither is, and the run ends at the input file that has no name.
bool store_filenames(const std::vector<std::string>& names, const char* program) {
  if (names.empty()) {
    general_PrintMessage(stderr, "Error: No input file has been specified. Type ", program,
                         " --help for more information.\n");
    return false;
  }
  global_input_filename = names.size() <= 2 ? names[0] : "";
  global_output_filename = names.size() == 2 ? names[1] : "";
  return true;
}

/// Whether the name of a table is none, or an option that took its place; says so.
bool lacks_table_name(Options& options) {
  for (FileOption* option : {&options.bed, &options.gff3, &options.tsv, &options.jsonl}) {
    const std::string& name = option->getValue();
    const bool is_name = !name.empty() && (name[0] != '-' || name == "-");
    if (is_name || !option->isSet()) continue;
    general_PrintMessage(stderr, "Sorry, --" + option->getName(), " needs the name of a file; \"" + name,
                         "\" is none.\n");
    return true;
  }
  return false;
}

/// The masked copy is written beside the input file.
bool masks_standard_input(Options& options) {
  const std::vector<std::string>& names = options.iofiles.getValue();
  const bool from_standard_input = !names.empty() && names.size() <= 2 && names[0] == standard_input_name;
  if (!from_standard_input || !options.maskX.getValue()) return false;
  general_PrintMessage(stderr, "Sorry, standard input cannot be masked: --maskX needs the name of an input file.\n");
  return true;
}

bool store_mode(int value, int& mode) {
  if (value < 0 || value > 2) return false;
  mode = value;
  return true;
}

bool refuse_mode(const char* before, int value, const char* after) {
  general_PrintMessage(stderr, "Sorry, a problem occured when parsing the command line options. ", before,
                       number2str(value), after);
  return false;
}

bool store_modes(Options& options) {
  const int format = options.outputFormat.getValue();
  if (!store_mode(format, global_print_sat_mode)) {
    return refuse_mode("An outputFormat with a value of ", format, " is unknown.\n\n");
  }
  const int sequence = options.printRepeatSeqMode.getValue();
  if (!store_mode(sequence, global_print_sat_seq_mode)) {
    return refuse_mode("A printRepeatSeqMode with a value of ", sequence, " is unknown.\n\n");
  }
  // Both messages name the reportUnit option; users' scripts know that wording.
  const int perfection = options.NPerfectionMode.getValue();
  if (!store_mode(perfection, global_N_and_perfection_mode)) {
    return refuse_mode("An option value of ", perfection, " for the reportUnit option is unknown.\n\n");
  }
  const int unit = options.reportUnit.getValue();
  if (!store_mode(unit, global_report_unit_mode)) {
    return refuse_mode("An option value of ", unit, " for the reportUnit option is unknown.\n\n");
  }
  return true;
}

/// The threshold at unit length 1.
long double smallest_threshold(int minimum, int offset, float slope) {
  return std::max<long double>(minimum, static_cast<long double>(offset) + static_cast<long double>(slope));
}

/// The reason why the settings make no sense, or null.
const char* implausible_setting() {
  // Written so that not-a-number counts as set.
  if (!(global_perfection_minimum == 0.0F)) {
    return "Sorry, using a perfection minimum is not implemented in this version.\n";
  }
  if (global_min_unit_length != 1 && global_min_unit_length != 2) {
    return "The minimum unit length must be 1 or 2 in this version of Ostrel.\n";
  }
  if (smallest_threshold(global_min_score, global_min_score_a, global_min_score_bx) < 2.0L &&
      smallest_threshold(global_min_length, global_min_length_a, global_min_length_bx) < 2.0L) {
    return "Sorry, either the minimum score or the minimum length must be larger.\n";
  }
  if (global_mismatch_score >= -1) return "Sorry, the mismatch score must be smaller or equal to -2.\n";
  if (global_indel_score >= -1) return "Sorry, the indel score must be smaller or equal to -2.\n";
  if (global_max_unit_length < global_min_unit_length) {
    return "I think you have made a mistake here: The maximum unit length must be greater\n"
           "or equal to the minimum unit length.\n";
  }
  if (global_threads < 0) return "Sorry, the number of threads must not be negative.\n";
  return nullptr;
}

int store_and_check(Options& options, const char* program) {
  if (lacks_table_name(options) || masks_standard_input(options)) return EXIT_REFUSED_SETTING;
  if (!store_filenames(options.iofiles.getValue(), program)) return EXIT_REFUSED_SETTING;
  store_values(options);
  if (!store_modes(options)) return EXIT_UNKNOWN_MODE;
  global_Ns_allowed_in_a_row = std::max(global_Ns_allowed_in_a_row, 0);
  global_flanking = std::max(global_flanking, 0);
  global_maximum_recursion_depth = std::max(global_maximum_recursion_depth, 0);
  if (const char* const reason = implausible_setting()) {
    general_PrintMessage(stderr, reason);
    return EXIT_REFUSED_SETTING;
  }
  return EXIT_COMPLETE;
}

}  // namespace

int read_and_init_parameters(int argc, const char* const* argv) {
  init_param();
  try {
    CommandLine cmd("This program searches for tandemly repeated patterns in DNA sequences.", ' ', OSTREL_VERSION,
                    false);
    StandardOptions standard(cmd);
    Options options(cmd);
    cmd.parse(argc, argv);
    return store_and_check(options, argv[0]);
  } catch (const TCLAP::ArgException& error) {
    general_PrintMessage(stderr, "Error: " + error.error(), " for arg ", error.argId(), "\n");
    return EXIT_REFUSED_SETTING;
  }
}
