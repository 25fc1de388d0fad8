#include "search/base_planes.h"

#include <algorithm>
#include <cstring>

#if defined(__SSE2__)
#include <emmintrin.h>
#endif

namespace {

constexpr std::int64_t bases_per_word = 64;

/// One word of each plane.
struct PlaneWords {
  std::uint64_t low = 0;
  std::uint64_t high = 0;
  std::uint64_t unknown = 0;
};

#if defined(__SSE2__)
/// Sorts 64 bases into the planes. In ASCII, bits 1 and 2 tell A (0, 0), C (1, 0), G (1, 1) and T (0, 1) apart, and of
/// the five letters only N has bit 3.
PlaneWords planes_of(const char* bases) {
  PlaneWords words;
  for (unsigned byte = 0; byte < 64; byte += 16) {
    const __m128i block = _mm_loadu_si128(reinterpret_cast<const __m128i*>(bases + byte));
    // The instruction gathers the highest bit of each byte.
    const auto gathered = [&](int shift) {
      return static_cast<std::uint64_t>(_mm_movemask_epi8(_mm_slli_epi16(block, shift))) << byte;
    };
    words.low |= gathered(6);
    words.high |= gathered(5);
    words.unknown |= gathered(4);
  }
  return words;
}
#else

/// Gathers bit 0 of each of the eight bytes of `bytes` into one byte, the first byte's bit lowest.
std::uint64_t gather_low_bits(std::uint64_t bytes) {
  return ((bytes & 0x0101010101010101U) * 0x0102040810204080U) >> 56;
}

PlaneWords planes_of(const char* bases) {
  PlaneWords words;
  for (unsigned byte = 0; byte < 64; byte += 8) {
    std::uint64_t block = 0;
    std::memcpy(&block, bases + byte, sizeof block);
    words.low |= gather_low_bits(block >> 1) << byte;
    words.high |= gather_low_bits(block >> 2) << byte;
    words.unknown |= gather_low_bits(block >> 3) << byte;
  }
  return words;
}
#endif

}  // namespace

BasePlanes::BasePlanes(const char* begin, const char* end)
    : words_((static_cast<std::size_t>(end - begin) + 63) / 64),
      low_(words_ + 2),
      high_(words_ + 2),
      unknown_(words_ + 2, ~std::uint64_t{0}) {
  for (std::size_t word = 0; word < words_; ++word) {
    char block[bases_per_word];
    const char* from = begin + word * 64;
    if (end - from < bases_per_word) {
      std::memset(block, 'N', sizeof block);
      std::memcpy(block, from, static_cast<std::size_t>(end - from));
      from = block;
    }
    const PlaneWords words = planes_of(from);
    low_[word + 1] = words.low;
    high_[word + 1] = words.high;
    unknown_[word + 1] = words.unknown;
  }
}

namespace {

/// The part of the output words [first_word, first_word + count) for which both the word and, `words_back` words
/// before it, a word or the one outside word before the first exist: [begin, end) relative to first_word.
struct Overlap {
  std::int64_t begin;
  std::int64_t end;
};

Overlap overlap_of(std::int64_t first_word, std::size_t count, std::int64_t words_back, std::size_t words) {
  const auto n = static_cast<std::int64_t>(count);
  const std::int64_t begin = std::clamp<std::int64_t>(words_back - first_word, 0, n);
  const std::int64_t end = std::clamp<std::int64_t>(static_cast<std::int64_t>(words) - first_word, begin, n);
  return {begin, end};
}

/// Word `i` of a plane shifted up by `bits` (0 to 63) bits.
std::uint64_t shifted(const std::uint64_t* plane, std::int64_t i, unsigned bits) {
  return (plane[i] << bits) | (plane[i - 1] >> 1 >> (63 - bits));
}

}  // namespace

void BasePlanes::matches(std::int64_t first_word, std::size_t count, std::int64_t lag, std::uint64_t* matches) const {
  const std::int64_t back = lag / bases_per_word;
  const auto bits = static_cast<unsigned>(lag % bases_per_word);
  const Overlap inside = overlap_of(first_word, count, back, words_);
  std::fill(matches, matches + inside.begin, 0);
  std::fill(matches + inside.end, matches + count, 0);
  const std::uint64_t* const low = low_.data();
  const std::uint64_t* const high = high_.data();
  const std::uint64_t* const unknown = unknown_.data();
  const std::int64_t at = first_word + 1;  // the planes have one word in front
  for (std::int64_t i = inside.begin; i < inside.end; ++i) {
    const std::uint64_t differ =
        (low[at + i] ^ shifted(low, at + i - back, bits)) | (high[at + i] ^ shifted(high, at + i - back, bits));
    matches[i] = ~(differ | unknown[at + i] | shifted(unknown, at + i - back, bits));
  }
}

void BasePlanes::unknown(std::int64_t first_word, std::size_t count, std::int64_t lag, std::uint64_t* unknown) const {
  const std::int64_t back = lag / bases_per_word;
  const auto bits = static_cast<unsigned>(lag % bases_per_word);
  // Here the word itself may lie outside: only the shifted one is read.
  const Overlap inside = overlap_of(first_word - back, count, 0, words_);
  std::fill(unknown, unknown + inside.begin, ~std::uint64_t{0});
  std::fill(unknown + inside.end, unknown + count, ~std::uint64_t{0});
  const std::int64_t at = first_word + 1 - back;
  for (std::int64_t i = inside.begin; i < inside.end; ++i) unknown[i] = shifted(unknown_.data(), at + i, bits);
}

std::int64_t BasePlanes::first_unknown(std::int64_t first) const {
  auto word = static_cast<std::size_t>(first / 64) + 1;
  std::uint64_t bits = unknown_[word] & (~std::uint64_t{0} << (first % 64));
  while (bits == 0) bits = unknown_[++word];  // behind the sequence everything is N
  return static_cast<std::int64_t>(word - 1) * 64 + __builtin_ctzll(bits);
}

std::int64_t BasePlanes::first_known(std::int64_t first) const {
  auto word = static_cast<std::size_t>(first / 64) + 1;
  std::uint64_t known = ~unknown_[word] & (~std::uint64_t{0} << (first % 64));
  while (known == 0 && word < words_) known = ~unknown_[++word];
  return static_cast<std::int64_t>(word - 1) * 64 + (known == 0 ? 64 : __builtin_ctzll(known));
}

std::int64_t BasePlanes::end_of_known_before(std::int64_t end) const {
  if (end == 0) return 0;
  auto word = static_cast<std::size_t>((end - 1) / 64) + 1;
  std::uint64_t known = ~unknown_[word] & (~std::uint64_t{0} >> (63 - (end - 1) % 64));
  while (known == 0 && word > 1) known = ~unknown_[--word];
  return known == 0 ? 0 : static_cast<std::int64_t>(word - 1) * 64 + 64 - __builtin_clzll(known);
}
