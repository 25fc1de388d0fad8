#include "process_runner.h"

#include <fcntl.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <fstream>
#include <iterator>
#include <stdexcept>

namespace differential {
namespace {

// Between fork and exec only calls that are safe in a copy of a threaded process are made.
[[noreturn]] void become_program(char* const* words, const char* directory, unsigned seconds) {
  const rlimit no_core{0, 0};
  setrlimit(RLIMIT_CORE, &no_core);
  if (chdir(directory) != 0) _exit(126);
  const int in = open("/dev/null", O_RDONLY);
  const int out = open("stdout", O_WRONLY | O_CREAT | O_TRUNC, 0666);
  const int err = open("stderr", O_WRONLY | O_CREAT | O_TRUNC, 0666);
  if (dup2(in, 0) < 0 || dup2(out, 1) < 0 || dup2(err, 2) < 0) _exit(126);
  // The alarm outlives exec, so a run that takes too long ends itself.
  alarm(seconds);
  execv(words[0], words);
  _exit(127);
}

}  // namespace

TemporaryDirectory::TemporaryDirectory() {
  std::string name = (std::filesystem::temp_directory_path() / "differential-XXXXXX").string();
  if (mkdtemp(name.data()) == nullptr) throw std::runtime_error("cannot make the directory " + name);
  path_ = name;
}

TemporaryDirectory::~TemporaryDirectory() {
  std::error_code ignored;
  std::filesystem::remove_all(path_, ignored);
}

int run_process(const std::vector<std::string>& words, const std::filesystem::path& directory, unsigned seconds) {
  std::vector<char*> arguments;
  for (const std::string& word : words) arguments.push_back(const_cast<char*>(word.c_str()));
  arguments.push_back(nullptr);
  const std::string directory_name = directory.string();
  const pid_t child = fork();
  if (child < 0) throw std::runtime_error("cannot start " + words.front());
  if (child == 0) become_program(arguments.data(), directory_name.c_str(), seconds);
  int status = 0;
  while (waitpid(child, &status, 0) < 0) {
  }
  return WIFSIGNALED(status) ? 1000 + WTERMSIG(status) : WEXITSTATUS(status);
}

std::optional<std::string> read_file(const std::filesystem::path& path) {
  std::ifstream file(path, std::ios::binary);
  if (!file) return std::nullopt;
  return std::string(std::istreambuf_iterator<char>(file), {});
}

void write_file(const std::filesystem::path& path, const std::string& bytes) {
  std::ofstream file(path, std::ios::binary);
  file.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
}

}  // namespace differential
