#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

/// A short DNA string that owns its bytes: a repeat unit on its way into the report.
class CDnaString {
 public:
  CDnaString() = default;
  CDnaString(const char* begin, const char* end) : bytes(begin, end) {}

  const std::string& str() const { return bytes; }
  std::size_t length() const { return bytes.size(); }
  const char* c_str() const { return bytes.c_str(); }

  /// This string becomes the reverse complement of `other`, a different object. A byte without a complement (S and
  /// W among them) becomes "?". Returns the number of "?" written.
  int setToReverseComplementOf(const CDnaString& other);

  /// This string becomes the alphabetically smallest rotation of `other`, a different object, in byte order.
  /// Returns true when `other` is a repetition of a shorter string.
  bool setToMinAlphaRepModCyclicPermOf(const CDnaString& other);

 private:
  std::string bytes;
};

/// True when the unit [begin, end) is a repetition of a shorter unit and the number of copies is a prime factor of its
/// length smaller than the length. So a unit of prime length is never reducible here, not even AAA, which
/// `setToMinAlphaRepModCyclicPermOf` does recognise: reports of units "as they are" depend on the difference.
bool isReducibleUnit_global(const char* begin, const char* end);
