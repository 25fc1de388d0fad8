#pragma once

#include <cstddef>
#include <cstdlib>
#include <cstring>
#include <new>

/// A growable byte buffer for bases.
///
/// Invariant: `length` <= `capacity`. The object owns `buffer`, which has `padding` readable bytes on either side of
/// the capacity: a position one before the first base is a valid address, and vector code may load past the first and
/// the last base. What stands there is no base: zeros, those behind the last base once `terminate` has been called.
/// Throws std::bad_alloc where memory runs out; the content is then unchanged.
class faststring {
 public:
  static constexpr std::size_t padding = 128;

  char* buffer = nullptr;    ///< first byte; not NUL-terminated as stored
  std::size_t length = 0;    ///< bytes in use
  std::size_t capacity = 0;  ///< bytes that fit without growing

  faststring() = default;
  faststring(const faststring&) = delete;
  faststring& operator=(const faststring&) = delete;
  ~faststring() { release(); }

  /// Makes room for n bytes and a terminator; grows to exactly n + 1.
  void reserve(std::size_t n) {
    if (capacity < n + 1) reallocate(n + 1);
  }

  /// Makes room for n more bytes, doubling from 4.
  void make_room_for(std::size_t n) {
    if (capacity - length >= n) return;
    std::size_t wanted = capacity == 0 ? 4 : capacity;
    while (wanted - length < n) wanted *= 2;
    reallocate(wanted);
  }

  void push_back(char c) {
    make_room_for(1);
    buffer[length++] = c;
  }

  /// Writes a NUL at buffer[length], and more of them behind it, growing by exactly one byte if the buffer is full.
  void terminate() {
    if (length == capacity) reallocate(length + 1);
    std::memset(buffer + length, '\0', padding);
  }

 private:
  void reallocate(std::size_t new_capacity) {
    char* const old = buffer == nullptr ? nullptr : buffer - padding;
    auto* const grown = static_cast<char*>(std::realloc(old, new_capacity + 2 * padding));
    if (grown == nullptr) throw std::bad_alloc();
    std::memset(grown, '\0', padding);
    buffer = grown + padding;
    capacity = new_capacity;
  }

  void release() {
    if (buffer != nullptr) std::free(buffer - padding);
  }
};
