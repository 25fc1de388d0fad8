#include "sequence/global-types-and-parameters.h"

std::string global_input_filename;
std::string global_output_filename;
std::uint32_t global_sequence_from;
std::uint32_t global_sequence_to;
int global_search_mode;
int global_N_and_perfection_mode;
int global_report_unit_mode;
int global_print_sat_seq_mode;
int global_print_sat_mode;
int global_flanking;
float global_perfection_minimum;
int global_maximum_recursion_depth;
std::uint32_t global_min_unit_length;
std::uint32_t global_max_unit_length;
bool global_treat_Ns_as_missense;
int global_Ns_allowed_in_a_row;
int global_min_score;
int global_min_score_a;
float global_min_score_bx;
int global_min_length;
int global_min_length_a;
float global_min_length_bx;
int global_mismatch_score;
int global_indel_score;
bool global_remove_mostly_hidden;
bool global_mask_repeats;
bool global_show_progress;

void init_param() {
  global_sequence_from = 1;
  global_sequence_to = UINT32_MAX;
  global_search_mode = 2;
  global_N_and_perfection_mode = 0;
  global_report_unit_mode = 2;
  global_print_sat_seq_mode = 2;
  global_print_sat_mode = 1;
  global_flanking = 0;
  global_perfection_minimum = 0.0F;
  global_maximum_recursion_depth = 5;
  global_min_unit_length = 1;
  global_max_unit_length = 6;
  global_treat_Ns_as_missense = false;
  global_Ns_allowed_in_a_row = 4;
  global_min_score = 6;
  global_min_score_a = 0;
  global_min_score_bx = 1.0F;
  global_min_length = 1;
  global_min_length_a = 0;
  global_min_length_bx = 0.0F;
  global_mismatch_score = -6;
  global_indel_score = -6;
  global_remove_mostly_hidden = true;
  global_mask_repeats = false;
  global_show_progress = false;
}
