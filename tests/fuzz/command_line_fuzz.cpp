// Command lines: every line of the input is one word. What is accepted must be sensible, and its summary the
// reference's.

#include <cstring>
#include <memory>
#include <vector>

#include "command_line_without_exit.h"
#include "driver/command_line.h"
#include "driver/messages.h"
#include "driver/parameter_summary.h"
#include "fuzz_support.h"
#include "sequence/global-types-and-parameters.h"

namespace {

/// The words as the shell hands them over, each in a block of its own.
class CommandLine {
 public:
  CommandLine(const char* data, std::size_t size) {
    add("ostrel");
    std::string word;
    for (std::size_t i = 0; i < size; ++i) {
      if (data[i] != '\n') {
        word += data[i];
        continue;
      }
      add(word);
      word.clear();
    }
    if (!word.empty()) add(word);
  }

  int count() const { return static_cast<int>(pointers_.size()); }

  /// Null-terminated, like that of `main`.
  std::vector<const char*> words() const {
    std::vector<const char*> all = pointers_;
    all.push_back(nullptr);
    return all;
  }

  std::string text() const {
    std::string line;
    for (const char* word : pointers_) line += "'" + std::string(word) + "' ";
    return line;
  }

 private:
  void add(const std::string& word) {
    const std::size_t size = std::strlen(word.c_str()) + 1;  // a word of a command line ends at its first NUL
    copies_.push_back(std::make_unique<fuzz::ExactCopy>(word.c_str(), size));
    pointers_.push_back(reinterpret_cast<const char*>(copies_.back()->data()));
  }

  std::vector<std::unique_ptr<fuzz::ExactCopy>> copies_;
  std::vector<const char*> pointers_;
};

constexpr int process_ended = 1;

/// The exit code; `process_ended` where the library ends the process.
int parse(const CommandLine& line) {
  const fuzz::Silence silence;
  try {
    return read_and_init_parameters(line.count(), line.words().data());
  } catch (const ProcessEnded& end) {
    if (end.status != 0 && end.status != 1) return end.status + 1000;
    return process_ended;
  }
}

std::string header_block() {
  return fuzz::bytes_written_by([](std::FILE* out) {
    creator_message(out, "# ");
    print_search_parameters(out, "# ");
    print_output_format(out, "# ");
  });
}

void check_accepted(const CommandLine& line) {
  reference::Options options = fuzz::options_in_force();
  fuzz::require(reference::check_options(options) == 0, "accepted, but the reference refuses it");
  fuzz::require(options.Ns_allowed_in_a_row == global_Ns_allowed_in_a_row && options.flanking == global_flanking &&
                    options.maximum_recursion_depth == global_maximum_recursion_depth,
                "accepted with a value that should have been corrected");
  // Of an input without a record the reference writes the header block alone.
  fuzz::require_same(header_block(), reference::run(options, "").report, [&line] { return line.text(); });
}

/// With an input file the settings are stored before they are checked.
void check_refused_setting() {
  if (global_input_filename.empty()) return;
  reference::Options options = fuzz::options_in_force();
  fuzz::require(reference::check_options(options) != 0, "refused, but the reference accepts it");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  global_input_filename.clear();
  global_output_filename.clear();
  const CommandLine line(reinterpret_cast<const char*>(data), size);
  switch (parse(line)) {
    case EXIT_COMPLETE:
      check_accepted(line);
      break;
    case EXIT_REFUSED_SETTING:
      check_refused_setting();
      break;
    case EXIT_UNKNOWN_MODE:
    case process_ended:
      break;
    default:
      fuzz::fail("an exit code that is not documented");
  }
  return 0;
}
