#include "fasta_writer.h"

#include <algorithm>

namespace differential {
namespace {

struct TextForm {
  std::size_t width = 60;
  std::string line_end = "\n";
  unsigned lower_case = 0;    // percent of the bases
  unsigned other_letter = 0;  // percent of the N that become another ambiguity letter
  unsigned junk = 0;          // percent of the bases that are followed by something the reader drops
};

TextForm draw_form(SmallRandom& random) {
  TextForm form;
  form.width = random.pick<std::size_t>({60, 60, 70, 80, 1, 7, 100000});
  if (random.percent(20)) form.line_end = "\r\n";
  form.lower_case = random.pick({0U, 0U, 5U, 50U, 100U});
  form.other_letter = random.pick({0U, 0U, 50U});
  form.junk = random.pick({0U, 0U, 0U, 2U});
  return form;
}

std::string draw_name(SmallRandom& random, std::size_t number) {
  const std::string plain = "seq" + std::to_string(number);
  switch (random.below(12)) {
    case 0:
      return "  two words  " + plain + " ";
    case 1:
      return plain + " > # tab\there";
    case 2:
      return "";
    case 3:
      return plain + std::string(90, 'x');
    default:
      return plain;
  }
}

void append_base(SmallRandom& random, const TextForm& form, char base, std::string& line) {
  char letter = base;
  if (base == 'N' && random.percent(form.other_letter)) letter = random.pick_char("RYKMSWBDHVUNEFZ");
  if (random.percent(form.lower_case)) letter = static_cast<char>(letter - 'A' + 'a');
  line += letter;
  if (random.percent(form.junk)) line += random.pick_char(" \tXx0123*-.>\xe9");
}

std::string record_text(SmallRandom& random, const TextForm& form, const std::string& name, const std::string& bases) {
  std::string text = ">" + name + form.line_end;
  for (std::size_t at = 0; at < bases.size(); at += form.width) {
    std::string line;
    for (const char base : bases.substr(at, form.width)) append_base(random, form, base, line);
    text += line + form.line_end;
    if (random.percent(1)) text += form.line_end;
  }
  return text;
}

void break_text(SmallRandom& random, std::string& text) {
  switch (random.below(5)) {
    case 0:
    case 1:
      text.insert(random.below(text.size() + 1), "\r");
      break;
    case 2:
      text.erase(0, random.between(1, 3));
      break;
    case 3:
      text.insert(0, "\n");
      break;
    default:
      text += ">";
      break;
  }
}

}  // namespace

std::string write_fasta(SmallRandom& random, const std::vector<std::string>& sequences) {
  const TextForm form = draw_form(random);
  std::string text;
  for (std::size_t i = 0; i < sequences.size(); ++i) {
    text += record_text(random, form, draw_name(random, i + 1), sequences[i]);
  }
  if (random.percent(10)) text.resize(text.size() - std::min(text.size(), form.line_end.size()));
  if (random.percent(4)) break_text(random, text);
  return text;
}

}  // namespace differential
