#include "search_input.h"

#include <algorithm>
#include <cmath>
#include <cstdio>

namespace fuzz {

namespace {

constexpr std::size_t longest_sequence = 600;
constexpr std::size_t usual_sequence = 300;
constexpr std::uint32_t usual_unit = 8;
/// States that the reference may visit for one input, about: some milliseconds without sanitizers.
constexpr double affordable_states = 60000;
constexpr double affordable_for_long_units = 150000;

class Bytes {
 public:
  Bytes(const std::uint8_t* data, std::size_t size) : next_(data), end_(data + size) {}
  bool empty() const { return next_ == end_; }
  int next() { return empty() ? 0 : *next_++; }
  /// A number of [low, high].
  int between(int low, int high) { return low + next() % (high - low + 1); }

 private:
  const std::uint8_t* next_;
  const std::uint8_t* end_;
};

/// Mostly short units, for speed; sometimes those that the filters for long units see.
std::uint32_t longest_unit(int byte) {
  if (byte < 0xC0) return static_cast<std::uint32_t>(byte) % usual_unit + 1;
  if (byte < 0xF0) return static_cast<std::uint32_t>(byte) % 16 + 9;
  return static_cast<std::uint32_t>(byte - 0xF0) * 2 + 30;
}

reference::Options read_options(Bytes& bytes) {
  reference::Options o;
  o.input_filename = "input.fa";
  const int switches = bytes.next();
  o.search_mode = 2 - switches % 4 % 3;  // the default twice as often as the others
  o.remove_mostly_hidden = (switches & 4) == 0;
  o.treat_Ns_as_missense = (switches & 8) != 0;
  o.min_unit_length = (switches & 16) != 0 ? 2 : 1;
  o.mask_repeats = (switches & 32) != 0;
  o.max_unit_length = longest_unit(bytes.next());
  o.maximum_recursion_depth = bytes.between(0, 5);
  o.mismatch_score = -bytes.between(2, 12);
  o.indel_score = -bytes.between(2, 12);
  o.Ns_allowed_in_a_row = bytes.between(0, 6);
  o.min_score = bytes.between(-2, 13);
  o.min_score_a = bytes.between(-4, 4);
  o.min_score_bx = static_cast<float>(bytes.between(-1, 8)) * 0.25F;
  o.min_length = bytes.between(0, 20);
  o.min_length_a = bytes.between(-4, 4);
  o.min_length_bx = static_cast<float>(bytes.between(-1, 8)) * 0.5F;
  const int forms = bytes.next();
  o.N_and_perfection_mode = forms % 3;
  o.report_unit_mode = forms / 3 % 3;
  o.print_sat_seq_mode = forms / 9 % 3;
  o.print_sat_mode = forms / 27 % 3;
  constexpr int flanks[] = {0, 1, 7, 2147483647};
  o.flanking = flanks[bytes.next() % 4];
  return o;
}

void copy_back(std::string& bases, std::size_t distance, int count) {
  for (int i = 0; i < count && bases.size() < longest_sequence; ++i) {
    bases += bases.size() < distance ? 'A' : bases[bases.size() - distance];
  }
}

std::string read_bases(Bytes& bytes) {
  const std::string letters = "ACGTN";
  std::string bases;
  while (!bytes.empty() && bases.size() < longest_sequence) {
    const int byte = bytes.next();
    if (byte >= 0xC0) {
      copy_back(bases, static_cast<std::size_t>(byte - 0xC0) + 1, bytes.between(1, 128));
    } else if (letters.find(static_cast<char>(byte)) != std::string::npos) {
      bases += static_cast<char>(byte);
    } else {
      bases += letters[static_cast<std::size_t>(byte) % 4];
    }
  }
  return bases;
}

/// States that the reference visits for each base, about: a walk goes on while its score stays above minus the unit
/// length, and before each of its steps every way within the depth is tried.
double states_per_base(const reference::Options& o) {
  const int mildest = std::min(-o.mismatch_score, -o.indel_score);
  double states = 4;
  for (std::uint32_t unit = o.min_unit_length; unit <= o.max_unit_length; ++unit) {
    const double steps = std::max(0.1, static_cast<double>(unit - 1) / mildest);
    const double depth = std::min<double>(o.maximum_recursion_depth, steps + 1);
    states += 4 + steps * std::pow(3.0, depth + 1) / 4;
  }
  return o.search_mode == 0 ? 4.0 * o.max_unit_length : states;
}

void make_affordable(SearchInput& input) {
  const bool long_units = input.options.max_unit_length > usual_unit;
  std::size_t length = std::min(input.bases.size(), long_units ? longest_sequence : usual_sequence);
  const double states = long_units ? affordable_for_long_units : affordable_states;
  while (input.options.maximum_recursion_depth > 1 &&
         states_per_base(input.options) * static_cast<double>(length) > states) {
    --input.options.maximum_recursion_depth;
  }
  const auto affordable = static_cast<std::size_t>(states / states_per_base(input.options));
  length = std::min(length, std::max<std::size_t>(affordable, 100));
  input.bases.resize(length);
}

}  // namespace

SearchInput read_search_input(const std::uint8_t* data, std::size_t size) {
  Bytes bytes(data, size);
  SearchInput input;
  input.options = read_options(bytes);
  input.bases = read_bases(bytes);
  make_affordable(input);
  return input;
}

std::string command_line_of(const reference::Options& o) {
  const char* const modes[] = {"exact", "extendExact", "imperfect"};
  std::string line = std::string("ostrel -M ") + modes[o.search_mode];
  const auto add = [&line](const char* name, double value) {
    char text[80];
    std::snprintf(text, sizeof text, " %s %.9g", name, value);
    line += text;
  };
  const auto add_switch = [&line](const char* name, bool given) {
    if (given) line += std::string(" ") + name;
  };
  add("-u", o.min_unit_length);
  add("-U", o.max_unit_length);
  add("-r", o.maximum_recursion_depth);
  add("-m", o.mismatch_score);
  add("-g", o.indel_score);
  add("-N", o.Ns_allowed_in_a_row);
  add("-s", o.min_score);
  add("--minScore_a", o.min_score_a);
  add("--minScore_b", static_cast<double>(o.min_score_bx));
  add("-l", o.min_length);
  add("--minLength_a", o.min_length_a);
  add("--minLength_b", static_cast<double>(o.min_length_bx));
  add("--NPerfectionMode", o.N_and_perfection_mode);
  add("--reportUnit", o.report_unit_mode);
  add("--printRepeatSeqMode", o.print_sat_seq_mode);
  add("--outputFormat", o.print_sat_mode);
  add("-f", o.flanking);
  add_switch("--NsAsMissense", o.treat_Ns_as_missense);
  add_switch("-D", !o.remove_mostly_hidden);
  add_switch("--maskX", o.mask_repeats);
  return line + " input.fa";
}

}  // namespace fuzz
