// ostrel-reference [OPTIONS] INPUT [OUTPUT]: the literal reference as a
// program, with the options, the output and the exit statuses of ostrel.
// Nothing but a short reason for a failure goes to standard error.

#include <sys/stat.h>

#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <iostream>
#include <iterator>
#include <set>
#include <sstream>
#include <string>
#include <vector>

#include "literal_reference.h"

namespace {

[[noreturn]] void fail(int status, const std::string& reason) {
  std::cerr << "ostrel-reference: " << reason << "\n";
  std::exit(status);
}

// A value must be read completely, without anything before or after it.
template <typename T>
T parse_value(const std::string& option, const std::string& text) {
  std::istringstream stream(text);
  T value{};
  stream >> value;
  if (stream.fail() || stream.peek() != std::istringstream::traits_type::eof()) {
    fail(1, "bad value '" + text + "' for " + option);
  }
  return value;
}

std::string long_name_of(const std::string& argument) {
  if (argument.size() > 2 && argument.compare(0, 2, "--") == 0) {
    return argument.substr(2);
  }
  if (argument.size() == 2 && argument[0] == '-') {
    switch (argument[1]) {
      case 'N':
        return "succN";
      case 'f':
        return "flanking";
      case 'P':
        return "minPerfection";
      case 'D':
        return "dontRemoveMostlyOverlapping";
      case 'r':
        return "recursion";
      case 'u':
        return "minUnitLen";
      case 'U':
        return "maxUnitLen";
      case 'l':
        return "minLength";
      case 's':
        return "minScore";
      case 'm':
        return "mismatchScore";
      case 'g':
        return "indelScore";
      case 'M':
        return "searchMode";
      case 'h':
        return "help";
      case 'v':
        return "version";
      default:
        break;
    }
  }
  fail(1, "unknown option " + argument);
}

void parse(const std::vector<std::string>& arguments, reference::Options& o, std::vector<std::string>& names) {
  std::set<std::string> seen;
  for (std::size_t i = 0; i < arguments.size(); ++i) {
    const std::string& argument = arguments[i];
    if (argument == "--" || argument == "--ignore_rest") {
      for (++i; i < arguments.size(); ++i) names.push_back(arguments[i]);
      return;
    }
    if (argument.size() < 2 || argument[0] != '-') {
      names.push_back(argument);
      continue;
    }

    const std::string option = long_name_of(argument);
    if (!seen.insert(option).second) fail(1, option + " is given twice");

    if (option == "help" || option == "version") {
      std::cout << "ostrel-reference [OPTIONS] INPUT [OUTPUT], version 3.2.6\n";
      std::exit(0);
    } else if (option == "NsAsMissense") {
      o.treat_Ns_as_missense = true;
      continue;
    } else if (option == "maskX") {
      o.mask_repeats = true;
      continue;
    } else if (option == "dontRemoveMostlyOverlapping") {
      o.remove_mostly_hidden = false;
      continue;
    }

    if (i + 1 == arguments.size()) fail(1, option + " needs a value");
    const std::string& text = arguments[++i];
    const auto as_int = [&] { return parse_value<int>(option, text); };
    const auto as_unsigned = [&] { return parse_value<unsigned int>(option, text); };
    const auto as_float = [&] { return parse_value<float>(option, text); };

    if (option == "succN") {
      o.Ns_allowed_in_a_row = as_int();
    } else if (option == "reportUnit") {
      o.report_unit_mode = as_int();
    } else if (option == "NPerfectionMode") {
      o.N_and_perfection_mode = as_int();
    } else if (option == "printRepeatSeqMode") {
      o.print_sat_seq_mode = as_int();
    } else if (option == "outputFormat") {
      o.print_sat_mode = as_int();
    } else if (option == "flanking") {
      o.flanking = as_int();
    } else if (option == "minPerfection") {
      o.perfection_minimum = as_float();
    } else if (option == "firstSeq") {
      o.sequence_from = static_cast<std::uint32_t>(as_int());
    } else if (option == "lastSeq") {
      o.sequence_to = static_cast<std::uint32_t>(as_int());
    } else if (option == "recursion") {
      o.maximum_recursion_depth = as_int();
    } else if (option == "minUnitLen") {
      o.min_unit_length = as_unsigned();
    } else if (option == "maxUnitLen") {
      o.max_unit_length = as_unsigned();
    } else if (option == "minLength_b") {
      o.min_length_bx = as_float();
    } else if (option == "minLength_a") {
      o.min_length_a = as_int();
    } else if (option == "minLength") {
      o.min_length = as_int();
    } else if (option == "minScore_b") {
      o.min_score_bx = as_float();
    } else if (option == "minScore_a") {
      o.min_score_a = as_int();
    } else if (option == "minScore") {
      o.min_score = as_int();
    } else if (option == "mismatchScore") {
      o.mismatch_score = as_int();
    } else if (option == "indelScore") {
      o.indel_score = as_int();
    } else if (option == "searchMode") {
      if (text == "exact") {
        o.search_mode = 0;
      } else if (text == "extendExact") {
        o.search_mode = 1;
      } else if (text == "imperfect") {
        o.search_mode = 2;
      } else {
        fail(1, "unknown search mode " + text);
      }
    } else {
      fail(1, "unknown option " + argument);
    }
  }
}

bool is_directory(const std::string& name) {
  struct stat info;
  return stat(name.c_str(), &info) == 0 && S_ISDIR(info.st_mode);
}

}  // namespace

int main(int argc, char** argv) {
  reference::Options options;
  std::vector<std::string> names;
  parse(std::vector<std::string>(argv + 1, argv + argc), options, names);

  if (names.empty()) fail(255, "no input file");
  if (names.size() <= 2) options.input_filename = names[0];
  if (names.size() == 2) options.output_filename = names[1];

  const int checked = reference::check_options(options);
  if (checked == -1) fail(255, "a setting is refused");
  if (checked == -2) fail(254, "a mode number is unknown");

  std::ifstream input(options.input_filename, std::ios::in | std::ios::binary);
  if (!input || is_directory(options.input_filename)) {
    fail(155, "the input file could not be opened");
  }

  std::FILE* out = stdout;
  if (!options.output_filename.empty()) {
    out = std::fopen(options.output_filename.c_str(), "w");
    if (out == nullptr) fail(154, "the output file could not be opened");
  }

  const std::string bytes((std::istreambuf_iterator<char>(input)), std::istreambuf_iterator<char>());
  const reference::Result result = reference::run(options, bytes);

  std::fwrite(result.report.data(), 1, result.report.size(), out);
  if (out != stdout) {
    std::fclose(out);
  } else {
    std::fflush(out);
  }

  if (options.mask_repeats) {
    const std::string masked_name = options.input_filename + ".masked";
    std::FILE* masked = std::fopen(masked_name.c_str(), "w");
    if (masked != nullptr) {
      std::fwrite(result.masked.data(), 1, result.masked.size(), masked);
      std::fclose(masked);
    } else {
      std::cerr << "ostrel-reference: no masked file\n";
    }
  }

  if (result.fasta_error != -1) fail(153, "malformed FASTA input");
  return 0;
}
