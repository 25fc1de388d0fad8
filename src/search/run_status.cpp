#include "search/run_status.h"

#include <cstdint>
#include <cstdio>
#include <ctime>

#include "search/progress_line.h"

namespace {

std::clock_t clock_tics_analysis_started;
std::time_t time_next_status_report;

}  // namespace

void start_run_clock() {
  clock_tics_analysis_started = std::clock();
}

void update_report_time() {
  time_next_status_report = std::time(nullptr) + 59;
}

bool check_report_status() {
  if (std::time(nullptr) <= time_next_status_report) return false;
  update_report_time();
  return true;
}

void write_status(const char* line) {
  clear_progress_line();
  std::fputs(line, stderr);
  std::fflush(stderr);
}

void report_status(unsigned seqnr, const char* name, unsigned unit_length, char /*kind*/) {
  clear_progress_line();
  const std::int64_t seconds = (std::clock() - clock_tics_analysis_started) / CLOCKS_PER_SEC;
  std::fprintf(stderr, "%.2d.%.2d.%.2d - # %3d - %4dbp - %.70s\n", static_cast<int>(seconds / 3600),
               static_cast<int>(seconds % 3600 / 60), static_cast<int>(seconds % 60), static_cast<int>(seqnr),
               static_cast<int>(unit_length), name);
  std::fflush(stderr);
}
