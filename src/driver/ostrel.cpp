#include "driver/ostrel.h"

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <cstring>
#include <exception>
#include <list>
#include <memory>
#include <new>
#include <string>
#include <thread>
#include <vector>

#include "driver/command_line.h"
#include "driver/messages.h"
#include "driver/number2cstring.h"
#include "driver/output_files.h"
#include "driver/parameter_summary.h"
#include "driver/record_search.h"
#include "driver/repeat_tables.h"
#include "search/CSearchController.h"
#include "search/progress_line.h"
#include "search/run_status.h"
#include "sequence/CFile.h"
#include "sequence/CSequence_Mol.h"
#include "sequence/global-types-and-parameters.h"

namespace {

constexpr std::size_t reserved_bases = 10000000;

/// What the loop over the records works with; lives for the whole run.
struct Run {
  CSequence_Mol sequence;  ///< one record reused for all
  std::unique_ptr<CFile> input;
  OutputFile out;
  RepeatTables tables;         ///< what is written beside the report
  OutputFile masked;           ///< not open unless masking was asked for
  bool masked_failed = false;  ///< asked for, but it could not be opened
  unsigned counter = 0;        ///< 1-based number of the record last read
  RecordPlace place;           ///< where in the input it stands
  unsigned in_work = 0;        ///< number of the record that is being read, searched or reported
  unsigned threads = 1;
  WaitingRecords waiting;
};

std::string masked_filename() {
  return global_input_filename + ".masked";
}

bool reads_standard_input() {
  return global_input_filename == standard_input_name;
}

bool open_input(Run& run) {
  run.input = std::make_unique<CFile>(global_input_filename);
  if (!run.input->open_failed) return true;
  general_PrintMessage(stderr, "Sorry! The input file \n   \"", global_input_filename,
                       reads_standard_input() ? "\"\nis standard input, which is no file or pipe that can be read.\n"
                                              : "\"\ncould not be opened. I guess it does not exist.\n");
  return false;
}

/// The path under which the input can be compared with other files.
std::string input_path() {
  return reads_standard_input() ? "/dev/stdin" : global_input_filename;
}

/// Whether the run would write into its input, or two of its files are one; says so.
bool files_collide() {
  const auto is_output = [](const std::string& path) {
    return global_output_filename.empty() ? is_standard_output(path) : same_file(path, global_output_filename);
  };
  std::string clash;
  if (is_output(input_path())) clash = "The output would overwrite the input file";
  if (global_mask_repeats) {
    if (same_file(global_input_filename, masked_filename())) clash = "The masked file would overwrite the input file";
    if (is_output(masked_filename()))
      clash = "The output and the masked copy would be the same file, for the input file";
  }
  if (clash.empty()) return false;
  general_PrintMessage(stderr, "Sorry! " + clash, "\n   \"", global_input_filename, "\".\n");
  return true;
}

/// Whether a table would be written into another file of the run; says so.
bool tables_collide() {
  const std::string report = global_output_filename.empty() ? path_of_output("-") : global_output_filename;
  std::vector<RunFile> files = {{"the input file", input_path()}, {"the report", report}};
  if (global_mask_repeats) files.push_back({"the masked copy", masked_filename()});
  return RepeatTables::collide(files);
}

bool open_report(Run& run) {
  if (global_output_filename.empty()) {
    run.out.use_standard_output();
    return true;
  }
  if (run.out.open(global_output_filename)) return true;
  general_PrintMessage(stderr, "Sorry! Failed to open file\n   \"", global_output_filename, "\"\nas output file.\n");
  return false;
}

bool open_output(Run& run) {
  return !files_collide() && !tables_collide() && open_report(run) && run.tables.open();
}

void write_headers(std::FILE* out) {
  creator_message(stderr, "");
  print_search_parameters(stderr, "");
  general_PrintMessage(stderr, "\n\nSearch progress:\n\nCPU-time - SeqNr - PatLen - Seq-Name\n", std::string(72, '-'),
                       "\n");
  std::fflush(stderr);

  creator_message(out, "# ");
  print_search_parameters(out, "# ");
  print_output_format(out, "# ");
}

/// A masked file that cannot be opened does not keep the user from the report.
void open_masked(Run& run) {
  if (!global_mask_repeats || run.masked.open(masked_filename())) return;
  general_PrintMessage(stderr, "Sorry! Failed to open file\n   \"", masked_filename(),
                       "\"\nfor the masked sequences: ", std::string(std::strerror(errno)) + ".\n");
  std::fflush(stderr);
  run.masked_failed = true;
}

/// Overwrites the bases of the reported repeats.
void mask_repeats(const std::list<Csat*>& sats, CSequence_Mol& sequence) {
  for (const Csat* sat : sats) {
    char* const first = sequence.sequence.buffer + (sat->pos_left - sequence.begin());
    std::fill_n(first, sat->length(), 'X');
  }
}

void announce(const RecordSearch& record) {
  report_status(record.number, record.sequence->name.c_str(), global_min_unit_length, 'r');
  update_report_time();
  enter_record(record.place);
}

/// Reports the repeats of a record that was searched, and masks them.
void report(Run& run, const RecordSearch& record) {
  CSequence_Mol& sequence = *record.sequence;
  const std::list<Csat*>& sats = record.result->sats;
  run.tables.begin_sequence(sequence, record.number);
  clear_progress_line();  // the report may go to the same terminal
  record.controller->report_SATList(run.out.stream(), sats,
                                    [&run, &sequence](const Csat& sat) { run.tables.add(sat, sequence); });
  if (!run.masked.is_open()) return;
  mask_repeats(sats, sequence);  // after the report, which shows the bases
  sequence.writeSequence(run.masked.stream(), 80);
}

/// Searches a record, if that was not done yet, and reports it.
void search_and_report(Run& run, RecordSearch& record) {
  run.in_work = record.number;
  errno = 0;  // so that a write that fails meanwhile leaves its reason
  announce(record);
  if (record.failure) std::rethrow_exception(record.failure);
  if (record.result == nullptr) {
    record.search(run.threads, false);
  } else if (!record.controller->unsaid.empty()) {
    write_status(record.controller->unsaid.c_str());
  }
  report(run, record);
}

/// Searches and reports the records that wait. The first that fails ends the run, as it does where none waits.
void finish_waiting_records(Run& run) {
  for (std::list<RecordSearch> records = run.waiting.take_searched(run.threads); !records.empty();
       records.pop_front()) {
    search_and_report(run, records.front());
    if (run.out.has_failed()) return;
  }
}

void process_record(Run& run) {
  const std::string& name = run.sequence.name;
  if (run.counter < global_sequence_from || run.counter > global_sequence_to) {
    finish_waiting_records(run);
    if (run.out.has_failed()) return;
    general_PrintMessage(stderr, "Skipping sequence ", number2str(run.counter), ": ", name + "\n");
    std::fflush(stderr);
    return;
  }
  if (WaitingRecords::has_to_wait(run.sequence.sequence.length, run.threads)) {
    run.waiting.add(run.sequence, run.counter, run.place);
    if (run.waiting.are_enough()) finish_waiting_records(run);
    return;
  }
  finish_waiting_records(run);
  if (run.out.has_failed()) return;
  RecordSearch record;
  record.number = run.counter;
  record.place = run.place;
  record.sequence = &run.sequence;
  search_and_report(run, record);
}

void read_record(Run& run) {
  run.in_work = run.counter;
  run.place.begin = run.input->position();
  run.sequence.readFastaSequence(*run.input);
  run.place.end = run.input->position();
  run.place.bases = run.sequence.sequence.length;
}

/// Nobody knows beforehand how much of the file comes before the last record of a range.
void start_progress(const Run& run) {
  const bool to_the_end = global_sequence_to == UINT32_MAX;
  if (global_show_progress) start_progress_line(to_the_end ? run.input->size() : 0);
}

const char* expectation(int fasta_error) {
  switch (fasta_error) {
    case FASTA_HEADER_EXPECTED:
      return "a header, \">\" and a name, was expected";
    case FASTA_LONE_CR:
      return "a line feed was expected after the carriage return";
    case FASTA_READ_FAILED:
      return "the file could not be read any further";
    case FASTA_DAMAGED_COMPRESSION:
      return "the compressed data are damaged or end too early";
    default:
      return "a byte could not be pushed back";
  }
}

void report_malformed_input(const Run& run, int fasta_error) {
  std::string place = "record ";
  place += number2str(run.counter);
  place += ", line " + std::to_string(run.input->line_number()) + ": ";
  general_PrintMessage(stderr, "Sorry! The input file \n   \"", global_input_filename, "\"\nis malformed at " + place,
                       std::string(expectation(fasta_error)) + ".\n");
}

/// What is missing may be just the marker: the end of the run is that of a complete one.
void warn_of_missing_end(const Run& run) {
  if (!run.input->lacks_end_marker()) return;
  general_PrintMessage(stderr, "Note: The compressed input file \n   \"", global_input_filename,
                       "\"\nhas no end marker. It may have been cut off; what is there has been searched.\n");
}

unsigned threads_to_use() {
  constexpr unsigned most = 1024;
  const unsigned wanted =
      global_threads == 0 ? std::thread::hardware_concurrency() : static_cast<unsigned>(global_threads);
  return std::clamp(wanted, 1U, most);
}

/// Everything up to the first record. Returns EXIT_COMPLETE or the reason why the run ends here.
int start(Run& run, int argc, const char* const* argv) {
  run.sequence.sequence.reserve(reserved_bases);
  start_run_clock();
  ostrel_welcome(stderr);
  std::fflush(stderr);
  if (const int refused = read_and_init_parameters(argc, argv)) return refused;
  if (!open_input(run)) return EXIT_INPUT_NOT_OPENED;
  if (!open_output(run)) return EXIT_OUTPUT_NOT_OPENED;
  write_headers(run.out.stream());
  if (!run.out.flush()) return EXIT_WRITE_FAILED;
  open_masked(run);
  run.threads = threads_to_use();
  start_progress(run);
  return EXIT_COMPLETE;
}

/// Returns EXIT_COMPLETE or the reason why the run ended before the end of the input.
int process_records_to_end(Run& run) {
  try {
    while (!run.input->eof()) {
      ++run.counter;
      errno = 0;  // so that a write that fails meanwhile leaves its reason
      read_record(run);
      process_record(run);
      if (run.out.has_failed()) return EXIT_WRITE_FAILED;
    }
  } catch (int fasta_error) {
    finish_waiting_records(run);
    if (run.out.has_failed()) return EXIT_WRITE_FAILED;
    run.out.flush();  // what was found comes before the reason why there is no more
    report_malformed_input(run, fasta_error);
    return EXIT_MALFORMED_INPUT;
  } catch (const std::bad_alloc&) {
    const unsigned at_fault = run.in_work;
    finish_waiting_records(run);
    run.in_work = at_fault;
    throw;
  }
  finish_waiting_records(run);
  return run.out.has_failed() ? EXIT_WRITE_FAILED : EXIT_COMPLETE;
}

int process_all_records(Run& run) {
  if (const int code = process_records_to_end(run)) return code;
  warn_of_missing_end(run);
  // The final progress line names the record last read, even if it was skipped.
  report_status(run.counter, run.sequence.name.c_str(), global_max_unit_length, 'f');
  return run.masked_failed ? EXIT_MASKED_NOT_OPENED : EXIT_COMPLETE;
}

/// Start and loop, with everything that can go wrong turned into an exit code.
int run_to_exit_code(Run& run, int argc, const char* const* argv) {
  try {
    const int code = start(run, argc, argv);
    return code == EXIT_COMPLETE ? process_all_records(run) : code;
  } catch (const std::bad_alloc&) {
    general_PrintMessage(stderr, "Sorry! Memory ran out while working on the input file \n   \"", global_input_filename,
                         "\", record ", std::string(number2str(run.in_work)) + ".\n");
    return EXIT_OUT_OF_MEMORY;
  }
}

/// Closes the files and says goodbye. The report gets its closing line only if nothing has been lost.
int close_down(Run& run, int code) {
  if (!run.masked.close()) {
    run.masked.report_failure();
    code = EXIT_WRITE_FAILED;
  }
  if (!run.tables.close()) code = EXIT_WRITE_FAILED;
  if (code == EXIT_COMPLETE || code == EXIT_MASKED_NOT_OPENED) write_closing_line(run.out.stream());
  if (!run.out.close()) {
    run.out.report_failure();
    code = EXIT_WRITE_FAILED;
  }
  if (run.out.reader_has_gone() || run.tables.reader_has_gone()) return code;
  if (code == EXIT_COMPLETE) {
    good_bye();
  } else {
    good_bye_on_error(code);
  }
  return code;
}

}  // namespace

int ostrel_main(int argc, const char* const* argv) {
  std::signal(SIGPIPE, SIG_IGN);  // a write to a closed pipe fails like any other
  occupy_standard_descriptors();
  Run run;
  return close_down(run, run_to_exit_code(run, argc, argv));
}
