// The literal reference: a second, deliberately plain and slow writing of the
// whole repeat search. It shares no code with the program itself, so that the
// two can be compared byte for byte on the same input.

#ifndef OSTREL_TESTS_REFERENCE_LITERAL_REFERENCE_H
#define OSTREL_TESTS_REFERENCE_LITERAL_REFERENCE_H

#include <cstdint>
#include <string>

namespace reference {

// Every parameter of a run, with the values in force when no option is given.
// The values are taken as they are: refusing or correcting a bad setting is
// the business of check_options().
struct Options {
  std::string input_filename;   // only printed in the header block
  std::string output_filename;  // only printed; its line is left out if empty

  std::uint32_t sequence_from = 1;          // first record searched, from 1
  std::uint32_t sequence_to = 4294967295U;  // last record; all bits: no limit

  int search_mode = 2;              // 0 exact, 1 extendExact, else imperfect
  int N_and_perfection_mode = 0;    // 0 as mismatch, 1 neutral, 2 as match
  int report_unit_mode = 2;         // 0 as is, 1 normal form, 2 also rev. compl.
  int print_sat_seq_mode = 2;       // 0 nothing, 1 bases, 2 alignment
  int print_sat_mode = 1;           // 0 plain, 1 extended, 2 sputnik like
  int flanking = 0;                 // bases of context on either side
  float perfection_minimum = 0.0F;  // only printed, must be 0

  int maximum_recursion_depth = 5;
  std::uint32_t min_unit_length = 1;
  std::uint32_t max_unit_length = 6;
  bool treat_Ns_as_missense = false;
  int Ns_allowed_in_a_row = 4;

  int min_score = 6;
  int min_score_a = 0;
  float min_score_bx = 1.0F;
  int min_length = 1;
  int min_length_a = 0;
  float min_length_bx = 0.0F;
  int mismatch_score = -6;
  int indel_score = -6;

  bool remove_mostly_hidden = true;
  bool mask_repeats = false;
};

struct Result {
  std::string report;    // the bytes of the output stream
  std::string masked;    // the bytes of the masked copy, if it was asked for
  int fasta_error = -1;  // -1: none, otherwise the integer that was thrown
};

// Applies the checks and corrections that follow the parsing of the command
// line. Returns 0, -1 (a setting is refused) or -2 (a mode number is unknown).
int check_options(Options& options);

// Runs the whole program over the bytes of one FASTA file.
Result run(const Options& options, const std::string& fasta_bytes);

}  // namespace reference

#endif
