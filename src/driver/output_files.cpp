#include "driver/output_files.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <new>
#include <system_error>

#include "driver/messages.h"

namespace {

constexpr std::size_t buffer_size = std::size_t{1} << 16;

bool same_inode(const struct stat& a, const struct stat& b) {
  return a.st_dev == b.st_dev && a.st_ino == b.st_ino;
}

/// Where a file of this name is or would be created: links are followed even to a file that does not exist.
std::filesystem::path resolved(const std::string& path) {
  constexpr int most_links = 40;
  std::error_code ignored;
  std::filesystem::path place = std::filesystem::absolute(path, ignored);
  for (int links = 0; links < most_links && std::filesystem::is_symlink(place, ignored); ++links) {
    place = place.parent_path() / std::filesystem::read_symlink(place, ignored);
  }
  return std::filesystem::weakly_canonical(place, ignored);
}

}  // namespace

void OutputFile::use_standard_output() {
  stream_ = stdout;
  is_standard_output_ = true;
  static char buffer[buffer_size];  // the stream is used to the end of the program
  if (isatty(STDOUT_FILENO) == 0) std::setvbuf(stdout, buffer, _IOFBF, sizeof buffer);
}

bool OutputFile::open(const std::string& path) {
  name_ = path;
  stream_ = std::fopen(path.c_str(), "w");
  if (!is_open()) return false;
  buffer_.reset(new (std::nothrow) char[buffer_size]);
  if (buffer_ != nullptr) std::setvbuf(stream_, buffer_.get(), _IOFBF, buffer_size);
  return true;
}

bool OutputFile::open_temporary() {
  std::error_code ignored;
  name_ = (std::filesystem::temp_directory_path(ignored) / "ostrel-XXXXXX").string();
  const int descriptor = mkstemp(name_.data());
  if (descriptor == -1) return false;
  unlink(name_.c_str());
  stream_ = fdopen(descriptor, "w+");
  return is_open();
}

void OutputFile::write(const char* bytes, std::size_t n) {
  if (std::fwrite(bytes, 1, n, stream_) != n) note_failure();
}

void OutputFile::note_failure() {
  if (!failed_) reason_ = errno;
  failed_ = true;
}

bool OutputFile::has_failed() {
  if (is_open() && std::ferror(stream_) != 0) note_failure();
  return failed_;
}

bool OutputFile::flush() {
  if (is_open() && (std::fflush(stream_) != 0 || std::ferror(stream_) != 0)) note_failure();
  return !failed_;
}

bool OutputFile::close() {
  flush();
  if (is_open() && !is_standard_output_ && std::fclose(stream_) != 0) note_failure();
  stream_ = nullptr;
  return !failed_;
}

bool OutputFile::reader_has_gone() const {
  return failed_ && is_standard_output_ && reason_ == EPIPE;
}

void OutputFile::report_failure() const {
  if (reader_has_gone()) return;
  const std::string what = is_standard_output_ ? "Sorry! Failed to write to standard output: "
                                               : "Sorry! Failed to write file\n   \"" + name_ + "\"\ncompletely: ";
  general_PrintMessage(stderr, what, std::strerror(reason_), ".\n");
}

bool same_file(const std::string& a, const std::string& b) {
  struct stat status_a {};
  struct stat status_b {};
  const bool a_exists = stat(a.c_str(), &status_a) == 0;
  const bool b_exists = stat(b.c_str(), &status_b) == 0;
  if (a_exists != b_exists) return false;
  if (a_exists) return S_ISREG(status_a.st_mode) && same_inode(status_a, status_b);
  const std::filesystem::path place = resolved(a);
  return !place.empty() && place == resolved(b);
}

bool is_standard_output(const std::string& path) {
  struct stat status {};
  struct stat output {};
  return stat(path.c_str(), &status) == 0 && fstat(STDOUT_FILENO, &output) == 0 && S_ISREG(status.st_mode) &&
         same_inode(status, output);
}

void occupy_standard_descriptors() {
  for (const int descriptor : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) {
    if (fcntl(descriptor, F_GETFD) != -1) continue;
    const int unusable = descriptor == STDIN_FILENO ? O_WRONLY : O_RDONLY;
    if (::open("/dev/null", unusable) == -1) return;  // takes the lowest free number, which is this one
  }
}
