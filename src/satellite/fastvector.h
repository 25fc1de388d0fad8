#pragma once

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <new>
#include <type_traits>

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
    if (size == 0) {
      release();
    } else {
      resize_buffer(size);
    }
  }

  bool empty() const { return size == 0; }

  T* begin() { return buffer; }
  T* end() { return buffer + size; }
  const T* begin() const { return buffer; }
  const T* end() const { return buffer + size; }

 private:
  static_assert(std::is_trivially_copy_constructible_v<T> && std::is_trivially_destructible_v<T>,
                "the elements move with the bytes of the buffer");

  void grow_to(std::size_t new_capacity) {
    if (resize_buffer(new_capacity)) return;
    std::puts("Program aborded due to failed realloc!");
    std::fflush(nullptr);
    std::_Exit(0);  // other threads may be at work: nothing is torn down under them
  }

  /// False, with nothing changed, if there is no memory. A large buffer keeps its pages, so the old one and the new one
  /// do not take memory side by side: the events of an array can be as many as a third of its bases.
  bool resize_buffer(std::size_t new_capacity) {
    void* const resized = std::realloc(static_cast<void*>(buffer), new_capacity * sizeof(T));
    if (resized == nullptr) return false;
    buffer = static_cast<T*>(resized);
    capacity = new_capacity;
    return true;
  }
};
