#pragma once

#include <algorithm>
#include <array>
#include <charconv>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <string_view>

/// Text on its way into a stream, put together in a buffer of its own: where repeats are many, the format strings of
/// the stream functions cost more than the search.
///
/// What was put in is lost unless `flush` is called at the end. A failed write is left to the stream's error indicator.
class ReportText {
 public:
  static constexpr std::size_t buffer_size = 4096;

  explicit ReportText(std::FILE* out) : out_(out) {}
  ReportText(const ReportText&) = delete;
  ReportText& operator=(const ReportText&) = delete;

  void put(std::string_view bytes) {
    make_room(bytes.size());
    if (bytes.size() > buffer_size) {
      std::fwrite(bytes.data(), 1, bytes.size(), out_);
      return;
    }
    std::memcpy(buffer_.data() + used_, bytes.data(), bytes.size());
    used_ += bytes.size();
  }

  void put(char c) {
    make_room(1);
    buffer_[used_++] = c;
  }

  /// The same character over and over.
  void put_repeated(char c, std::size_t times) {
    while (times > 0) {
      const std::size_t some = std::min(times, buffer_size);
      make_room(some);
      std::memset(buffer_.data() + used_, c, some);
      used_ += some;
      times -= some;
    }
  }

  /// Right-aligned in `width` columns, or wider; as "%*s".
  void put_aligned(std::string_view bytes, std::size_t width) {
    if (bytes.size() < width) put_repeated(' ', width - bytes.size());
    put(bytes);
  }

  /// As "%*d", `width` at most 32.
  void put_number(std::int64_t number, std::size_t width = 0) {
    // Numbers are many, nearly all of them fit into their columns: they are written where they stay. More blanks than
    // are needed, but always as many, take no call.
    make_room(32);
    char* const at = buffer_.data() + used_;
    std::memset(at, ' ', 32);
    std::int64_t rest = number;
    for (char* digit = at + width; digit > at && rest >= 0;) {
      *--digit = static_cast<char>('0' + rest % 10);
      rest /= 10;
      if (rest > 0) continue;
      used_ += width;
      return;
    }
    std::array<char, 20> digits;
    const auto result = std::to_chars(digits.begin(), digits.end(), number);
    put_aligned({digits.data(), static_cast<std::size_t>(result.ptr - digits.data())}, width);
  }

  /// As "%*.3f". Room for any ratio of two 64-bit numbers in percent.
  void put_fixed_3(double number, std::size_t width) {
    if (number == 100.0) {  // most repeats are perfect
      put_aligned("100.000", width);
      return;
    }
    std::array<char, 40> digits;
    const auto result = std::to_chars(digits.begin(), digits.end(), number, std::chars_format::fixed, 3);
    put_aligned({digits.data(), static_cast<std::size_t>(result.ptr - digits.data())}, width);
  }

  /// Gives everything to the stream.
  void flush() {
    if (used_ > 0) std::fwrite(buffer_.data(), 1, used_, out_);
    used_ = 0;
  }

  /// The same, and has the stream write it.
  void flush_stream() {
    flush();
    std::fflush(out_);
  }

 private:
  /// Room for `bytes`, or an empty buffer.
  void make_room(std::size_t bytes) {
    if (bytes > buffer_size - used_) flush();
  }

  std::FILE* out_;
  std::size_t used_ = 0;
  std::array<char, buffer_size> buffer_;
};
