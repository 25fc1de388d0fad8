#include "fuzz_support.h"

#include <cstdlib>
#include <cstring>
#include <iostream>
#include <sstream>

#include "sequence/global-types-and-parameters.h"

/// Read by AddressSanitizer where there is one: small records of the many small blocks that come and go.
extern "C" const char* __asan_default_options();
extern "C" const char* __asan_default_options() {
  return "malloc_context_size=4:quarantine_size_mb=32";
}

namespace fuzz {

void fail(const std::string& message) {
  std::fprintf(stderr, "FAULT: %s\n", message.c_str());
  std::fflush(stderr);
  std::abort();
}

std::string bytes_written_by(const std::function<void(std::FILE*)>& write) {
  char* bytes = nullptr;
  std::size_t size = 0;
  std::FILE* const out = open_memstream(&bytes, &size);
  if (out == nullptr) fail("no memory stream");
  write(out);
  std::fclose(out);
  std::string text(bytes, size);
  std::free(bytes);
  return text;
}

void require_same(const std::string& program, const std::string& reference,
                  const std::function<std::string()>& describe) {
  if (program == reference) return;
  fail("program and reference differ for\n" + describe() + "\n--- program\n" + program + "\n--- reference\n" +
       reference);
}

namespace {

std::FILE* null_stream() {
  static std::FILE* const stream = std::fopen("/dev/null", "w");
  return stream;
}

std::streambuf* discarded() {
  static std::ostringstream stream;
  stream.str({});
  return stream.rdbuf();
}

}  // namespace

// The C library declares the standard streams as variables, to be exchanged like this.
Silence::Silence()
    : standard_output_(stdout),
      standard_error_(stderr),
      cout_(std::cout.rdbuf(discarded())),
      cerr_(std::cerr.rdbuf(discarded())) {
  stdout = stderr = null_stream();
}

Silence::~Silence() {
  stdout = standard_output_;
  stderr = standard_error_;
  std::cout.rdbuf(cout_);
  std::cerr.rdbuf(cerr_);
}

reference::Options options_in_force() {
  reference::Options o;
  o.input_filename = global_input_filename;
  o.output_filename = global_output_filename;
  o.sequence_from = global_sequence_from;
  o.sequence_to = global_sequence_to;
  o.search_mode = global_search_mode;
  o.N_and_perfection_mode = global_N_and_perfection_mode;
  o.report_unit_mode = global_report_unit_mode;
  o.print_sat_seq_mode = global_print_sat_seq_mode;
  o.print_sat_mode = global_print_sat_mode;
  o.flanking = global_flanking;
  o.perfection_minimum = global_perfection_minimum;
  o.maximum_recursion_depth = global_maximum_recursion_depth;
  o.min_unit_length = global_min_unit_length;
  o.max_unit_length = global_max_unit_length;
  o.treat_Ns_as_missense = global_treat_Ns_as_missense;
  o.Ns_allowed_in_a_row = global_Ns_allowed_in_a_row;
  o.min_score = global_min_score;
  o.min_score_a = global_min_score_a;
  o.min_score_bx = global_min_score_bx;
  o.min_length = global_min_length;
  o.min_length_a = global_min_length_a;
  o.min_length_bx = global_min_length_bx;
  o.mismatch_score = global_mismatch_score;
  o.indel_score = global_indel_score;
  o.remove_mostly_hidden = global_remove_mostly_hidden;
  o.mask_repeats = global_mask_repeats;
  return o;
}

ExactCopy::ExactCopy(const void* data, std::size_t size) : bytes_(static_cast<std::uint8_t*>(std::malloc(size))) {
  if (bytes_ == nullptr && size > 0) fail("no memory");
  if (size > 0) std::memcpy(bytes_, data, size);
}

ExactCopy::~ExactCopy() {
  std::free(bytes_);
}

}  // namespace fuzz
