#include "driver/number2cstring.h"

#include <cstdio>

namespace {

char number[50];

template <typename T>
const char* format(const char* pattern, T value) {
  std::snprintf(number, sizeof number, pattern, value);
  return number;
}

}  // namespace

const char* number2str(int value) {
  return format("%d", value);
}
const char* number2str(unsigned int value) {
  return format("%u", value);
}
const char* number2str(double value) {
  return format("%lg", value);
}
const char* number2str(float value) {
  return format("%g", static_cast<double>(value));
}
