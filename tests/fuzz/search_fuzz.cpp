// The whole search of one short sequence, from its bases to the report and the masked copy, against the reference.

#include <algorithm>
#include <list>

#include "driver/messages.h"
#include "driver/parameter_summary.h"
#include "fuzz_support.h"
#include "search/CSearchController.h"
#include "search/run_status.h"
#include "search_input.h"
#include "sequence/global-types-and-parameters.h"

namespace {

void set_parameters(const reference::Options& o) {
  init_param();
  global_input_filename = o.input_filename;
  global_output_filename = o.output_filename;
  global_search_mode = o.search_mode;
  global_N_and_perfection_mode = o.N_and_perfection_mode;
  global_report_unit_mode = o.report_unit_mode;
  global_print_sat_seq_mode = o.print_sat_seq_mode;
  global_print_sat_mode = o.print_sat_mode;
  global_flanking = o.flanking;
  global_maximum_recursion_depth = o.maximum_recursion_depth;
  global_min_unit_length = o.min_unit_length;
  global_max_unit_length = o.max_unit_length;
  global_treat_Ns_as_missense = o.treat_Ns_as_missense;
  global_Ns_allowed_in_a_row = o.Ns_allowed_in_a_row;
  global_min_score = o.min_score;
  global_min_score_a = o.min_score_a;
  global_min_score_bx = o.min_score_bx;
  global_min_length = o.min_length;
  global_min_length_a = o.min_length_a;
  global_min_length_bx = o.min_length_bx;
  global_mismatch_score = o.mismatch_score;
  global_indel_score = o.indel_score;
  global_remove_mostly_hidden = o.remove_mostly_hidden;
  global_mask_repeats = o.mask_repeats;
}

CsatContainer& search(CSearchController& controller) {
  switch (global_search_mode) {
    case 0:
      controller.exact_search_2();
      return controller.exact_sats;
    case 1:
      controller.search_exact_and_extend_to_imperfect_repeats();
      return controller.imperfect_sats;
    default:
      controller.complete_imperfect_search();
      return controller.imperfect_sats;
  }
}

void mask(const std::list<Csat*>& sats, CSequence_Mol& record) {
  for (const Csat* sat : sats) {
    std::fill_n(record.sequence.buffer + (sat->pos_left - record.begin()), sat->length(), 'X');
  }
}

struct Output {
  std::string report;
  std::string masked;
};

/// What the program writes for one record, as the driver puts it together.
Output program_output(const std::string& bases) {
  CSequence_Mol record;
  record.name = "r";
  for (const char base : bases) record.sequence.push_back(base);
  record.sequence.terminate();

  const fuzz::Silence silence;  // two of the searches report their progress
  update_report_time();
  Output output;
  output.report = fuzz::bytes_written_by([&](std::FILE* out) {
    creator_message(out, "# ");
    print_search_parameters(out, "# ");
    print_output_format(out, "# ");
    CSearchController controller(1, record);
    CsatContainer& found = search(controller);
    CSearchController::remove_hidden(found);
    controller.report_SATList(out, found.sats);
    if (global_mask_repeats) mask(found.sats, record);
    write_closing_line(out);
  });
  if (global_mask_repeats) {
    output.masked = fuzz::bytes_written_by([&](std::FILE* out) { record.writeSequence(out, 80); });
  }
  return output;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  fuzz::SearchInput input = fuzz::read_search_input(data, size);
  if (reference::check_options(input.options) != 0) return 0;
  const std::string fasta = ">r\n" + input.bases + "\n";
  const auto description = [&] { return fuzz::command_line_of(input.options) + "\n" + fasta; };

  set_parameters(input.options);
  const Output program = program_output(input.bases);
  const reference::Result expected = reference::run(input.options, fasta);
  fuzz::require_same(program.report, expected.report, description);
  fuzz::require_same(program.masked, expected.masked, description);
  return 0;
}
