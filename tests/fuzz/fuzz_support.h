#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <functional>
#include <string>

#include "literal_reference.h"

/// One input of the fuzzer. Returns 0; a fault that no sanitizer sees ends the process through `fail`.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

namespace fuzz {

/// Writes the message and aborts, which the fuzzer takes for a crash.
[[noreturn]] void fail(const std::string& message);

inline void require(bool holds, const char* what) {
  if (!holds) fail(what);
}

/// What `write` writes to the stream that it is given.
std::string bytes_written_by(const std::function<void(std::FILE*)>& write);

/// Fails with both texts and what `describe` says of the input if they are not the same.
void require_same(const std::string& program, const std::string& reference,
                  const std::function<std::string()>& describe);

/// While it lives, what goes to stdout, stderr, std::cout and std::cerr is thrown away. The descriptors stay as they
/// are, so sanitizers are still heard.
class Silence {
 public:
  Silence();
  Silence(const Silence&) = delete;
  Silence& operator=(const Silence&) = delete;
  ~Silence();

 private:
  std::FILE* standard_output_;
  std::FILE* standard_error_;
  std::streambuf* cout_;
  std::streambuf* cerr_;
};

/// The reference's options as the run parameters stand.
reference::Options options_in_force();

/// The same bytes in a heap block of exactly their size, so that reading one byte too many shows.
class ExactCopy {
 public:
  ExactCopy(const void* data, std::size_t size);
  ExactCopy(const ExactCopy&) = delete;
  ExactCopy& operator=(const ExactCopy&) = delete;
  ~ExactCopy();

  const std::uint8_t* data() const { return bytes_; }

 private:
  std::uint8_t* bytes_;
};

}  // namespace fuzz
