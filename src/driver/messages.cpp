#include "driver/messages.h"

#include "driver/number2cstring.h"
#include "driver/ostrel_version.h"
#include "search/progress_line.h"
#include "sequence/global-types-and-parameters.h"

namespace {

const char* const welcome_str =
    "\n"
    "\n"
    "      Welcome to Ostrel, version " OSTREL_VERSION
    ",\n"
    "      a microsatellite and satellite search tool.\n"
    "      Copyright (c) 2026 the Ostrel authors\n"
    "      Ostrel is free software, distributed under the terms of the MIT licence:\n"
    "      you may use, copy, change and pass it on, in source and binary form,\n"
    "      for any purpose, provided that the copyright notice and the licence\n"
    "      text stay with it. They are found in the file LICENSE.\n"
    "      Results obtained with Ostrel are yours and may be published freely.\n"
    "      If they help your work, please name the program and its version, so\n"
    "      that others can repeat your search.\n"
    "      This version is a test version: check results that matter to you.\n"
    "      Ostrel comes without any warranty, not even that it is fit for a\n"
    "      particular purpose; the authors are not liable for its use.\n"
    "\n"
    "      Important note: The search mode: Search for repeats with\n"
    "                      a minimum percentage perfection is not\n"
    "                      fully implemented in this version.\n"
    "\n"
    "\n";

/// Writes numbered lines, one for each column.
class ColumnList {
 public:
  ColumnList(std::FILE* out, const char* prefix) : out_(out), prefix_(prefix) {}
  void add(const char* text) { std::fprintf(out_, "%sColumn %2d: %s\n", prefix_, ++number_, text); }

 private:
  std::FILE* out_;
  const char* prefix_;
  int number_ = 0;
};

}  // namespace

void general_PrintMessage(std::FILE* out, const std::string& a, const std::string& b, const std::string& c,
                          const std::string& d) {
  if (out == stderr) clear_progress_line();
  for (const std::string* text : {&a, &b, &c, &d}) std::fputs(text->c_str(), out);
}

void ostrel_welcome(std::FILE* out) {
  general_PrintMessage(out, welcome_str);
}

void creator_message(std::FILE* out, const char* prefix) {
  general_PrintMessage(out, prefix, "Results computed with:\n");
  general_PrintMessage(out, prefix, "   Ostrel, version " OSTREL_VERSION "\n");
}

void print_output_format(std::FILE* out, const char* prefix) {
  std::fprintf(out, "%s\n%sColumns in lines of output providing repeat information:\n", prefix, prefix);
  ColumnList columns(out, prefix);
  columns.add("Repeat unit length");
  columns.add("Position at which repeat starts in current sequence");
  columns.add("Position at which repeat ends in current sequence");
  columns.add("Length of repeat in original sequence, i.e. (end-start+1)");
  columns.add("Normalized repeat length, i.e. (end-start+1-insertions+deletions)");
  columns.add("Repeat score");
  columns.add("Repeat perfection");
  if (global_print_sat_mode == 1) {
    columns.add("Number of mismatches");
    columns.add("Number of insertions");
    columns.add("Number of deletions");
    if (!global_treat_Ns_as_missense) columns.add("Number of N's");
  }
  columns.add("Repeat unit");
  std::fprintf(out, "%s\n", prefix);
}

void write_closing_line(std::FILE* out) {
  general_PrintMessage(out, "## Finished successfully. ##\n");
}

void good_bye() {
  general_PrintMessage(stderr, "\nAnalysis finished successfully.\n\n", "Ostrel says goodbye.\n\n");
  std::fflush(stderr);
}

void good_bye_on_error(int code) {
  if (code < -1) {
    general_PrintMessage(stderr, "\nAnalysis has been aborted due to errors. Error number: ", number2str(code), "\n\n");
  } else if (code == -1) {
    general_PrintMessage(stderr, "\n\n");
  } else if (code > 0) {
    general_PrintMessage(stderr, "\nAnalysis has been stopped by the user.\n\n");
  }
  std::fflush(stderr);
}
