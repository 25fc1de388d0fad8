#include "driver/parameter_summary.h"

#include <string>

#include "driver/messages.h"
#include "driver/number2cstring.h"
#include "sequence/global-types-and-parameters.h"

namespace {

std::string yes_or_no(bool value) {
  return value ? "yes" : "no";
}

/// The word for 0, for 1, or for anything else.
std::string word_for(int mode, const char* zero, const char* one, const char* other) {
  return mode == 0 ? zero : mode == 1 ? one : other;
}

std::string linear_rule(int minimum, int offset, float slope) {
  std::string text = "maximum (";
  text += number2str(minimum);
  text += ", ";
  text += number2str(offset);
  text += "+";
  text += number2str(slope);
  return text + "*unitlength )";
}

std::string sequence_range() {
  std::string text = number2str(global_sequence_from);
  text += " - ";
  return text + (global_sequence_to == UINT32_MAX ? "last sequence" : number2str(global_sequence_to));
}

}  // namespace

void print_search_parameters(std::FILE* out, const char* prefix) {
  const auto line = [out, prefix](const char* label, const std::string& value) {
    general_PrintMessage(out, prefix, label, value, "\n");
  };
  line("Parameter settings used in this search:", "");
  line("Input file name:                    ", global_input_filename);
  if (!global_output_filename.empty()) line("Output file name:                   ", global_output_filename);
  line("   Sequence range to process:       ", sequence_range());
  line("   Satellites searched for:         ",
       word_for(global_search_mode, "exact repeats", "exact repeats which are extended to imperfect repeats",
                "imperfect repeats"));
  line("   Recursion depth:                 ", number2str(global_maximum_recursion_depth));
  line("   Minimum unit length:             ", number2str(global_min_unit_length));
  line("   Maximum unit length:             ", number2str(global_max_unit_length));
  line("   Minimum score:                   ", linear_rule(global_min_score, global_min_score_a, global_min_score_bx));
  line("   Minimum length:                  ",
       linear_rule(global_min_length, global_min_length_a, global_min_length_bx));
  line("   Treat N's as:                    ", global_treat_Ns_as_missense ? "missense" : "neutral");
  line("   Max. succesive N's allowed:      ", number2str(global_Ns_allowed_in_a_row));
  line("   Mismatch score:                  ", number2str(global_mismatch_score));
  line("   Indel score:                     ", number2str(global_indel_score));
  line("   Minimum perfection:              ", std::string(number2str(global_perfection_minimum)) + " %");
  line("   Number of flanking nucletides:   ", number2str(global_flanking));
  line("   Remove mostly overlapping satellites: ", yes_or_no(global_remove_mostly_hidden));
  line("   Write file with masked seq.:     ", yes_or_no(global_mask_repeats));
  line("   Computing perfections treat N's: ",
       word_for(global_N_and_perfection_mode, "asMismatch", "asNeutral", "asMatch"));
  line("   Report units as:                 ",
       word_for(global_report_unit_mode, "as they are", "alphabetical normal form",
                "alphabetical normal form using reverse complement"));
  line("   Output format:                   ",
       word_for(global_print_sat_mode, "ostrel format", "extended ostrel format", "sputnik compatible format"));
  line("   Print sequence mode:             ",
       word_for(global_print_sat_seq_mode, "don't print sequence", "print sequence", "print alignment"));
}
