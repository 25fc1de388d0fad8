#pragma once

#include <htslib/bgzf.h>

#include <array>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <stdexcept>
#include <string>

namespace test {

/// One BGZF block of at most 64 KiB of text; of an empty text the block that marks the end.
inline std::string bgzf_block(const std::string& text) {
  std::array<char, BGZF_MAX_BLOCK_SIZE> block{};
  std::size_t size = block.size();
  if (bgzf_compress(block.data(), &size, text.data(), text.size(), 6) != 0) throw std::runtime_error("no BGZF block");
  return {block.data(), size};
}

/// The text in BGZF blocks of `step` bytes, without the end marker.
inline std::string bgzf_blocks(const std::string& text, std::size_t step = BGZF_BLOCK_SIZE) {
  std::string blocks;
  for (std::size_t at = 0; at < text.size(); at += step) blocks += bgzf_block(text.substr(at, step));
  return blocks;
}

inline std::string bgzf_of(const std::string& text) {
  return bgzf_blocks(text) + bgzf_block("");
}

/// One gzip member.
inline std::string gzip_of(const std::string& text) {
  std::string path = (std::filesystem::temp_directory_path() / "ostrel-gzip-XXXXXX").string();
  if (mkstemp(path.data()) == -1) throw std::runtime_error("no temporary file");
  BGZF* const file = bgzf_open(path.c_str(), "wg");
  if (file == nullptr || bgzf_write(file, text.data(), text.size()) < 0 || bgzf_close(file) != 0) {
    throw std::runtime_error("no gzip file");
  }
  std::ifstream in(path, std::ios::binary);
  std::string bytes{std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
  std::filesystem::remove(path);
  return bytes;
}

}  // namespace test
