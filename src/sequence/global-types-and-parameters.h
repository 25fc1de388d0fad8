#pragma once

#include <cstdint>
#include <string>

// The table keeps its lines.
// clang-format off
/// The parameters of a run.
///
/// They are written twice, by `init_param` and then by the command line, both before any file is opened; afterwards
/// every library reads them as constants. They stand in the lowest library so that all four can include them
/// without an upward include.
///
/// | parameter                        | default    | unit, range                 | meaning |
/// |----------------------------------|------------|-----------------------------|---------|
/// | `global_input_filename`          | empty      | path                        | FASTA input |
/// | `global_output_filename`         | empty      | path                        | report; empty: standard output |
/// | `global_sequence_from`           | 1          | 1-based record number       | first record searched |
/// | `global_sequence_to`             | 4294967295 | 1-based, inclusive          | last record searched; all bits set: up to the last |
/// | `global_search_mode`             | 2          | 0 exact, 1 extendExact, else imperfect | search mode |
/// | `global_N_and_perfection_mode`   | 0          | 0 mismatch, 1 neutral, 2 match | how N counts in the perfection |
/// | `global_report_unit_mode`        | 2          | 0 as is, 1 normal form, 2 normal form of both strands | how the unit is written |
/// | `global_print_sat_seq_mode`      | 2          | 0 none, 1 bases, 2 alignment | what follows a repeat line |
/// | `global_print_sat_mode`          | 1          | 0 short, 1 extended, 2 sputnik | format of the repeat line |
/// | `global_flanking`                | 0          | bases, >= 0                 | context printed on either side |
/// | `global_perfection_minimum`      | 0          | percent                     | only 0 is accepted by the command line |
/// | `global_maximum_recursion_depth` | 5          | imperfect steps, >= 0       | reach of the lookahead; 0: perfect repeats only |
/// | `global_min_unit_length`         | 1          | bases, 1 or 2               | shortest unit searched |
/// | `global_max_unit_length`         | 6          | bases, >= the minimum       | longest unit searched |
/// | `global_treat_Ns_as_missense`    | false      |                             | N is a mismatch instead of neutral |
/// | `global_Ns_allowed_in_a_row`     | 4          | bases, >= 0                 | longest run of N inside a repeat |
/// | `global_min_score`               | 6          | score                       | constant term of the minimum score |
/// | `global_min_score_a`             | 0          | score                       | offset of its linear term |
/// | `global_min_score_bx`            | 1          | score per unit base         | slope of its linear term |
/// | `global_min_length`              | 1          | bases                       | constant term of the minimum length |
/// | `global_min_length_a`            | 0          | bases                       | offset of its linear term |
/// | `global_min_length_bx`           | 0          | bases per unit base         | slope of its linear term |
/// | `global_mismatch_score`          | -6         | score, <= -2                | a match scores +1 |
/// | `global_indel_score`             | -6         | score, <= -2                | per inserted or deleted base |
/// | `global_remove_mostly_hidden`    | true       |                             | drop the lower of two mostly overlapping repeats |
/// | `global_mask_repeats`            | false      |                             | write the masked copy of the input |
/// | `global_bed_filename`            | empty      | path, or "-": standard output | the repeats in BED; empty: not written |
/// | `global_gff3_filename`           | empty      | the same                    | ... in GFF3 |
/// | `global_tsv_filename`            | empty      | the same                    | ... as tab-separated values |
/// | `global_jsonl_filename`          | empty      | the same                    | ... in JSON Lines |
/// | `global_show_progress`           | false      |                             | draw the progress line on a terminal |
/// | `global_threads`                 | 1          | threads, >= 0               | 0: one for each processor |
// clang-format on

extern std::string global_input_filename;
extern std::string global_output_filename;
extern std::uint32_t global_sequence_from;
extern std::uint32_t global_sequence_to;
extern int global_search_mode;
extern int global_N_and_perfection_mode;
extern int global_report_unit_mode;
extern int global_print_sat_seq_mode;
extern int global_print_sat_mode;
extern int global_flanking;
extern float global_perfection_minimum;
extern int global_maximum_recursion_depth;
extern std::uint32_t global_min_unit_length;
extern std::uint32_t global_max_unit_length;
extern bool global_treat_Ns_as_missense;
extern int global_Ns_allowed_in_a_row;
extern int global_min_score;
extern int global_min_score_a;
extern float global_min_score_bx;
extern int global_min_length;
extern int global_min_length_a;
extern float global_min_length_bx;
extern int global_mismatch_score;
extern int global_indel_score;
extern bool global_remove_mostly_hidden;
extern bool global_mask_repeats;
extern std::string global_bed_filename;
extern std::string global_gff3_filename;
extern std::string global_tsv_filename;
extern std::string global_jsonl_filename;
extern bool global_show_progress;
extern int global_threads;

/// Stores the defaults of the table above in every parameter but the names of input and report.
void init_param();
