#include "sequence/CFile.h"

CFile::CFile(const std::string& filename)
    : source(filename), block(new char[block_size]), current(block.get()), block_end(block.get()) {
  open_failed = !source.is_open();
}

bool CFile::refill_if_empty() {
  if (current != block_end) return true;
  const std::size_t got = source.read(block.get(), block_size);
  current = block.get();
  block_end = current + got;
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

std::uint64_t CFile::position() const {
  const std::uint64_t waiting = source.is_compressed() ? 0 : static_cast<std::uint64_t>(block_end - current);
  return source.position() - waiting;
}
