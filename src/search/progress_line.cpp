#include "search/progress_line.h"

#include <sys/ioctl.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <chrono>
#include <cstdio>

bool progress_line_is_on = false;

namespace {

using Clock = std::chrono::steady_clock;

constexpr auto redraw_interval = std::chrono::milliseconds(250);
constexpr const char* clear_to_end_of_line = "\x1b[K";

struct LineState {
  Clock::time_point start;
  Clock::time_point next_drawing;
  std::uint64_t file_size = 0;
  RecordPlace record;              ///< the one that is searched
  double share = 0;                ///< how much of its search is done, 0 to 1
  std::uint64_t bases_before = 0;  ///< in the records searched before it
  std::uint64_t bytes_before = 0;  ///< of those records in the file
  bool drawn = false;              ///< the line is on the terminal
};

LineState line;

/// 12345678 and "bp" become "12.35 Mbp".
std::string with_prefix(double value, const char* unit) {
  constexpr std::array<const char*, 5> prefixes = {"", "k", "M", "G", "T"};
  std::size_t step = 0;
  for (; value >= 999.995 && step + 1 < prefixes.size(); ++step) value /= 1000;
  std::array<char, 40> number{};
  std::snprintf(number.data(), number.size(), step == 0 ? "%.0f " : "%.2f ", value);
  return std::string(number.data()) + prefixes[step] + unit;
}

/// Hours, minutes and seconds.
std::string duration(double seconds) {
  const auto whole = static_cast<std::int64_t>(seconds + 0.5);
  std::array<char, 40> text{};
  std::snprintf(text.data(), text.size(), "%lld:%02d:%02d", static_cast<long long>(whole / 3600),
                static_cast<int>(whole % 3600 / 60), static_cast<int>(whole % 60));
  return text.data();
}

std::size_t terminal_width() {
  constexpr std::size_t usual_width = 80;
  winsize size{};
  return ioctl(STDERR_FILENO, TIOCGWINSZ, &size) == 0 && size.ws_col > 0 ? size.ws_col : usual_width;
}

Progress progress_at(double share) {
  const auto record_bytes = static_cast<double>(line.record.end - line.record.begin);
  Progress progress;
  progress.bases = static_cast<double>(line.bases_before) + share * static_cast<double>(line.record.bases);
  progress.seconds = std::chrono::duration<double>(Clock::now() - line.start).count();
  progress.file_size = line.file_size;
  progress.file_offset = static_cast<double>(line.record.begin) + share * record_bytes;
  progress.bytes_searched = static_cast<double>(line.bytes_before) + share * record_bytes;
  return progress;
}

}  // namespace

std::string progress_text(const Progress& progress) {
  const auto file_size = static_cast<double>(progress.file_size);
  const double file_offset = std::min(progress.file_offset, file_size);  // the file may have grown meanwhile
  std::string text = with_prefix(progress.bases, "bp");
  if (progress.file_size > 0) {
    text += ", " + std::to_string(static_cast<int>(100 * file_offset / file_size)) + " % of ";
    text += with_prefix(file_size, "B");
  }
  if (progress.bases < 1 || progress.seconds <= 0) return text;
  text += ", " + with_prefix(progress.bases / progress.seconds, "bp/s");
  if (progress.file_size > 0 && progress.bytes_searched >= 1) {
    text += ", " + duration(progress.seconds * (file_size - file_offset) / progress.bytes_searched) + " left";
  }
  return text;
}

void start_progress_line(std::uint64_t input_size) {
  progress_line_is_on = isatty(STDERR_FILENO) != 0;
  line = LineState();
  line.file_size = input_size;
  line.start = Clock::now();
  line.next_drawing = line.start;
}

void enter_record(const RecordPlace& record) {
  line.bases_before += line.record.bases;
  line.bytes_before += line.record.end - line.record.begin;
  line.record = record;
  line.share = 0;
}

void show_progress(double share) {
  const Clock::time_point now = Clock::now();
  line.share = std::max(line.share, share);
  if (!progress_line_is_on || now < line.next_drawing) return;
  line.next_drawing = now + redraw_interval;
  line.drawn = true;
  // The last column stays free: a terminal would go on to the next line behind it.
  const std::string text = progress_text(progress_at(line.share)).substr(0, terminal_width() - 1);
  const std::string drawing = "\r" + text + clear_to_end_of_line;
  std::fwrite(drawing.data(), 1, drawing.size(), stderr);
  std::fflush(stderr);
}

void clear_progress_line() {
  if (!line.drawn) return;
  line.drawn = false;
  std::fprintf(stderr, "\r%s", clear_to_end_of_line);
}
