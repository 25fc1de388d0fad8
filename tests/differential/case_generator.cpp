#include "case_generator.h"

#include <algorithm>

#include "fasta_writer.h"
#include "sequence_generator.h"

namespace differential {
namespace {

std::size_t affordable_bases(const OptionChoice& choice, double seconds) {
  const double bases = seconds / reference_seconds_per_base(choice);
  // Wide flanks repeat the whole sequence for every repeat found: the output grows with the square of the input.
  const double limit = choice.flanking > 1000 ? 1500 : 20000;
  return static_cast<std::size_t>(std::clamp(bases, 80.0, limit));
}

SequenceAims draw_aims(SmallRandom& random, const OptionChoice& choice, double seconds) {
  SequenceAims aims;
  const std::size_t affordable = affordable_bases(choice, seconds);
  // Most faults show in short inputs, which also shrink faster.
  const std::size_t usual = std::min<std::size_t>(affordable, 800);
  aims.total_bases = random.percent(20) ? random.between(80, affordable) : random.between(40, usual);
  aims.max_unit = static_cast<std::size_t>(std::min<std::uint64_t>(choice.max_unit, 60));
  aims.n_limit = choice.n_limit;
  return aims;
}

}  // namespace

Case make_case(std::uint64_t seed, double seconds) {
  SmallRandom random(seed);
  const OptionChoice choice = make_options(random, seconds);
  const SequenceAims aims = draw_aims(random, choice, seconds);
  Case test_case;
  test_case.options = choice.options;
  test_case.names_output_file = random.percent(25);
  test_case.fasta = write_fasta(random, make_sequences(random, aims));
  return test_case;
}

std::vector<std::string> option_words(const Case& test_case) {
  std::vector<std::string> words;
  for (const Option& option : test_case.options) words.insert(words.end(), option.begin(), option.end());
  return words;
}

}  // namespace differential
