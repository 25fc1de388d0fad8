#include "sequence/CFile.h"

#include <sys/stat.h>

namespace {

bool is_directory(const std::string& filename) {
  struct stat status {};
  return stat(filename.c_str(), &status) == 0 && S_ISDIR(status.st_mode);
}

/// In bytes; 0 for what has no size, a pipe for instance.
std::uint64_t size_of(const std::string& filename) {
  struct stat status {};
  if (stat(filename.c_str(), &status) != 0 || !S_ISREG(status.st_mode)) return 0;
  return static_cast<std::uint64_t>(status.st_size);
}

}  // namespace

CFile::CFile(const std::string& filename) : block(new char[block_size]), current(block.get()), block_end(block.get()) {
  // A stream opens a directory without complaint and fails at the first read only.
  if (is_directory(filename)) {
    open_failed = true;
    return;
  }
  rdbuf()->pubsetbuf(nullptr, 0);  // the block is the buffer: no second copy
  open(filename, std::ios::in | std::ios::binary);
  open_failed = fail();
  file_size = size_of(filename);
}

CFile::~CFile() = default;

bool CFile::refill_if_empty() {
  if (current != block_end) return true;
  read(block.get(), block_size);
  const std::streamsize got = gcount();
  if (bad()) throw static_cast<int>(FASTA_READ_FAILED);
  current = block.get();
  block_end = current + got;
  bytes_read += static_cast<std::uint64_t>(got);
  if (got == 0) at_eof = true;
  return got != 0;
}

char CFile::getChar() {
  if (!refill_if_empty()) return '\n';
  const char c = *current++;
  if (c != '\r') return c;
  if (refill_if_empty() && *current++ != '\n') throw static_cast<int>(FASTA_LONE_CR);
  return '\n';
}

void CFile::ungetChar() {
  if (current == block.get()) throw static_cast<int>(FASTA_CANNOT_PUSH_BACK);
  --current;
}

CFile::Span CFile::available() {
  refill_if_empty();
  return {current, block_end};
}
