#pragma once

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <new>
#include <utility>

/// A growable array of small, trivially destructible elements that keeps its buffer when it is emptied.
///
/// Invariant: `size` <= `capacity`; the object owns `buffer`. A buffer that cannot grow ends the program with exit
/// status 0 and a line on standard output.
template <typename T>
class fastvector {
 public:
  T* buffer = nullptr;
  std::size_t size = 0;
  std::size_t capacity = 0;

  fastvector() = default;
  ~fastvector() { std::free(static_cast<void*>(buffer)); }

  fastvector(const fastvector& other) { *this = other; }

  fastvector& operator=(const fastvector& other) {
    if (this == &other) return *this;
    size = 0;
    reserve(other.size);
    for (const T& element : other) push_back(element);
    return *this;
  }

  void push_back(const T& element) {
    if (size == capacity) grow_to(capacity == 0 ? 4 : 2 * capacity);
    new (buffer + size) T(element);
    ++size;
  }

  void reserve(std::size_t n) {
    if (capacity < n) grow_to(n);
  }

  /// Room for n more elements, growing as push_back does.
  void reserve_more(std::size_t n) {
    if (capacity - size < n) grow_to(std::max(size + n, 2 * capacity));
  }

  void clear() { size = 0; }

  /// Empties the array and frees its buffer.
  void release() {
    std::free(static_cast<void*>(buffer));
    buffer = nullptr;
    size = capacity = 0;
  }

  /// Gives back the part of the buffer that is not used, if it is worth it and there is memory for the smaller one.
  void shrink() {
    constexpr std::size_t spare_elements = 16;
    if (capacity - size <= spare_elements) return;
    auto* const smaller = size == 0 ? nullptr : allocated(size);
    if (size == 0 || smaller != nullptr) move_into(smaller, size);
  }

  bool empty() const { return size == 0; }

  T* begin() { return buffer; }
  T* end() { return buffer + size; }
  const T* begin() const { return buffer; }
  const T* end() const { return buffer + size; }

 private:
  static T* allocated(std::size_t n) { return static_cast<T*>(std::malloc(n * sizeof(T))); }

  void grow_to(std::size_t new_capacity) {
    auto* const grown = allocated(new_capacity);
    if (grown == nullptr) {
      std::puts("Program aborded due to failed realloc!");
      std::fflush(nullptr);
      std::_Exit(0);  // other threads may be at work: nothing is torn down under them
    }
    move_into(grown, new_capacity);
  }

  void move_into(T* new_buffer, std::size_t new_capacity) {
    for (std::size_t i = 0; i < size; ++i) new (new_buffer + i) T(std::move(buffer[i]));
    std::free(static_cast<void*>(buffer));
    buffer = new_buffer;
    capacity = new_capacity;
  }
};
