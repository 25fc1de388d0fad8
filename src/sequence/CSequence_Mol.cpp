#include "sequence/CSequence_Mol.h"

#include <algorithm>
#include <array>

#if defined(__SSE2__)
#include <emmintrin.h>
#endif

namespace {

/// What a byte of a sequence line is stored as; 0: not stored.
constexpr std::array<char, 256> make_base_table() {
  std::array<char, 256> table{};
  for (int letter = 'A'; letter <= 'Z'; ++letter) {
    const bool is_base = letter == 'A' || letter == 'C' || letter == 'G' || letter == 'T';
    const char stored = letter == 'X' ? '\0' : is_base ? static_cast<char>(letter) : 'N';
    constexpr std::size_t to_lower = 'a' - 'A';
    table[static_cast<std::size_t>(letter)] = stored;
    table[static_cast<std::size_t>(letter) + to_lower] = stored;
  }
  return table;
}

constexpr std::array<char, 256> base_table = make_base_table();

/// Copies the leading blocks of 16 bytes of [from, to) that hold nothing but A, C, G, T and N of either case, in upper
/// case, and returns what is left. Most lines of most files are of that kind.
#if defined(__SSE2__)
const char* copy_plain_blocks(const char* from, const char* to, char*& out) {
  const auto all = [](char c) { return _mm_set1_epi8(c); };
  for (; to - from >= 16; from += 16, out += 16) {
    const __m128i bytes = _mm_loadu_si128(reinterpret_cast<const __m128i*>(from));
    const __m128i upper = _mm_and_si128(bytes, all(static_cast<char>(~('a' - 'A'))));
    const __m128i strong = _mm_or_si128(_mm_cmpeq_epi8(upper, all('C')), _mm_cmpeq_epi8(upper, all('G')));
    const __m128i weak = _mm_or_si128(_mm_cmpeq_epi8(upper, all('A')), _mm_cmpeq_epi8(upper, all('T')));
    const __m128i plain = _mm_or_si128(_mm_or_si128(strong, weak), _mm_cmpeq_epi8(upper, all('N')));
    if (_mm_movemask_epi8(plain) != 0xFFFF) break;
    _mm_storeu_si128(reinterpret_cast<__m128i*>(out), upper);
  }
  return from;
}
#else
const char* copy_plain_blocks(const char* from, const char* /*to*/, char*& /*out*/) {
  return from;
}
#endif

/// The first line end in [from, to), or `to`.
const char* find_line_end(const char* from, const char* to) {
  const auto find = [](const char* begin, const char* end, char c) {
    const auto* found = static_cast<const char*>(std::memchr(begin, c, static_cast<std::size_t>(end - begin)));
    return found == nullptr ? end : found;
  };
  return find(from, find(from, to, '\n'), '\r');
}

}  // namespace

void CSequence_Mol::copy(const CSequence_Mol& other) {
  name = other.name;
  sequence_type = other.sequence_type;
  sequence.length = 0;
  sequence.reserve(other.sequence.length);
  std::copy_n(other.sequence.buffer, other.sequence.length, sequence.buffer);
  sequence.length = other.sequence.length;
  sequence.terminate();
}

void CSequence_Mol::readName(CFile& file) {
  name.clear();
  while (true) {
    const CFile::Span span = file.available();
    if (file.eof()) return;
    const char* const line_end = find_line_end(span.begin, span.end);
    name.append(span.begin, line_end);
    file.consume(static_cast<std::size_t>(line_end - span.begin));
    if (line_end == span.end) continue;
    file.getChar();  // the line end; CR LF takes two bytes
    if (!file.eof()) file.count_line();
    return;
  }
}

void CSequence_Mol::readFastaSequence(CFile& file) {
  name.clear();
  sequence.length = 0;
  const char mark = file.getChar();
  if (file.eof() || mark != '>') throw static_cast<int>(FASTA_HEADER_EXPECTED);
  readName(file);
  if (file.eof()) {
    if (name.empty()) throw static_cast<int>(FASTA_HEADER_EXPECTED);
    file.clear_eof();  // a header without a line end is an empty record; the next byte asked for ends the file again
  }
  while (true) {
    const char c = file.getChar();
    if (file.eof()) break;
    file.ungetChar();
    if (c == '>') break;
    getLineOfDNA(file);
  }
  sequence.terminate();
}

void CSequence_Mol::getLineOfDNA(CFile& file) {
  while (true) {
    const CFile::Span span = file.available();
    if (file.eof()) return;
    const char* const line_end = find_line_end(span.begin, span.end);
    if (sequence_type == 0) appendBases(span.begin, line_end);
    file.consume(static_cast<std::size_t>(line_end - span.begin));
    if (line_end == span.end) continue;
    file.getChar();
    file.count_line();
    break;
  }
  if (sequence_type != 0) std::puts("Not implemented.");
}

void CSequence_Mol::appendBases(const char* from, const char* to) {
  sequence.make_room_for(static_cast<std::size_t>(to - from));
  char* out = sequence.buffer + sequence.length;
  for (const char* p = copy_plain_blocks(from, to, out); p != to; ++p) {
    const char base = base_table[static_cast<unsigned char>(*p)];
    *out = base;  // overwritten by the next base where nothing is stored
    out += base != '\0';
  }
  sequence.length = static_cast<std::size_t>(out - sequence.buffer);
}

void CSequence_Mol::writeSequence(std::FILE* out, int width) {
  std::fprintf(out, ">%s\n", name.c_str());
  const auto step = static_cast<std::size_t>(width);
  for (std::size_t at = 0; at < sequence.length; at += step) {
    std::fwrite(sequence.buffer + at, 1, std::min(step, sequence.length - at), out);
    std::fputc('\n', out);
  }
}
