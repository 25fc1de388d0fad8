// Compares two executables that take the same command line, byte for byte, on generated inputs and options.

#include <atomic>
#include <cstdio>
#include <exception>
#include <filesystem>
#include <iostream>
#include <mutex>
#include <sstream>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

#include "case_generator.h"
#include "comparison.h"
#include "process_runner.h"
#include "shrink.h"

namespace differential {
namespace {

constexpr const char* usage =
    "usage: differential PROGRAM REFERENCE [options]\n"
    "       differential --print-case SEED [--budget SECONDS]\n"
    "  --cases N          number of cases (200)\n"
    "  --first-seed S     seed of the first case; the others follow (1)\n"
    "  --jobs J           cases that run at the same time (1)\n"
    "  --budget SECONDS   what the reference may need for one case, about; part of what a seed means (0.3)\n"
    "  --extra \"ARGS\"     additional arguments of the program only; given again, the program runs once with each\n"
    "  --checker PATH     check-report, run on every report of the program\n"
    "  --keep DIRECTORY   where the files of failing cases are kept (differential-failures)\n"
    "  --shrink SECONDS   time for making a failing case smaller; 0 leaves it as it is (60)\n"
    "  --time-limit SECONDS  for each run (60)\n";

struct Settings {
  Contest contest;
  std::uint64_t cases = 200;
  std::uint64_t first_seed = 1;
  unsigned jobs = 1;
  double budget = 0.3;
  double shrink_seconds = 60;
  std::filesystem::path keep = "differential-failures";
  bool print_case = false;
};

std::vector<std::string> split_words(const std::string& text) {
  std::istringstream stream(text);
  std::vector<std::string> words;
  for (std::string word; stream >> word;) words.push_back(word);
  return words;
}

std::string absolute(const std::string& path) {
  return std::filesystem::canonical(path).string();
}

void set_option(Settings& settings, const std::string& name, const std::string& value, bool& first_extra) {
  if (name == "--cases") {
    settings.cases = std::stoull(value);
  } else if (name == "--first-seed") {
    settings.first_seed = std::stoull(value);
  } else if (name == "--print-case") {
    settings.print_case = true;
    settings.first_seed = std::stoull(value);
  } else if (name == "--jobs") {
    settings.jobs = static_cast<unsigned>(std::stoul(value));
  } else if (name == "--budget") {
    settings.budget = std::stod(value);
  } else if (name == "--shrink") {
    settings.shrink_seconds = std::stod(value);
  } else if (name == "--time-limit") {
    settings.contest.seconds_per_run = static_cast<unsigned>(std::stoul(value));
  } else if (name == "--checker") {
    settings.contest.checker = absolute(value);
  } else if (name == "--keep") {
    settings.keep = value;
  } else if (name == "--extra") {
    if (first_extra) settings.contest.extras.clear();
    first_extra = false;
    settings.contest.extras.push_back(split_words(value));
  } else {
    throw std::invalid_argument("unknown option " + name);
  }
}

Settings parse(const std::vector<std::string>& words) {
  Settings settings;
  std::vector<std::string> programs;
  bool first_extra = true;
  for (std::size_t i = 0; i < words.size(); ++i) {
    if (words[i].rfind("--", 0) != 0) {
      programs.push_back(words[i]);
    } else if (i + 1 == words.size()) {
      throw std::invalid_argument(words[i] + " needs a value");
    } else {
      set_option(settings, words[i], words[i + 1], first_extra);
      ++i;
    }
  }
  if (settings.print_case) return settings;
  if (programs.size() != 2) throw std::invalid_argument("two programs are needed");
  settings.contest.program = absolute(programs[0]);
  settings.contest.reference = absolute(programs[1]);
  return settings;
}

std::string command_line(const std::string& program, const std::vector<std::string>& words) {
  std::string line = program;
  for (const std::string& word : words) line += " " + word;
  return line;
}

std::string describe_failure(const Contest& contest, std::uint64_t seed, const Case& smallest, const std::string& fault,
                             const std::filesystem::path& kept) {
  std::string extras;
  for (const auto& extra : contest.extras) {
    if (!extra.empty()) extras += command_line("  with the additional arguments:", extra) + "\n";
  }
  const std::string text = smallest.fasta.size() <= 3000 ? smallest.fasta : "(see input.fa)\n";
  return "FAILED seed " + std::to_string(seed) + "\n" + fault +
         "command: " + command_line(contest.program, command_words(smallest)) + "\n" + extras + "input.fa:\n" + text +
         "\nfiles: " + kept.string() + "\n";
}

std::string shrink_and_keep(const Settings& settings, std::uint64_t seed, const Case& failing) {
  const auto still_fails = [&](const Case& candidate) {
    const TemporaryDirectory directory;
    return !find_fault(settings.contest, candidate, directory.path()).empty();
  };
  const Case smallest = settings.shrink_seconds > 0 ? shrink(failing, still_fails, settings.shrink_seconds) : failing;
  const std::filesystem::path kept = std::filesystem::absolute(settings.keep / ("seed-" + std::to_string(seed)));
  std::filesystem::remove_all(kept);
  std::filesystem::create_directories(kept);
  const std::string fault = find_fault(settings.contest, smallest, kept);
  const std::string message = describe_failure(settings.contest, seed, smallest, fault, kept);
  write_file(kept / "failure.txt", message);
  write_file(kept / "input.fa", smallest.fasta);
  return message;
}

// Empty when the case passes.
std::string run_case(const Settings& settings, std::uint64_t seed) {
  const Case test_case = make_case(seed, settings.budget);
  {
    const TemporaryDirectory directory;
    if (find_fault(settings.contest, test_case, directory.path()).empty()) return {};
  }
  return shrink_and_keep(settings, seed, test_case);
}

int run_all(const Settings& settings) {
  std::atomic<std::uint64_t> next{0};
  std::atomic<std::uint64_t> failed{0};
  std::mutex printing;
  const auto work = [&] {
    for (std::uint64_t i = next++; i < settings.cases; i = next++) {
      std::string message;
      try {
        message = run_case(settings, settings.first_seed + i);
      } catch (const std::exception& error) {
        message = "FAILED seed " + std::to_string(settings.first_seed + i) + "\n" + error.what() + "\n";
      }
      if (message.empty()) continue;
      ++failed;
      const std::lock_guard<std::mutex> lock(printing);
      std::cout << message << std::endl;
    }
  };
  std::vector<std::thread> threads;
  for (unsigned i = 1; i < settings.jobs; ++i) threads.emplace_back(work);
  work();
  for (std::thread& thread : threads) thread.join();
  std::cout << settings.cases - failed << " passed, " << failed << " failed\n";
  return failed == 0 ? 0 : 1;
}

int print_case(const Settings& settings) {
  const Case test_case = make_case(settings.first_seed, settings.budget);
  std::cout << test_case.fasta;
  std::cerr << command_line("options:", command_words(test_case)) << "\n";
  return 0;
}

}  // namespace
}  // namespace differential

int main(int argc, char** argv) {
  using differential::Settings;
  Settings settings;
  try {
    settings = differential::parse(std::vector<std::string>(argv + 1, argv + argc));
  } catch (const std::exception& error) {
    std::cerr << error.what() << "\n" << differential::usage;
    return 2;
  }
  return settings.print_case ? differential::print_case(settings) : differential::run_all(settings);
}
